#include "host/analysis/figures/result_rows.h"

#include <gtest/gtest.h>

namespace orsolva_host::analysis {
namespace {

TEST(ResultRows, AreInsertedInOrderAndFoundAgain) {
  AnalysisResult result;
  SatelliteSignalRow(result, {'G', 7}, {'2', 'W'}).phases = 3;
  SatelliteSignalRow(result, {'G', 7}, {'1', 'C'}).phases = 2;
  SatelliteSignalRow(result, {'E', 30}, {'5', 'Q'}).phases = 1;
  ++*SatelliteSignalRow(result, {'G', 7}, {'2', 'W'}).phases;
  ASSERT_EQ(result.satellite_signals.size(), 3U);
  EXPECT_EQ(NameOf(result.satellite_signals[0].satellite), "E30");
  EXPECT_EQ(NameOf(result.satellite_signals[1].code), "1C");
  EXPECT_EQ(*result.satellite_signals[2].phases, 4U);
  EXPECT_EQ(result.satellite_signals[2].system, 'G');
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

}  // namespace
}  // namespace orsolva_host::analysis
