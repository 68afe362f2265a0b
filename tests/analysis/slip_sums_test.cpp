#include "host/analysis/figures/slip_sums.h"

#include <gtest/gtest.h>

#include "host/analysis/figures/result_rows.h"
#include "tests/analysis/made_track.h"

namespace orsolva_host::analysis {
namespace {

constexpr SignalCode k1C = {'1', 'C'}, k2W = {'2', 'W'};
const std::vector<MadeTrack::Value> kBoth = {{0, 0}, {0, 0}};
const std::vector<MadeTrack::Value> kFirstAlone = {{0, 0}, {}};
const std::vector<MadeTrack::Value> kSecondCarried = {{0, 0}, {0, kAbsent, true}};
const std::vector<MadeTrack::Value> kFlagged = {{0, 0}, {0, 0, false, true}};

class SlipSumsTest : public testing::Test {
 protected:
  SlipSumsTest() { sums.SetInterval(30); }

  void Epoch(const std::vector<MadeTrack::Value>& values, double elevation_deg = 45, int intervals = 1) {
    track.Epoch(values, elevation_deg, intervals);
  }
  /// Ends the newest step, with an event or none.
  void Decide() {
    if (track.Newest() > 0) sums.AddStep(track.Outcome());
  }
  void Decide(EventKind kind, const std::vector<SignalCode>& signals, const std::vector<double>& sizes = {},
              bool sure = true) {
    const Event event = track.Happens(kind, signals, sizes, sure);
    Decide();
    sums.AddEvent(event);
  }
  void Quiet(int epochs, double elevation_deg = 45) {
    for (int k = 0; k < epochs; ++k) Epoch(kBoth, elevation_deg), Decide();
  }
  SlipFigures Of(SignalCode code) { return SystemSignalRow(result, 'G', code).slips; }

  MadeTrack track{{'G', 5}, 30, {k1C, k2W}};
  SlipSums sums{10};
  AnalysisResult result;
};

TEST_F(SlipSumsTest, WithoutASlipSaysMoreThanTheTestedSteps) {
  Quiet(101);
  sums.FillIn(result);
  const SlipFigures g = SystemRow(result, 'G').slips;
  EXPECT_EQ(g.sure, 0U);
  EXPECT_EQ(g.tested_steps, 100U);
  EXPECT_EQ(g.observations_without_slip, 100U);
  EXPECT_FALSE(g.observations_per_slip);
  EXPECT_EQ(g.slips_per_1000, 0.0);
  EXPECT_FALSE(SystemRow(result, 'G').slips_below_cutoff.sure);
}

TEST_F(SlipSumsTest, EachSizeIsCountedForItsSignalAndOnceForTheSatellite) {
  Quiet(50);
  Epoch(kBoth), Decide(EventKind::kSlip, {k1C, k2W}, {9, 7});
  Quiet(50);
  Epoch(kBoth), Decide(EventKind::kSlip, {k2W}, {-1}, false);
  Quiet(50);
  Epoch(kBoth), Decide(EventKind::kHalfCycle, {k1C, k2W}, {0.5, 1});
  Quiet(47);
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).sure, 1U);
  EXPECT_EQ(Of(k1C).half_cycles, 1U);
  EXPECT_EQ(Of(k1C).unsure, 0U);
  EXPECT_EQ(Of(k2W).sure, 2U);
  EXPECT_EQ(Of(k2W).unsure, 1U);
  EXPECT_EQ(Of(k2W).half_cycles, 0U);
  const SlipFigures satellite = SatelliteRow(result, {'G', 5}).slips;
  EXPECT_EQ(satellite.sure, 1U);
  EXPECT_EQ(satellite.unsure, 1U);
  EXPECT_EQ(satellite.half_cycles, 1U);
  EXPECT_EQ(satellite.tested_steps, 199U);
  EXPECT_DOUBLE_EQ(*satellite.observations_per_slip, 199 / 3.0);
  EXPECT_DOUBLE_EQ(*satellite.slips_per_1000, 3000 / 199.0);
  EXPECT_FALSE(satellite.observations_without_slip);
}

TEST_F(SlipSumsTest, FewTestedStepsGiveNoRatio) {
  Quiet(50);
  Epoch(kBoth), Decide(EventKind::kSlip, {k1C}, {1});
  Quiet(49);
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).tested_steps, 99U);
  EXPECT_FALSE(Of(k1C).observations_per_slip);
  EXPECT_FALSE(Of(k1C).slips_per_1000);
  EXPECT_EQ(Of(k2W).observations_without_slip, 99U);
}

