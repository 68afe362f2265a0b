// Calendar times and Time_gbt. Calendar only: no time scales, no leap seconds.
#ifndef ORSOLVA_RINEX_CIVIL_TIME_H
#define ORSOLVA_RINEX_CIVIL_TIME_H

#include <cstdint>
#include <string>
#include <string_view>

#include "orsolva/records.h"

namespace orsolva_host {

struct CivilTime {
  int year = 1970;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;       ///< 60 counts into the next minute
  double fraction = 0;  ///< 0 <= fraction < 1, s
};

/// Days from 1970-01-01 in the Gregorian calendar.
std::int64_t DaysFromCivil(int year, int month, int day);

/// Seconds since 1970-01-01.
Time_gbt ToTime(const CivilTime& civil);
CivilTime ToCivil(const Time_gbt& time);

/// Reads years (four digits), months, days, hours, minutes and seconds with a fraction from their fields.
/// @return false when a field is not a number or out of range (years 1900 to 2199)
bool ParseCivil(std::string_view year, std::string_view month, std::string_view day, std::string_view hour,
                std::string_view minute, std::string_view second, CivilTime& civil);

/// a - b in seconds.
double Difference(const Time_gbt& a, const Time_gbt& b);

/// Of whole nanoseconds since 1970-01-01.
Time_gbt TimeOfNanoseconds(std::int64_t time_ns);

/// "2020-06-25 00:00:30.000"
std::string TimeText(const Time_gbt& time);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_CIVIL_TIME_H
