#include "host/analysis/figures/interval.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace orsolva_host::analysis {
namespace {

double Of(double hint_s, const std::vector<double>& steps_s) {
  Interval interval(hint_s);
  for (const double step_s : steps_s) interval.Add(static_cast<std::int64_t>(std::llround(step_s * 1e9)));
  return static_cast<double>(interval.Nanoseconds()) / 1e9;
}

TEST(Interval, IsTheMostFrequentStepNotTheFirst) {
  std::vector<double> steps(20, 1.0);
  steps.insert(steps.end(), 21, 30.0);
  EXPECT_EQ(Of(0, steps), 30);
}

TEST(Interval, OfTwoEquallyFrequentStepsIsTheShorter) { EXPECT_EQ(Of(0, {60, 30, 60, 30}), 30); }

TEST(Interval, RoundsWanderingTimeTagsToAMillisecond) {
  EXPECT_EQ(Of(0, {29.9995, 30.0004, 30.0003, 29.9996}), 30);
  EXPECT_EQ(Of(0, {0.05, 0.05, 0.1}), 0.05);
  EXPECT_EQ(Of(0, {0.005, 0.005}), 0.005);
}

TEST(Interval, IsNotTheHeadersWhereTheDataSayOtherwise) { EXPECT_EQ(Of(1, {30, 30, 30}), 30); }

TEST(Interval, IsTheHintInAStreamOfHolesWithoutAFrequentStep) {
  const std::vector<double> holes = {60, 150, 90, 210, 60, 270, 120, 330, 390};
  EXPECT_EQ(Of(30, holes), 30);
  EXPECT_EQ(Of(0, holes), 60);
  EXPECT_EQ(Of(47, holes), 60) << "no step is a multiple of this hint";
}

TEST(Interval, IsTheHintBeforeTheFirstStep) {
  EXPECT_EQ(Of(15, {}), 15);
  EXPECT_EQ(Of(0, {}), 0);
}

TEST(Interval, KeepsTheFrequentStepAmongMoreKindsThanAreRemembered) {
  Interval interval(0);
  for (int i = 0; i < 1000; ++i) {
    interval.Add(30'000'000'000);
    interval.Add((100 + 10 * (i % 97)) * 1'000'000'000LL);
  }
  EXPECT_EQ(interval.Nanoseconds(), 30'000'000'000);
}

}  // namespace
}  // namespace orsolva_host::analysis
