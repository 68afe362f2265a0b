// One file, or another source of epochs, to a report, as a program without a command line does it.
#include "host/judging/judge_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/judging/analysis_run.h"
#include "host/report/json_writer.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/simulator/simulation.h"
#include "tests/host/judging/simulated_files.h"

namespace {

using namespace orsolva_host;
using orsolva_test::SettingsOfSimulatedHour;
using orsolva_test::SimulatedFiles;
using orsolva_test::SimulatedHour;

Report JudgedFile(const SimulatedFiles& files, const JudgingSettings& settings) {
  SharedNavigation navigation({files.Path("nav.rnx")}, settings.limits);
  Diagnostics diagnostics;
  return JudgeFile(files.Path("a.rnx"), settings, navigation, diagnostics);
}

TEST(JudgeFile, MakesTheReportOfASimulatedFile) {
  const SimulatedFiles files;
  const Report report = JudgedFile(files, SettingsOfSimulatedHour());
  EXPECT_EQ(report.run.epochs, 120);
  EXPECT_EQ(report.run.interval_s, 30);
  EXPECT_EQ(report.run.interval_source, "header");
  EXPECT_EQ(report.run.position_source, "header");
  EXPECT_EQ(report.run.library_version.substr(0, 1), "V");
  EXPECT_EQ(report.systems.size(), 2U);
  EXPECT_FALSE(report.profile_verdict.has_value());
  EXPECT_TRUE(report.read_error.empty());
}

TEST(JudgeFile, HoldsTheReportAgainstAProfile) {
  const SimulatedFiles files;
  JudgingSettings settings = SettingsOfSimulatedHour();
  settings.profile = ParseProfile(
      "name='hard'\ntitle='t'\n[[criterion]]\nname='strong'\nfigure='snr'\nscope='system'\nsystems='G'\n"
      "signals=['L1']\nat_least={good=70,fair=60}\nsource='s'\n",
      "hard");
  const Report report = JudgedFile(files, settings);
  ASSERT_TRUE(report.profile_verdict.has_value());
  EXPECT_FALSE(report.profile_verdict->passed);
}

/// The value as a file holds it, with three decimals; 0 is absent.
double AsInAFile(double value) { return value == 0 ? kAbsent : std::round(value * 1000) / 1000; }

void FillFull(const ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) {
  full.Clear();
  full.time_ns = epoch.time.time * kNanosecondsPerSecond + std::llround(epoch.time.sec * 1e9);
  for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
    const Satellite_gbt& satellite = epoch.sats[i];
    const char letter = kSystemTable[SystemSlotOfCode(satellite.sys)].letter;
    full.satellites.push_back(
        {{letter, static_cast<std::uint8_t>(satellite.prn)}, full.signals.size(), satellite.signal_num});
    for (std::uint32_t k = 0; k < satellite.signal_num; ++k) {
      const Signal_QC_gbt& from = satellite.signals[k];
      const std::string_view name = SignalName(satellite.sys, from.code);
      SignalObservation signal;
      signal.code = {name[0], name[1]};
      signal.pseudorange_m = AsInAFile(from.pseudorange);
      signal.phase_cycles = AsInAFile(from.phase);
      signal.doppler_hz = AsInAFile(from.doppler);
      signal.snr_dbhz = AsInAFile(from.snr);
      full.signals.push_back(signal);
    }
  }
}

/// Epochs straight from the simulator, with the header that its file has.
class SimulatedSource : public EpochSource {
 public:
  explicit SimulatedSource(std::string name) : name_(std::move(name)), simulation_(SimulatedHour()) {
    header_.position = SimulatedHour().receiver.position_m;
    header_.interval_s = SimulatedHour().interval_s;
  }
  const std::string& Name() const override { return name_; }
  const ObservationHeader& Header() const override { return header_; }
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) override {
    if (!simulation_.Next(epoch)) return false;
    FillFull(epoch, full);
    return true;
  }
  const std::optional<FileError>& Failure() const override { return failure_; }

 private:
  std::string name_;
  ObservationHeader header_;
  Simulation simulation_;
  std::optional<FileError> failure_;
};

TEST(JudgeEpochs, GivesTheFiguresOfTheFileForTheSameEpochsFromAnotherSource) {
  const SimulatedFiles files;
  const JudgingSettings settings = SettingsOfSimulatedHour();
  const Report from_file = JudgedFile(files, settings);
  SharedNavigation navigation({files.Path("nav.rnx")}, settings.limits);
  Diagnostics diagnostics;
  SimulatedSource source(files.Path("a.rnx"));
  Report report = JudgeEpochs(source, settings, navigation, diagnostics);
  EXPECT_EQ(diagnostics.Total(), 0);
  // What only the file's header says.
  report.run.marker = from_file.run.marker;
  report.run.receiver = from_file.run.receiver;
  report.run.antenna = from_file.run.antenna;
  report.run.rinex_version = from_file.run.rinex_version;
  EXPECT_EQ(WriteJson(report), WriteJson(from_file));
}

