#include "host/analysis/figures/completeness.h"

#include <gtest/gtest.h>

#include <functional>

#include "host/analysis/figures/result_rows.h"
#include "tests/analysis/figure_sky.h"

namespace orsolva_host::analysis {
namespace {

/// Geostationary satellites: at the zenith (0 rad), at 25 degrees (0.95), at 4 degrees
/// (1.35) and below the horizon (2).
class CompletenessTest : public testing::Test {
 protected:
  void AddSatelliteAt(SatelliteId id, double longitude_rad) { AddStillOrbit(records_, id, longitude_rad); }

  /// Epochs of 30 s, as many as given; nothing is taken where fill leaves no satellites.
  AnalysisResult Of(int epochs, const std::function<void(int, ObservationEpoch&)>& fill) {
    orbits_.Add(records_);
    Sky sky(orbits_, 10);
    SignalRoster roster;
    Completeness completeness;
    int last = -1;
    for (int i = 0; i < epochs; ++i) {
      ObservationEpoch epoch;
      epoch.time_ns = At(30.0 * i);
      fill(i, epoch);
      if (epoch.satellites.empty()) continue;
      roster.Take(epoch);
      sky.Add(epoch, roster, &station_, i - last);
      completeness.Add(epoch, roster, sky, true, 0);
      last = i;
    }
    AnalysisResult result;
    sky.FillIn(roster, result);
    completeness.FillIn(roster, sky, result);
    return result;
  }

