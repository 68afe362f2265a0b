#include "qc/base/epoch_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace orsolva {
namespace {

constexpr std::int64_t kMinInt64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMaxInt64 = std::numeric_limits<std::int64_t>::max();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::vector<ObsEpoch_QC_gbt> EpochsAt(const std::vector<Time_gbt>& times) {
  std::vector<ObsEpoch_QC_gbt> epochs(times.size());
  for (std::size_t i = 0; i < times.size(); ++i) epochs[i].time = times[i];
  return epochs;
}

/// Epochs that start at 1000 s and follow the steps; -1 when no interval is found.
double IntervalOfSteps(const std::vector<double>& steps) {
  std::vector<Time_gbt> times = {{1000, 0.0}};
  for (double step : steps) {
    const double whole = std::floor(step);
    times.push_back(
        {times.back().time + static_cast<std::int64_t>(whole), times.back().sec + (step - whole)});
  }
  const std::vector<ObsEpoch_QC_gbt> epochs = EpochsAt(times);
  double interval = -1.0;
  DetectInterval(epochs.data(), static_cast<std::int32_t>(epochs.size()), interval);
  return interval;
}

TEST(TimeQc, ConvertsFromAndToTheRecord) {
  const TimeQc t(Time_gbt{5, 0.25});
  const Time_gbt record = t;
  EXPECT_EQ(record.time, 5);
  EXPECT_EQ(record.sec, 0.25);
  EXPECT_EQ(TimeQc().time, 0);
}

TEST(TimeQc, TimesWithinAMicrosecondAreEqualYetTheFirstIsGreater) {
  const TimeQc a(Time_gbt{10, 0.0000005});
  const TimeQc b(Time_gbt{10, 0.0000001});
  EXPECT_TRUE(TimeEqual(a, b));
  EXPECT_TRUE(TimeGreater(a, b));
  EXPECT_FALSE(TimeGreater(b, a));
  EXPECT_TRUE(TimeGreaterOrEqual(a, b));
  EXPECT_TRUE(TimeGreaterOrEqual(b, a));
  EXPECT_FALSE(TimeLess(b, a));
}

TEST(TimeQc, EqualityEndsAtAMicrosecondAndAtTheWholeSecond) {
  EXPECT_FALSE(TimeEqual({10, 1e-6}, {10, 0.0}));
  EXPECT_FALSE(TimeEqual({10, 0.9999999}, {11, 0.0}));
  EXPECT_TRUE(TimeLess({10, 0.9999999}, {11, 0.0}));
  EXPECT_TRUE(TimeLess({10, 0.1}, {10, 0.2}));
  EXPECT_TRUE(TimeGreater({11, 0.0}, {10, 0.9}));
}

TEST(TimeQc, DifferenceIsWholeSecondsPlusFractions) {
  EXPECT_EQ(TimeDifference(Time_gbt{12, 0.25}, Time_gbt{10, 0.75}), 1.5);
  EXPECT_EQ(TimeDifference(Time_gbt{1000000010, 0.3}, Time_gbt{10, 0.1}), 1000000000.0 + (0.3 - 0.1));
  EXPECT_EQ(TimeDifference(Time_gbt{kMaxInt64, 0.0}, Time_gbt{kMinInt64, 0.0}), 0x1p64);
  EXPECT_EQ(TimeDifference(Time_gbt{kMinInt64, 0.0}, Time_gbt{kMaxInt64, 0.0}), -0x1p64);
}

TEST(TimeQc, ConvertsToAbsoluteTimeAndBack) {
  const gnssqctoolkit::AbsoluteTime absolute = ToAbsolute({7, 0.5});
  EXPECT_EQ(absolute.Seconds, 7);
  EXPECT_EQ(absolute.Fraction, 0.5);
  EXPECT_TRUE(TimeEqual(FromAbsolute(absolute), {7, 0.5}));
}

TEST(TimeList, CapacityGrowsBy100) {
  TimeList list;
  EXPECT_EQ(list.Capacity(), 0);
  for (int i = 0; i < 1050; ++i) {
    ASSERT_TRUE(list.Append({i, 0.5}));
    ASSERT_EQ(list.Capacity(), (i / 100 + 1) * 100);
  }
  EXPECT_EQ(list.Size(), 1050);
  for (int i = 0; i < 1050; ++i) ASSERT_EQ(list.Get(i).time, i);
}

TEST(TimeList, AppendsCostLinearTime) {
  TimeList list;
  for (int i = 0; i < 1000000; ++i) list.Append({i, 0.0});
  EXPECT_EQ(list.Get(999999).time, 999999);
}

TEST(TimeList, AccessOutsideIsTheZeroTime) {
  TimeList list;
  list.Append({5, 0.5});
  for (int i : {-1, 1, 99, 100}) {
    EXPECT_EQ(list.Get(i).time, 0);
    EXPECT_EQ(list.Get(i).sec, 0.0);
  }
  EXPECT_EQ(list.Get(0).sec, 0.5);
}

TEST(TimeList, ClearReleasesTheArray) {
  TimeList list;
  list.Append({5, 0.5});
  list.Clear();
  EXPECT_EQ(list.Size(), 0);
  EXPECT_EQ(list.Capacity(), 0);
  EXPECT_EQ(list.begin(), nullptr);
}

TEST(TimeList, AssignmentCopiesAllTimesInOrder) {
  TimeList source;
  for (int i = 0; i < 101; ++i) source.Append({i, 0.0});
  TimeList target;
  for (int i = 0; i < 301; ++i) target.Append({-i, 0.0});
  target = source;
  EXPECT_EQ(target.Size(), 101);
  EXPECT_EQ(target.Capacity(), 200);
  EXPECT_EQ(target.Get(100).time, 100);
  target = *&target;
  EXPECT_EQ(target.Size(), 101);
  TimeList copy(source);
  copy.Append({7, 0.0});
  EXPECT_EQ(source.Size(), 101);
}

TEST(TimeList, AppendTakesATimeOfItsOwn) {
  TimeList list;
  for (int i = 0; i < 100; ++i) list.Append({i, 0.0});
  EXPECT_TRUE(list.Append(*list.begin()));
  EXPECT_EQ(list.Get(100).time, 0);
}

TEST(DetectInterval, FailsForLessThanTwoEpochs) {
  const std::vector<ObsEpoch_QC_gbt> epochs = EpochsAt({{1, 0.0}});
  double interval = 5.0;
  EXPECT_FALSE(DetectInterval(epochs.data(), 1, interval));
  EXPECT_FALSE(DetectInterval(epochs.data(), 0, interval));
  EXPECT_FALSE(DetectInterval(epochs.data(), -7, interval));
  EXPECT_FALSE(DetectInterval(nullptr, 100, interval));
  EXPECT_EQ(interval, 5.0);
}

TEST(DetectInterval, MostFrequentStepWinsAndTheSmallerOnATie) {
  EXPECT_EQ(IntervalOfSteps({1, 1, 2, 2}), 1.0);
  EXPECT_EQ(IntervalOfSteps({2, 2, 1, 1}), 1.0);
  EXPECT_EQ(IntervalOfSteps({1, 2, 2}), 2.0);
  EXPECT_EQ(IntervalOfSteps({30, 15, 30}), 30.0);
}

TEST(DetectInterval, LooksAtTheFirst600EpochsOnly) {
  std::vector<double> steps(1000, 30.0);
  for (int i = 0; i < 300; ++i) steps[i] = 1.0;
  EXPECT_EQ(IntervalOfSteps(steps), 1.0);  // 300 steps of 1 s against 299 of 30 s among the first 600 epochs
  steps[299] = 30.0;
  EXPECT_EQ(IntervalOfSteps(steps), 30.0);
}

TEST(DetectInterval, ChangeAfter700EpochsDoesNotCount) {
  std::vector<double> steps(2000, 30.0);
  for (int i = 0; i < 700; ++i) steps[i] = 1.0;
  EXPECT_EQ(IntervalOfSteps(steps), 1.0);
}

TEST(DetectInterval, StepsAreNotRounded) {
  EXPECT_EQ(IntervalOfSteps({1.001953125, 1.0, 1.0009765625, 1.001953125}), 1.001953125);
  EXPECT_EQ(IntervalOfSteps({0.25, 0.25}), 0.25);
}

TEST(DetectInterval, DirectionDoesNotMatter) {
  const std::vector<ObsEpoch_QC_gbt> epochs = EpochsAt({{1000, 0.0}, {995, 0.0}, {990, 0.0}, {991, 0.0}});
  double interval = 0.0;
  EXPECT_TRUE(DetectInterval(epochs.data(), 4, interval));
  EXPECT_EQ(interval, 5.0);
}

TEST(DetectInterval, RepeatedEpochsDoNotCount) {
  EXPECT_EQ(IntervalOfSteps({0, 0, 0, 3}), 3.0);
  EXPECT_EQ(IntervalOfSteps({0, 0, 5e-7}), -1.0);
}

TEST(DetectInterval, AStepOfExactlyAMicrosecondIsCountedButNoInterval) {
  EXPECT_EQ(IntervalOfSteps({1e-6}), -1.0);
  EXPECT_EQ(IntervalOfSteps({2e-6}), 2e-6);
}

TEST(DetectInterval, TimesThatAreNoNumbersDoNotCount) {
  const std::vector<ObsEpoch_QC_gbt> epochs = EpochsAt(
      {{1, kNan}, {2, 0.0}, {3, kInfinity}, {4, 0.0}, {9, 0.0}, {kMaxInt64, kNan}, {kMinInt64, 0.0}});
  double interval = 0.0;
  EXPECT_TRUE(DetectInterval(epochs.data(), 7, interval));
  EXPECT_EQ(interval, 5.0);
  EXPECT_FALSE(DetectInterval(epochs.data(), 4, interval));
}

TEST(DetectInterval, ExtremeTimesDoNotOverflow) {
  const std::vector<ObsEpoch_QC_gbt> epochs = EpochsAt({{kMinInt64, 0.0}, {kMaxInt64, 0.0}});
  double interval = 0.0;
  EXPECT_TRUE(DetectInterval(epochs.data(), 2, interval));
  EXPECT_EQ(interval, 0x1p64);
}

}  // namespace
}  // namespace orsolva
