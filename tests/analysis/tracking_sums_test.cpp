#include "host/analysis/figures/tracking_sums.h"

#include <gtest/gtest.h>

#include "host/analysis/figures/result_rows.h"
#include "tests/analysis/made_track.h"

namespace orsolva_host::analysis {
namespace {

constexpr SignalCode k1C = {'1', 'C'}, k2W = {'2', 'W'};
const std::vector<MadeTrack::Value> kBoth = {{0, 0}, {0, 0}};
const std::vector<MadeTrack::Value> kSecondCarried = {{0, 0}, {0, kAbsent, true}};
const std::vector<MadeTrack::Value> kSecondGone = {{0, 0}, {}};

class TrackingSumsTest : public testing::Test {
 protected:
  TrackingSumsTest() { sums.SetInterval(30); }

  /// The next epoch of the stream and of the satellite. @param others  whether others are observed before it
  void Epoch(const std::vector<MadeTrack::Value>& values, double elevation_deg = 45, int intervals = 1,
             bool others = true) {
    for (int k = 1; k < intervals && others; ++k) TakeEpoch(track.Number() + k);
    track.Epoch(values, elevation_deg, intervals);
    TakeEpoch(track.Number());
  }
  void Decide() {
    if (track.Newest() > 0) sums.AddStep(track.Outcome());
  }
  void Decide(EventKind kind, const std::vector<SignalCode>& signals, const std::vector<double>& sizes = {},
              bool sure = true) {
    track.Happens(kind, signals, sizes, sure);
    Decide();
  }
  void Quiet(int epochs, double elevation_deg = 45) {
    for (int k = 0; k < epochs; ++k) Epoch(kBoth, elevation_deg), Decide();
  }
  void TakeEpoch(std::int64_t number, std::uint32_t events = 0) {
    ObservationEpoch epoch;
    epoch.time_ns = kMadeStart_ns + number * 30 * kNanosecondsPerSecond;
    epoch.events = events;
    epoch.satellites.push_back({{'G', 9}, 0, 1});
    epoch.signals.resize(1);
    epoch.signals[0].phase_cycles = 1e8;
    sums.AddEpoch(epoch, number);
  }
  const SignalFigures& Of(SignalCode code) { return SatelliteSignalRow(result, {'G', 5}, code); }

  MadeTrack track{{'G', 5}, 30, {k1C, k2W}};
  TrackingSums sums{10};
  AnalysisResult result;
};

TEST_F(TrackingSumsTest, AnUnbrokenArcLastsFromFirstToLastPhase) {
  Quiet(101);
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).arcs.arcs, 1U);
  EXPECT_EQ(Of(k1C).arcs.median_s, 3000.0);
  EXPECT_EQ(Of(k1C).arcs.longest_s, 3000.0);
  EXPECT_EQ(Of(k1C).interruptions.by_signal, 0U);
}

TEST_F(TrackingSumsTest, ASlipEndsTheArcOfItsSignalAlone) {
  Quiet(11);
  Epoch(kBoth), Decide(EventKind::kSlip, {k2W}, {-12});
  Quiet(30);
  sums.FillIn(result);
  EXPECT_EQ(Of(k2W).arcs.arcs, 2U);
  EXPECT_EQ(Of(k2W).arcs.longest_s, 900.0);
  EXPECT_DOUBLE_EQ(*Of(k2W).arcs.median_s, 600.0);  // of 300 and 900
  EXPECT_EQ(Of(k1C).arcs.arcs, 1U);
  EXPECT_EQ(SatelliteRow(result, {'G', 5}).arcs.arcs, 1U);
}

TEST_F(TrackingSumsTest, ASlipOfEverySignalEndsTheArcOfTheSatellite) {
  Quiet(11);
  Epoch(kBoth), Decide(EventKind::kSlip, {k1C, k2W}, {1, 1});
  Quiet(20);
  Epoch(kBoth), Decide(EventKind::kJump, {k1C, k2W});
  Quiet(5);
  sums.FillIn(result);
  EXPECT_EQ(SatelliteRow(result, {'G', 5}).arcs.arcs, 3U);
  EXPECT_EQ(SystemRow(result, 'G').arcs.longest_s, 600.0);
}

TEST_F(TrackingSumsTest, AnArcGoesOnOverAHoleThatWasFoundContinuous) {
  Quiet(11);
  Epoch(kBoth, 45, 6), Decide(EventKind::kGapContinuous, {k1C, k2W});
  Quiet(10);
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).arcs.arcs, 1U);
  EXPECT_EQ(Of(k1C).arcs.longest_s, (10 + 6 + 10) * 30.0);
  EXPECT_EQ(Of(k1C).interruptions.by_satellite, 1U);
  EXPECT_EQ(Of(k1C).interruptions.continuous, 1U);
}

TEST_F(TrackingSumsTest, AHoleIsNamedAfterWhoWasAway) {
  Quiet(11);
  Epoch(kSecondCarried), Decide();
  Epoch(kBoth), Decide(EventKind::kSignalGapSlip, {k2W}, {3});
  Quiet(5);
  Epoch(kBoth, 45, 6), Decide(EventKind::kGapContinuous, {k1C, k2W});
  Quiet(5);
  Epoch(kBoth, 45, 6, false), Decide(EventKind::kGapUnresolved, {k1C, k2W});
  Quiet(5);
  sums.FillIn(result);
  const InterruptionFigures second = Of(k2W).interruptions;
  EXPECT_EQ(second.by_signal, 1U);
  EXPECT_EQ(second.by_satellite, 1U);
  EXPECT_EQ(second.by_receiver, 1U);
  EXPECT_EQ(second.continuous, 1U);
  EXPECT_EQ(second.slipped, 1U);
  EXPECT_EQ(second.unresolved, 1U);
  EXPECT_EQ(Of(k1C).interruptions.by_signal, 0U);
  const InterruptionFigures satellite = SystemRow(result, 'G').interruptions;
  EXPECT_EQ(*satellite.by_signal + *satellite.by_satellite + *satellite.by_receiver, 3U);
}

