#include "host/report/figures.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

#include "host/report/figure_list.h"
#include "host/report/json_writer.h"
#include "tests/host/sample_report.h"
#include "tests/support/json_reader.h"

namespace orsolva_host {
namespace {

using json = orsolva_test::Json;

/// Keys that name or place a figure and are none.
bool NamesSomething(const std::string& key) {
  return key == "slot" || key == "format" || key == "rinex_version" || key == "further_notices";
}

void CollectFigures(const json& j, std::set<std::string>& keys) {
  for (const auto& [key, value] : j.items()) {
    if (value.is_number() && !NamesSomething(key)) keys.insert(key);
    if (key == "verdict" || key == "notices" || key == "notes") continue;
    if (value.is_array() && !value.empty() && value[0].is_number()) keys.insert(key);
    if (value.is_structured() && !(value.is_array() && !value.empty() && value[0].is_number())) {
      CollectFigures(value, keys);
    }
  }
}

TEST(Figures, EveryNumberOfAReportHasAnExplanation) {
  Report report = orsolva_test::SampleReport();
  report.show_satellites = true;
  report.run.distance_from_header_m = 1;
  report.systems[0].figures.bands[0].snr_below30_dbhz = 40;
  report.signals[0].snr_dbhz = report.signals[0].snr_below30_dbhz = report.signals[0].snr_above30_dbhz = 40;
  std::set<std::string> keys;
  CollectFigures(json::parse(WriteJson(report)), keys);
  EXPECT_GE(keys.size(), 25U);
  for (const std::string& key : keys) EXPECT_NE(FindFigure(key), nullptr) << key;
}

TEST(Figures, EveryListedFigureHasAnExplanationAndItsUnit) {
  for (const FigureValue& f : ListFigures(orsolva_test::SampleReport())) {
    ASSERT_NE(FindFigure(f.key), nullptr) << f.key;
    EXPECT_EQ(f.unit, FindFigure(f.key)->unit);
    EXPECT_FALSE(f.unit.empty()) << f.key;
  }
}

TEST(Figures, EveryTextIsWholeAndEveryNameLeadsToOneFigure) {
  std::set<std::string> names;
  for (const Figure& f : FigureTexts()) {
    for (const std::string* text :
         {&f.key, &f.title, &f.formula, &f.window, &f.reset, &f.cutoff, &f.denominator, &f.source}) {
      EXPECT_FALSE(text->empty()) << f.key;
    }
    EXPECT_TRUE(names.insert(f.key).second) << f.key;
    std::istringstream aliases(f.aliases);
    for (std::string alias; aliases >> alias;) EXPECT_TRUE(names.insert(alias).second) << alias;
  }
}

TEST(Figures, EveryRowHasAText) {
  ForEachRow(AllFigures(), [](const auto& row) {
    const Figure* figure = FindFigure(row.key);
    ASSERT_NE(figure, nullptr) << row.key;
    EXPECT_EQ(figure->key, row.key);
    EXPECT_FALSE(figure->computed_by.empty()) << row.key;
  });
}

TEST(Figures, AKeyHasOneUnitWhateverItsScope) {
  std::map<std::string, std::string> units;
  ForEachRow(AllFigures(), [&units](const auto& row) {
    const auto known = units.emplace(row.key, UnitOf(row.kind)).first;
    EXPECT_EQ(known->second, UnitOf(row.kind)) << row.key;
  });
}

TEST(Figures, AFigureLikeAnotherTakesOverWhatItLeavesOut) {
  const Figure* total = FindFigure("total_completeness_ratio");
  ASSERT_NE(total, nullptr);
  EXPECT_EQ(total->source, FindFigure("completeness_ratio")->source);
  EXPECT_EQ(total->denominator, "total_expected_epochs");
  EXPECT_TRUE(total->aliases.empty());
  EXPECT_THROW(ParseFigures("[a]\ntitle='t'\nlike='b'\n"), std::runtime_error);
}

TEST(Figures, AreFoundByColumnHeadingAndWhateverTheCase) {
  for (const char* name :
       {"mp1", "MP6", "Expected", "Obs/slip", "Obs/rst", "Compl", "SNR<=30deg", "o/slps", "%"}) {
    EXPECT_NE(FindFigure(name), nullptr) << name;
  }
  EXPECT_EQ(FindFigure("MP1")->key, "mp1_rms_m");
  EXPECT_EQ(FindFigure("mp6")->key, "mp_rms_m");
  EXPECT_EQ(FindFigure("slips")->key, "geometry_free_slips");
  EXPECT_EQ(FindFigure("jumps")->key, "code_jumps");
  EXPECT_EQ(FindFigure("slip_epochs")->key, "phase_geometry_slip_epochs");
  EXPECT_EQ(FindFigure("jump_epochs")->key, "mp_restart_epochs");
  EXPECT_EQ(FindFigure("mp9"), nullptr);
  EXPECT_EQ(FindFigure(""), nullptr);
}

TEST(Figures, TheHeadingOfAColumnIsExplainedByTheTableThatComesFirst) {
  const auto key = [](const char* heading) {
    const std::string text = ExplanationOf(heading);
    return text.substr(0, text.find_first_of(" \n"));
  };
  EXPECT_EQ(key("Slips"), "sure_slips");
  EXPECT_EQ(key("Jumps"), "phase_jumps");
  EXPECT_EQ(key("SNR"), "strength_mean_dbhz");
  EXPECT_EQ(key("MP m"), "multipath_moving_rms_m");
  EXPECT_EQ(key("cut-off %"), "cutoff_completeness_ratio");
  EXPECT_EQ(key("PG slips[3]"), "phase_geometry_slip_epochs");
  EXPECT_EQ(key("slip_epochs"), "phase_geometry_slip_epochs");
  EXPECT_EQ(ExplanationOf("Nothing"), "");
  EXPECT_EQ(ExplanationOf(""), "");
  EXPECT_NE(ExplanationOf("slips").find("geometry_free_slips"), std::string::npos);
}

TEST(Figures, EveryHeadingOfATableIsExplained) {
  int headings = 0;
  ForEachRow(AllFigures(), [&headings](const auto& row) {
    if (row.text.heading == nullptr) return;
    EXPECT_NE(ExplanationOf(row.text.heading).find(row.key), std::string::npos) << row.text.heading;
    ++headings;
  });
  EXPECT_GT(headings, 20);
  for (const Figure& figure : FigureTexts()) {
    EXPECT_NE(ExplanationOf(figure.key).find(figure.title.substr(0, 20)), std::string::npos) << figure.key;
  }
}

TEST(Figures, NamesNearAWrongOneAreOffered) {
  EXPECT_EQ(FiguresLike("completness").front(), "completeness_ratio");
  EXPECT_FALSE(FiguresLike("mp9").empty());
  EXPECT_TRUE(FiguresLike("").empty());
  EXPECT_TRUE(FiguresLike("entirely different").empty());
  EXPECT_LE(FiguresLike("s").size(), 3U);
}

}  // namespace
}  // namespace orsolva_host