TEST_F(SlipSumsTest, BelowTheCutOffCountsApart) {
  Quiet(20, 9.99);
  Epoch(kBoth, 9.99), Decide(EventKind::kSlip, {k1C}, {1});
  Quiet(20, 10);
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).sure, 0U);
  EXPECT_EQ(Of(k1C).tested_steps, 20U);
  EXPECT_EQ(SystemSignalRow(result, 'G', k1C).slips_below_cutoff.sure, 1U);
  EXPECT_EQ(SystemSignalRow(result, 'G', k1C).slips_below_cutoff.tested_steps, 20U);
}

TEST_F(SlipSumsTest, WithoutElevationsEverythingCounts) {
  Quiet(10, kAbsent);
  Epoch(kBoth, kAbsent), Decide(EventKind::kJump, {k1C, k2W});
  sums.FillIn(result);
  EXPECT_EQ(Of(k2W).unknown_size, 1U);
  EXPECT_EQ(Of(k2W).tested_steps, 10U);
}

TEST_F(SlipSumsTest, ASlipAfterAHoleIsNoSlipOfContinuousTracking) {
  Quiet(10);
  Epoch(kBoth, 45, 4), Decide(EventKind::kGapSlip, {k1C}, {3});
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).sure, 0U);
  EXPECT_EQ(Of(k1C).tested_steps, 10U);
}

TEST_F(SlipSumsTest, AHoleLeftOpenIsUntested) {
  Quiet(10);
  Epoch(kSecondCarried), Decide();
  Epoch(kBoth), Decide(EventKind::kSignalGapUnresolved, {k2W});
  sums.FillIn(result);
  EXPECT_EQ(Of(k2W).tested_steps, 9U);
  EXPECT_EQ(Of(k2W).untested_steps, 1U);
  EXPECT_EQ(Of(k1C).tested_steps, 11U);
}

TEST_F(SlipSumsTest, OnePhaseThatNothingPredictsIsUntested) {
  for (int k = 0; k < 5; ++k) {
    Epoch(kFirstAlone);
    track.Track().At(track.Newest()).clock_known = k < 3;
    Decide();
  }
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).tested_steps, 2U);
  EXPECT_EQ(Of(k1C).untested_steps, 2U);
}

TEST_F(SlipSumsTest, FlagsAgreeWithSlipsOfTheirOwnSignal) {
  Quiet(10);
  Epoch(kFlagged), Decide();
  Epoch(kFlagged), Decide(EventKind::kSlip, {k1C}, {1});
  Epoch(kFlagged), Decide(EventKind::kSlip, {k2W}, {1});
  sums.FillIn(result);
  EXPECT_EQ(Of(k2W).loss_of_lock_flags, 3U);
  EXPECT_EQ(Of(k2W).loss_of_lock_with_slip, 1U);
  EXPECT_EQ(Of(k1C).loss_of_lock_flags, 0U);
}

TEST_F(SlipSumsTest, CarriersOfSbasAreUntestedAtThirtySeconds) {
  ObservationEpoch epoch;
  epoch.satellites.push_back({{'S', 20}, 0, 1});
  epoch.signals.push_back({});
  epoch.signals[0].code = k1C;
  epoch.signals[0].phase_cycles = 1e8;
  sums.AddEpoch(epoch);
  sums.AddEpoch(epoch);
  sums.FillIn(result);
  EXPECT_EQ(SystemRow(result, 'S').slips.untested_steps, 2U);
  EXPECT_EQ(SystemRow(result, 'S').slips.tested_steps, 0U);
  EXPECT_FALSE(SystemRow(result, 'S').slips.slips_per_1000);
}

TEST_F(SlipSumsTest, DisturbancesOfTheSatelliteClockAreNamedAndNoSlips) {
  Quiet(10);
  Epoch(kBoth), Decide(EventKind::kSatelliteClock, {k1C, k2W});
  sums.FillIn(result);
  EXPECT_EQ(SatelliteRow(result, {'G', 5}).satellite_clock_events, 1U);
  EXPECT_EQ(SatelliteRow(result, {'G', 5}).slips.sure, 0U);
}

}  // namespace
}  // namespace orsolva_host::analysis
