#include "toolkit/time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "tests/unit/toolkit/time_checks.h"

namespace gnssqctoolkit {
namespace {

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
  constexpr int kYear2090 = 40000;  // in days of GPS time; later ones are sampled
  for (int day = -3000; day < 500000; day += day < kYear2090 ? 1 : 11) {
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
