// A figure is one row: a row added to the tables appears in every output, the schema, the page's types and
// the explanations.
#include "host/report/figure_rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "host/report/csv_writer.h"
#include "host/report/figure_types.h"
#include "host/report/figures.h"
#include "host/report/json_writer.h"
#include "host/report/network.h"
#include "host/report/network_html.h"
#include "host/report/sum_writer.h"
#include "host/report/text_writer.h"
#include "tests/host/sample_report.h"
#include "tests/support/json_reader.h"

namespace orsolva_host {
namespace {

using json = orsolva_test::Json;

constexpr char kKey[] = "test_figure_m";

/// The tables of the program with one figure more: of every signal, and of the headline.
FigureTables WithOneMore() {
  FigureTables tables = AllFigures();
  tables.signal.push_back({kKey,
                           FigureKind::kMetres,
                           [](const SignalReport& s) -> std::optional<double> {
                             return s.mp_m ? std::optional<double>(2 * *s.mp_m) : std::nullopt;
                           },
                           {"Extra", 7, 3},
                           3});
  tables.library_headline.push_back(
      {kKey,
       FigureKind::kMetres,
       [](const LibraryHeadline& h) -> std::optional<double> { return h.mp1_m; },
       {"Extra|of the headline", 0, 3},
       3});
  return tables;
}

std::string LineOf(const std::string& text, const std::string& start) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.compare(0, start.size(), start) == 0) return line;
  }
  return {};
}

TEST(ARowMore, AppearsInJson) {
  const json j = json::parse(WriteJson(orsolva_test::SampleReport(), WithOneMore()));
  EXPECT_EQ(j["library"]["signals"][0][kKey], 0.5);
  EXPECT_EQ(j["library"]["headline"][kKey], 0.25);
  EXPECT_FALSE(json::parse(WriteJson(orsolva_test::SampleReport()))["library"]["headline"].contains(kKey));
}

TEST(ARowMore, AppearsInCsvWithItsUnit) {
  const std::string text = WriteCsvRows(orsolva_test::SampleReport(), WithOneMore());
  EXPECT_NE(text.find("\nG,1C,test_figure_m,m,0.5,"), std::string::npos) << text;
  EXPECT_NE(text.find("\n,,test_figure_m,m,0.25,"), std::string::npos) << text;
}

TEST(ARowMore, AppearsInTheLinesForGrep) {
  const std::string text = WriteSum(orsolva_test::SampleReport(), WithOneMore());
  EXPECT_NE(LineOf(text, "=LIBRARY-GPS1C ").find(" 0.500 dir/"), std::string::npos) << text;
  EXPECT_NE(LineOf(text, "=LIBRARY ").find(" 0.250 dir/"), std::string::npos) << text;
}

TEST(ARowMore, AppearsInTheTextReport) {
  const std::string text = WriteText(orsolva_test::SampleReport(), {100, false}, WithOneMore());
  EXPECT_NE(text.find("Extra\n"), std::string::npos) << text;
  EXPECT_NE(LineOf(text, "G 1C L1").find("0.500"), std::string::npos) << text;
  EXPECT_EQ(LineOf(text, "Extra  "), "Extra             0.250 m of the headline");
}

TEST(ARowMore, AppearsInTheNetworkTableAndTheIndex) {
  const std::vector<NetworkRow> rows = {RowOf(orsolva_test::SampleReport())};
  EXPECT_NE(NetworkCsv(rows, WithOneMore()).find(",test_figure_m,notices,verdict,error\n"),
            std::string::npos);
  EXPECT_NE(NetworkHtml(rows, {"V1", ""}, "index.html", WithOneMore()).find("\"test_figure_m\": 0.25"),
            std::string::npos);
}

TEST(ARowMore, AppearsInTheSchemaAndInTheTypesOfThePage) {
  const json schema = json::parse(SchemaWithFigures("{\"$defs\": {}}", WithOneMore()));
  for (const char* scope : {"signal_figures", "library_headline_figures"}) {
    EXPECT_TRUE(schema["$defs"][scope]["properties"].contains(kKey)) << scope;
    EXPECT_EQ(schema["$defs"][scope]["required"][schema["$defs"][scope]["required"].size() - 1], kKey);
  }
  const auto texts =
      ParseFigures("[test_figure_m]\ntitle = 'Another figure'\ncolumn = 'More'\n", WithOneMore());
  const std::string types = PageTypes(WithOneMore(), texts);
  EXPECT_NE(types.find("  test_figure_m: number | null;\n"), std::string::npos);
  EXPECT_NE(
      types.find(
          "{ key: 'test_figure_m', unit: 'm', column: \"More\", title: \"Another figure\", digits: 3 }"),
      std::string::npos)
      << types;
}

TEST(ARowMore, IsExplainedWithItsUnitAndSource) {
  const auto texts = ParseFigures(
      "[default]\nwindow = 'the run'\n[test_figure_m]\ntitle = 'Another figure'\nformula = '''\na\nb'''\n",
      WithOneMore());
  ASSERT_EQ(texts.size(), 1U);
  const std::string text = Explanation(texts[0]);
  EXPECT_EQ(text.find("test_figure_m  [m]\n\nAnother figure\n"), 0U) << text;
  EXPECT_NE(text.find("Formula      a b\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Window       the run\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Computed by  the library\n"), std::string::npos) << text;
}

TEST(FigureRows, AMemberIsReadWhateverItsTypeAndWhatIsNotFiniteIsAbsent) {
  ReportRun run;
  run.lost_epochs = -3;
  run.duration_h = std::nan("");
  EXPECT_EQ(Get<&ReportRun::lost_epochs>(run), -3.0);
  EXPECT_FALSE(Get<&ReportRun::duration_h>(run));
  EXPECT_FALSE(Get<&ReportRun::distance_from_header_m>(run));
  Figures figures;
  figures.observed = 7;
  EXPECT_EQ(Get<&Figures::observed>(figures), 7.0);
}

}  // namespace
}  // namespace orsolva_host
