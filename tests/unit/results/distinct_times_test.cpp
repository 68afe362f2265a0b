#include "results/distinct_times.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using orsolva::testing::Times;

std::uint64_t Distinct(std::initializer_list<const TimeList*> lists) {
  return CountDistinctTimes(lists.begin(), static_cast<int>(lists.size()));
}

TEST(DistinctTimes, CountsAnEpochOfSeveralListsOnce) {
  const TimeList a = Times({10, 20, 30});
  const TimeList b = Times({20, 25, 30, 40});
  EXPECT_EQ(Distinct({&a, &b}), 5u);
  EXPECT_EQ(Distinct({&a, nullptr, &a}), 3u);
  EXPECT_EQ(Distinct({nullptr}), 0u);
}

TEST(DistinctTimes, TakesTimesWithinTheToleranceAsOne) {
  TimeList a, b;
  a.Append({10, 0.5});
  b.Append({10, 0.5 + 0.9e-6});
  EXPECT_EQ(Distinct({&a, &b}), 1u);
  b.Append({10, 0.5 + 2e-6});
  EXPECT_EQ(Distinct({&a, &b}), 2u);
}

TEST(DistinctTimes, DoesNotDependOnTheOrderOfAList) {
  const TimeList a = Times({30, 10, 20, 10});
  const TimeList b = Times({20, 5});
  EXPECT_EQ(Distinct({&a, &b}), 4u);
  EXPECT_EQ(Distinct({&b, &a}), 4u);
}

TEST(DistinctTimes, EndsWithTimesThatAreNoNumbers) {
  TimeList a;
  for (int i = 0; i < 100; ++i)
    a.Append({7 * i % 11, i % 3 == 0 ? std::numeric_limits<double>::quiet_NaN() : 0.25});
  const std::uint64_t distinct = Distinct({&a, &a});
  EXPECT_GE(distinct, 11u);
  EXPECT_LE(distinct, 200u);
}

}  // namespace
}  // namespace orsolva
