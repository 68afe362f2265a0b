// Calendar, week and absolute forms of an instant.
//
// Notation: days counts whole days, dd days within a block of four years, all in the time scale of the
// caller. Calendar fields, weeks and seconds may hold anything a record can say, so sums are formed in 64
// bits and no loop depends on their size.
#include "toolkit/time.h"

#include <cmath>
#include <cstdio>
#include <limits>

#include "toolkit/constants.h"
#include "toolkit/leap_seconds.h"

namespace gnssqctoolkit {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kDaysOf4Years = 1461;
constexpr std::int64_t kDaysOf400Years = 146097;
/// Days counted before 1981-01-01.
// Kept for compatibility: 360 makes 1981-01-01 week 51 day 4; dates of 1980 come out six days off.
constexpr std::int64_t kDaysBefore1981 = 360;
/// Below this magnitude a double keeps every whole second, so steps of 1.0 are exact.
constexpr double kExactWhole = 9007199254740992.0;
/// Seconds of a minute beyond this have no absolute form; sums with it stay inside 64 bits.
constexpr double kLargestSecond = 9.0e18;
constexpr double kTwo63 = 9223372036854775808.0;

constexpr int kMonthLengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr int kDaysBeforeMonth[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
/// One-based day of the year on which a month starts, in a common year.
constexpr int kFirstDayOfMonth[12] = {1, 32, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335};

constexpr bool IsLeapYear(std::int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

/// Leap years from year 1 up to and including `year`.
constexpr std::int64_t LeapYearsUpTo(std::int64_t year) { return year / 4 - year / 100 + year / 400; }

/// Day count of step "360, then 365 or 366 for each year from 1981".
constexpr std::int64_t DaysBeforeYear(std::int64_t year) {
  if (year < 1981) return 0;
  return kDaysBefore1981 + 365 * (year - 1981) + LeapYearsUpTo(year - 1) - LeapYearsUpTo(1980);
}

std::int64_t DaysBeforeMonth(std::int32_t month) {
  if (month < 2) return 0;
  return month > 12 ? 365 : kDaysBeforeMonth[month - 1];
}

/// Days from 1970-01-01 to a date of 1970 to 2099, where every fourth year is a leap year.
constexpr std::int64_t DaysSince1970(std::int64_t year, int month, std::int64_t day) {
  const int leap = year % 4 == 0 && month >= 3 ? 1 : 0;
  return (year - 1970) * 365 + (year - 1969) / 4 + kFirstDayOfMonth[month - 1] + day - 2 + leap;
}

/// The sum modulo 2^64: times of records may lie anywhere.
std::int64_t WrappingAdd(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

bool FitsInt32(std::int64_t value) {
  return value >= std::numeric_limits<std::int32_t>::min() &&
         value <= std::numeric_limits<std::int32_t>::max();
}

std::int32_t SaturateInt32(std::int64_t value) {
  if (FitsInt32(value)) return static_cast<std::int32_t>(value);
  return value < 0 ? std::numeric_limits<std::int32_t>::min() : std::numeric_limits<std::int32_t>::max();
}

/// True when floor(second) can join the whole seconds.
bool HasWholeSeconds(double second) { return std::fabs(second) < kLargestSecond; }

/// Moves whole seconds between fraction and seconds, one at a time, until the fraction lies in 0 to 1.
///
/// The steps follow the shift that is subtracted, 14 s in this library: a time is brought into the calendar
/// first and then has a fraction below 1. A fraction that is not finite, or so large that a step of 1.0 no
/// longer changes it exactly, stays.
// Kept for compatibility: a fraction of exactly 1.0 is left as it is.
void NormaliseFraction(AbsoluteTime& t) {
  if (!(std::fabs(t.Fraction) < kExactWhole)) return;
  while (t.Fraction < 0.0) {
    t.Fraction += 1.0;
    t.Seconds = WrappingAdd(t.Seconds, -1);
  }
  while (t.Fraction > 1.0) {
    t.Fraction -= 1.0;
    t.Seconds = WrappingAdd(t.Seconds, 1);
  }
}

/// Four years from 1970 on; the third is a leap year.
constexpr int kMonthLengthsOf4Years[48] = {
    31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31,  //
    31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31,  //
    31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31,  //
    31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31,
};

}  // namespace

GNSSTime::GNSSTime(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour,
                   std::int32_t minute, double second)
    : year_(year), month_(month), day_(day), hour_(hour), minute_(minute), second_(second) {
  CalendarToWeek();
  CalendarToAbsolute();
}

GNSSTime::GNSSTime(std::int32_t week, double seconds_of_week) {
  if (!(std::fabs(seconds_of_week) <= 1e15)) return;
  const double weeks = std::trunc(seconds_of_week / kWeek);
  const std::int64_t whole_week = std::int64_t{week} + static_cast<std::int64_t>(weeks);
  if (!FitsInt32(whole_week)) return;
  week_ = static_cast<std::int32_t>(whole_week);
  seconds_of_week_ = seconds_of_week - weeks * kWeek;
  WeekToCalendar();
  CalendarToAbsolute();
}

GNSSTime::GNSSTime(const AbsoluteTime& absolute) {
  const std::int64_t days = absolute.Seconds / kSecondsPerDay;
  const std::int64_t sec = absolute.Seconds - days * kSecondsPerDay;
  std::int64_t dd = days % kDaysOf4Years;
  int index = 0;
  while (index < 47 && dd >= kMonthLengthsOf4Years[index]) dd -= kMonthLengthsOf4Years[index++];
  year_ = SaturateInt32(1970 + 4 * (days / kDaysOf4Years) + index / 12);
  month_ = index % 12 + 1;
  day_ = static_cast<std::int32_t>(dd + 1);
  hour_ = static_cast<std::int32_t>(sec / 3600);
  minute_ = static_cast<std::int32_t>(sec % 3600 / 60);
  second_ = static_cast<double>(sec % 60) + absolute.Fraction;
  CalendarToWeek();
  CalendarToAbsolute();
}

void GNSSTime::CalendarToWeek() {
  const std::int64_t leap_day = month_ >= 3 && IsLeapYear(year_) ? 1 : 0;
  const std::int64_t day_of_year = day_ + DaysBeforeMonth(month_) + leap_day;
  const std::int64_t total = DaysBeforeYear(year_) + day_of_year;
  const std::int64_t week = total / 7;
  const std::int64_t whole_seconds =
      (total - week * 7) * 24 * 3600 + std::int64_t{hour_} * 3600 + std::int64_t{minute_} * 60;
  day_of_year_ = SaturateInt32(day_of_year);
  week_ = SaturateInt32(week);
  seconds_of_week_ = static_cast<double>(whole_seconds) + second_;
}

void GNSSTime::WeekToCalendar() {
  const std::int64_t m = static_cast<std::int64_t>(std::trunc(seconds_of_week_ / 60.0));
  second_ = seconds_of_week_ - static_cast<double>(60 * m);
  const std::int64_t h = m / 60;
  minute_ = static_cast<std::int32_t>(m - 60 * h);
  const std::int64_t d = h / 24;
  hour_ = static_cast<std::int32_t>(h - 24 * d);
  std::int64_t days = d + 7 * std::int64_t{week_};
  std::int64_t year = 1980;
  if (days >= kDaysBefore1981) {
    year = 1981;
    days -= kDaysBefore1981;
    // Whole blocks of 400 years at once; the remainder stays above one year, where each step would be taken.
    if (days > 366) {
      const std::int64_t blocks = (days - 366) / kDaysOf400Years;
      days -= blocks * kDaysOf400Years;
      year += 400 * blocks;
    }
    // Kept for compatibility: the length is compared before the leap day is allowed for, so 31 December of
    // a leap year becomes day 0 of the next January.
    while (days > 365) {
      days -= IsLeapYear(year) ? 366 : 365;
      ++year;
    }
  }
  const bool leap = IsLeapYear(year);
  year_ = static_cast<std::int32_t>(year);
  day_of_year_ = SaturateInt32(days);
  month_ = 1;
  // Kept for compatibility: day 31 of the year is written as day 0 of February.
  if (days >= 31) {
    days -= leap ? 32 : 31;
    month_ = 2;
    while (month_ < 12 && days > kMonthLengths[month_ - 1]) days -= kMonthLengths[month_++ - 1];
  }
  if (month_ == 2 && leap) ++days;
  day_ = SaturateInt32(days);
}

void GNSSTime::CalendarToAbsolute() {
  absolute_ = AbsoluteTime{};
  const bool covered = year_ >= 1970 && year_ < 2100 && month_ >= 1 && month_ <= 12;
  if (!covered || !HasWholeSeconds(second_)) return;
  const double whole = std::floor(second_);
  absolute_.Seconds = DaysSince1970(year_, month_, day_) * kSecondsPerDay + std::int64_t{hour_} * 3600 +
                      std::int64_t{minute_} * 60 + static_cast<std::int64_t>(whole);
  absolute_.Fraction = second_ - whole;
}

double TimeDifference(const GNSSTime& a, const GNSSTime& b) {
  return TimeDifference(a.Absolute(), b.Absolute());
}

GNSSTime SubtractSeconds(const GNSSTime& t, double dt) {
  AbsoluteTime shifted = t.Absolute();
  shifted.Fraction -= dt;
  NormaliseFraction(shifted);
  return GNSSTime(shifted);
}

AbsoluteTime SubtractSeconds(const AbsoluteTime& t, double dt) {
  AbsoluteTime shifted = ThroughCalendar(t);
  shifted.Fraction -= dt;
  NormaliseFraction(shifted);
  return ThroughCalendar(shifted);
}

AbsoluteTime ThroughCalendar(const AbsoluteTime& t) {
  // Years below 1970 begin a whole block of four years before it: the calendar counts those days back from
  // 1970.
  if (t.Seconds <= kCalendarBegin || t.Seconds >= kCalendarEnd) return AbsoluteTime{};
  const std::int64_t of_minute = t.Seconds % 60;
  const double second = static_cast<double>(of_minute) + t.Fraction;
  if (!HasWholeSeconds(second)) return AbsoluteTime{};
  const double whole = std::floor(second);
  return {t.Seconds - of_minute + static_cast<std::int64_t>(whole), second - whole};
}

AbsoluteTime AbsoluteTimeAdd(const AbsoluteTime& t, double dt) {
  AbsoluteTime sum{t.Seconds, t.Fraction + dt};
  if (sum.Fraction > 0.0 && sum.Fraction < 1.0) return sum;  // spares the call of floor
  const double whole = std::floor(sum.Fraction);
  if (!(whole >= -kTwo63 && whole < 2.0 * kTwo63)) return sum;
  const std::uint64_t seconds = whole >= kTwo63
                                    ? static_cast<std::uint64_t>(whole)
                                    : static_cast<std::uint64_t>(static_cast<std::int64_t>(whole));
  sum.Seconds = static_cast<std::int64_t>(static_cast<std::uint64_t>(sum.Seconds) + seconds);
  sum.Fraction -= whole;
  return sum;
}

GNSSTime BdsWeekToTime(std::int32_t week, double seconds_of_week) {
  const GNSSTime origin(2006, 1, 1, 0, 0, 0.0);
  const std::int64_t gps_week = std::int64_t{week} + origin.Week();
  if (!FitsInt32(gps_week)) return GNSSTime();
  return GNSSTime(static_cast<std::int32_t>(gps_week), seconds_of_week + origin.SecondsOfWeek());
}

AbsoluteTime GpsToUtc(const AbsoluteTime& t, int leap_seconds) {
  AbsoluteTime utc = t;
  for (const LeapSecondRow* row = kLeapSeconds; row->year != 0; ++row) {
    utc = AbsoluteTimeAdd(t, -static_cast<double>(row->seconds));
    const AbsoluteTime start{DaysSince1970(row->year, row->month, row->day) * kSecondsPerDay, 0.0};
    if (!(TimeDifference(utc, start) > -1e-12)) continue;
    if (row == kLeapSeconds && leap_seconds >= 1)
      utc = AbsoluteTimeAdd(t, -static_cast<double>(leap_seconds));
    return utc;
  }
  return utc;
}

void TimeText(const GNSSTime& t, int decimals, char* buffer, std::size_t size) {
  if (buffer == nullptr || size == 0) return;
  const int digits = decimals < 0 ? 0 : decimals > 15 ? 15 : decimals;
  const int width = digits == 0 ? 2 : digits + 3;
  std::snprintf(buffer, size, "%04.0f/%02.0f/%02.0f %02.0f:%02.0f:%0*.*f", static_cast<double>(t.Year()),
                static_cast<double>(t.Month()), static_cast<double>(t.Day()), static_cast<double>(t.Hour()),
                static_cast<double>(t.Minute()), width, digits, t.Second());
}

}  // namespace gnssqctoolkit
