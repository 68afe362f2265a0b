// One file, or another source of epochs, to a report, as a program without a command line does it.
#include "host/judging/judge_file.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "host/report/json_writer.h"
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
  EXPECT_FALSE(report.verdict.has_value());
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
  ASSERT_TRUE(report.verdict.has_value());
  EXPECT_FALSE(report.verdict->passed);
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
  bool Next(ObsEpoch_QC_gbt& epoch) override { return simulation_.Next(epoch); }
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

TEST(JudgeFile, RefusesARunWithoutNavigation) {
  const SimulatedFiles files;
  const orsolva_test::Folder alone;
  std::filesystem::copy_file(files.Path("a.rnx"), alone / "a.rnx");
  SharedNavigation none({}, {});
  Diagnostics diagnostics;
  EXPECT_THROW(JudgeFile(alone / "a.rnx", SettingsOfSimulatedHour(), none, diagnostics), RunError);
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
