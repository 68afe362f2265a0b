#include "navigation/ephemerides/reference_times.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace gnssqctoolkit {
namespace {

constexpr std::int64_t kStart = 1599134400;

/// The rule as it is worded: all times walked in the order of arrival, the last of equally near ones.
int LiteralNearest(const std::vector<AbsoluteTime>& times, const AbsoluteTime& t) {
  int nearest = -1;
  double best = 1e9;
  for (std::size_t i = 0; i < times.size(); ++i) {
    const double age = std::fabs(TimeDifference(t, times[i]));
    if (age <= best) best = age, nearest = static_cast<int>(i);
  }
  return nearest;
}

/// All intervals walked, the smallest way kept; false without one.
bool LiteralCovered(const std::vector<AbsoluteTime>& times, const AbsoluteTime& t, int direction, double age,
                    double widen, double& offset) {
  bool found = false;
  for (const AbsoluteTime& time : times) {
    const double to = TimeDifference(time, t);
    if (!std::isfinite(to)) continue;
    const double reach = age + 1e-6 + std::fabs(to) * 1e-15;
    const double near_edge = direction > 0 ? to - reach : -(to + reach + widen);
    const double far_edge = direction > 0 ? to + reach + widen : -(to - reach);
    if (!(far_edge >= 0.0)) continue;
    const double way = near_edge > 0.0 ? near_edge : 0.0;
    if (!found || way < offset) offset = way;
    found = true;
  }
  return found;
}

class Drawn : public testing::TestWithParam<int> {
 protected:
  Drawn() {
    const int count = 1 + static_cast<int>(random_() % 40);
    for (int i = 0; i < count; ++i) Times.push_back(Draw());
    for (const AbsoluteTime& time : Times) Kept.Add(time);
    for (int i = 0; i < GetParam() % 3 && Kept.Count() > 1; ++i) {
      Kept.DropFirst();
      Times.erase(Times.begin());
    }
  }

  /// Times in and out of order, equal ones, ones a rounding apart; in some runs absurd ones.
  AbsoluteTime Draw() {
    const std::int64_t second = kStart + 600 * static_cast<std::int64_t>(random_() % 60);
    switch (random_() % 8) {
      case 0:
        return {second, 1.0};
      case 1:
        return {second, 1e-9};
      case 2:
        return {second + 1, 0.0};
      case 3:
        return GetParam() % 4 == 0 ? AbsoluteTime{second * 1000000000, 0.0} : AbsoluteTime{second, 0.5};
      case 4:
        return GetParam() % 5 == 0 ? AbsoluteTime{second, 1e7} : AbsoluteTime{second, 0.25};
      default:
        return {second, 0.0};
    }
  }
  AbsoluteTime DrawQuestion() {
    if (random_() % 3 == 0) return Draw();
    return {kStart - 20000 + static_cast<std::int64_t>(random_() % 80000), random_() / 4294967296.0};
  }

  std::vector<AbsoluteTime> Times;
  ReferenceTimes Kept;

 private:
  std::mt19937 random_{static_cast<std::uint32_t>(GetParam())};
};

TEST_P(Drawn, TimesAreNearestAsInAWalkOverAll) {
  for (int k = 0; k < 200; ++k) {
    const AbsoluteTime t = DrawQuestion();
    double lead = 0.0;
    ASSERT_EQ(Kept.Nearest(t, lead), LiteralNearest(Times, t)) << t.Seconds << " " << t.Fraction;
  }
}

TEST_P(Drawn, TimesStayNearestForHalfTheirLead) {
  for (int k = 0; k < 100; ++k) {
    const AbsoluteTime t = DrawQuestion();
    double lead = 0.0;
    const int nearest = Kept.Nearest(t, lead);
    if (!(lead > 0.0) || nearest < 0) continue;
    for (const double move : {-0.499999, -0.25, 0.25, 0.499999}) {
      EXPECT_EQ(LiteralNearest(Times, AbsoluteTimeAdd(t, move * std::fmin(lead, 1e8))), nearest);
    }
  }
}

TEST_P(Drawn, TimesStayNearestBetweenTheMiddlesToTheirNeighbours) {
  int sure = 0;
  for (int k = 0; k < 200; ++k) {
    const AbsoluteTime t = DrawQuestion();
    double lead = 0.0, before = 0.0, after = 0.0;
    const int nearest = Kept.Nearest(t, lead);
    if (nearest < 0 || !Kept.NearestAround(t, nearest, before, after)) continue;
    ++sure;
    for (const double share : {1.0, 0.6, 0.2}) {
      if (before > 0.0) {
        EXPECT_EQ(LiteralNearest(Times, AbsoluteTimeAdd(t, -share * std::fmin(before, 1e8))), nearest);
      }
      if (after > 0.0) {
        EXPECT_EQ(LiteralNearest(Times, AbsoluteTimeAdd(t, share * std::fmin(after, 1e8))), nearest);
      }
    }
  }
  if (GetParam() == 1) {
    EXPECT_GT(sure, 0);
  }
}

TEST_P(Drawn, TimesCoverAsInAWalkOverAllBitForBit) {
  for (int k = 0; k < 200; ++k) {
    const AbsoluteTime t = DrawQuestion();
    for (const int direction : {1, -1}) {
      for (const double age : {1.0, 300.0, 7200.0}) {
        for (const double widen : {0.0, 14.0}) {
          double offset = -1.0, expected = -1.0;
          ASSERT_EQ(Kept.NearestCovered(t, direction, {age, widen, false}, offset),
                    LiteralCovered(Times, t, direction, age, widen, expected));
          ASSERT_EQ(offset, expected);
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(ReferenceTimes, Drawn, testing::Range(1, 60));

TEST(ReferenceTimes, HaveNothingNearATimeThatIsNotANumber) {
  ReferenceTimes times;
  times.Add({kStart, 0.0});
  double lead = 1.0, before = 0.0, after = 0.0;
  const AbsoluteTime none{kStart, std::numeric_limits<double>::quiet_NaN()};
  EXPECT_EQ(times.Nearest(none, lead), -1);
  EXPECT_EQ(lead, 0.0);
  EXPECT_FALSE(times.NearestAround(none, 0, before, after));
}

TEST(ReferenceTimes, AreNotSureBesideAnotherWithinASecond) {
  ReferenceTimes times;
  times.Add({kStart, 0.0});
  double before = 0.0, after = 0.0;
  EXPECT_TRUE(times.NearestAround({kStart, 0.0}, 0, before, after));
  times.Add({kStart, 0.5});
  EXPECT_FALSE(times.NearestAround({kStart, 0.0}, 0, before, after));
}

TEST(ReferenceTimes, AreInOrderAgainWhenOneWithoutANumberIsForgotten) {
  const double nothing = std::numeric_limits<double>::quiet_NaN();
  std::vector<AbsoluteTime> times;
  ReferenceTimes kept;
  for (const double fraction : {0.7, 0.9, nothing, 0.2, 0.95, 0.97, 0.1}) {
    times.push_back({kStart, fraction});
    kept.Add(times.back());
  }
  for (int dropped = 0; dropped < 6; ++dropped) {
    for (double fraction = 0.0; fraction <= 1.0; fraction += 0.01) {
      double lead = 0.0;
      const AbsoluteTime t{kStart, fraction};
      ASSERT_EQ(kept.Nearest(t, lead), LiteralNearest(times, t)) << fraction << ", dropped " << dropped;
    }
    kept.DropFirst();
    times.erase(times.begin());
  }
}

}  // namespace
}  // namespace gnssqctoolkit
