#include "toolkit/time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "tests/unit/toolkit/time_checks.h"
#include "toolkit/leap_seconds.h"

namespace gnssqctoolkit {
namespace {

/// Fraction and seconds stepped into 0 to 1 one second at a time.
AbsoluteTime Stepped(AbsoluteTime t, double dt) {
  t.Fraction -= dt;
  while (t.Fraction < 0.0) {
    t.Fraction += 1.0;
    t.Seconds -= 1;
  }
  while (t.Fraction > 1.0) {
    t.Fraction -= 1.0;
    t.Seconds += 1;
  }
  return t;
}

AbsoluteTime RandomTime(std::mt19937_64& random) {
  const std::int64_t scales[] = {100000, 200000000, 4200000000, 9000000000, kMaxInt64};
  const std::int64_t scale = scales[random() % 5];
  std::int64_t seconds = std::uniform_int_distribution<std::int64_t>(0, scale)(random);
  if (random() % 3 == 0) seconds = -seconds;
  double fraction = std::uniform_real_distribution<double>(0.0, 1.0)(random);
  switch (random() % 8) {
    case 0:
      fraction = 0.0;
      break;
    case 1:
      fraction = 1.0;
      break;
    case 2:
      fraction = std::nextafter(1.0, 0.0);
      break;
    case 3:
      fraction = (fraction - 0.5) * 500.0;
      break;
    case 4:
      fraction = -1e-18;
      break;
    case 5:
      fraction = (fraction - 0.5) * 1e12;
      break;
    default:
      break;
  }
  return {seconds, fraction};
}

TEST(TimeDifference, OfEqualTimesIsExactlyZero) {
  const GNSSTime t(2024, 5, 6, 7, 8, 9.1);
  EXPECT_EQ(TimeDifference(t, t), 0.0);
  EXPECT_EQ(TimeDifference(AbsoluteTime{5, 0.1}, AbsoluteTime{5, 0.1}), 0.0);
}

TEST(TimeDifference, IsTheWholeSecondsPlusTheDifferenceOfTheFractions) {
  EXPECT_EQ(TimeDifference(AbsoluteTime{10, 0.25}, AbsoluteTime{7, 0.75}), 2.5);
  EXPECT_EQ(TimeDifference(AbsoluteTime{1000000007, 0.1}, AbsoluteTime{7, 0.3}), 1000000000.0 + (0.1 - 0.3));
  EXPECT_EQ(TimeDifference(GNSSTime(2020, 1, 2, 0, 0, 0.5), GNSSTime(2020, 1, 1, 0, 0, 0.0)), 86400.5);
}

TEST(TimeDifference, OfEpochsOneGapApartIsThatGapWhateverTheirFraction) {
  for (int i = 0; i < 1000; ++i) {
    for (std::int64_t second = 1593000000; second < 1593000060; ++second) {
      const AbsoluteTime first = ThroughCalendar({second, i / 1000.0});
      EXPECT_EQ(TimeDifference(ThroughCalendar({second + 242, i / 1000.0}), first), 242.0) << second << i;
    }
    if (HasFailure()) return;
  }
}

TEST(TimeDifference, OfExtremeTimesKeepsItsSign) {
  EXPECT_EQ(TimeDifference(AbsoluteTime{kMaxInt64, 0.0}, AbsoluteTime{kMinInt64, 0.0}), 0x1p64);
  EXPECT_EQ(TimeDifference(AbsoluteTime{kMinInt64, 0.0}, AbsoluteTime{kMaxInt64, 0.0}), -0x1p64);
}

TEST(SubtractSeconds, Of14FromAQuarterKeepsTheQuarter) {
  const GNSSTime t(AbsoluteTime{1700000000, 0.25});
  ExpectSameBits(SubtractSeconds(t, 14.0).Absolute(), {1699999986, 0.25});
}

TEST(SubtractSeconds, LeavesAFractionOfExactlyOneToTheCalendar) {
  // The step loop stops at 1.0; only the calendar turns it into the next second.
  ExpectSameBits(Stepped({1700000000, 0.5}, -0.5), {1700000000, 1.0});
  const GNSSTime t = SubtractSeconds(GNSSTime(AbsoluteTime{1700000039, 0.5}), -0.5);
  EXPECT_EQ(t.Minute(), GNSSTime(AbsoluteTime{1700000039, 0.5}).Minute());
  EXPECT_EQ(t.Second(), 60.0);
  ExpectSameBits(t.Absolute(), {1700000040, 0.0});
}

TEST(SubtractSeconds, EqualsSteppingSecondBySecond) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 3000; ++i) {
    const AbsoluteTime t{1000000000 + static_cast<std::int64_t>(random() % 1000000000),
                         std::uniform_real_distribution<double>(0.0, 1.0)(random)};
    const double scales[] = {1e-17, 1.0, 20.0, 1e4};
    double dt = std::uniform_real_distribution<double>(-1.0, 1.0)(random) * scales[random() % 4];
    if (random() % 4 == 0) dt = std::round(dt);
    const GNSSTime start(t);
    ExpectSameBits(SubtractSeconds(start, dt).Absolute(), GNSSTime(Stepped(start.Absolute(), dt)).Absolute());
  }
}

