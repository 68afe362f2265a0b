// Reports read back, compared with a later one, and used as the history of their station.
#include "host/report/comparison.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "host/report/findings.h"
#include "host/report/history_profile.h"
#include "host/report/json_writer.h"
#include "host/report/text_writer.h"
#include "tests/host/folder.h"
#include "tests/host/sample_report.h"

namespace orsolva_host {
namespace {

using orsolva_test::Folder;

/// A report of one GPS signal with figures of the analysis, of the n-th day.
Report ReportOf(double strength_dbhz, double completeness, int day = 0, const std::string& marker = "ABCD") {
  Report report = orsolva_test::SampleReport();
  report.run.marker = marker;
  report.run.receiver = "RCV 1 fw 1.0";
  report.run.first_epoch = Time_gbt{1593043200 + 86400 * day, 0};
  report.run.last_epoch = Time_gbt{1593129570 + 86400 * day, 0};
  analysis::AnalysisResult& figures = report.analysis.figures;
  figures = {};
  analysis::SystemFigures system;
  system.letter = 'G';
  system.satellites_observed = 30;
  system.cutoff = {1000, 990, completeness};
  figures.systems = {system};
  analysis::SignalFigures signal;
  signal.system = 'G';
  signal.code = {'1', 'C'};
  signal.cutoff = {1000, 990, completeness};
  signal.strength.mean_dbhz = strength_dbhz;
  figures.signals = {signal};
  return report;
}

std::vector<EarlierReport> Earlier(const Report& report) {
  return ParseReports(WriteJson(report), "old.json");
}

Comparison Compared(const Report& before, const Report& now) {
  return Compare(Earlier(before).front(), AsEarlier(now));
}

std::string Complaint(const std::string& text) {
  try {
    ParseReports(text, "old.json");
  } catch (const EarlierReportError& error) {
    return error.what();
  }
  return {};
}

TEST(EarlierReport, HasTheFiguresOfTheAnalysisAndTheHeader) {
  const EarlierReport report = Earlier(ReportOf(44.5, 0.99)).front();
  EXPECT_EQ(report.marker, "ABCD");
  EXPECT_EQ(report.receiver, "RCV 1 fw 1.0");
  EXPECT_EQ(report.first_epoch, "2020-06-25 00:00:00.000");
  EXPECT_EQ(report.Find({"G", "1C", "strength_mean_dbhz"}), 44.5);
  EXPECT_EQ(report.Find({"G", "", "cutoff_completeness_ratio"}), 0.99);
  EXPECT_FALSE(report.Find({"G", "1C", "code_noise_m"}).has_value());
  EXPECT_EQ(report.signals, (std::vector<std::string>{"G 1C"}));
}

TEST(EarlierReport, RefusesOtherFilesFormatsAndFailures) {
  EXPECT_NE(Complaint("nothing").find("is not JSON"), std::string::npos);
  EXPECT_NE(Complaint("{}").find("is not a report"), std::string::npos);
  EXPECT_NE(Complaint("{\"format\": 1}").find("format 1, and this program reads format 2"),
            std::string::npos);
  EXPECT_NE(Complaint("{\"format\": 2}").find("no figures of the analysis"), std::string::npos);
  EXPECT_NE(Complaint(WriteJsonFailure("a.rnx", "broken")).find("could not be judged"), std::string::npos);
  EXPECT_NE(Complaint("[]").find("holds no report"), std::string::npos);
  EXPECT_THROW(ReadReports("/there/is/no.json"), EarlierReportError);
}

TEST(EarlierReport, OfSeveralFilesIsTheOneOfTheStation) {
  std::vector<EarlierReport> two = Earlier(ReportOf(44, 1, 0, "WXYZ"));
  two.push_back(Earlier(ReportOf(45, 1)).front());
  const EarlierReport now = AsEarlier(ReportOf(44, 1, 1, "ABCD00XYZ"));
  EXPECT_EQ(&ReportToCompare(two, now), &two[1]);
  EXPECT_THROW(ReportToCompare(two, AsEarlier(ReportOf(44, 1, 1, "OTHR"))), EarlierReportError);
  // A single one is meant, whatever it is called.
  two.pop_back();
  EXPECT_EQ(&ReportToCompare(two, now), &two[0]);
}

TEST(Comparison, OfAReportWithItselfFindsNothing) {
  const Comparison same = Compared(ReportOf(44, 0.99), ReportOf(44, 0.99));
  EXPECT_TRUE(same.figures.empty());
  EXPECT_TRUE(same.statements.empty());
  EXPECT_GT(same.figures_compared, 3U);
}

TEST(Comparison, ListsFiguresBeyondTheirLimitsTheWorstFirst) {
  EXPECT_TRUE(Compared(ReportOf(44, 0.99), ReportOf(43, 0.99)).figures.empty());
  const Comparison changed = Compared(ReportOf(44, 0.99), ReportOf(42.5, 0.90));
  ASSERT_EQ(changed.figures.size(), 3U);
  EXPECT_EQ(changed.figures[0].figure, "cutoff_completeness_ratio");
  EXPECT_EQ(changed.figures[2].figure, "strength_mean_dbhz");
  EXPECT_EQ(changed.figures[2].signal, "1C");
  EXPECT_EQ(changed.figures[2].before, 44);
  EXPECT_EQ(changed.figures[2].after, 42.5);
  EXPECT_EQ(changed.figures[2].limit, 1);
  const std::string text = ComparisonText(changed, {80, false});
  EXPECT_NE(text.find("44.0 dB-Hz -> 42.5 dB-Hz"), std::string::npos) << text;
  EXPECT_NE(text.find("99.00 % -> 90.00 %"), std::string::npos) << text;
}

TEST(Comparison, NamesOtherEquipmentAndSignalsThatCameOrWent) {
  Report now = ReportOf(44, 0.99, 1);
  now.run.receiver = "RCV 1 fw 2.0";
  now.analysis.figures.signals[0].code = {'2', 'W'};
  const Comparison changed = Compared(ReportOf(44, 0.99), now);
  ASSERT_EQ(changed.statements.size(), 1U);
  EXPECT_EQ(changed.statements[0].what, "receiver");
  EXPECT_EQ(changed.signals_gone, (std::vector<std::string>{"G 1C"}));
  EXPECT_EQ(changed.signals_appeared, (std::vector<std::string>{"G 2W"}));
  // What came or went is not listed figure by figure again.
  EXPECT_TRUE(changed.figures.empty());
}

/// A folder with reports of so many days.
class Archive {
 public:
  void Add(const Report& report, const std::string& name) {
    std::ofstream(folder_ / (name + ".json")) << WriteJson(report);
  }
  void AddDays(int days) {
    for (int i = 0; i < days; ++i) Add(ReportOf(44 + 0.1 * (i % 3), 0.99), "day" + std::to_string(i));
  }
  void AddDaysOneByOne(int days) {
    for (int i = 0; i < days; ++i) Add(ReportOf(44 + 0.1 * (i % 3), 0.99, i), "day" + std::to_string(i));
  }
  History Read() const { return ReadHistory(folder_.Path()); }
  std::string Path(const std::string& name) const { return folder_ / name; }

