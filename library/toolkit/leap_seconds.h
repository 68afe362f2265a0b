// GPS time minus UTC, as announced in IERS Bulletin C. Newest row first; a row with year 0 ends the table.
#ifndef ORSOLVA_TOOLKIT_LEAP_SECONDS_H
#define ORSOLVA_TOOLKIT_LEAP_SECONDS_H

#include <cstdint>

namespace gnssqctoolkit {

/// From 00:00 UTC of the date on, UTC is `seconds` behind GPS time.
struct LeapSecondRow {
  std::int32_t year;
  std::int8_t month;
  std::int8_t day;
  std::int8_t seconds;
};

// clang-format off
inline constexpr LeapSecondRow kLeapSeconds[] = {
    {2017, 1, 1, 18},
    {2015, 7, 1, 17},
    {2012, 7, 1, 16},
    {2009, 1, 1, 15},
    {2006, 1, 1, 14},
    {1999, 1, 1, 13},
    {1997, 7, 1, 12},
    {1996, 1, 1, 11},
    {1994, 7, 1, 10},
    {1993, 7, 1,  9},
    {1992, 7, 1,  8},
    {1991, 1, 1,  7},
    {1990, 1, 1,  6},
    {1988, 1, 1,  5},
    {1985, 7, 1,  4},
    {1983, 7, 1,  3},
    {1982, 7, 1,  2},
    {1981, 7, 1,  1},
    {   0, 0, 0,  0},
};
// clang-format on

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_LEAP_SECONDS_H
