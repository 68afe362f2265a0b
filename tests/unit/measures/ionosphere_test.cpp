#include "measures/ionosphere.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/unit/measures/synthetic_run.h"

namespace orsolva {
namespace {

using gnssqctoolkit::AbsoluteTime;
using orsolva_test::kReferenceTime;

constexpr double kLambda1 = 0.19029367279836487;
constexpr double kLambda2 = 0.24421021342456825;

AbsoluteTime At(double seconds) {
  const double whole = std::floor(seconds);
  return {kReferenceTime + static_cast<std::int64_t>(whole), seconds - whole};
}

// Feeds the geometry-free combination as a length in metres.
struct GeometryFreeSeries {
  IodDetect State;
  GeometryFreeStep Step;
  bool Epoch(double seconds, double metres, bool counting = true) {
    Step = GeometryFreeStep();
    return IonosphereSlip(At(seconds), {100.0, kLambda1}, {(metres + 100.0 * kLambda1) / kLambda2, kLambda2},
                          counting, State, &Step);
  }
};

TEST(IonosphereSlip, StoresTheFirstValueWithoutATest) {
  GeometryFreeSeries series;
  EXPECT_FALSE(series.Epoch(0, 1000.0));
  EXPECT_FALSE(series.Step.HasStep);
  EXPECT_NEAR(1000.0, series.State.GeometryFree, 1e-9);
  EXPECT_EQ(kReferenceTime, series.State.GeometryFreeEpoch.Seconds);
}

TEST(IonosphereSlip, ThresholdIsFourMetresPerMinuteScaledToTheCombination) {
  GeometryFreeSeries series;
  series.Epoch(0, 0.0);
  EXPECT_FALSE(series.Epoch(30, 0.78));
  EXPECT_NEAR(0.78563, series.Step.Threshold, 1e-5);
  EXPECT_TRUE(series.Epoch(60, 0.78 + 0.79));
  EXPECT_EQ(IonosphereSlipReason::kRate, series.Step.Slip);
  EXPECT_TRUE(series.Epoch(90, 0.78));
}

TEST(IonosphereSlip, ThresholdIsAtLeastTwentySixMillimetres) {
  GeometryFreeSeries series;
  series.Epoch(0, 0.0);
  EXPECT_FALSE(series.Epoch(0.1, 0.0255));
  EXPECT_EQ(0.026, series.Step.Threshold);
  EXPECT_TRUE(series.Epoch(0.2, 0.0255 + 0.0265));
}

TEST(IonosphereSlip, GapBeyond242SecondsIsASlipAndOneOf600OrMoreNeverIs) {
  for (const auto& [gap, slip] : {std::pair{242.0, false}, {242.5, true}, {599.5, true}, {600.0, false}}) {
    GeometryFreeSeries series;
    series.Epoch(0, 1.0);
    EXPECT_EQ(slip, series.Epoch(gap, 1.0)) << gap;
    GeometryFreeSeries jump;
    jump.Epoch(0, 0.0);
    EXPECT_EQ(gap < 600.0, jump.Epoch(gap, 1000.0)) << gap;
  }
}

TEST(IonosphereSlip, GapOfExactly242SecondsIsNoneAtAnyFraction) {
  for (int i = 0; i < 1000; ++i) {
    IodDetect state;
    for (const std::int64_t second : {kReferenceTime + 2, kReferenceTime + 244}) {
      const AbsoluteTime epoch = gnssqctoolkit::ThroughCalendar({second, i / 1000.0});
      EXPECT_FALSE(IonosphereSlip(epoch, {100.0, kLambda1}, {100.0, kLambda2}, true, state, nullptr)) << i;
    }
  }
}

TEST(IonosphereSlip, IsReportedOnlyWhileCounting) {
  GeometryFreeSeries series;
  series.Epoch(0, 0.0);
  EXPECT_FALSE(series.Epoch(30, 5.0, false));
  EXPECT_NEAR(5.0, series.State.GeometryFree, 1e-9);
  EXPECT_FALSE(series.Epoch(60, 5.0));
}

TEST(IonosphereSlip, OfTimesThatStepBackUsesTheMagnitude) {
  GeometryFreeSeries series;
  series.Epoch(300, 0.0);
  EXPECT_TRUE(series.Epoch(0, 0.0));
}

TEST(IonosphereSlip, LeavesTheStateWhenAPhaseOrWavelengthIsMissing) {
  IodDetect state;
  IonosphereSlip(At(0), {100.0, kLambda1}, {100.0, kLambda2}, true, state, nullptr);
  const double before = state.GeometryFree;
  const CarrierPhase good = {100.0, kLambda2};
  for (const CarrierPhase& bad : {CarrierPhase{1e-12, kLambda1}, CarrierPhase{500.0, 0.0}}) {
    EXPECT_FALSE(IonosphereSlip(At(300), bad, good, true, state, nullptr));
    EXPECT_FALSE(IonosphereSlip(At(300), good, bad, true, state, nullptr));
    EXPECT_EQ(before, state.GeometryFree);
    EXPECT_EQ(kReferenceTime, state.GeometryFreeEpoch.Seconds);
  }
}

TEST(WideLane, IsTheMelbourneWuebbenaCombination) {
  const double p1 = 2.1e7, p2 = 2.1e7 + 3.0, l1 = 1.1e8, l2 = 8.6e7;
  const double expected =
      l1 - l2 - (kLambda2 - kLambda1) / (kLambda1 + kLambda2) * (p1 / kLambda1 + p2 / kLambda2);
  EXPECT_EQ(expected, WideLane(p1, p2, l1, l2, kLambda1, kLambda2));
}

TEST(WideLane, IsFreeOfGeometryAndIonosphere) {
  for (double ionosphere : {0.0, 10.0}) {
    const double scaled = ionosphere * kLambda2 * kLambda2 / (kLambda1 * kLambda1);
    EXPECT_NEAR(17.0 - 5.0,
                WideLane(2e7 + ionosphere, 2e7 + scaled, (2e7 - ionosphere) / kLambda1 + 17.0,
                         (2e7 - scaled) / kLambda2 + 5.0, kLambda1, kLambda2),
                1e-6);
  }
}

TEST(WideLane, OfAMissingInputIsZero) {
  for (int missing = 0; missing < 6; ++missing) {
    double v[6] = {2e7, 2e7, 1e8, 8e7, kLambda1, kLambda2};
    v[missing] = missing % 2 == 0 ? 1e-16 : -1e-16;
    EXPECT_EQ(0.0, WideLane(v[0], v[1], v[2], v[3], v[4], v[5]));
  }
}

TEST(UpdateWideLane, KeepsTheRunningMeanAndVarianceOfTheArc) {
  IodDetect state;
  const std::vector<double> values = {3.0, 3.5, 2.0, 4.25, 3.75};
  double mean = 0.0, variance = 0.0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    UpdateWideLane(state, values[i]);
    if (i == 0) {
      mean = values[0];
      variance = 0.25;
    } else {
      const double n = static_cast<double>(i + 1);
      const double before = mean;
      mean = mean + (values[i] - mean) / n;
      variance = variance + ((values[i] - before) * (values[i] - before) - variance) / n;
    }
    EXPECT_EQ(mean, state.WideLaneMean);
    EXPECT_EQ(variance, state.WideLaneVariance);
    EXPECT_EQ(static_cast<int>(i) + 1, state.WideLaneCount);
  }
}

TEST(UpdateWideLane, IgnoresAZeroAndStartsANewArcAfterASlip) {
  IodDetect state;
  for (double value : {5.0, 6.0, 9e-17}) UpdateWideLane(state, value);
  EXPECT_EQ(2, state.WideLaneCount);
  state.SlipFlag = true;
  UpdateWideLane(state, 9.0);
  EXPECT_EQ(1, state.WideLaneCount);
  EXPECT_EQ(9.0, state.WideLaneMean);
  EXPECT_EQ(0.25, state.WideLaneVariance);
}

TEST(IonosphereStatistic, IsTheVarianceOfTheLongestArcTheOpenOneCountedIn) {
  IodDetect state;
  state.WideLaneCount = 5;
  state.WideLaneVariance = 0.5;
  state.LongestArcCount = 5;
  state.LongestArcVariance = 0.7;
  EXPECT_EQ(0.5, state.IonosphereStatistic());
  state.LongestArcCount = 6;
  EXPECT_EQ(0.7, state.IonosphereStatistic());
}

TEST(EpochMedian, IsTheUpperMiddle) {
  double median = -1.0;
  std::vector<double> none, one = {3.0}, two = {9.0, 4.0}, five = {5.0, 1.0, 4.0, 2.0, 3.0},
                            six = {6.0, 5.0, 1.0, 4.0, 2.0, 3.0};
  EXPECT_FALSE(EpochMedian(none, median));
  EXPECT_EQ(-1.0, median);
  EXPECT_TRUE(EpochMedian(one, median));
  EXPECT_EQ(3.0, median);
  EXPECT_TRUE(EpochMedian(two, median));
  EXPECT_EQ(9.0, median);
  EXPECT_TRUE(EpochMedian(five, median));
  EXPECT_EQ(3.0, median);
  EXPECT_TRUE(EpochMedian(six, median));
  EXPECT_EQ(4.0, median);
}

TEST(EpochMedians, AddTheStepsStrictlyBetweenTheEpochs) {
  EpochMedians medians;
  for (int i = 0; i <= 5; ++i) medians.Store(At(10.0 * i), std::pow(10.0, i));
  EXPECT_EQ(7.0 + 10.0 + 100.0, medians.AddBetween(7.0, At(0), At(30), 10.0));
  EXPECT_EQ(7.0, medians.AddBetween(7.0, At(0), At(10), 10.0));
  EXPECT_EQ(7.0 + 1000.0, medians.AddBetween(7.0, At(20), At(40), 10.0));
  EXPECT_EQ(7.0, medians.AddBetween(7.0, At(40), At(20), 10.0));
}

TEST(EpochMedians, LeaveOutEpochsThatLieOnNoStep) {
  EpochMedians medians;
  medians.Store(At(10.0), 1.0);
  medians.Store(At(15.0), 10.0);
  medians.Store(At(20.00000005), 100.0);
  medians.Store(At(30.000001), 1000.0);
  EXPECT_EQ(101.0, medians.AddBetween(0.0, At(0), At(40), 10.0));
  EXPECT_EQ(0.0, medians.AddBetween(0.0, At(0), At(40), 50.0));
  EXPECT_EQ(0.0, medians.AddBetween(0.0, At(0), At(40), 0.0));
  EXPECT_EQ(0.0, medians.AddBetween(0.0, At(0), At(40), std::numeric_limits<double>::quiet_NaN()));
}

TEST(EpochMedians, AreAddedInAscendingOrder) {
  EpochMedians medians;
  medians.Store(At(1), 1e16);
  medians.Store(At(2), 1.0);
  medians.Store(At(3), -1e16);
  EXPECT_EQ(((0.25 + 1e16) + 1.0) + -1e16, medians.AddBetween(0.25, At(0), At(4), 1.0));
}

TEST(EpochMedians, EndAtOnceHoweverSmallTheInterval) {
  EpochMedians medians;
  medians.Store(At(100), 2.0);
  EXPECT_EQ(2.0, medians.AddBetween(0.0, At(0), At(500), 1e-9));
  EXPECT_EQ(2.0, medians.AddBetween(0.0, At(0), At(500), 1e-300) + (medians.Size() == 1 ? 0.0 : 1.0));
}

TEST(EpochMedians, KeepSixHundredSecondsAndNoMore) {
  EpochMedians medians;
  for (int i = 0; i < 100000; ++i) {
    medians.Store(At(i), 1.0);
    ASSERT_LE(medians.Size(), 601u);
  }
  EXPECT_EQ(598.0, medians.AddBetween(0.0, At(99400), At(99999), 1.0));
}

TEST(EpochMedians, StayAscendingWhenTimeStepsBack) {
  EpochMedians medians;
  medians.Store(At(10), 1.0);
  medians.Store(At(20), 10.0);
  medians.Store(At(10), 100.0);
  EXPECT_EQ(1u, medians.Size());
  EXPECT_EQ(100.0, medians.AddBetween(0.0, At(0), At(30), 10.0));
}

}  // namespace
}  // namespace orsolva
