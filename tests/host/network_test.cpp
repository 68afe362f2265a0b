#include "host/report/network.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>

#include "host/report/error_groups.h"
#include "host/report/network_html.h"
#include "tests/host/sample_report.h"
#include "tests/support/json_reader.h"

namespace orsolva_host {
namespace {

using orsolva_test::Json;

NetworkRow Row(const std::string& file, double completeness, const std::string& grade = "") {
  NetworkRow row;
  row.file = file;
  row.grade = grade;
  row.headline.cutoff_completeness = completeness;
  return row;
}

TEST(Network, WorstComesFirst) {
  std::vector<NetworkRow> rows = {Row("good", 0.99, "good"), Row("fair", 0.85, "fair"),
                                  Row("b", 0.5, "fail"),     Row("a", 0.5, "fail"),
                                  Row("none", 0, "no data"), FailedRow("broken", "why")};
  SortWorstFirst(rows);
  std::string order;
  for (const NetworkRow& row : rows) order += row.file + " ";
  EXPECT_EQ(order, "broken a b none fair good ");
}

TEST(Network, TheSummaryHasTheMedianAndTheLeastOfTheFilesWithACompleteness) {
  const std::vector<NetworkRow> rows = {Row("a", 0.9, "good"), Row("b", 0.5, "fair"), Row("c", 0.7, "fail"),
                                        Row("d", 0.6, "no data"), FailedRow("broken", "why")};
  const NetworkSummary sum = SummaryOf(rows);
  EXPECT_EQ(sum.files, 5U);
  EXPECT_EQ(sum.errors, 1U);
  EXPECT_EQ(sum.failed, 2U);
  EXPECT_EQ(sum.fair, 1U);
  EXPECT_EQ(sum.good, 1U);
  EXPECT_DOUBLE_EQ(sum.median_completeness.value(), 0.65);
  EXPECT_DOUBLE_EQ(sum.least_completeness.value(), 0.5);
  EXPECT_FALSE(SummaryOf({FailedRow("broken", "why")}).median_completeness);
}

TEST(Network, WithoutAProfileTheLowestCompletenessComesFirst) {
  std::vector<NetworkRow> rows = {Row("x", 0.9), Row("y", 0.2)};
  rows.push_back(Row("z", 0));
  rows.back().headline.cutoff_completeness.reset();
  SortWorstFirst(rows);
  EXPECT_EQ(rows[0].file, "z");
  EXPECT_EQ(rows[1].file, "y");
}

TEST(Network, TheTextKeepsTo80ColumnsAndTellsTheErrorOnce) {
  std::vector<NetworkRow> rows = {RowOf(orsolva_test::SampleReport()),
                                  FailedRow("dir/" + std::string(90, 'x'),
                                            "dir/" + std::string(90, 'x') + ": found nothing\n  at all\n")};
  const std::string text = NetworkText(rows, {});
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_LE(line.size(), 80U) << line;
    EXPECT_TRUE(line.empty() || line.back() != ' ') << line;
  }
  EXPECT_NE(text.find("2 files, 1 read, 1 failed"), std::string::npos);
  EXPECT_NE(text.find("\n    found nothing at all\n"), std::string::npos) << text;
}

TEST(Network, TheTextSaysACauseThatFilesShareOnceBelowThem) {
  std::vector<NetworkRow> rows = {FailedRow("b.rnx", "b.rnx:1: found \"x\", expected a header."),
                                  FailedRow("c.rnx", "c.rnx: no such file."),
                                  FailedRow("d.rnx", "d.rnx:1: found \"x\", expected a header."),
                                  Row("a.rnx", 0.9)};
  const std::string text = NetworkText(rows, TextStyle());
  const auto at = [&text](const char* part) { return text.find(part); };
  EXPECT_NE(at("    These 2 files: found \"x\", expected a header.\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("expected a header", at("expected a header") + 1), std::string::npos) << text;
  EXPECT_LT(at("b.rnx"), at("d.rnx"));
  EXPECT_LT(at("d.rnx"), at("These 2 files"));
  EXPECT_LT(at("These 2 files"), at("c.rnx"));
  EXPECT_LT(at("    no such file."), at("a.rnx"));
}

TEST(ErrorGroups, TakeTheFileAndTheLineOffEveryLineOfAnError) {
  EXPECT_EQ(CauseOf("a", "a: one.\n  a:12: two\n  b:3: three"), "one.\n  two\n  b:3: three");
  EXPECT_EQ(CauseOf("a", "ab: one"), "ab: one");
  EXPECT_EQ(CauseOf("a", "a:x: one"), "a:x: one");
  EXPECT_EQ(CauseOf("a", "a:"), "a:");
  EXPECT_EQ(CauseOf("a", "a"), "a");
  EXPECT_EQ(CauseOf("a", ""), "");
}

TEST(Network, TheCsvHasOneRowAFileAndNoFiguresOfFailedOnes) {
  const std::string text =
      NetworkCsv({RowOf(orsolva_test::SampleReport()), FailedRow("b,c.rnx", "b,c.rnx: why")});
  std::istringstream lines(text);
  std::string heading, first, second;
  std::getline(lines, heading);
  std::getline(lines, first);
  std::getline(lines, second);
  EXPECT_EQ(heading.find("file,marker,state,first_epoch_gpst,last_epoch_gpst,duration_h,interval_s,"
                         "epochs,lost_epochs,nominal_epochs,present_epochs,missing_epochs,data_gaps,"
                         "cutoff_expected_epochs,cutoff_observed_epochs,cutoff_completeness_ratio,"),
            0U);
  EXPECT_NE(heading.find(",contradictions,expected_epochs,observed_epochs,completeness_ratio,mp1_rms_m,"),
            std::string::npos);
  const auto commas = std::count(heading.begin(), heading.end(), ',');
  EXPECT_EQ(std::count(first.begin(), first.end(), ','), commas);
  EXPECT_EQ(first.find("dir/station one.rnx,,fair,2020-06-25 00:00:00.000,2020-06-25 "
                       "23:59:30.000,23.991666666666667,30,2880,0,2880,2880,0,,2000,1900,0.95,"),
            0U);
  EXPECT_EQ(second, "\"b,c.rnx\",,ERROR" + std::string(static_cast<std::size_t>(commas) - 2, ',') + "why");
}

/// The data of an index page.
Json DataOf(const std::string& page) {
  const std::string open = "id=\"network-data\">";
  const std::size_t begin = page.find(open) + open.size();
  return Json::parse(page.substr(begin, page.find("</script>", begin) - begin));
}

TEST(NetworkHtml, HoldsARowAFileInTheOrderGivenAndNullForWhatFailedOnesLack) {
  NetworkRow judged = RowOf(orsolva_test::SampleReport());
  judged.page = "out/pages/one.html";
  const std::string page =
      NetworkHtml({FailedRow("b.rnx", "b.rnx: why\nnot"), judged}, {"V1", "a profile"}, "out/index.html");
  const Json data = DataOf(page);
  EXPECT_EQ(data["library_version"], "V1");
  EXPECT_EQ(data["profile"], "a profile");
  ASSERT_EQ(data["rows"].size(), 2U);
  const Json& failed = data["rows"][0];
  EXPECT_EQ(failed["state"], "ERROR");
  EXPECT_EQ(failed["error"], "why not");
  for (const char* key :
       {"page", "duration_h", "lost_epochs", "completeness_ratio", "mp1_rms_m", "notices"}) {
    EXPECT_TRUE(failed[key].is_null()) << key;
  }
  const Json& row = data["rows"][1];
  EXPECT_EQ(row["state"], "fair");
  EXPECT_EQ(row["verdict"], "2 gaps while in view");
  EXPECT_EQ(row["page"], "pages/one.html");
  EXPECT_EQ(row["completeness_ratio"], 0.9);
  EXPECT_EQ(row["mp1_rms_m"], 0.25);
  EXPECT_TRUE(row["mp2_rms_m"].is_null());
  EXPECT_TRUE(row["error"].is_null());
}

TEST(NetworkHtml, AFileJudgedToItsDamageHasItsErrorItsFiguresAndItsPage) {
  NetworkRow row = RowOf(orsolva_test::SampleReport());
  row.page = "one.html";
  row.error = "damaged. The report covers what was read before it.";
  const Json told = DataOf(NetworkHtml({row}, {"V1", ""}, "index.html"))["rows"][0];
  EXPECT_EQ(told["state"], "ERROR");
  EXPECT_EQ(told["page"], "one.html");
  EXPECT_EQ(told["completeness_ratio"], 0.9);
}

TEST(NetworkHtml, NamesMarkersAndErrorsCannotLeaveTheirScript) {
  NetworkRow row = FailedRow("<img src=x>.rnx", "found \"</script><script>alert(1)</script>\"");
  row.marker = "</script><b>";
  const std::string page = NetworkHtml({row}, {"V1", "<i>profile</i>"}, "index.html");
  for (const char* markup : {"<script>alert", "<img", "<b>", "<i>"}) {
    EXPECT_EQ(page.find(markup), std::string::npos) << markup;
  }
  EXPECT_EQ(DataOf(page)["rows"][0]["file"], "<img src=x>.rnx");
}

TEST(NetworkHtml, LinksAreRelativeAndHoldNoSchemeQueryOrMarkup) {
  EXPECT_EQ(LinkTo("a/b.html", "a/index.html"), "b.html");
  EXPECT_EQ(LinkTo("a/./c/../b.html", "index.html"), "a/b.html");
  EXPECT_EQ(LinkTo("pages/b.html", "other/index.html"), "../pages/b.html");
  EXPECT_EQ(LinkTo((std::filesystem::current_path() / "a/b.html").string(), "a/index.html"), "b.html");
  EXPECT_EQ(LinkTo("javascript:alert(1).html", "index.html"), "javascript%3Aalert%281%29.html");
  EXPECT_EQ(LinkTo("a b?c#d%e\"<&\xc3\xa9\xff.html", "index.html"),
            "a%20b%3Fc%23d%25e%22%3C%26%C3%A9%FF.html");
}

}  // namespace
}  // namespace orsolva_host