 private:
  Folder folder_;
};

const CriterionOutcome* OutcomeOf(const ProfileVerdict& verdict, const std::string& figure,
                                  const std::string& signal) {
  for (const CriterionOutcome& outcome : verdict.outcomes) {
    if (outcome.figure == figure && outcome.signal == signal) return &outcome;
  }
  return nullptr;
}

std::string GradeOf(const ProfileVerdict& verdict, const std::string& figure, const std::string& signal) {
  const CriterionOutcome* outcome = OutcomeOf(verdict, figure, signal);
  return outcome == nullptr ? "none" : outcome->grade;
}

TEST(HistoryProfile, HoldsAReportAgainstMedianAndMadOfItsStation) {
  Archive archive;
  archive.AddDaysOneByOne(9);
  const History history = archive.Read();
  // Median 44.1, MAD 0.1: s is a third of the limit of 1 dB, which is larger than 1.4826 * 0.1.
  const auto grade = [&](double dbhz) {
    return GradeOf(Judge(ReportOf(dbhz, 0.99, 20), history), "strength_mean_dbhz", "1C");
  };
  EXPECT_EQ(grade(44.1), "good");
  EXPECT_EQ(grade(43.2), "good");
  EXPECT_EQ(grade(43.0), "fair");
  EXPECT_EQ(grade(42.5), "fair");
  EXPECT_EQ(grade(42.3), "fail");
  EXPECT_EQ(grade(60), "good");
  const ProfileVerdict verdict = Judge(ReportOf(42.3, 0.99, 20), history);
  EXPECT_EQ(verdict.grade, "fail");
  EXPECT_NEAR(OutcomeOf(verdict, "strength_mean_dbhz", "1C")->good_limit, 43.1, 1e-9);
  EXPECT_NE(OutcomeOf(verdict, "strength_mean_dbhz", "1C")->source.find("9 earlier reports"),
            std::string::npos);
}

TEST(HistoryProfile, GradesFiguresOfTheRunThatTheHeadlineShows) {
  Archive archive;
  Report report = ReportOf(44, 0.99, 20);
  report.headline.code_residual_rms_m = report.analysis.figures.position.residual_rms_m = 1.0;
  for (int i = 0; i < 9; ++i) {
    Report earlier = ReportOf(44, 0.99, i);
    earlier.headline.code_residual_rms_m = earlier.analysis.figures.position.residual_rms_m = 1.0;
    archive.Add(earlier, "day" + std::to_string(i));
  }
  EXPECT_EQ(GradeOf(Judge(report, archive.Read()), "code_residual_rms_m", ""), "good");
  report.headline.code_residual_rms_m = report.analysis.figures.position.residual_rms_m = 30.0;
  EXPECT_EQ(GradeOf(Judge(report, archive.Read()), "code_residual_rms_m", ""), "fail");
}

TEST(HistoryProfile, OfTooFewReportsIsNeverGood) {
  Archive archive;
  archive.AddDaysOneByOne(6);
  const ProfileVerdict verdict = Judge(ReportOf(44, 0.99, 20), archive.Read());
  EXPECT_EQ(verdict.grade, "no data");
  EXPECT_FALSE(verdict.passed);
  ASSERT_FALSE(verdict.remarks.empty());
  EXPECT_NE(verdict.remarks[0].find("6 earlier reports of ABCD"), std::string::npos) << verdict.remarks[0];
}

TEST(HistoryProfile, AFigureWithoutEnoughHistoryIsNoData) {
  Archive archive;
  archive.AddDaysOneByOne(9);
  Report now = ReportOf(44, 0.99, 20);
  now.analysis.figures.signals[0].multipath.code_noise_m = 0.2;
  const ProfileVerdict verdict = Judge(now, archive.Read());
  EXPECT_EQ(GradeOf(verdict, "code_noise_m", "1C"), "no data");
  // And one that the report lacks and history has.
  now.analysis.figures.signals[0].strength.mean_dbhz.reset();
  EXPECT_EQ(GradeOf(Judge(now, archive.Read()), "strength_mean_dbhz", "1C"), "no data");
}

TEST(HistoryProfile, NamesWhatItDoesNotUse) {
  Archive archive;
  archive.AddDaysOneByOne(9);
  archive.Add(ReportOf(30, 0.5, 3, "WXYZ"), "foreign");
  archive.Add(ReportOf(30, 0.5, 20), "today");
  std::ofstream(archive.Path("other.json")) << "{}";
  const ProfileVerdict verdict = Judge(ReportOf(44, 0.99, 20), archive.Read());
  EXPECT_EQ(GradeOf(verdict, "strength_mean_dbhz", "1C"), "good");
  std::string remarks;
  for (const std::string& remark : verdict.remarks) remarks += remark + "\n";
  EXPECT_NE(remarks.find("1 of another station not used: WXYZ"), std::string::npos) << remarks;
  EXPECT_NE(remarks.find("1 of the same time or later not used"), std::string::npos) << remarks;
  EXPECT_NE(remarks.find("other.json: is not a report"), std::string::npos) << remarks;
}

TEST(HistoryProfile, CountsOneDayOnce) {
  Archive archive;
  archive.AddDays(9);
  EXPECT_EQ(Judge(ReportOf(44, 0.99, 20), archive.Read()).grade, "no data");
}

TEST(HistoryProfile, RefusesAFolderWithoutReports) {
  const Folder empty;
  EXPECT_THROW(ReadHistory(empty.Path()), EarlierReportError);
  EXPECT_THROW(ReadHistory(empty / "no folder"), EarlierReportError);
}

/// The findings about changes of a report against an earlier one.
std::vector<Finding> ChangesFound(const Report& before, Report now) {
  now.comparison = Compared(before, now);
  std::vector<Finding> changes;
  for (const Finding& finding : FindingsOf(now)) {
    for (const char* id : {"changed-statements", "signals-gone", "became-worse", "nothing-worse"}) {
      if (finding.id == id) changes.push_back(finding);
    }
  }
  return changes;
}

TEST(ChangeFindings, NameWhatBecameWorseAndNotWhatBecameBetter) {
  const auto worse = ChangesFound(ReportOf(44.5, 0.99), ReportOf(38.1, 0.90));
  ASSERT_EQ(worse.size(), 1U);
  EXPECT_EQ(worse[0].id, "became-worse");
  EXPECT_EQ(worse[0].severity, "warning");
  EXPECT_EQ(
      worse[0].title,
      "Worse than the earlier report: Completeness from the cut-off up, G: 99.00 % -> 90.00 %, and 2 more "
      "figures");
  EXPECT_NE(worse[0].text.find("Mean signal strength, G 1C: 44.5 dB-Hz -> 38.1 dB-Hz"), std::string::npos)
      << worse[0].text;
  const auto better = ChangesFound(ReportOf(38.1, 0.90), ReportOf(44.5, 0.99));
  ASSERT_EQ(better.size(), 1U);
  EXPECT_EQ(better[0].id, "nothing-worse");
  EXPECT_EQ(better[0].severity, "good");
}

TEST(ChangeFindings, NameOtherEquipmentAndSignalsGone) {
  Report before = ReportOf(44.5, 0.99);
  analysis::SignalFigures gone = before.analysis.figures.signals[0];
  gone.code = {'5', 'Q'};
  before.analysis.figures.signals.push_back(gone);
  Report now = ReportOf(44.5, 0.99);
  now.run.receiver = "RCV 1 fw 2.0";
  const auto found = ChangesFound(before, now);
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].title, "Changed since the earlier report: receiver");
  EXPECT_EQ(found[0].text, "Receiver: RCV 1 fw 1.0 -> RCV 1 fw 2.0.");
  EXPECT_EQ(found[1].title, "1 signal of the earlier report gone: G 5Q");
  EXPECT_EQ(found[1].signal, "G 5Q");
}

TEST(ChangeFindings, AreInTheVerdictTextJsonAndNowhereWithoutAComparison) {
  EXPECT_TRUE(ChangesFound(ReportOf(44.5, 0.99), ReportOf(44.5, 0.99))[0].id == "nothing-worse");
  Report now = ReportOf(38.1, 0.99);
  EXPECT_EQ(WriteText(now).find("earlier report"), std::string::npos);
  now.comparison = Compared(ReportOf(44.5, 0.99), now);
  now.findings = FindingsOf(now);
  now.verdict = VerdictOf(now);
  const std::string said =
      "Worse than the earlier report: Mean signal strength, G 1C: 44.5 dB-Hz -> 38.1 dB-Hz";
  EXPECT_NE(now.verdict.text.find(said), std::string::npos) << now.verdict.text;
  EXPECT_NE(WriteJson(now).find("\"title\": \"" + said), std::string::npos);
  TextStyle wide;
  wide.width = 300;
  EXPECT_NE(WriteText(now, wide).find("! " + said), std::string::npos);
}

}  // namespace
}  // namespace orsolva_host