 private:
  BroadcastRecords records_;
  BroadcastStore orbits_;
  Station station_ = EquatorStation();
};

TEST_F(CompletenessTest, IsObservedOverExpectedOfEverySignal) {
  AddSatelliteAt({'J', 1}, 0);
  AddSatelliteAt({'J', 2}, 1.35);
  const AnalysisResult result = Of(100, [](int i, ObservationEpoch& epoch) {
    AddSatellite(epoch, {'J', 1}, {"1C", "5Q"});
    if (i % 4 == 0) epoch.signals[1].phase_cycles = kAbsent;
    if (i % 4 == 1) epoch.signals[1].pseudorange_m = kAbsent;
    if (i % 4 == 2) epoch.signals[1].snr_dbhz = kAbsent;
    if (i < 60) AddSatellite(epoch, {'J', 2}, {"1C"});
  });
  ASSERT_EQ(result.satellite_signals.size(), 3U);
  EXPECT_EQ(result.satellite_signals[0].cutoff.expected, 100U);
  EXPECT_EQ(result.satellite_signals[0].cutoff.ratio, 1.0);
  EXPECT_EQ(result.satellite_signals[1].cutoff.observed, 50U);
  EXPECT_EQ(result.satellite_signals[1].cutoff.ratio, 0.5);
  EXPECT_EQ(result.satellite_signals[2].horizon.expected, 100U);
  EXPECT_EQ(result.satellite_signals[2].horizon.observed, 60U);
  EXPECT_EQ(result.satellite_signals[2].cutoff.expected, 0U);
  EXPECT_FALSE(result.satellite_signals[2].cutoff.ratio);
  EXPECT_EQ(result.satellites[0].horizon.ratio, 0.75);
  EXPECT_EQ(result.signals[0].horizon.observed, 160U);
  EXPECT_EQ(result.signals[0].horizon.expected, 200U);
  EXPECT_EQ(result.systems[0].horizon.observed, 210U);
  EXPECT_EQ(result.systems[0].cutoff.expected, 200U);
}

TEST_F(CompletenessTest, GapsAreExpected) {
  AddSatelliteAt({'J', 1}, 0);
  const AnalysisResult result = Of(100, [](int i, ObservationEpoch& epoch) {
    if (i < 50 || i >= 75) AddSatellite(epoch, {'J', 1}, {"1C"});
  });
  EXPECT_EQ(result.signals[0].cutoff.expected, 100U);
  EXPECT_EQ(result.signals[0].cutoff.observed, 75U);
}

TEST_F(CompletenessTest, ASatelliteWithoutRecordHasNoExpectation) {
  AddSatelliteAt({'J', 1}, 0);
  const AnalysisResult result = Of(10, [](int, ObservationEpoch& epoch) {
    AddSatellite(epoch, {'J', 1}, {"1C"});
    AddSatellite(epoch, {'J', 9}, {"1C"});
    AddSatellite(epoch, {'E', 3}, {"1C"});
  });
  ASSERT_EQ(result.satellites.size(), 3U);
  EXPECT_FALSE(result.satellites[0].horizon.expected);
  EXPECT_FALSE(result.satellites[0].has_record);
  EXPECT_FALSE(result.satellites[0].highest_deg);
  EXPECT_TRUE(result.satellites[1].has_record);
  EXPECT_NEAR(result.satellites[1].highest_deg.value(), 90, 0.1);
  EXPECT_EQ(result.systems[1].horizon.expected, 10U) << "of J01 alone";
  EXPECT_EQ(result.systems[1].satellites_without_record, 1U);
  ASSERT_EQ(result.without_record.size(), 2U);
  EXPECT_EQ(NameOf(result.without_record[1]), "J09");
}

TEST_F(CompletenessTest, SatellitesInViewThatWereNeverObservedAreListed) {
  AddSatelliteAt({'J', 1}, 0);
  AddSatelliteAt({'J', 2}, 0.95);
  AddSatelliteAt({'J', 3}, 1.35);
  AddSatelliteAt({'J', 4}, 2);
  AddSatelliteAt({'G', 4}, 0);
  const AnalysisResult result = Of(10, [](int, ObservationEpoch& epoch) {
    AddSatellite(epoch, {'J', 1}, {"1C"});
  });
  ASSERT_EQ(result.never_observed.size(), 1U)
      << "not below the cut-off, not of a system without observations";
  EXPECT_EQ(NameOf(result.never_observed[0].id), "J02");
  EXPECT_EQ(result.never_observed[0].healthy_epochs, 10U);
  EXPECT_EQ(result.systems[0].satellites_never_observed, 1U);
}

TEST_F(CompletenessTest, ASignalThatOneOfManySatellitesLacksIsExpectedOfIt) {
  for (std::uint8_t i = 1; i <= 11; ++i) AddSatelliteAt({'G', i}, 0.05 * i);
  const AnalysisResult result = Of(10, [](int, ObservationEpoch& epoch) {
    for (std::uint8_t i = 1; i <= 11; ++i) {
      if (i == 3) {
        AddSatellite(epoch, {'G', i}, {"1C", "2W", "5Q"});
      } else if (i == 11) {
        AddSatellite(epoch, {'G', i}, {"1C", "2W"});
      } else {
        AddSatellite(epoch, {'G', i}, {"1C", "2W", "2L", "5Q"});
      }
    }
  });
  AnalysisResult copy = result;
  EXPECT_EQ(SatelliteSignalRow(copy, {'G', 3}, {'2', 'L'}).cutoff.expected, 10U);
  EXPECT_EQ(SatelliteSignalRow(copy, {'G', 3}, {'2', 'L'}).cutoff.observed, 0U);
  EXPECT_EQ(SystemSignalRow(copy, 'G', {'2', 'L'}).cutoff.expected, 100U);
  EXPECT_EQ(SystemSignalRow(copy, 'G', {'2', 'L'}).cutoff.observed, 90U);
  ASSERT_EQ(result.satellites[2].lacking.size(), 1U);
  EXPECT_EQ(NameOf(result.satellites[2].lacking[0]), "2L");
  EXPECT_TRUE(result.satellites[10].lacking.empty()) << "L1 C/A and L2 P(Y) imply nothing";
}

TEST_F(CompletenessTest, ASignalThatTheReceiverTracksOnFewSatellitesIsListedNotExpected) {
  AddSatelliteAt({'C', 21}, 0.1);
  AddSatelliteAt({'C', 23}, 0.2);
  const AnalysisResult result = Of(10, [](int, ObservationEpoch& epoch) {
    AddSatellite(epoch, {'C', 21}, {"2I", "6I"});
    AddSatellite(epoch, {'C', 23}, {"2I"});
  });
  EXPECT_EQ(result.systems[0].cutoff.expected, 30U);
  EXPECT_EQ(result.systems[0].cutoff.ratio, 1.0);
  ASSERT_EQ(result.satellites[1].lacking.size(), 1U);
  EXPECT_EQ(NameOf(result.satellites[1].lacking[0]), "6I");
}

}  // namespace
}  // namespace orsolva_host::analysis
