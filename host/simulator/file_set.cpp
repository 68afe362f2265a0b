#include "host/simulator/file_set.h"

#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <utility>

#include "host/output/byte_sink.h"
#include "host/output/whole_file.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/navigation_reader.h"
#include "host/simulator/broadcast.h"
#include "host/simulator/navigation_writer.h"
#include "host/simulator/observation_writer.h"
#include "host/simulator/sbf_recording.h"
#include "host/simulator/simulation.h"
#include "host/simulator/stream_writer.h"
#include "host/simulator/truth_json.h"
#include "host/simulator/ubx_recording.h"

namespace orsolva_host {
namespace {

/// "01D", "06H", "30M": the largest unit that gives an integer.
std::string PeriodText(double hours) {
  const auto minutes = static_cast<long>(std::ceil(hours * 60 - 1e-9));
  if (minutes % 1440 == 0) return fmt::format("{:02}D", minutes / 1440);
  return minutes % 60 == 0 && minutes / 60 < 100 ? fmt::format("{:02}H", minutes / 60)
         : minutes < 100                         ? fmt::format("{:02}M", minutes)
                                                 : fmt::format("{:02}H", (minutes + 59) / 60);
}

/// "30S", "10Z" (ten times per second), "01M".
std::string RateText(double interval_s) {
  if (interval_s < 1) return fmt::format("{:02}Z", std::lround(1 / interval_s));
  const long seconds = std::lround(interval_s);
  return seconds % 60 == 0 ? fmt::format("{:02}M", seconds / 60) : fmt::format("{:02}S", seconds);
}

void WriteText(const std::string& path, const std::string& text, WholeFiles& files) {
  const std::unique_ptr<ByteSink> sink = files.Begin(path);
  sink->Write(text.data(), text.size());
  sink->Close();
}

void WriteObservations(Simulation& simulation, std::unique_ptr<ByteSink> sink, const FileSetOptions& options,
                       const SimulationProgress& progress) {
  ObservationWriter writer(std::move(sink), simulation.Settings(), simulation.TruthSoFar().header_position_m,
                           options.crinex);
  const auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  while (simulation.Next(*record, epoch)) {
    writer.Write(epoch);
    progress(simulation.NominalEpochsDone(), simulation.NominalEpochs());
  }
  writer.Close();
}

BroadcastRecords RecordsOf(const std::string& navigation) {
  Diagnostics none;
  NavigationReader reader(none);
  reader.Read(TextBytes(navigation), "navigation");
  return reader.TakeBroadcast();
}

std::unique_ptr<RecordingWriter> Recording(const Scenario& scenario, const FileSetOptions& options,
                                           const std::array<double, 3>& position_m,
                                           const std::string& navigation, std::unique_ptr<ByteSink> sink) {
  if (options.ubx) return std::make_unique<UbxRecording>(std::move(sink), RecordsOf(navigation));
  if (options.sbf) {
    return std::make_unique<SbfRecording>(std::move(sink), scenario, RecordsOf(navigation));
  }
  return std::make_unique<StreamWriter>(std::move(sink), options.rtcm, RecordsOf(navigation), position_m,
                                        scenario.start.time * kNanosecondsPerSecond);
}

/// The recording, and the observations that a reader of it gets, with no position where it has none.
void WriteTwins(Simulation& simulation, const FileSet& names, const FileSetOptions& options,
                const std::string& navigation, WholeFiles& files, const SimulationProgress& progress) {
  const Scenario& scenario = simulation.Settings();
  const std::array<double, 3>& position_m = simulation.TruthSoFar().header_position_m;
  const std::unique_ptr<RecordingWriter> recording =
      Recording(scenario, options, position_m, navigation, files.Begin(names.stream));
  ObservationWriter twin(files.Begin(names.observations), scenario,
                         options.ubx || options.sbf ? std::array<double, 3>() : position_m, options.crinex,
                         SignalOrder::kCodes);
  const auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  while (simulation.Next(*record, epoch)) {
    recording->Write(epoch);
    while (recording->Next(epoch)) twin.Write(epoch);
    progress(simulation.NominalEpochsDone(), simulation.NominalEpochs());
  }
  recording->Close();
  while (recording->Next(epoch)) twin.Write(epoch);
  twin.Close();
}

}  // namespace

FileSet FileNames(const Scenario& scenario, const FileSetOptions& options) {
  const CivilTime c = ToCivil(scenario.start);
  const auto day = DaysFromCivil(c.year, c.month, c.day) - DaysFromCivil(c.year, 1, 1) + 1;
  const std::string stem = fmt::format("{}_R_{:04}{:03}{:02}{:02}_{}", scenario.station, c.year, day, c.hour,
                                       c.minute, PeriodText(scenario.hours));
  const std::string tail = options.gzip ? ".gz" : "";
  const std::filesystem::path folder(options.folder);
  FileSet names;
  const std::string form = options.crinex ? ".crx" : ".rnx";
  names.observations = (folder / (stem + "_" + RateText(scenario.interval_s) + "_MO" + form + tail)).string();
  names.navigation = (folder / (stem + "_MN.rnx" + tail)).string();
  names.truth = (folder / "truth.json").string();
  if (options.rtcm != 0) names.stream = (folder / (stem + ".rtcm3" + tail)).string();
  if (options.ubx) names.stream = (folder / (stem + ".ubx" + tail)).string();
  if (options.sbf) names.stream = (folder / (stem + ".sbf" + tail)).string();
  return names;
}

Truth WriteFileSet(const Scenario& scenario, const FileSetOptions& options,
                   const SimulationProgress& progress) {
  Simulation simulation(scenario);
  MakeFolder(options.folder);
  const FileSet names = FileNames(scenario, options);
  const std::string navigation = NavigationText(simulation.Navigation(), LeapSeconds(scenario.start.time));
  WholeFiles files;
  WriteText(names.navigation, navigation, files);
  if (names.stream.empty()) {
    WriteObservations(simulation, files.Begin(names.observations), options, progress);
  } else {
    WriteTwins(simulation, names, options, navigation, files, progress);
  }
  WriteText(names.truth, TruthJson(scenario, simulation.TruthSoFar()), files);
  files.Publish();
  return simulation.TruthSoFar();
}

}  // namespace orsolva_host
