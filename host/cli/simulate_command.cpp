#include <CLI/CLI.hpp>
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
#include <vector>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/cli/qc_settings.h"
#include "host/judging/run_monitor.h"
#include "host/simulator/file_set.h"
#include "host/simulator/presets.h"
#include "host/simulator/scenario_json.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/progress.h"
#include "host/terminal/standard_streams.h"

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
  FileSetOptions files = {".", false, false};
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

void Complain(const char* option, const std::string& wrong) {
  if (!wrong.empty()) throw ScenarioError(std::string(option) + ": " + wrong);
}

std::uint64_t SeedOf(const std::string& text) {
  std::uint64_t seed = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, seed);
  const bool good = error == std::errc() && stopped == end;
  Complain("--seed", good ? "" : "found \"" + text + "\", expected a non-negative integer");
  return seed;
}

void TakePlaceAndTime(const SimulateSettings& settings, Scenario& scenario) {
  if (!settings.start.empty()) Complain("--start", ParseStart(settings.start, scenario.start));
  if (settings.position.empty()) return;
  PositionChoice choice;
  Complain("--position", ParsePosition(settings.position, choice));
  if (choice.source != PositionSource::kOption) Complain("--position", "expected X,Y,Z in metres");
  scenario.receiver.position_m = choice.xyz_m;
}

/// The preset or the file first, then what single options say.
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
  TakePlaceAndTime(settings, scenario);
  CheckScenario(scenario);
  return scenario;
}

void SayWhatDoesNotHappen(const Scenario& scenario) {
  const auto late = std::count_if(scenario.faults.begin(), scenario.faults.end(), [&](const Fault& fault) {
    return fault.random == 0 && fault.at_s >= scenario.hours * 3600;
  });
  if (late > 0) {
    std::fprintf(stderr, "orsolva: %td faults begin after the end of the span and do not happen\n", late);
  }
}

int Simulate(const Scenario& scenario, const FileSetOptions& options) {
  NoteInterrupts();
  Truth truth;
  {
    Progress progress;
    truth = WriteFileSet(scenario, options, [&progress](std::uint64_t done, std::uint64_t of) {
      if (InterruptExitCode() != 0) throw Stopped();
      progress.Epochs(done, of);
    });
  }
  const FileSet names = FileNames(scenario, options);
  std::printf("%s\n%s\n%s\n", names.observations.c_str(), names.navigation.c_str(), names.truth.c_str());
  SayWhatDoesNotHappen(scenario);
  return kGood;
}

int DoSimulate(const SimulateSettings& settings) {
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
    PrintError(TextOf(error));
    return kRunFailed;
  }
}

}  // namespace

void AddSimulateCommand(CLI::App& app, int& exit_code) {
  CLI::App* command =
      app.add_subcommand("simulate", "Write the observations of a simulated sky, and its truth");
  auto s = std::make_shared<SimulateSettings>();
  CLI::Option* preset =
      command->add_option("--preset", s->preset, "Scenario that comes with the program; default: quiet")
          ->type_name("NAME");
  command->add_option("--scenario", s->scenario_file, "Scenario file (JSON)")
      ->type_name("FILE")
      ->excludes(preset);
  command->add_flag("--list-presets", s->list_presets, "List the presets and end");
  command->add_option("--output", s->files.folder, "Folder for the files; default: the current one")
      ->type_name("FOLDER");
  command->add_option("--faults", s->fault_presets, "Add the faults of these presets")
      ->type_name("NAMES")
      ->delimiter(',');
  command->add_option("--seed", s->seed, "Seed of the random numbers")->type_name("NUMBER");
  command->add_option("--start", s->start, "Start, YYYY-MM-DD or \"YYYY-MM-DD HH:MM:SS\", GPS time")
      ->type_name("TIME");
  command->add_option("--hours", s->hours, "Length of the span in hours")->type_name("HOURS");
  command->add_option("--interval", s->interval_s, "Interval in seconds, 0.1 to 60")->type_name("SECONDS");
  command->add_option("--position", s->position, "X,Y,Z of the receiver in metres")->type_name("X,Y,Z");
  command->add_option("--systems", s->systems, "Systems, letters from GREJC")->type_name("LETTERS");
  command->add_option("--station", s->station, "Station, nine characters of the file names")
      ->type_name("NAME");
  command->add_option("--cutoff", s->cutoff_deg, "Elevation below which nothing is tracked, degrees")
      ->type_name("DEGREES");
  command->add_flag("--gzip", s->files.gzip, "Compress the RINEX files with gzip");
  command->add_flag("--crinex", s->files.crinex, "Write Hatanaka-compressed observations (CRINEX 3)");
  command->callback([s, &exit_code] { exit_code = DoSimulate(*s); });
}

}  // namespace orsolva_host