TEST(SubtractSeconds, OfSecondsThatNoStepChangesEnds) {
  const GNSSTime t(AbsoluteTime{1700000000, 0.25});
  ExpectSameBits(SubtractSeconds(t, 1e6).Absolute(), {1699000000, 0.25});
  for (double dt : {kNan, kInfinity, -kInfinity, 1e300, -1e300, 1e18, -1e18, 1e16, -1e16}) {
    const AbsoluteTime fast = SubtractSeconds(t.Absolute(), dt);
    ExpectSameBits(fast, SubtractSeconds(t, dt).Absolute());
  }
  ExpectSameBits(SubtractSeconds(t, kNan).Absolute(), {0, 0.0});
}

TEST(SubtractSeconds, LeavesAFractionOf2To53AndMoreToTheCalendar) {
  // Whole seconds carried before would have left the years of the calendar.
  constexpr std::int64_t kLeft = 10000000000000000;
  ExpectSameBits(SubtractSeconds(AbsoluteTime{1700000000, 0.0}, 1e16), {1700000000 - kLeft, 0.0});
}

TEST(SubtractSeconds, OnAbsoluteTimesEqualsTheCalendarRoute) {
  std::mt19937_64 random(12);
  for (int i = 0; i < 20000; ++i) {
    const AbsoluteTime t = RandomTime(random);
    const double dt = random() % 2 == 0 ? 14.0 : std::uniform_real_distribution<double>(-1e5, 1e5)(random);
    ExpectSameBits(SubtractSeconds(t, dt), SubtractSeconds(GNSSTime(t), dt).Absolute());
    if (HasFailure()) FAIL() << t.Seconds << " + " << t.Fraction << " - " << dt;
  }
}

TEST(ThroughCalendar, EqualsTheCalendarRoute) {
  std::mt19937_64 random(13);
  for (int i = 0; i < 30000; ++i) {
    const AbsoluteTime t = RandomTime(random);
    ExpectSameBits(ThroughCalendar(t), GNSSTime(t).Absolute());
    if (HasFailure()) FAIL() << t.Seconds << " + " << t.Fraction;
  }
}

TEST(ThroughCalendar, EqualsTheCalendarRouteAtItsBorders) {
  for (std::int64_t border : {std::int64_t{0}, std::int64_t{4102444800}, std::int64_t{-1461} * 86400,
                              std::int64_t{-86400}, kMinInt64 + 70, kMaxInt64 - 70}) {
    for (std::int64_t shift = -70; shift <= 70; ++shift) {
      for (double fraction : {0.0, 0.5, 1.0, -0.5, 61.5, -61.5, 1e19, kNan, kInfinity}) {
        const AbsoluteTime t{border + shift, fraction};
        ExpectSameBits(ThroughCalendar(t), GNSSTime(t).Absolute());
      }
    }
  }
  ExpectSameBits(ThroughCalendar({4102444800, 0.5}), {0, 0.0});
}

TEST(AbsoluteTimeAdd, MovesTheFloorIntoTheSeconds) {
  ExpectSameBits(AbsoluteTimeAdd({100, 0.75}, 0.5), {101, 0.25});
  ExpectSameBits(AbsoluteTimeAdd({100, 0.25}, -0.5), {99, 0.75});
  ExpectSameBits(AbsoluteTimeAdd({100, 0.25}, -18.0), {82, 0.25});
  ExpectSameBits(AbsoluteTimeAdd({100, 0.5}, 0.5), {101, 0.0});
}

TEST(AbsoluteTimeAdd, ConvertsSecondsOf2To63AsUnsigned) {
  ExpectSameBits(AbsoluteTimeAdd({0, 0.0}, 0x1p63), {kMinInt64, 0.0});
  ExpectSameBits(AbsoluteTimeAdd({1, 0.0}, -0x1p63), {kMinInt64 + 1, 0.0});
  EXPECT_EQ(AbsoluteTimeAdd({kMaxInt64, 0.0}, 1.0).Seconds, kMinInt64);
}