TEST_F(TrackingSumsTest, ASignalThatReturnsAfterItsSatelliteWasAwayWithIt) {
  Quiet(11);
  Epoch(kSecondCarried, 45, 3), Decide(EventKind::kGapContinuous, {k1C});
  Epoch(kBoth), Decide(EventKind::kSignalGapContinuous, {k2W});
  sums.FillIn(result);
  EXPECT_EQ(Of(k2W).interruptions.by_satellite, 1U);
  EXPECT_EQ(Of(k2W).interruptions.by_signal, 0U);
}

TEST_F(TrackingSumsTest, APowerFailureIsTheReceivers) {
  Quiet(11);
  TakeEpoch(track.Number() + 1, kPowerFailure);
  TakeEpoch(track.Number() + 2);
  track.Epoch(kBoth, 45, 3);
  TakeEpoch(track.Number());
  Decide(EventKind::kGapUnresolved, {k1C, k2W});
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).interruptions.by_receiver, 1U);
  EXPECT_EQ(Of(k1C).interruptions.by_satellite, 0U);
}

TEST_F(TrackingSumsTest, APhaseThatReturnsWithoutAnythingToGoOnFromIsUnresolved) {
  Quiet(11);
  Epoch(kSecondGone), Decide();
  Epoch(kBoth), Decide();
  Quiet(5);
  sums.FillIn(result);
  EXPECT_EQ(Of(k2W).interruptions.unresolved, 1U);
  EXPECT_EQ(Of(k2W).arcs.arcs, 2U);
}

TEST_F(TrackingSumsTest, ArcsAreThoseFromTheCutOffUp) {
  Quiet(10, 9);
  Quiet(11, 10);
  Quiet(10, 9);
  sums.FillIn(result);
  EXPECT_EQ(Of(k1C).arcs.arcs, 1U);
  EXPECT_EQ(Of(k1C).arcs.longest_s, 300.0);
  EXPECT_EQ(Of(k1C).interruptions.continuous, 0U);
}

TEST_F(TrackingSumsTest, WhereNothingRisesAboveTheCutOffThereIsNoFigure) {
  Quiet(10, 9);
  sums.FillIn(result);
  EXPECT_FALSE(Of(k1C).arcs.arcs);
  EXPECT_FALSE(Of(k1C).interruptions.continuous);
  EXPECT_EQ(Of(k1C).interruptions_below_cutoff.continuous, 0U);
}

TEST(ArcLengths, TheMedianIsExactWhileLengthsDifferAndWithinOnePercentElse) {
  ArcLengths few;
  for (const double seconds : {1000.0, 30.0, 21390.0}) few.Add(seconds);
  EXPECT_EQ(few.Figures().median_s, 1000.0);
  ArcLengths many;
  for (int k = 1; k <= 100001; ++k) many.Add(k);
  EXPECT_EQ(many.Figures().arcs, 100001U);
  EXPECT_NEAR(*many.Figures().median_s, 50001, 500);
  EXPECT_EQ(many.Figures().longest_s, 100001.0);
  EXPECT_FALSE(ArcLengths().Figures().median_s);
}

TEST(TrackingSums, CarriersOfGlonassAreThoseOfTheirChannelAndTheirSumsHaveNone) {
  constexpr SignalCode k3Q = {'3', 'Q'};
  TrackingSums sums{10};
  sums.SetInterval(30);
  MadeTrack minus_seven{{'R', 10}, 30, {k1C, {'2', 'C'}, k3Q}, -7};
  MadeTrack six{{'R', 9}, 30, {k1C}, 6};
  for (int k = 0; k < 3; ++k) {
    minus_seven.Epoch({{0, 0}, {0, 0}, {0, 0}});
    six.Epoch({{0, 0}});
    if (k == 0) continue;
    sums.AddStep(minus_seven.Outcome());
    sums.AddStep(six.Outcome());
  }
  AnalysisResult result;
  sums.FillIn(result);
  // ICD of GLONASS L1 and L2, edition 5.1: 1602 MHz + k 0.5625 MHz, 1246 MHz + k 0.4375 MHz; L3OC: 1202.025.
  EXPECT_EQ(SatelliteSignalRow(result, {'R', 10}, k1C).frequency_hz, 1598.0625e6);
  EXPECT_EQ(SatelliteSignalRow(result, {'R', 10}, {'2', 'C'}).frequency_hz, 1242.9375e6);
  EXPECT_EQ(SatelliteSignalRow(result, {'R', 10}, k3Q).frequency_hz, 1202.025e6);
  EXPECT_EQ(SatelliteSignalRow(result, {'R', 9}, k1C).frequency_hz, 1605.375e6);
  EXPECT_FALSE(SystemSignalRow(result, 'R', k1C).frequency_hz);
}

}  // namespace
}  // namespace orsolva_host::analysis
