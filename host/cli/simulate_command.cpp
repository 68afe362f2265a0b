#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "host/cli/argument_texts.h"
#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/judging/run_error.h"
#include "host/judging/run_monitor.h"
#include "host/simulator/file_set.h"
#include "host/simulator/presets.h"
#include "host/simulator/scenario_json.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/standard_streams.h"
#include "host/terminal/status_line.h"

namespace orsolva_host {
namespace {

struct SimulateSettings {
  std::string scenario_file;
  std::string preset;
  std::vector<std::string> fault_presets;
  std::string start;
  std::string position;
  std::string systems;
  std::string station;
  std::string seed;
  std::optional<double> hours;
  std::optional<double> interval_s;
  std::optional<double> cutoff_deg;
  FileSetOptions files = {".", false, false, 0, false};
  bool list_presets = false;
};

void ListPresets() {
  for (const Preset& preset : Presets()) std::printf("%-14s %s\n", preset.name, preset.about);
}

/// @throws ScenarioError naming the presets that there are
void ReadPreset(const char* option, const std::string& name, Scenario& scenario) {
  const Preset* preset = FindPreset(name);
  if (!preset) {
    std::string known;
    for (const Preset& one : Presets()) known += (known.empty() ? "" : ", ") + std::string(one.name);
    throw ScenarioError(std::string(option) + ": found \"" + name + "\", expected one of " + known);
  }
  ReadScenario(preset->json, scenario);
}

void AddFaults(const std::string& name, Scenario& scenario) {
  Scenario other;
  ReadPreset("--faults", name, other);
  scenario.faults.insert(scenario.faults.end(), other.faults.begin(), other.faults.end());
}

/// What is wrong in a file is a failed run; what is wrong in an option is wrong usage.
void ReadFile(const std::string& path, Scenario& scenario) {
  try {
    ReadScenarioFile(path, scenario);
  } catch (const ScenarioError& error) {
    throw std::runtime_error(error.what());
  }
}

void Require(const char* option, const std::string& wrong) {
  if (!wrong.empty()) throw ScenarioError(std::string(option) + ": " + wrong);
}

std::uint64_t SeedOf(const std::string& text) {
  std::uint64_t seed = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, seed);
  const bool good = error == std::errc() && stopped == end;
  Require("--seed", good ? "" : "found \"" + text + "\", expected a non-negative integer");
  return seed;
}

void SetPlaceAndTime(const SimulateSettings& settings, Scenario& scenario) {
  if (!settings.start.empty()) Require("--start", ParseStart(settings.start, scenario.start));
  if (settings.position.empty()) return;
  PositionChoice choice;
  Require("--position", ParsePosition(settings.position, choice));
  if (choice.source != PositionSource::kOption) Require("--position", "expected X,Y,Z in metres");
  scenario.receiver.position_m = choice.xyz_m;
}

/// The preset or the file first, then the single options.
Scenario MakeScenario(const SimulateSettings& settings) {
  Scenario scenario;
  if (!settings.preset.empty()) ReadPreset("--preset", settings.preset, scenario);
  if (!settings.scenario_file.empty()) ReadFile(settings.scenario_file, scenario);
  for (const std::string& name : settings.fault_presets) AddFaults(name, scenario);
  if (!settings.seed.empty()) scenario.seed = SeedOf(settings.seed);
  if (settings.hours) scenario.hours = *settings.hours;
  if (settings.interval_s) scenario.interval_s = *settings.interval_s;
  if (settings.cutoff_deg) scenario.receiver.cutoff_deg = *settings.cutoff_deg;
  if (!settings.systems.empty()) scenario.systems = settings.systems;
  if (!settings.station.empty()) scenario.station = settings.station;
  SetPlaceAndTime(settings, scenario);
  CheckScenario(scenario);
  return scenario;
}

std::string ParseMsm(const std::string& text, int& kind) {
  if (text != "4" && text != "7") return "'" + text + "' is not 4 or 7";
  kind = text[0] - '0';
  return {};
}

/// A hundred times in all.
void ShowEpochs(std::uint64_t done, std::uint64_t of, StatusLine& status) {
  constexpr std::uint64_t kSteps = 100;
  const std::uint64_t step = std::max<std::uint64_t>(of / kSteps, 1);
  if (done % step == 0) status.Show(std::to_string(done) + " of " + std::to_string(of) + " epochs");
}

void WarnOfLateFaults(const Scenario& scenario) {
  const auto late = std::count_if(scenario.faults.begin(), scenario.faults.end(), [&](const Fault& fault) {
    return fault.random == 0 && fault.at_s >= scenario.hours * 3600;
  });
  if (late > 0) {
    const char* text = late == 1 ? "fault begins after the end of the span and does not happen"
                                 : "faults begin after the end of the span and do not happen";
    std::fprintf(stderr, "orsolva: %td %s\n", late, text);
  }
}

int Simulate(const Scenario& scenario, const FileSetOptions& options) {
  RecordInterrupts();
  Truth truth;
  {
    StatusLine status(true);
    truth = WriteFileSet(scenario, options, [&status](std::uint64_t done, std::uint64_t of) {
      if (InterruptExitCode() != 0) throw Stopped();
      ShowEpochs(done, of, status);
    });
  }
  const FileSet names = FileNames(scenario, options);
  std::printf("%s\n%s\n%s\n", names.observations.c_str(), names.navigation.c_str(), names.truth.c_str());
  if (!names.stream.empty()) std::printf("%s\n", names.stream.c_str());
  WarnOfLateFaults(scenario);
  return kGood;
}

int RunSimulate(const SimulateSettings& settings) {
  if (settings.list_presets) {
    ListPresets();
    return kGood;
  }
  try {
    return Simulate(MakeScenario(settings), settings.files);
  } catch (const Stopped&) {
    return InterruptExitCode();
  } catch (const ScenarioError& error) {
    PrintError(error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    PrintError(ErrorText(error));
    return kRunFailed;
  }
}

}  // namespace

Command SimulateCommand() {
  auto s = std::make_shared<SimulateSettings>();
  std::vector<Option> rows = {
      TextOption("preset", "NAME", s->preset, "Built-in scenario; without one: quiet"),
      FileOption("scenario", "FILE", s->scenario_file, "Scenario file (JSON)"),
      Switch("list-presets", s->list_presets, "List the presets and end"),
      FolderOption("output", s->files.folder, "Folder for the files"),
      Parsed("faults", "NAMES", "", ParseNames, s->fault_presets, "Add the faults of these presets"),
      TextOption("seed", "NUMBER", s->seed, "Seed of the random numbers"),
      TextOption("start", "TIME", s->start, "Start, YYYY-MM-DD or \"YYYY-MM-DD HH:MM:SS\", GPS time"),
      Number("hours", "HOURS", s->hours, "Length of the span in hours"),
      Number("interval", "SECONDS", s->interval_s, "Interval in seconds, 0.1 to 60"),
      TextOption("position", "X,Y,Z", s->position, "X,Y,Z of the receiver in metres"),
      TextOption("systems", "LETTERS", s->systems, "Satellite systems, letters from GREJC"),
      TextOption("station", "NAME", s->station, "Station, nine characters of the file names"),
      Number("cutoff", "DEGREES", s->cutoff_deg, "Elevation in degrees below which nothing is tracked"),
      Switch("gzip", s->files.gzip, "Compress all but the truth with gzip"),
      Switch("crinex", s->files.crinex, "Write Hatanaka-compressed observations (CRINEX 3)"),
      Parsed("rtcm", "KIND", "", ParseMsm, s->files.rtcm,
             "Write an RTCM 3 stream of MSM4 (4) or MSM7 (7) too, and the observations that a reader of it "
             "gets"),
      Switch(
          "ubx", s->files.ubx,
          "Write a recording of a u-blox receiver (RXM-RAWX) too, and the observations that a reader of it "
          "gets"),
      Switch("sbf", s->files.sbf,
             "Write a recording of a Septentrio receiver (SBF) too, and the observations that a reader of it "
             "gets"),
  };
  for (Option& row : rows) {
    if (row.name == "preset") {
      for (const Preset& preset : Presets()) row.words.emplace_back(preset.name);
    }
    if (row.name == "scenario") row.excludes = {"preset"};
    if (row.name == "rtcm") row.words = {"4", "7"}, row.excludes = {"sbf", "ubx"};
    if (row.name == "ubx") row.excludes = {"rtcm", "sbf"};
    if (row.name == "sbf") row.excludes = {"rtcm", "ubx"};
    row.many = row.name == "faults";
  }
  return {"simulate",
          "Simulate a receiver and write its observations with their truth",
          std::move(rows),
          [s] { return RunSimulate(*s); },
          {kGood, kRunFailed, kWrongUsage, kInterrupted, kTerminated}};
}

}  // namespace orsolva_host