TEST(AbsoluteTimeAdd, KeepsTheSecondsWhenTheSumHasNoWholeSeconds) {
  for (double dt : {kNan, kInfinity, -kInfinity, 0x1p64, -0x1.8p63}) {
    EXPECT_EQ(AbsoluteTimeAdd({7, 0.0}, dt).Seconds, 7);
    EXPECT_EQ(std::isnan(AbsoluteTimeAdd({7, 0.0}, dt).Fraction), std::isnan(dt));
  }
}

TEST(BdsWeekToTime, Week0Is2006AndNotShifted) {
  const GNSSTime t = BdsWeekToTime(0, 0.0);
  EXPECT_EQ(t.Year(), 2006);
  EXPECT_EQ(t.Month(), 1);
  EXPECT_EQ(t.Day(), 1);
  EXPECT_EQ(t.Week(), 1356);
  EXPECT_EQ(BdsWeekToTime(900, 12.5).Week(), 2256);
  EXPECT_EQ(BdsWeekToTime(900, 12.5).SecondsOfWeek(), 12.5);
  ExpectZeroTime(BdsWeekToTime(std::numeric_limits<std::int32_t>::max(), 0.0));
}

/// The leap-second rule taken literally: through the calendar, row by row.
AbsoluteTime LiteralGpsToUtc(const AbsoluteTime& t, int n) {
  AbsoluteTime utc = t;
  for (int i = 0; kLeapSeconds[i].year > 0; ++i) {
    const LeapSecondRow& row = kLeapSeconds[i];
    utc = AbsoluteTimeAdd(t, -static_cast<double>(row.seconds));
    const GNSSTime start(row.year, row.month, row.day, 0, 0, 0.0);
    if (TimeDifference(utc, start.Absolute()) > -1e-12) {
      if (i == 0 && n >= 1) utc = AbsoluteTimeAdd(t, -static_cast<double>(n));
      break;
    }
  }
  return utc;
}

TEST(GpsToUtc, HasTheAnnouncedLeapSeconds) {
  struct {
    int year, month, seconds;
  } const announced[] = {{2017, 1, 18}, {2015, 7, 17}, {2012, 7, 16}, {2009, 1, 15}, {2006, 1, 14},
                         {1999, 1, 13}, {1997, 7, 12}, {1996, 1, 11}, {1994, 7, 10}, {1993, 7, 9},
                         {1992, 7, 8},  {1991, 1, 7},  {1990, 1, 6},  {1988, 1, 5},  {1985, 7, 4},
                         {1983, 7, 3},  {1982, 7, 2},  {1981, 7, 1}};
  for (const auto& row : announced) {
    const std::int64_t utc = GNSSTime(row.year, row.month, 1, 0, 0, 0.0).Absolute().Seconds;
    ExpectSameBits(GpsToUtc({utc + row.seconds, 0.0}, 0), {utc, 0.0});
    // A second earlier the row before counts; the oldest row has none before it and stays.
    const int before = row.seconds == 1 ? 1 : row.seconds - 1;
    EXPECT_EQ(GpsToUtc({utc + row.seconds - 1, 0.0}, 0).Seconds, utc + row.seconds - 1 - before);
  }
}

TEST(GpsToUtc, EqualsTheRowsWalkedThroughTheCalendar) {
  for (const LeapSecondRow& row : kLeapSeconds) {
    if (row.year == 0) break;
    const std::int64_t start = GNSSTime(row.year, row.month, row.day, 0, 0, 0.0).Absolute().Seconds;
    for (int shift = -3; shift <= 25; ++shift) {
      for (double fraction : {0.0, 0.3, 1.0 - 1e-13, 1.0 - 1e-11}) {
        for (int n : {0, 18, 19, -1}) {
          const AbsoluteTime t{start + shift, fraction};
          ExpectSameBits(GpsToUtc(t, n), LiteralGpsToUtc(t, n));
        }
      }
    }
  }
}

TEST(GpsToUtc, OneSecondStaysBeforeTheFirstRow) {
  ExpectSameBits(GpsToUtc({300000000, 0.5}, 0), {299999999, 0.5});
}

TEST(GpsToUtc, CallersCountOverridesTheNewestRowOnly) {
  ExpectSameBits(GpsToUtc({1700000000, 0.5}, 20), {1699999980, 0.5});
  ExpectSameBits(GpsToUtc({1700000000, 0.5}, 0), {1699999982, 0.5});
  ExpectSameBits(GpsToUtc({1700000000, 0.5}, -5), {1699999982, 0.5});
  ExpectSameBits(GpsToUtc({1400000000, 0.5}, 20), {1399999984, 0.5});
}

}  // namespace
}  // namespace gnssqctoolkit
