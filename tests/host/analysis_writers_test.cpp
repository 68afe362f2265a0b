// The analysis of a report as text, JSON and rows: what is there is shown, what is absent is not.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "host/report/analysis_text.h"
#include "host/report/build_report.h"
#include "host/report/csv_writer.h"
#include "host/report/json_writer.h"
#include "host/report/profile.h"
#include "host/report/sum_writer.h"
#include "host/report/text_writer.h"
#include "tests/host/sample_report.h"
#include "tests/support/json_reader.h"

namespace orsolva_host {
namespace {

using json = orsolva_test::Json;

constexpr std::int64_t kMidnight_ns = 1593043200 * kNanosecondsPerSecond;

/// A day with a gap of three epochs, one GPS signal and a satellite without an orbit.
Report WithAnalysis() {
  Report report = orsolva_test::SampleReport();
  analysis::AnalysisResult& r = report.analysis.figures;
  r.with_orbits = true;
  r.elevation_cutoff_deg = 10;
  r.span.interval_s = 30;
  r.span.expected_epochs = 2880;
  r.span.present_epochs = r.span.usable_epochs = 2877;
  r.span.lost_epochs = 3;
  r.span.gaps = {{kMidnight_ns, kMidnight_ns + 120 * kNanosecondsPerSecond, 3}};
  analysis::SystemFigures system;
  system.satellites_observed = 2;
  system.cutoff = {1000, 995, 0.995};
  system.slips.sure = 2;
  system.slips.unsure = 1;
  system.slips.tested_steps = 990;
  r.systems.push_back(system);
  analysis::SignalFigures signal;
  signal.code = {'1', 'C'};
  signal.strength.mean_dbhz = 44.25;
  signal.strength.values = 990;
  signal.strength.mean_by_elevation = {{10, 15, 38.5, 100}};
  signal.strength.drops = {{kMidnight_ns, kMidnight_ns + kNanosecondsPerSecond, 6, 9, std::nullopt}};
  signal.multipath.partner = "2W";
  r.signals.push_back(signal);
  r.contradictions = {{"interval", "15 s", "30 s"}};
  r.without_record = {{'R', 11}};
  r.position.moving = false;
  return report;
}

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(AnalysisText, HeadlineAndTablesSayWhatTheAnalysisFound) {
  Report report = WithAnalysis();
  Conclude(report, nullptr);
  const std::string text = WriteText(report, {80, false});
  for (const char* line :
       {"\nEpochs            2880 nominal, 2877 present, 3 missing, 1 gap\n",
        "\nCompleteness      99.50 %, 1000 observations expected, 995 observed\n",
        "\nSatellites        2 observed, 1 with orbit, 1 without orbit, 0 never observed\n",
        "\nCycle slips       3, 990 tested steps, 330 observations per slip\n",
        "\nGaps              2020-06-25 00:00:00 to 2020-06-25 00:02:00 (3 epochs)\n",
        "\nSystem     Sats No orbit "}) {
    EXPECT_TRUE(Holds(text, line)) << line << text;
  }
}

TEST(AnalysisText, TheVerdictIsTheSecondLineAndTheFindingsFollow) {
  Report report = WithAnalysis();
  Conclude(report, nullptr);
  std::istringstream lines(WriteText(report, {80, false}));
  std::string first, second;
  std::getline(lines, first);
  std::getline(lines, second);
  EXPECT_EQ(first, "Orsolva V1 observation quality");
  EXPECT_EQ(second.find("Verdict: fair - 1 of 2 satellites not judged; "), 0U) << second;
}

TEST(AnalysisText, WithoutASlipGivesMoreThanTheTestedSteps) {
  Report report = WithAnalysis();
  report.analysis.figures.systems[0].slips.sure = report.analysis.figures.systems[0].slips.unsure = 0;
  Conclude(report, nullptr);
  EXPECT_TRUE(Holds(WriteText(report, {80, false}), "more than 990 observations per slip"));
}

TEST(FigureChoice, AnalysisAndLibraryStandAlone) {
  Report report = WithAnalysis();
  Conclude(report, nullptr);
  report.figures = FigureChoice::kAnalysis;
  EXPECT_FALSE(Holds(WriteText(report, {80, false}), "LIBRARY"));
  EXPECT_TRUE(Holds(WriteText(report, {80, false}), "HEADLINE"));
  EXPECT_FALSE(json::parse(WriteJson(report)).contains("library"));
  EXPECT_FALSE(Holds(WriteSum(report), "=LIBRARY"));
  EXPECT_FALSE(Holds(WriteCsvRows(report), ",mp_rms_m,"));
  EXPECT_TRUE(Holds(WriteCsvRows(report), ",sure_slips,"));
  report.figures = FigureChoice::kLibrary;
  EXPECT_FALSE(Holds(WriteText(report, {80, false}), "HEADLINE"));
  EXPECT_TRUE(Holds(WriteText(report, {80, false}), "LIBRARY SYSTEMS"));
  EXPECT_FALSE(json::parse(WriteJson(report)).contains("analysis"));
  EXPECT_FALSE(Holds(WriteSum(report), "=ANALYSIS"));
  EXPECT_TRUE(Holds(WriteCsvRows(report), ",mp_rms_m,"));
  EXPECT_FALSE(Holds(WriteCsvRows(report), ",sure_slips,"));
  for (const std::string& text : {WriteText(report, {80, false}), WriteSum(report)}) {
    EXPECT_TRUE(Holds(text, "satellites not judged")) << "the verdict leads whatever is chosen";
  }
}

TEST(AnalysisText, GivesTheOffsetOfTheClockInAUnitThatSuitsIt) {
  const std::pair<double, const char*> offsets[] = {
      {4.8094e-4, "480.9 us"}, {-1.25e-3, "-1.25 ms"}, {3.5e-8, "35 ns"}, {12.5, "12.5 s"}};
  for (const auto& [seconds, text] : offsets) {
    Report report = WithAnalysis();
    report.analysis.figures.receiver_clock.mean_offset_s = seconds;
    report.analysis.figures.receiver_clock.resets = 1;
    EXPECT_TRUE(Holds(AnalysisText(report, {80, false}, AllFigures()),
                      std::string("Receiver clock    offset ") + text + ", 1 reset\n"))
        << text;
  }
}

TEST(AnalysisText, LeavesOutWhatIsAbsent) {
  const std::string text = AnalysisText(orsolva_test::SampleReport(), {80, false}, AllFigures());
  EXPECT_EQ(text, "");
}

TEST(AnalysisJson, HasFiguresListsAndNamesAndNullForWhatIsAbsent) {
  const json all = json::parse(WriteJson(WithAnalysis()));
  const json& j = all["analysis"];
  EXPECT_EQ(j["missing_epochs"], 3);
  EXPECT_EQ(j["gaps"][0]["missing_epochs"], 3);
  EXPECT_EQ(j["gaps"][0]["first_after_gpst"], "2020-06-25 00:02:00.000");
  EXPECT_EQ(j["systems"][0]["cutoff_completeness_ratio"], 0.995);
  EXPECT_TRUE(j["systems"][0]["horizon_completeness_ratio"].is_null());
  EXPECT_EQ(j["signals"][0]["multipath_partner"], "2W");
  EXPECT_EQ(j["signals"][0]["strength_mean_by_elevation"][0]["value"], 38.5);
  EXPECT_TRUE(j["signals"][0]["drops"][0]["other_bands_dropped"].is_null());
  EXPECT_EQ(j["antenna_moves"], false);
  EXPECT_TRUE(j["receiver_clock_steered"].is_null());
  EXPECT_EQ(j["without_orbit"][0], "R11");
  EXPECT_FALSE(j.contains("satellites"));
}

TEST(AnalysisCsv, HasElevationRangesBehindTheSignal) {
  const std::string text = WriteCsvRows(WithAnalysis());
  EXPECT_TRUE(Holds(text, "\nG,1C,strength_mean_dbhz,dB-Hz,44.25,"));
  EXPECT_TRUE(Holds(text, "\nG,1C@10-15,strength_mean_dbhz,dB-Hz,38.5,"));
  EXPECT_TRUE(Holds(text, "\nG,,sure_slips,events,2,"));
  EXPECT_TRUE(Holds(text, "\n,,antenna_moves,1,0,"));
}

TEST(AnalysisFigures, MayBeLimitedByAProfile) {
  const Profile profile = ParseProfile(
      "name='slips'\ntitle='t'\n[[criterion]]\nname='slips'\nfigure='sure_slips'\nscope='system'\n"
      "at_most={good=0,fair=1}\nsource='s'\n",
      "slips");
  const ProfileVerdict verdict = Judge(WithAnalysis(), profile);
  EXPECT_EQ(verdict.grade, "fail");
  ASSERT_EQ(verdict.outcomes.size(), 1U);
  EXPECT_EQ(verdict.outcomes[0].value, 2.0);
}

}  // namespace
}  // namespace orsolva_host
