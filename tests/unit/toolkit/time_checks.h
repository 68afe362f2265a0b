// Comparisons of times to the last bit.
#ifndef ORSOLVA_TESTS_UNIT_TOOLKIT_TIME_CHECKS_H
#define ORSOLVA_TESTS_UNIT_TOOLKIT_TIME_CHECKS_H

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>

#include "toolkit/time.h"

namespace gnssqctoolkit {

inline constexpr std::int64_t kMinInt64 = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t kMaxInt64 = std::numeric_limits<std::int64_t>::max();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

inline void ExpectSameBits(const AbsoluteTime& a, const AbsoluteTime& b) {
  EXPECT_EQ(a.Seconds, b.Seconds);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(a.Fraction), std::bit_cast<std::uint64_t>(b.Fraction))
      << a.Fraction << " and " << b.Fraction;
}

inline void ExpectZeroTime(const GNSSTime& t) {
  EXPECT_EQ(t.Year(), 0);
  EXPECT_EQ(t.Month(), 0);
  EXPECT_EQ(t.Day(), 0);
  EXPECT_EQ(t.Week(), 0);
  EXPECT_EQ(t.SecondsOfWeek(), 0.0);
  ExpectSameBits(t.Absolute(), {0, 0.0});
}

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TESTS_UNIT_TOOLKIT_TIME_CHECKS_H