TEST(AnalysisRun, TakesTheSatellitesThatAreChosenWhateverTheirNumber) {
  JudgingSettings settings = SettingsOfSimulatedHour();
  settings.systems = "G";
  settings.excluded = {{SystemSlot('G'), 5}};
  const SimulatedSource source("a.rnx");
  AnalysisRun run(settings, source, {}, nullptr, nullptr, nullptr);
  ObservationEpoch epoch;
  const std::vector<SatelliteId> observed = {{'G', 1}, {'G', 5}, {'G', 250}, {'E', 1}, {'~', 1}};
  for (const SatelliteId id : observed) {
    epoch.satellites.push_back({id, epoch.signals.size(), 1});
    epoch.signals.push_back({{'1', 'C'}, 0, 0, 2.2e7, 1.1e8, kAbsent, kAbsent});
  }
  run.Add(epoch);
  const AnalysisReport report = run.Finish({});
  ASSERT_EQ(report.figures.satellites.size(), 2U);
  EXPECT_TRUE((report.figures.satellites[0].id == SatelliteId{'G', 1}));
  EXPECT_TRUE((report.figures.satellites[1].id == SatelliteId{'G', 250}));
}

/// The simulated file in a folder without navigation.
Report JudgedAlone(const JudgingSettings& settings) {
  const SimulatedFiles files;
  const orsolva_test::Folder alone;
  std::filesystem::copy_file(files.Path("a.rnx"), alone / "a.rnx");
  SharedNavigation none({}, {});
  Diagnostics diagnostics;
  return JudgeFile(alone / "a.rnx", settings, none, diagnostics);
}

TEST(JudgeFile, ReportsWithoutNavigationAndNamesTheFileThatIsMissing) {
  const Report report = JudgedAlone(SettingsOfSimulatedHour());
  ASSERT_TRUE(report.run.library_absence.has_value());
  EXPECT_EQ(report.run.library_absence->id, "no-navigation");
  EXPECT_NE(report.run.library_absence->text.find("records of 2020-06-25: name a file such as "
                                                  "BRDC00IGS_R_20201770000_01D_MN.rnx.gz"),
            std::string::npos)
      << report.run.library_absence->text;
  EXPECT_EQ(report.run.epochs, 120);
  EXPECT_TRUE(report.systems.empty());
  EXPECT_FALSE(report.run.position_m.has_value());
  EXPECT_FALSE(report.analysis.figures.with_orbits);
  ASSERT_FALSE(report.findings.empty());
  EXPECT_EQ(report.findings[0].id, "no-navigation");
  EXPECT_EQ(report.verdict.grade, "not judged");
  EXPECT_EQ(report.library_headline.satellites_without_record, report.library_headline.satellites_observed);
}

TEST(JudgeFile, RefusesARunWithoutNavigationWhenStrict) {
  JudgingSettings settings = SettingsOfSimulatedHour();
  settings.strict = true;
  EXPECT_THROW(JudgedAlone(settings), RunError);
}

/// Keeps what it gets.
class KeptEvents : public EventSink {
 public:
  void Add(const analysis::Event& event) override { events.push_back(event); }
  std::vector<analysis::Event> events;
};

TEST(JudgeFile, RunsTheAnalysisOverTheSameEpochsAndPassesItsEventsOn) {
  const SimulatedFiles files;
  SharedNavigation navigation({files.Path("nav.rnx")}, {});
  Diagnostics diagnostics;
  KeptEvents kept;
  const Report report = JudgeFile(files.WithAHole(), SettingsOfSimulatedHour(), navigation, diagnostics,
                                  {nullptr, nullptr, &kept});
  EXPECT_TRUE(report.analysis.figures.with_orbits);
  EXPECT_EQ(report.analysis.figures.span.interval_s, 30);
  ASSERT_FALSE(kept.events.empty());
  EXPECT_EQ(kept.events.size(), report.analysis.events.size());
  for (const analysis::Event& event : kept.events) EXPECT_EQ(event.gap_s, 330) << event.evidence;
}

TEST(JudgeFile, ACancelledRunEndsWithStopped) {
  const SimulatedFiles files;
  SharedNavigation navigation({files.Path("nav.rnx")}, {});
  Diagnostics diagnostics;
  RunMonitor monitor;
  monitor.stop.store(true);
  EXPECT_THROW(
      JudgeFile(files.Path("a.rnx"), SettingsOfSimulatedHour(), navigation, diagnostics, {nullptr, &monitor}),
      Stopped);
  EXPECT_EQ(monitor.epochs.load(), 1U);
}

}  // namespace
