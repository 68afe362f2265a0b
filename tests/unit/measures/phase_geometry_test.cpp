#include "measures/ionosphere.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "tests/unit/measures/synthetic_run.h"

namespace orsolva {
namespace {

using gnssqctoolkit::AbsoluteTime;
using orsolva_test::GpsRecord;
using orsolva_test::kReferenceTime;
using orsolva_test::kStation;

constexpr double kLambda1 = 0.19029367279836487;

AbsoluteTime At(double seconds) {
  const double whole = std::floor(seconds);
  return {kReferenceTime + static_cast<std::int64_t>(whole), seconds - whole};
}

TEST(SlipThreshold, GrowsWithTheGapUpToAMinute) {
  const struct {
    double Gap, Threshold;
  } rows[] = {{-5.0, 0.05}, {0.0, 0.05},  {0.5, 0.05}, {1.0, 0.05}, {1.1, 0.1},   {15.0, 0.1},
              {15.1, 0.15}, {30.0, 0.15}, {30.1, 0.3}, {60.0, 0.3}, {60.1, 0.05}, {599.0, 0.05}};
  for (const auto& row : rows) EXPECT_EQ(row.Threshold, SlipThreshold(row.Gap)) << row.Gap;
}

TEST(SlipThreshold, TakesAGapWithinSinglePrecisionToleranceAsEqual) {
  EXPECT_EQ(static_cast<double>(1e-7f), kTimeTolerance);
  const struct {
    double Bound, At, Beyond;
  } rows[] = {{1.0, 0.05, 0.1}, {15.0, 0.1, 0.15}, {30.0, 0.15, 0.3}, {60.0, 0.3, 0.05}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.At, SlipThreshold(row.Bound + 9e-8));
    EXPECT_EQ(row.At, SlipThreshold(row.Bound - 9e-8));
    EXPECT_EQ(row.Beyond, SlipThreshold(row.Bound + 1.1e-7));
  }
}

// A satellite with one record and its phase-minus-geometry state.
struct GeometrySeries {
  gnssqctoolkit::Ephemeris Records;
  IodDetect State;
  SatelliteGeometry Geometry;
  bool NewRecord = false;

