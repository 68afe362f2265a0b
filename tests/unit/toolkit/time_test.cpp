#include "toolkit/time.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "toolkit/leap_seconds.h"

namespace gnssqctoolkit {
namespace {

constexpr std::int64_t kMinInt64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMaxInt64 = std::numeric_limits<std::int64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

bool Leap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

constexpr int kLengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

/// Day count before a year by stepping through the years.
int SteppedDaysBefore(int year) {
  int days = year >= 1981 ? 360 : 0;
  for (int y = 1981; y <= year - 1; ++y) days += 365 + (Leap(y) ? 1 : 0);
  return days;
}

struct SteppedDate {
  int year, month, day, day_of_year;
};

/// The calendar date of a day count by stepping year by year and month by month.
SteppedDate SteppedCalendar(int days) {
  SteppedDate date{1980, 1, 0, 0};
  if (days >= 360) {
    date.year = 1981;
    days -= 360;
    while (days > 365) {
      if (Leap(date.year)) days -= 1;
      days -= 365;
      date.year += 1;
    }
  }
  date.day_of_year = days;
  if (days >= 31) {
    days -= 31;
    if (Leap(date.year)) days -= 1;
    date.month = 2;
    while (days > kLengths[date.month - 1]) days -= kLengths[date.month++ - 1];
  }
  if (date.month == 2 && Leap(date.year)) days += 1;
  date.day = days;
  return date;
}

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

void ExpectSameBits(const AbsoluteTime& a, const AbsoluteTime& b) {
  EXPECT_EQ(a.Seconds, b.Seconds);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(a.Fraction), std::bit_cast<std::uint64_t>(b.Fraction))
      << a.Fraction << " and " << b.Fraction;
}

void ExpectZeroTime(const GNSSTime& t) {
  EXPECT_EQ(t.Year(), 0);
  EXPECT_EQ(t.Month(), 0);
  EXPECT_EQ(t.Day(), 0);
  EXPECT_EQ(t.Week(), 0);
  EXPECT_EQ(t.SecondsOfWeek(), 0.0);
  ExpectSameBits(t.Absolute(), {0, 0.0});
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

TEST(GnssTime, DefaultIsZero) { ExpectZeroTime(GNSSTime()); }

TEST(GnssTime, FirstOfJanuary1981IsWeek51Day4) {
  const GNSSTime t(1981, 1, 1, 0, 0, 0.0);
  EXPECT_EQ(t.Week(), 51);
  EXPECT_EQ(t.SecondsOfWeek(), 345600.0);
  EXPECT_EQ(t.DayOfYear(), 1);
}

TEST(GnssTime, DatesOf1980AreSixDaysOff) {
  const GNSSTime t(1980, 1, 6, 0, 0, 0.0);
  EXPECT_EQ(t.Week(), 0);
  EXPECT_EQ(t.SecondsOfWeek(), 6 * 86400.0);
}

TEST(GnssTime, KnownDateHasItsPublishedWeek) {
  // 2024-02-29 is day 60 of the year and a Thursday of GPS week 2303.
  const GNSSTime t(2024, 2, 29, 12, 34, 56.75);
  EXPECT_EQ(t.DayOfYear(), 60);
  EXPECT_EQ(t.Week(), 2303);
  EXPECT_EQ(t.SecondsOfWeek(), 4 * 86400.0 + 12 * 3600.0 + 34 * 60.0 + 56.75);
  ExpectSameBits(t.Absolute(), {1709210096, 0.75});
}

TEST(GnssTime, CalendarMembersAreStoredAsGiven) {
  const GNSSTime t(2101, 14, -3, 25, 61, 99.5);
  EXPECT_EQ(t.Year(), 2101);
  EXPECT_EQ(t.Month(), 14);
  EXPECT_EQ(t.Day(), -3);
  EXPECT_EQ(t.Hour(), 25);
  EXPECT_EQ(t.Minute(), 61);
  EXPECT_EQ(t.Second(), 99.5);
}

TEST(GnssTime, WeekOfACalendarDateFollowsTheYearSteps) {
  for (int year = 1960; year < 3300; ++year) {
    for (int month = 1; month <= 12; ++month) {
      int day_of_year = 17 + (month >= 3 && Leap(year) ? 1 : 0);
      for (int m = 1; m < month; ++m) day_of_year += kLengths[m - 1];
      const int total = SteppedDaysBefore(year) + day_of_year;
      const GNSSTime t(year, month, 17, 1, 2, 3.5);
      ASSERT_EQ(t.DayOfYear(), day_of_year);
      ASSERT_EQ(t.Week(), total / 7) << year;
      ASSERT_EQ(t.SecondsOfWeek(), (total % 7) * 86400.0 + 3723.5);
    }
  }
}

TEST(GnssTime, CalendarOfAWeekFollowsTheYearSteps) {
  for (int day = -3000; day < 500000; ++day) {
    const int week = day / 7;
    const GNSSTime t(week, (day - week * 7) * 86400.0);
    if (day < 0 && day % 7 != 0) continue;  // whole days before week 0 are counted by the truncated rest
    const SteppedDate date = SteppedCalendar(day);
    ASSERT_EQ(t.Year(), date.year) << day;
    ASSERT_EQ(t.Month(), date.month) << day;
    ASSERT_EQ(t.Day(), date.day) << day;
    ASSERT_EQ(t.DayOfYear(), date.day_of_year) << day;
  }
}

TEST(GnssTime, FarWeeksFollowTheYearSteps) {
  for (int week : {5000000, 20871, 20872, 41742, 41743, 300000000}) {
    const SteppedDate date = SteppedCalendar(week * 7 + 3);
    const GNSSTime t(week, 3 * 86400.0);
    EXPECT_EQ(t.Year(), date.year);
    EXPECT_EQ(t.Month(), date.month);
    EXPECT_EQ(t.Day(), date.day);
  }
}

TEST(GnssTime, NegativeWeekIsADayOf1980BeforeItsFirst) {
  const GNSSTime t(-3, 3661.5);
  EXPECT_EQ(t.Year(), 1980);
  EXPECT_EQ(t.Month(), 1);
  EXPECT_EQ(t.Day(), -21);
  EXPECT_EQ(t.DayOfYear(), -21);
  EXPECT_EQ(t.Hour(), 1);
  EXPECT_EQ(t.Minute(), 1);
  EXPECT_EQ(t.Second(), 1.5);
}

TEST(GnssTime, SecondsOfWeekCarryWholeWeeksTowardZero) {
  const GNSSTime late(2000, 604800.0 * 2 + 5.25);
  EXPECT_EQ(late.Week(), 2002);
  EXPECT_EQ(late.SecondsOfWeek(), 5.25);
  const GNSSTime early(2000, -604800.0 - 10.0);
  EXPECT_EQ(early.Week(), 1999);
  EXPECT_EQ(early.SecondsOfWeek(), -10.0);
  const GNSSTime little(2000, -10.0);
  EXPECT_EQ(little.Week(), 2000);
  EXPECT_EQ(little.Second(), -10.0);
  EXPECT_EQ(little.Absolute().Seconds, GNSSTime(2000, 0.0).Absolute().Seconds - 10);
}

TEST(GnssTime, LastDayOfALeapYearByWeekIsDay0OfTheNextYear) {
  const GNSSTime by_calendar(2020, 12, 31, 12, 0, 0.0);
  EXPECT_EQ(by_calendar.Year(), 2020);
  EXPECT_EQ(by_calendar.Month(), 12);
  EXPECT_EQ(by_calendar.Day(), 31);
  EXPECT_EQ(by_calendar.DayOfYear(), 366);
  const GNSSTime by_week(by_calendar.Week(), by_calendar.SecondsOfWeek());
  EXPECT_EQ(by_week.Year(), 2021);
  EXPECT_EQ(by_week.Month(), 1);
  EXPECT_EQ(by_week.Day(), 0);
  EXPECT_EQ(by_week.DayOfYear(), 0);
  EXPECT_EQ(by_week.Hour(), 12);
  ExpectSameBits(by_week.Absolute(), by_calendar.Absolute());
}

TEST(GnssTime, LastDayOfJanuaryByWeekIsDay0OfFebruary) {
  const GNSSTime by_calendar(2023, 1, 31, 6, 0, 0.0);
  const GNSSTime by_week(by_calendar.Week(), by_calendar.SecondsOfWeek());
  EXPECT_EQ(by_week.Month(), 2);
  EXPECT_EQ(by_week.Day(), 0);
  ExpectSameBits(by_week.Absolute(), by_calendar.Absolute());
}

TEST(GnssTime, WeekFormAndCalendarFormShareTheAbsoluteTime) {
  for (int week = 52; week < 6200; ++week) {
    for (double sow : {0.0, 86399.5, 259200.0, 604799.75}) {
      const GNSSTime by_week(week, sow);
      const GNSSTime by_absolute(by_week.Absolute());
      if (by_week.Year() >= 2100) continue;
      ASSERT_EQ(by_absolute.Week(), week);
      ASSERT_EQ(by_absolute.SecondsOfWeek(), sow);
    }
  }
}

TEST(GnssTime, AbsoluteTimeIsZeroOutside1970To2099AndMonths1To12) {
  ExpectSameBits(GNSSTime(2100, 1, 1, 0, 0, 1.5).Absolute(), {0, 0.0});
  ExpectSameBits(GNSSTime(1969, 12, 31, 0, 0, 1.5).Absolute(), {0, 0.0});
  ExpectSameBits(GNSSTime(2020, 13, 1, 0, 0, 1.5).Absolute(), {0, 0.0});
  ExpectSameBits(GNSSTime(2020, 0, 1, 0, 0, 1.5).Absolute(), {0, 0.0});
  ExpectSameBits(GNSSTime(1970, 1, 1, 0, 0, 1.5).Absolute(), {1, 0.5});
  ExpectSameBits(GNSSTime(2099, 12, 31, 23, 59, 59.5).Absolute(), {4102444799, 0.5});
}

TEST(GnssTime, AbsoluteTimeOfEveryDayCountsItsDays) {
  std::int64_t days = 0;
  for (int year = 1970; year < 2100; ++year) {
    for (int month = 1; month <= 12; ++month) {
      const int length = kLengths[month - 1] + (month == 2 && Leap(year) ? 1 : 0);
      for (int day = 1; day <= length; ++day, ++days) {
        const AbsoluteTime expected{days * 86400 + 3 * 3600 + 25 * 60 + 45, 0.5};
        ExpectSameBits(GNSSTime(year, month, day, 3, 25, 45.5).Absolute(), expected);
        const GNSSTime back(expected);
        ASSERT_EQ(back.Year(), year);
        ASSERT_EQ(back.Month(), month);
        ASSERT_EQ(back.Day(), day);
        ASSERT_EQ(back.Hour(), 3);
        ASSERT_EQ(back.Minute(), 25);
        ASSERT_EQ(back.Second(), 45.5);
        ASSERT_EQ(back.Week(), GNSSTime(year, month, day, 3, 25, 45.5).Week());
      }
    }
  }
}

TEST(GnssTime, AbsoluteTimeIsRecomputedFromTheCalendar) {
  // The fraction passes through the seconds of the minute and loses bits there.
  const AbsoluteTime t{1700000059, 0.1234567890123456};
  const double second = static_cast<double>(t.Seconds % 60) + t.Fraction;
  ExpectSameBits(GNSSTime(t).Absolute(), {1700000059, second - std::floor(second)});
  EXPECT_NE(GNSSTime(t).Absolute().Fraction, t.Fraction);
}

TEST(GnssTime, NegativeAbsoluteTimeCountsBackFrom1970) {
  const GNSSTime t(AbsoluteTime{-1, 0.25});
  EXPECT_EQ(t.Year(), 1970);
  EXPECT_EQ(t.Second(), -0.75);
  ExpectSameBits(t.Absolute(), {-1, 0.25});
  ExpectSameBits(GNSSTime(AbsoluteTime{-1461 * 86400LL + 1, 0.0}).Absolute(), {-1461 * 86400LL + 1, 0.0});
  ExpectSameBits(GNSSTime(AbsoluteTime{-1461 * 86400LL, 0.0}).Absolute(), {0, 0.0});
}

TEST(GnssTime, AbsurdInputsNeitherOverflowNorLoop) {
  constexpr std::int32_t low = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t high = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(GNSSTime(AbsoluteTime{kMaxInt64, 0.0}).Year(), high);
  EXPECT_EQ(GNSSTime(AbsoluteTime{kMinInt64, 0.0}).Year(), low);
  for (double fraction : {kNan, kInfinity, -kInfinity, 1e300, -1e300, 9.3e18}) {
    ExpectSameBits(GNSSTime(AbsoluteTime{1700000000, fraction}).Absolute(), {0, 0.0});
    ExpectSameBits(GNSSTime(2020, 1, 1, 0, 0, fraction).Absolute(), {0, 0.0});
  }
  for (std::int32_t v : {low, high}) {
    ExpectSameBits(GNSSTime(v, v, v, v, v, 0.0).Absolute(), {0, 0.0});
    const GNSSTime odd(2020, 6, v, v, v, 8.9e18);
    EXPECT_NE(odd.Absolute().Seconds, 0);
    EXPECT_EQ(GNSSTime(v, 0.0).Week(), v);
  }
  EXPECT_EQ(GNSSTime(high, 604799.0).Year(), 41159253);  // by stepping through the years
}

TEST(GnssTime, SecondsOfWeekThatAreNoNumberOrAbsurdGiveTheZeroTime) {
  for (double sow : {kNan, kInfinity, -kInfinity, 1.1e15, -1.1e15}) ExpectZeroTime(GNSSTime(2000, sow));
  ExpectZeroTime(GNSSTime(std::numeric_limits<std::int32_t>::max(), 604800.0));
  ExpectZeroTime(GNSSTime(std::numeric_limits<std::int32_t>::min(), -604800.0));
  EXPECT_EQ(GNSSTime(0, 1e15).Week(), 1653439153);
}

TEST(GnssTime, CopyHoldsAllForms) {
  const GNSSTime t(2024, 5, 6, 7, 8, 9.25);
  GNSSTime copy(t);
  copy = *&copy;
  EXPECT_EQ(copy.Year(), 2024);
  EXPECT_EQ(copy.Minute(), 8);
  EXPECT_EQ(copy.DayOfYear(), t.DayOfYear());
  EXPECT_EQ(copy.SecondsOfWeek(), t.SecondsOfWeek());
  ExpectSameBits(copy.Absolute(), t.Absolute());
}

TEST(TimeDifference, OfEqualTimesIsExactlyZero) {
  const GNSSTime t(2024, 5, 6, 7, 8, 9.1);
  EXPECT_EQ(TimeDifference(t, t), 0.0);
  EXPECT_EQ(TimeDifference(AbsoluteTime{5, 0.1}, AbsoluteTime{5, 0.1}), 0.0);
}

TEST(TimeDifference, IsWholeSecondsThenFractions) {
  EXPECT_EQ(TimeDifference(AbsoluteTime{10, 0.25}, AbsoluteTime{7, 0.75}), 2.5);
  EXPECT_EQ(TimeDifference(AbsoluteTime{1000000007, 0.1}, AbsoluteTime{7, 0.3}), 1000000000.0 + 0.1 - 0.3);
  EXPECT_EQ(TimeDifference(GNSSTime(2020, 1, 2, 0, 0, 0.5), GNSSTime(2020, 1, 1, 0, 0, 0.0)), 86400.5);
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

TEST(SubtractSeconds, OfAbsurdSecondsIsBounded) {
  const GNSSTime t(AbsoluteTime{1700000000, 0.25});
  ExpectSameBits(SubtractSeconds(t, 1e9).Absolute(), {700000000, 0.25});
  for (double dt : {kNan, kInfinity, -kInfinity, 1e300, -1e300, 1e18, -1e18, 8e15, -8e15}) {
    const AbsoluteTime fast = SubtractSeconds(t.Absolute(), dt);
    ExpectSameBits(fast, SubtractSeconds(t, dt).Absolute());
  }
  ExpectSameBits(SubtractSeconds(t, kNan).Absolute(), {0, 0.0});
}

TEST(SubtractSeconds, LeavesAFractionOf2To53AndMoreToTheCalendar) {
  // Whole seconds carried before would have left the years of the calendar.
  constexpr std::int64_t kLeft = 10000000000000000;
  ExpectSameBits(SubtractSeconds(AbsoluteTime{1700000000, 0.0}, 1e16), {1700000000 - kLeft, 0.0});
  ExpectSameBits(SubtractSeconds(AbsoluteTime{1700000000, 0.0}, 8e15), {0, 0.0});
}

TEST(SubtractSeconds, OnAbsoluteTimesEqualsTheCalendarRoute) {
  std::mt19937_64 random(12);
  for (int i = 0; i < 200000; ++i) {
    const AbsoluteTime t = RandomTime(random);
    const double dt = random() % 2 == 0 ? 14.0 : std::uniform_real_distribution<double>(-1e5, 1e5)(random);
    ExpectSameBits(SubtractSeconds(t, dt), SubtractSeconds(GNSSTime(t), dt).Absolute());
    if (HasFailure()) FAIL() << t.Seconds << " + " << t.Fraction << " - " << dt;
  }
}

TEST(ThroughCalendar, EqualsTheCalendarRoute) {
  std::mt19937_64 random(13);
  for (int i = 0; i < 300000; ++i) {
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

TEST(TimeText, PadsEveryFieldWithZeros) {
  char text[64];
  TimeText(GNSSTime(2024, 2, 3, 4, 5, 6.125), 3, text, sizeof text);
  EXPECT_STREQ(text, "2024/02/03 04:05:06.125");
  TimeText(GNSSTime(2024, 12, 31, 23, 59, 7.0), 0, text, sizeof text);
  EXPECT_STREQ(text, "2024/12/31 23:59:07");
  TimeText(GNSSTime(2024, 12, 31, 23, 59, 7.0), -4, text, sizeof text);
  EXPECT_STREQ(text, "2024/12/31 23:59:07");
}

TEST(TimeText, StaysInsideTheBuffer) {
  char text[8] = "#######";
  TimeText(GNSSTime(2024, 2, 3, 4, 5, 6.0), 3, text, 6);
  EXPECT_STREQ(text, "2024/");
  EXPECT_EQ(text[6], '#');
  TimeText(GNSSTime(), 3, nullptr, 10);
  TimeText(GNSSTime(), 3, text, 0);
  EXPECT_STREQ(text, "2024/");
}

}  // namespace
}  // namespace gnssqctoolkit
