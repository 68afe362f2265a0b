#include "host/analysis/figures/result_rows.h"

#include <gtest/gtest.h>

#include <string>

namespace orsolva_host::analysis {
namespace {

TEST(ResultRows, AreInsertedInOrderAndFoundAgain) {
  AnalysisResult result;
  SatelliteSignalRow(result, {'G', 7}, {'2', 'W'}).phases = 3;
  SatelliteSignalRow(result, {'G', 7}, {'1', 'C'}).phases = 2;
  SatelliteSignalRow(result, {'E', 30}, {'5', 'Q'}).phases = 1;
  ++*SatelliteSignalRow(result, {'G', 7}, {'2', 'W'}).phases;
  ASSERT_EQ(result.satellite_signals.size(), 3U);
  EXPECT_EQ(NameOf(result.satellite_signals[0].code), "1C");
  EXPECT_EQ(*result.satellite_signals[1].phases, 4U);
  EXPECT_EQ(result.satellite_signals[1].system, 'G');
  EXPECT_EQ(NameOf(result.satellite_signals[2].satellite), "E30");
}

TEST(ResultRows, SumsOfASystemHaveNoSatellite) {
  AnalysisResult result;
  SystemSignalRow(result, 'R', {'1', 'C'});
  SystemSignalRow(result, 'G', {'1', 'C'});
  SystemRow(result, 'R');
  SystemRow(result, 'G');
  SatelliteRow(result, {'R', 2});
  SatelliteRow(result, {'R', 2});
  ASSERT_EQ(result.signals.size(), 2U);
  EXPECT_EQ(result.signals[0].system, 'G');
  EXPECT_EQ(result.signals[0].satellite.system, ' ');
  EXPECT_EQ(result.systems[1].letter, 'R');
  EXPECT_EQ(result.satellites.size(), 1U);
}

TEST(ResultRows, ListSystemsInTheirUsualOrder) {
  AnalysisResult result;
  for (const char letter : {'C', 'S', 'G', 'I', 'J', 'R', 'E'}) {
    SystemRow(result, letter);
    SatelliteRow(result, {letter, 3});
    SatelliteRow(result, {letter, 2});
    SystemSignalRow(result, letter, {'1', 'C'});
  }
  std::string systems, signals, satellites;
  for (const SystemFigures& row : result.systems) systems += row.letter;
  for (const SignalFigures& row : result.signals) signals += row.system;
  for (const SatelliteFigures& row : result.satellites) satellites += NameOf(row.id);
  EXPECT_EQ(systems, "GRECJIS");
  EXPECT_EQ(signals, "GRECJIS");
  EXPECT_EQ(satellites, "G02G03R02R03E02E03C02C03J02J03I02I03S02S03");
}

}  // namespace
}  // namespace orsolva_host::analysis