  GeometrySeries() {
    Records.Gps().Add(GpsRecord(3));
    Geometry.Records = &Records;
    std::copy(kStation, kStation + 3, Geometry.Station);
  }
  void Locate(double seconds, double pseudorange = 2.2e7) {
    Geometry.HasPosition =
        Records.Select({1, 3}, At(seconds), gnssqctoolkit::kDefaultMaxAges, Geometry.Choice) &&
        Records.SatellitePosition(Geometry.Choice, At(seconds), pseudorange, Geometry.Satellite);
  }
  double Value(double phase) const {
    double squares = 0.0;
    for (int i = 0; i < 3; ++i) squares += std::pow(Geometry.Satellite.Position[i] - kStation[i], 2);
    return phase * kLambda1 - std::sqrt(squares) + 299792458.0 * Geometry.Satellite.Clock;
  }
  bool Epoch(double seconds, double phase, double pseudorange = 2.2e7) {
    Locate(seconds);
    NewRecord = false;
    return PhaseGeometryDifference(At(seconds), {1, phase, pseudorange}, kLambda1, Geometry, State,
                                   &NewRecord);
  }
  void Advance() { State.PreviousEpoch = State.CurrentEpoch; }
};

TEST(PhaseGeometryDifference, IsTheChangeOfPhaseLessPlainDistancePlusClock) {
  GeometrySeries series;
  EXPECT_FALSE(series.Epoch(0, 1.2e8));
  EXPECT_EQ(0.0, series.State.Difference);
  const double first = series.Value(1.2e8);
  EXPECT_NEAR(first, series.State.PhaseMinusGeometry, 1e-7);
  series.Advance();
  EXPECT_TRUE(series.Epoch(30, 1.2e8 + 5.0));
  EXPECT_NEAR(series.Value(1.2e8 + 5.0) - first, series.State.Difference, 1e-7);
  EXPECT_EQ(2.2e7, series.State.LastPseudorange);
  EXPECT_EQ(1.2e8 + 5.0, series.State.LastPhase);
  EXPECT_EQ(series.Geometry.Choice.Reference.Seconds, series.State.EphemerisEpoch.Seconds);
  EXPECT_FALSE(series.NewRecord);
}

TEST(PhaseGeometryDifference, IsNotFormedOverSixHundredSecondsAndMore) {
  for (const auto& [gap, formed] : {std::pair{599.0, true}, {600.0, false}, {-599.0, true}}) {
    GeometrySeries series;
    series.Epoch(1000, 1.2e8);
    series.Advance();
    EXPECT_EQ(formed, series.Epoch(1000 + gap, 1.2e8)) << gap;
    EXPECT_EQ(formed, series.State.Difference != 0.0);
    EXPECT_EQ(At(1000 + gap).Seconds, series.State.CurrentEpoch.Seconds);
  }
}

TEST(PhaseGeometryDifference, NeedsAValueBeforeItEvenInTheFirstMinutesOf1970) {
  // There the zero time, which means none, is close.
  SatelliteGeometry geometry;
  geometry.HasPosition = true;
  IodDetect state;
  EXPECT_FALSE(PhaseGeometryDifference({100, 0.0}, {1, 1.2e8, 2.2e7}, kLambda1, geometry, state, nullptr));
  EXPECT_EQ(0.0, state.Difference);
}

TEST(PhaseGeometryDifference, WithoutPhaseWavelengthOrPositionSetsTheEpochBack) {
  GeometrySeries series;
  series.Epoch(0, 1.2e8);
  series.Advance();
  EXPECT_FALSE(series.Epoch(30, 1e-12));
  EXPECT_EQ(At(0).Seconds, series.State.CurrentEpoch.Seconds);
  series.Locate(30);
  EXPECT_FALSE(
      PhaseGeometryDifference(At(30), {1, 1.2e8, 2.2e7}, 0.0, series.Geometry, series.State, nullptr));
  EXPECT_EQ(At(0).Seconds, series.State.CurrentEpoch.Seconds);
  series.Geometry.HasPosition = false;
  EXPECT_FALSE(
      PhaseGeometryDifference(At(30), {1, 1.2e8, 2.2e7}, kLambda1, series.Geometry, series.State, nullptr));
  EXPECT_EQ(At(0).Seconds, series.State.CurrentEpoch.Seconds);
  EXPECT_EQ(1.2e8, series.State.LastPhase);
}

TEST(PhaseGeometryDifference, FormsThePreviousValueAgainWithoutClockWhenTheRecordChanges) {
  GeometrySeries series;
  series.Epoch(3500, 1.2e8);
  series.Advance();
  series.Records.Gps().Add(GpsRecord(3, 7200.0));
  gnssqctoolkit::EphemerisChoice next;
  ASSERT_TRUE(series.Records.Select({1, 3}, At(3700), gnssqctoolkit::kDefaultMaxAges, next));
  gnssqctoolkit::SatelliteState before;
  ASSERT_TRUE(series.Records.SatellitePosition(next, At(3500), 2.2e7, before));
  double squares = 0.0;
  for (int i = 0; i < 3; ++i) squares += std::pow(before.Position[i] - kStation[i], 2);
  const double again = 1.2e8 * kLambda1 - std::sqrt(squares);

  EXPECT_TRUE(series.Epoch(3700, 1.2e8));
  EXPECT_TRUE(series.NewRecord);
  EXPECT_NEAR(series.Value(1.2e8) - again, series.State.Difference, 1e-6);
  EXPECT_EQ(kReferenceTime + 7200, series.State.EphemerisEpoch.Seconds);
}

TEST(PhaseGeometryDifference, ForgetsThePreviousValueWhenItCannotBeFormedAgain) {
  GeometrySeries no_pseudorange;
  no_pseudorange.Epoch(3500, 1.2e8, 0.0);
  no_pseudorange.Advance();
  no_pseudorange.Records.Gps().Add(GpsRecord(3, 7200.0));
  EXPECT_FALSE(no_pseudorange.Epoch(3700, 1.2e8));
  EXPECT_FALSE(IsSet(no_pseudorange.State.PreviousEpoch));
  EXPECT_EQ(0.0, no_pseudorange.State.Difference);
  EXPECT_EQ(At(3700).Seconds, no_pseudorange.State.CurrentEpoch.Seconds);

  GeometrySeries no_record;
  no_record.Epoch(0, 1.2e8);
  no_record.Advance();
  no_record.Records.Release();
  EXPECT_FALSE(no_record.Epoch(30, 1.2e8));
  EXPECT_FALSE(IsSet(no_record.State.PreviousEpoch));
  EXPECT_FALSE(IsSet(no_record.State.CurrentEpoch));
  EXPECT_FALSE(IsSet(no_record.State.EphemerisEpoch));
  EXPECT_EQ(0.0, no_record.State.LastPhase);
  EXPECT_EQ(0.0, no_record.State.LastPseudorange);
}

// A pair at the counting step: values at 0 and at `gap`, the change between them given.
struct Counting {
  IodDetect State;
  EpochMedians Medians;
  SlipStep Step;
  Counting(double gap, double difference) {
    State.PreviousEpoch = At(0);
    State.CurrentEpoch = At(gap);
    State.Difference = difference;
  }
  std::uint32_t Run(double median = 0.0, bool counting = true, double interval = 30.0) {
    CountSlip(State, counting, Medians, median, interval, false, &Step);
    return State.SlipCount;
  }
};

TEST(CountSlip, ComparesTheChangeLessTheMedianWithTheThreshold) {
  EXPECT_EQ(0u, Counting(30, 1.14).Run(1.0));
  EXPECT_EQ(1u, Counting(30, 1.16).Run(1.0));
  EXPECT_EQ(1u, Counting(30, 0.84).Run(1.0));
  Counting counting(30, 5.0);
  counting.Run();
  EXPECT_TRUE(counting.State.SlipFlag);
  ASSERT_EQ(1, counting.State.SlipTimes.Size());
  EXPECT_EQ(kReferenceTime + 30, counting.State.SlipTimes.Get(0).time);
  EXPECT_EQ(GeometrySlipReason::kThreshold, counting.Step.Slip);
}

TEST(CountSlip, CountsAGapBeyondAMinuteByItself) {
  EXPECT_EQ(0u, Counting(60, 0.0).Run());
  EXPECT_EQ(1u, Counting(61, 0.0).Run());
  Counting counting(61, 0.0);
  counting.Run();
  EXPECT_EQ(GeometrySlipReason::kDataGap, counting.Step.Slip);
}

TEST(CountSlip, AddsTheMediansInBetweenToTheChange) {
  Counting counting(60, 1.0);
  counting.Medians.Store(At(30), 0.5);
  EXPECT_EQ(1u, counting.Run(1.0));
  EXPECT_DOUBLE_EQ(0.5, counting.Step.Excess);
  Counting balanced(60, 0.5);
  balanced.Medians.Store(At(30), 0.5);
  EXPECT_EQ(0u, balanced.Run(1.0));
}

TEST(CountSlip, TestsOnlyGapsWithinItsBoundsAndCountingSatellites) {
  EXPECT_EQ(0u, Counting(0, 100.0).Run());
  EXPECT_EQ(0u, Counting(9e-8, 100.0).Run());
  EXPECT_EQ(1u, Counting(599.0, 100.0).Run());
  EXPECT_EQ(0u, Counting(600.0, 100.0).Run());
  EXPECT_EQ(0u, Counting(30, 100.0).Run(0.0, false));
}

TEST(CountSlip, ClearsTheFlagOnlyInTestedEpochs) {
  Counting tested(30, 0.0);
  tested.State.SlipFlag = true;
  tested.Run();
  EXPECT_FALSE(tested.State.SlipFlag);
  Counting below(30, 0.0);
  below.State.SlipFlag = true;
  below.Run(0.0, false);
  EXPECT_TRUE(below.State.SlipFlag);
  Counting still(0, 0.0);
  still.State.SlipFlag = true;
  still.Run();
  EXPECT_TRUE(still.State.SlipFlag);
}

TEST(CountSlip, ClosesTheArcWhichIsKeptWhenItIsAtLeastAsLong) {
  Counting longer(30, 5.0);
  longer.State.WideLaneCount = 7;
  longer.State.WideLaneVariance = 0.3;
  longer.State.LongestArcCount = 7;
  longer.State.LongestArcVariance = 0.9;
  longer.Run();
  EXPECT_EQ(7, longer.State.LongestArcCount);
  EXPECT_EQ(0.3, longer.State.LongestArcVariance);
  Counting shorter(30, 5.0);
  shorter.State.WideLaneCount = 6;
  shorter.State.WideLaneVariance = 0.3;
  shorter.State.LongestArcCount = 7;
  shorter.State.LongestArcVariance = 0.9;
  shorter.Run();
  EXPECT_EQ(7, shorter.State.LongestArcCount);
  EXPECT_EQ(0.9, shorter.State.LongestArcVariance);
}

TEST(CountSlip, ClosesTheArcAtAGapOfSixHundredSecondsWithoutASlip) {
  Counting counting(600, 0.0);
  counting.State.WideLaneCount = 4;
  counting.State.WideLaneVariance = 0.3;
  EXPECT_EQ(0u, counting.Run());
  EXPECT_EQ(4, counting.State.LongestArcCount);
  EXPECT_EQ(0.3, counting.State.LongestArcVariance);
  UpdateWideLane(counting.State, 5.0);
  EXPECT_EQ(1, counting.State.WideLaneCount);
}

TEST(CountSlip, TakesAValueWithoutAPredecessorForNoGap) {
  Counting counting(30, 0.0);
  counting.State.PreviousEpoch = AbsoluteTime();
  counting.State.WideLaneCount = 4;
  EXPECT_EQ(0u, counting.Run());
  EXPECT_EQ(0, counting.State.LongestArcCount);
  EXPECT_EQ(4, counting.State.WideLaneCount);
}

TEST(CountSlip, GivesTheSameStateWithAndWithoutAnObserver) {
  for (double gap : {30.0, 61.0, 600.0}) {
    Counting watched(gap, 5.0), unwatched(gap, 5.0);
    watched.Run();
    CountSlip(unwatched.State, true, unwatched.Medians, 0.0, 30.0, false, nullptr);
    EXPECT_EQ(watched.State.SlipCount, unwatched.State.SlipCount);
    EXPECT_EQ(watched.State.SlipFlag, unwatched.State.SlipFlag);
  }
}

}  // namespace
}  // namespace orsolva
