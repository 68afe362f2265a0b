#include "host/report/network.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "tests/host/sample_report.h"

namespace orsolva_host {
namespace {

NetworkRow Row(const std::string& file, double completeness, const std::string& grade = "") {
  NetworkRow row;
  row.file = file;
  row.grade = grade;
  row.summary.completeness = completeness;
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

TEST(Network, WithoutAProfileTheLowestCompletenessComesFirst) {
  std::vector<NetworkRow> rows = {Row("x", 0.9), Row("y", 0.2)};
  rows.push_back(Row("z", 0));
  rows.back().summary.completeness.reset();
  SortWorstFirst(rows);
  EXPECT_EQ(rows[0].file, "z");
  EXPECT_EQ(rows[1].file, "y");
}

TEST(Network, TheTextKeepsTo80ColumnsAndTellsTheErrorOnce) {
  std::vector<NetworkRow> rows = {
      RowOf(orsolva_test::SampleReport()),
      FailedRow("dir/" + std::string(90, 'x'), "dir/" + std::string(90, 'x') + ": found nothing\n  at all")};
  const std::string text = NetworkText(rows, {});
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_NE(text.find("2 files, 1 judged, 1 failed"), std::string::npos);
  EXPECT_NE(text.find("\n    found nothing   at all\n"), std::string::npos) << text;
}

TEST(Network, TheCsvHasOneRowAFileAndNoFiguresOfFailedOnes) {
  const std::string text =
      NetworkCsv({RowOf(orsolva_test::SampleReport()), FailedRow("b,c.rnx", "b,c.rnx: why")});
  std::istringstream lines(text);
  std::string heading, first, second;
  std::getline(lines, heading);
  std::getline(lines, first);
  std::getline(lines, second);
  EXPECT_EQ(std::count(heading.begin(), heading.end(), ','), 16);
  EXPECT_EQ(
      first,
      "dir/station one.rnx,,judged,2020-06-25 00:00:00.000,2020-06-25 23:59:30.000,23.991666666666667,30,"
      "2880,0,1000,900,0.9,0.25,,300,2,");
  EXPECT_EQ(second, "\"b,c.rnx\",,ERROR,,,,,,,,,,,,,,why");
}

}  // namespace
}  // namespace orsolva_host
