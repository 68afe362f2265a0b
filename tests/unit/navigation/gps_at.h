// Times and records counted from the time of tests/support/exact_sky.h.
#ifndef ORSOLVA_TESTS_UNIT_NAVIGATION_GPS_AT_H
#define ORSOLVA_TESTS_UNIT_NAVIGATION_GPS_AT_H

#include <cstdint>
#include <limits>

#include "tests/support/exact_sky.h"

namespace gnssqctoolkit {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

inline AbsoluteTime At(double seconds) { return AbsoluteTimeAdd({orsolva_test::kSkyTime, 0.0}, seconds); }

/// A record whose reference and clock time lie `seconds` after the sky's.
inline GpsEph_gbt GpsAt(std::int32_t prn, double seconds, std::int32_t iode = 1) {
  GpsEph_gbt r = orsolva_test::GpsRecord(prn);
  r.toes += seconds;
  const AbsoluteTime toc = At(seconds);
  r.toc = {toc.Seconds, toc.Fraction};
  r.iode = iode;
  return r;
}

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TESTS_UNIT_NAVIGATION_GPS_AT_H
