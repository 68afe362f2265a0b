#include "host/rinex/civil_time.h"

#include <fmt/format.h>

#include <cmath>

#include "host/rinex/decimal.h"

namespace orsolva_host {

namespace {

constexpr std::int64_t kDay = 86400;

bool ParseRange(std::string_view field, int low, int high, int& value) {
  std::int64_t number = 0;
  if (ParseInteger(field, number) != FieldState::kNumber || number < low || number > high) return false;
  value = static_cast<int>(number);
  return true;
}

std::int64_t FloorDivide(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

}  // namespace

// Days of the proleptic Gregorian calendar, counted in years that begin in March so that a leap day is the
// last day of its year.
std::int64_t DaysFromCivil(int year, int month, int day) {
  const std::int64_t y = month <= 2 ? year - 1 : year;
  const std::int64_t m = month <= 2 ? month + 9 : month - 3;
  const std::int64_t days_before_month = (153 * m + 2) / 5;
  return 365 * y + FloorDivide(y, 4) - FloorDivide(y, 100) + FloorDivide(y, 400) + days_before_month + day -
         719469;
}

Time_gbt ToTime(const CivilTime& c) {
  const std::int64_t days = DaysFromCivil(c.year, c.month, c.day);
  return {days * kDay + c.hour * 3600 + c.minute * 60 + c.second, c.fraction};
}

CivilTime ToCivil(const Time_gbt& time) {
  CivilTime c;
  const std::int64_t days = FloorDivide(time.time, kDay);
  const int of_day = static_cast<int>(time.time - days * kDay);
  c.hour = of_day / 3600;
  c.minute = of_day / 60 % 60;
  c.second = of_day % 60;
  c.fraction = time.sec;
  // The year found from the mean length of a year is at most one off.
  c.year = static_cast<int>(1970 + FloorDivide(days * 400, 146097));
  while (DaysFromCivil(c.year, 1, 1) > days) --c.year;
  while (DaysFromCivil(c.year + 1, 1, 1) <= days) ++c.year;
  c.month = 12;
  while (DaysFromCivil(c.year, c.month, 1) > days) --c.month;
  c.day = static_cast<int>(days - DaysFromCivil(c.year, c.month, 1)) + 1;
  return c;
}

bool ParseCivil(std::string_view year, std::string_view month, std::string_view day, std::string_view hour,
                std::string_view minute, std::string_view second, CivilTime& c) {
  const std::string_view seconds = Trimmed(second);
  const std::size_t point = seconds.find('.');
  c.fraction = 0;
  if (point != std::string_view::npos && point + 1 < seconds.size() &&
      (seconds[point + 1] < '0' || seconds[point + 1] > '9' ||
       ParseDecimal(seconds.substr(point), c.fraction) != FieldState::kNumber || c.fraction >= 1)) {
    return false;
  }
  return ParseRange(year, 1900, 2199, c.year) && ParseRange(month, 1, 12, c.month) &&
         ParseRange(day, 1, 31, c.day) && ParseRange(hour, 0, 24, c.hour) &&
         ParseRange(minute, 0, 60, c.minute) && ParseRange(seconds.substr(0, point), 0, 60, c.second);
}

Time_gbt TimeOfNanoseconds(std::int64_t time_ns) {
  constexpr std::int64_t kSecond = 1'000'000'000;
  const std::int64_t seconds = FloorDivide(time_ns, kSecond);
  return {seconds, static_cast<double>(time_ns - seconds * kSecond) / static_cast<double>(kSecond)};
}

double Difference(const Time_gbt& a, const Time_gbt& b) {
  return static_cast<double>(a.time - b.time) + (a.sec - b.sec);
}

std::string TimeText(const Time_gbt& time) {
  Time_gbt rounded = time;
  double milliseconds = std::round(time.sec * 1000);
  if (!(milliseconds >= 0)) milliseconds = 0;
  if (milliseconds >= 1000) {
    milliseconds = 0;
    ++rounded.time;
  }
  const CivilTime c = ToCivil(rounded);
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03}", c.year, c.month, c.day, c.hour, c.minute,
                     c.second, static_cast<int>(milliseconds));
}

}  // namespace orsolva_host
