#include "host/analysis/figures/observation_counts.h"

#include <gtest/gtest.h>

#include "tests/analysis/figure_epochs.h"

namespace orsolva_host::analysis {
namespace {

AnalysisResult Of(const std::vector<ObservationEpoch>& epochs) {
  SignalRoster roster;
  ObservationCounts counts;
  for (const ObservationEpoch& epoch : epochs) {
    roster.Take(epoch);
    counts.Add(epoch, roster);
  }
  AnalysisResult result;
  counts.FillIn(roster, result);
  return result;
}

TEST(ObservationCounts, CountValuesOfEverySignalAndTheirSumsOverSystems) {
  std::vector<ObservationEpoch> epochs = {EpochOf(0, 2), EpochOf(30, 2), EpochOf(60, 1)};
  epochs[1].signals[1].phase_cycles = kAbsent;
  epochs[2].signals[0].doppler_hz = -1200;
  epochs[2].signals[0].snr_dbhz = kAbsent;
  const AnalysisResult result = Of(epochs);
  ASSERT_EQ(result.satellite_signals.size(), 4U);
  const SignalFigures& first = result.satellite_signals[0];
  EXPECT_EQ(NameOf(first.satellite) + " " + NameOf(first.code), "G01 1C");
  EXPECT_EQ(first.codes, 3U);
  EXPECT_EQ(first.phases, 3U);
  EXPECT_EQ(first.dopplers, 1U);
  EXPECT_EQ(first.strengths, 2U);
  EXPECT_EQ(first.frequency_hz, 1575.42e6);
  EXPECT_EQ(result.satellite_signals[1].phases, 2U);
  ASSERT_EQ(result.signals.size(), 2U);
  EXPECT_EQ(result.signals[0].codes, 5U);
  EXPECT_EQ(result.signals[1].phases, 4U);
  EXPECT_EQ(result.signals[1].satellites, 2U);
}

TEST(ObservationCounts, SatellitesKeepTheirFirstAndLastEpoch) {
  const AnalysisResult result = Of({EpochOf(0, 1), EpochOf(30, 2), EpochOf(60, 2), EpochOf(90, 1)});
  ASSERT_EQ(result.satellites.size(), 2U);
  EXPECT_EQ(result.satellites[1].observed_epochs, 2U);
  EXPECT_EQ(result.satellites[1].first_ns, At(30));
  EXPECT_EQ(result.satellites[1].last_ns, At(60));
  ASSERT_EQ(result.systems.size(), 1U);
  EXPECT_EQ(result.systems[0].satellites_observed, 2U);
}

TEST(ObservationCounts, ASatelliteWithNothingButStrengthIsNotObserved) {
  ObservationEpoch epoch = EpochOf(0, 2);
  for (std::size_t i = 2; i < 4; ++i) {
    epoch.signals[i].pseudorange_m = kAbsent;
    epoch.signals[i].phase_cycles = kAbsent;
  }
  const AnalysisResult result = Of({epoch});
  ASSERT_EQ(result.satellites.size(), 1U);
  EXPECT_EQ(result.satellite_signals.size(), 4U);
  EXPECT_EQ(result.satellite_signals[2].strengths, 1U);
  EXPECT_EQ(result.satellite_signals[2].codes, 0U);
}

TEST(ObservationCounts, EverySystemNumberAndSignalHasARow) {
  ObservationEpoch epoch;
  epoch.time_ns = At(0);
  AddSatellite(epoch, {'C', 63}, {"2I", "1D", "1P", "5D", "5P", "7D", "7I", "6I", "8X", "7Z"});
  AddSatellite(epoch, {'S', 58}, {"1C", "5I"});
  AddSatellite(epoch, {'I', 14}, {"1D", "5A", "9A"});
  AddSatellite(epoch, {'R', 27}, {"1C", "4A"});
  const AnalysisResult result = Of({epoch});
  EXPECT_EQ(result.satellites.size(), 4U);
  EXPECT_EQ(result.satellite_signals.size(), 17U);
  for (const SignalFigures& signal : result.satellite_signals) {
    const bool divided = signal.system == 'R' && signal.code.band == '1';
    EXPECT_EQ(signal.frequency_hz.has_value(), !divided) << NameOf(signal.satellite) << NameOf(signal.code);
  }
}

}  // namespace
}  // namespace orsolva_host::analysis
