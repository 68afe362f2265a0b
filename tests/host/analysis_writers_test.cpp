// The analysis of a report as text, JSON and rows: what is there is shown, what is absent is not.
#include <gtest/gtest.h>

#include <string>

#include "host/report/analysis_text.h"
#include "host/report/csv_writer.h"
#include "host/report/json_writer.h"
#include "host/report/profile.h"
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

TEST(AnalysisText, SaysWhatTheAnalysisFound) {
  const std::string text = AnalysisText(WithAnalysis(), {80, false}, AllFigures());
  for (const char* line :
       {"Epochs            2880 nominal every 30 s, 2877 present, 2877 usable, 3 missing\n",
        "Gaps              2020-06-25 00:00:00 to 2020-06-25 00:02:00 (3 epochs)\n",
        "Completeness      GPS 99.50 %, from 10 degrees up\n",
        "Cycle slips       GPS 3 (1 unsure) in 990 tested steps\n",
        "Contradiction     interval: stated 15 s, found 30 s\n", "Without orbit     1 satellite: R11\n"}) {
    EXPECT_TRUE(Holds(text, line)) << line << text;
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
  const Verdict verdict = Judge(WithAnalysis(), profile);
  EXPECT_EQ(verdict.grade, "fail");
  ASSERT_EQ(verdict.outcomes.size(), 1U);
  EXPECT_EQ(verdict.outcomes[0].value, 2.0);
}

}  // namespace
}  // namespace orsolva_host
