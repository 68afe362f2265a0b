#include "measures/multipath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "toolkit/constants.h"

namespace orsolva {
namespace {

using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::kSpeedOfLight;

constexpr double kLambda1 = 0.19029367279836487;
constexpr double kLambda2 = 0.24421021342456825;
constexpr std::int64_t kStart = 1593000000;
constexpr double kRange = 2.2e7;

// GPS code 1 (band 1) with code 15 (band 2), fed with a constant geometry and a chosen code error.
struct Pair {
  AbsoluteMp State;
  PairSignals Signals;
  CodeObservation Code{1, kRange / kLambda1, kRange};
  CodeObservation Partner{15, kRange / kLambda2, kRange};
  MultipathStep Step;

  explicit Pair(int window = 10) {
    const std::int32_t channels[32] = {};
    Signals = MakePairSignals({1, 7}, 1, 15, channels);
    State.WindowLength = window;
  }
  bool Epoch(double seconds, double error, bool slip = false, bool counting = true) {
    Code.Pseudorange = kRange + error;
    const double whole = std::floor(seconds);
    Step = MultipathStep();
    return UpdateMultipath(State, Signals, {kStart + static_cast<std::int64_t>(whole), seconds - whole}, Code,
                           Partner, slip, counting, &Step);
  }
};

bool SameBits(const AbsoluteMp& a, const AbsoluteMp& b) {
  bool same = a.LastEpoch.Seconds == b.LastEpoch.Seconds && a.SumOfSquares == b.SumOfSquares &&
              a.Count == b.Count && a.Values.Count() == b.Values.Count() &&
              a.Residuals.Count() == b.Residuals.Count() && a.RestartTimes.Size() == b.RestartTimes.Size();
  for (int i = 0; same && i < a.Values.Count(); ++i) same = a.Values.At(i) == b.Values.At(i);
  for (int i = 0; same && i < a.Residuals.Count(); ++i) same = a.Residuals.At(i) == b.Residuals.At(i);
  return same;
}

TEST(MovingWindow, KeepsTheLastValuesOldestFirst) {
  MovingWindow window;
  EXPECT_EQ(0.0, window.Mean());
  for (int i = 1; i <= 1000; ++i) {
    window.Push(i, 10);
    ASSERT_EQ(std::min(i, 10), window.Count());
    for (int k = 0; k < window.Count(); ++k) ASSERT_EQ(i - window.Count() + 1 + k, window.At(k));
  }
  EXPECT_EQ(995.5, window.Mean());
  window.SetNewest(0.0);
  EXPECT_EQ(0.0, window.At(9));
  EXPECT_EQ(999.0, window.At(8));
  window.Fill(3.0);
  EXPECT_EQ(10, window.Count());
  EXPECT_EQ(3.0, window.Mean());
}

TEST(MovingWindow, HoldsTheLongestLengthOverManyTurns) {
  MovingWindow window;
  for (int i = 0; i < 1000; ++i) window.Push(i, kMaxMpWindow);
  ASSERT_EQ(kMaxMpWindow, window.Count());
  for (int i = 0; i < kMaxMpWindow; ++i) EXPECT_EQ(1000 - kMaxMpWindow + i, window.At(i));
}

TEST(MovingWindow, SumsFromOldestToNewest) {
  MovingWindow window;
  const std::vector<double> values = {1e16, 1.0, -1e16, 1.0};
  double sum = 0.0;
  for (double value : values) {
    window.Push(value, 50);
    sum += value;
  }
  EXPECT_EQ(sum / 4, window.Mean());
}

TEST(MpCoefficients, AreFreeOfGeometryAndIonosphere) {
  const double f1 = kSpeedOfLight / kLambda1, f2 = kSpeedOfLight / kLambda2, f5 = 1176.45e6;
  for (const auto& f : {std::vector<double>{f1, f1, f2}, {f2, f2, f1}, {f5, f1, f2}}) {
    MpCoefficientSet c;
    ASSERT_TRUE(MpCoefficients(f[0], f[1], f[2], 1, 2, c));
    EXPECT_EQ(1.0, c.C0);
    EXPECT_NEAR(0.0, c.C0 + c.C1 + c.C2, 1e-12);
    const double i2 = f[0] * f[0];
    EXPECT_NEAR(0.0, c.C0 - c.C1 * i2 / (f[1] * f[1]) - c.C2 * i2 / (f[2] * f[2]), 1e-12);
  }
}

TEST(MpCoefficients, OfTheMeasuredBandTwiceTakeTheShortForm) {
  const double f1 = kSpeedOfLight / kLambda1, f2 = kSpeedOfLight / kLambda2;
  const double a = f1 * f1, b = f2 * f2;
  MpCoefficientSet c;
  ASSERT_TRUE(MpCoefficients(f1, f1, f2, 1, 2, c));
  EXPECT_NEAR(-(a + b) / (a - b), c.C1, 1e-14);
  EXPECT_NEAR(2 * b / (a - b), c.C2, 1e-14);
}

TEST(MpCoefficients, OfEqualBandsAreZero) {
  MpCoefficientSet c = {1, 2, 3};
  EXPECT_FALSE(MpCoefficients(1.5e9, 1.5e9, 1.2e9, 1, 1, c));
  EXPECT_EQ(0.0, c.C0);
  EXPECT_EQ(0.0, c.C1);
  EXPECT_EQ(0.0, c.C2);
}

TEST(MpValue, WeighsCodeAndPhasesInMetres) {
  EXPECT_EQ(2.0 * 10.0 + 3.0 * 5.0 * 0.5 + 4.0 * 7.0 * 0.25,
            MpValue(10.0, 5.0, 7.0, 0.5, 0.25, {2.0, 3.0, 4.0}));
}

TEST(MpJumpThreshold, IsKeyedBySystemAndBand) {
  const struct {
    int System;
    std::vector<int> Bands;
    double Threshold;
  } rows[] = {
      {1, {1, 5}, 5.5},
      {1, {2}, 5.75},
      {2, {1, 3}, 5.6},
      {2, {2}, 6.25},
      {4, {1, 5, 6, 7, 21, 27}, 5.4},
      {8, {1, 5, 6, 7, 8}, 5.4},
      {16, {1, 5, 6}, 5.5},
      {16, {2}, 5.75},
      // Bands without a row.
      {1, {0, 3, 6, 7, 8}, 0.0},
      {2, {0, 4, 5, 6}, 0.0},
      {4, {0, 2, 3, 8, 36}, 0.0},
      {8, {0, 2, 3, 4}, 0.0},
      {16, {0, 3, 7, 8}, 0.0},
  };
  for (const auto& row : rows) {
    for (int band : row.Bands) {
      double threshold = -1.0;
      EXPECT_TRUE(MpJumpThreshold(row.System, band, threshold));
      EXPECT_EQ(row.Threshold, threshold) << row.System << " " << band;
    }
  }
}

TEST(MpJumpThreshold, OfAnUnknownSystemIsNone) {
  double threshold = -1.0;
  for (int system : {0, 3, 32, 64}) EXPECT_FALSE(MpJumpThreshold(system, 1, threshold));
}

TEST(Multipath, FirstEpochHasResidualZeroAndAddsNothing) {
  Pair pair;
  EXPECT_FALSE(pair.Epoch(0, 1.0));
  EXPECT_EQ(0.0, pair.Step.Residual);
  EXPECT_EQ(0.0, pair.State.SumOfSquares);
  EXPECT_EQ(1, pair.State.Count);
  EXPECT_EQ(RestartReason::kFirstValue, pair.Step.Restart);
  EXPECT_EQ(1u, pair.State.Code);
  EXPECT_EQ(15u, pair.State.Partner);
}

// With constant geometry m is the code error plus a constant, so the residual is the error less its moving
// mean.
TEST(Multipath, ResidualIsTheCodeErrorLessItsMovingMean) {
  Pair pair(10);
  std::vector<double> errors;
  double squares = 0.0;
  for (int i = 0; i < 200; ++i) {
    errors.push_back(1.5 * std::sin(i * 0.7));
    EXPECT_FALSE(pair.Epoch(30.0 * i, errors.back()));
    const int n = std::min(i + 1, 10);
    double mean = 0.0;
    for (int k = 0; k < n; ++k) mean += errors[errors.size() - static_cast<std::size_t>(n - k)];
    mean /= n;
    EXPECT_NEAR(errors.back() - mean, pair.Step.Residual, 1e-7);
    squares += (errors.back() - mean) * (errors.back() - mean);
  }
  EXPECT_NEAR(squares, pair.State.SumOfSquares, 1e-5);
  EXPECT_EQ(200, pair.State.Count);
}

TEST(Multipath, WindowOfTenDropsTheFirstAtTheEleventh) {
  Pair pair(10);
  for (int i = 0; i < 11; ++i) pair.Epoch(i, 0.1 * i);
  EXPECT_EQ(10, pair.State.Values.Count());
  EXPECT_EQ(10, pair.State.Residuals.Count());
  EXPECT_NEAR(0.1, pair.State.Values.At(1) - pair.State.Values.At(0), 1e-7);
  EXPECT_NEAR(0.9, pair.State.Values.At(9) - pair.State.Values.At(0), 1e-7);
}

TEST(Multipath, GapOfExactlySixHundredSecondsDoesNotRestart) {
  Pair pair;
  pair.Epoch(0, 0.0);
  EXPECT_FALSE(pair.Epoch(600.0, 1.0));
  EXPECT_NEAR(0.5, pair.Step.Residual, 1e-7);
}

TEST(Multipath, GapBeyondSixHundredSecondsRestartsUnrecorded) {
  Pair pair;
  pair.Epoch(0, 0.0);
  EXPECT_TRUE(pair.Epoch(600.5, 1.0));
  EXPECT_EQ(0.0, pair.Step.Residual);
  EXPECT_EQ(RestartReason::kGap, pair.Step.Restart);
  EXPECT_EQ(0, pair.State.RestartTimes.Size());
  EXPECT_EQ(2, pair.State.Count);
}

TEST(Multipath, GapIsNotRecordedEvenWithASlip) {
  Pair pair;
  pair.Epoch(0, 0.0);
  EXPECT_TRUE(pair.Epoch(600.5, 1.0, true));
  EXPECT_EQ(0, pair.State.RestartTimes.Size());
}

TEST(Multipath, StepBackInTimeIsAGapToo) {
  Pair pair;
  pair.Epoch(1000, 0.0);
  EXPECT_TRUE(pair.Epoch(300, 0.0));
  EXPECT_EQ(RestartReason::kGap, pair.Step.Restart);
}

TEST(Multipath, JumpBeyondTheThresholdRestartsAndIsRecorded) {
  // Two values: residual (0, d/2), its mean d/4, so the test sees d/4 against 5.5 m.
  Pair below;
  below.Epoch(0, 0.0);
  EXPECT_FALSE(below.Epoch(30, 21.9));
  Pair above;
  above.Epoch(0, 0.0);
  EXPECT_TRUE(above.Epoch(30, 22.1));
  EXPECT_EQ(RestartReason::kJump, above.Step.Restart);
  ASSERT_EQ(1, above.State.RestartTimes.Size());
  EXPECT_EQ(kStart + 30, above.State.RestartTimes.Get(0).time);
}

TEST(Multipath, RestartOverwritesTheValuesAndKeepsTheWindowLength) {
  Pair pair;
  for (int i = 0; i < 5; ++i) pair.Epoch(i, 0.1 * i);
  const double before = pair.State.Residuals.At(3);
  ASSERT_TRUE(pair.Epoch(5, 3.0, true));
  ASSERT_EQ(6, pair.State.Values.Count());
  for (int i = 0; i < 6; ++i) EXPECT_EQ(pair.Step.Value, pair.State.Values.At(i));
  ASSERT_EQ(6, pair.State.Residuals.Count());
  EXPECT_EQ(0.0, pair.State.Residuals.At(5));
  EXPECT_EQ(before, pair.State.Residuals.At(3));
  const double squares = pair.State.SumOfSquares;
  EXPECT_FALSE(pair.Epoch(6, 3.0));
  EXPECT_NEAR(squares, pair.State.SumOfSquares, 1e-15);
}

TEST(Multipath, RestartedEpochCountsAsAZeroResidual) {
  Pair pair;
  pair.Epoch(0, 0.0);
  pair.Epoch(1, 1.0);
  const double squares = pair.State.SumOfSquares;
  EXPECT_TRUE(pair.Epoch(2, 5.0, true));
  EXPECT_EQ(RestartReason::kIonosphereSlip, pair.Step.Restart);
  EXPECT_EQ(squares, pair.State.SumOfSquares);
  EXPECT_EQ(3, pair.State.Count);
  EXPECT_EQ(1, pair.State.RestartTimes.Size());
}

TEST(Multipath, BelowTheCutOffOnlyTheWindowsMove) {
  Pair pair;
  pair.Epoch(0, 0.0, false, false);
  pair.Epoch(1, 1.0, false, false);
  EXPECT_TRUE(pair.Epoch(2, 1.0, true, false));
  EXPECT_EQ(0, pair.State.Count);
  EXPECT_EQ(0.0, pair.State.SumOfSquares);
  EXPECT_EQ(0, pair.State.RestartTimes.Size());
  EXPECT_EQ(3, pair.State.Values.Count());
  EXPECT_EQ(kStart + 2, pair.State.LastEpoch.Seconds);
}

TEST(MovingWindow, SumsTwoWindowsAsEachAlone) {
  MovingWindow longer, shorter;
  for (int i = 0; i < 7; ++i) longer.Push(std::sin(i) * std::pow(10.0, i), 50);
  for (int i = 0; i < 4; ++i) shorter.Push(std::cos(i) * std::pow(10.0, 3 * i), 50);
  EXPECT_EQ(longer.Mean(), SumBoth(longer, shorter).First / 7);
  EXPECT_EQ(shorter.Mean(), SumBoth(longer, shorter).Second / 4);
  EXPECT_EQ(shorter.Mean(), SumBoth(shorter, longer).First / 4);
  EXPECT_EQ(longer.Mean(), SumBoth(shorter, longer).Second / 7);
}

TEST(Multipath, EqualBandsLeaveTheStateUntouched) {
  Pair pair;
  pair.Epoch(0, 1.0);
  const AbsoluteMp before = pair.State;
  pair.Signals.PartnerBand = pair.Signals.CodeBand;
  FillMultipathConstants(pair.Signals);
  EXPECT_FALSE(pair.Epoch(1, 1.0));
  EXPECT_FALSE(pair.Step.HasValue);
  EXPECT_TRUE(SameBits(before, pair.State));
}

TEST(Multipath, NeedsAllFourObservations) {
  for (int missing = 0; missing < 4; ++missing) {
    Pair pair;
    pair.Epoch(0, 1.0);
    const AbsoluteMp before = pair.State;
    CodeObservation code = pair.Code;
    CodeObservation partner = pair.Partner;
    double* const values[] = {&code.Pseudorange, &code.Phase, &partner.Pseudorange, &partner.Phase};
    *values[missing] = 1e-12;  // the limit itself is absent
    EXPECT_FALSE(
        UpdateMultipath(pair.State, pair.Signals, {kStart + 30, 0.0}, code, partner, true, true, nullptr));
    EXPECT_TRUE(SameBits(before, pair.State)) << missing;
  }
}

TEST(Multipath, MissingPartnerPhaseLeavesTheLastEpochSoThatALaterGapIsMeasuredFromIt) {
  Pair pair;
  pair.Epoch(0, 0.0);
  const double phase = pair.Partner.Phase;
  pair.Partner.Phase = 0.0;
  pair.Epoch(400, 0.0);
  EXPECT_EQ(kStart, pair.State.LastEpoch.Seconds);
  pair.Partner.Phase = phase;
  EXPECT_TRUE(pair.Epoch(700, 0.0));
  EXPECT_EQ(RestartReason::kGap, pair.Step.Restart);
}

TEST(Multipath, PairWithoutAWavelengthIsNotUsable) {
  Pair pair;
  pair.Signals.PartnerWavelength = 0.0;
  EXPECT_FALSE(pair.Epoch(0, 1.0));
  EXPECT_EQ(0, pair.State.Count);
}

TEST(Multipath, UnknownSystemIsSkippedWhole) {
  Pair pair;
  pair.Signals.System = 64;
  FillMultipathConstants(pair.Signals);
  EXPECT_FALSE(pair.Epoch(0, 1.0));
  EXPECT_EQ(0u, pair.State.Code);
  EXPECT_EQ(0, pair.State.Values.Count());
}

TEST(Multipath, BandWithoutAThresholdRestartsAtEveryStep) {
  Pair pair;
  pair.Signals.System = 4;
  pair.Signals.CodeBand = 36;
  FillMultipathConstants(pair.Signals);
  pair.Epoch(0, 0.0);
  EXPECT_TRUE(pair.Epoch(1, 0.01));
  EXPECT_EQ(RestartReason::kJump, pair.Step.Restart);
}

TEST(PairSignals, GlonassWavelengthsFollowTheChannelTable) {
  std::int32_t channels[32];
  for (std::int32_t& channel : channels) channel = -999;
  channels[0] = 1;
  channels[31] = -7;
  EXPECT_EQ(kSpeedOfLight / (1.602e9 + 562500.0), MakePairSignals({2, 1}, 30, 35, channels).CodeWavelength);
  EXPECT_EQ(kSpeedOfLight / (1.246e9 + 437500.0),
            MakePairSignals({2, 1}, 30, 35, channels).PartnerWavelength);
  EXPECT_EQ(kSpeedOfLight / 1598062500.0, MakePairSignals({2, 32}, 30, 35, channels).CodeWavelength);
  EXPECT_EQ(0.0, MakePairSignals({2, 2}, 30, 35, channels).CodeWavelength);
  EXPECT_EQ(0.0, MakePairSignals({2, 0}, 30, 35, channels).CodeWavelength);
  EXPECT_EQ(0.0, MakePairSignals({2, 33}, 30, 35, channels).PartnerWavelength);
}

TEST(PairSignals, KnowTheBandSlotOfTheMeasuredCode) {
  const std::int32_t channels[32] = {};
  const PairSignals signals = MakePairSignals({4, 20}, 153, 150, channels);
  EXPECT_EQ(4, signals.CodeSlot);
  EXPECT_EQ(1, signals.CodeBand);
  EXPECT_EQ(21, signals.PartnerBand);
}

}  // namespace
}  // namespace orsolva
