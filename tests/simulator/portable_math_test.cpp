// Held against the C library's functions in long double, whose errors lie far below those allowed here.
#include "host/simulator/portable_math.h"

#include <gtest/gtest.h>

#include "host/simulator/random_streams.h"

namespace {

using namespace orsolva_host;

/// Distance in units in the last place of the wanted value.
double Units(double got, long double wanted) {
  const double rounded = static_cast<double>(wanted);
  const double unit = std::fabs(std::nextafter(rounded, HUGE_VAL) - rounded);
  return static_cast<double>(std::fabs(static_cast<long double>(got) - wanted) /
                             static_cast<long double>(unit));
}

constexpr int kDraws = 20000;

TEST(PortableMath, SineAndCosineErrByLessThanTwoUnitsOrTheLastOfOne) {
  const RandomStream stream(1);
  for (std::uint64_t i = 0; i < kDraws; ++i) {
    const double reach = i % 2 == 0 ? 3.2 : 1000;
    const double x = stream.Between(i, -reach, reach);
    const auto [s, c] = SineCosineOf(x);
    // Near a zero of the function the error counts as one of the largest value.
    const long double sine = std::sin(static_cast<long double>(x)),
                      cosine = std::cos(static_cast<long double>(x));
    EXPECT_TRUE(Units(s, sine) < 2 || std::fabs(static_cast<double>(s - sine)) < 2e-16) << x;
    EXPECT_TRUE(Units(c, cosine) < 2 || std::fabs(static_cast<double>(c - cosine)) < 2e-16) << x;
  }
  EXPECT_EQ(Sine(0), 0);
  EXPECT_EQ(Cosine(0), 1);
}

TEST(PortableMath, ArcTangentErrsByLessThanTwoUnitsInEveryQuadrant) {
  const RandomStream stream(2);
  for (std::uint64_t i = 0; i < kDraws; ++i) {
    const double y = stream.Between(2 * i, -1, 1);
    const double x = stream.Between(2 * i + 1, -1, 1) * (i % 3 == 0 ? 1e-4 : 1);
    const long double wanted = std::atan2(static_cast<long double>(y), static_cast<long double>(x));
    EXPECT_LT(Units(ArcTangent(y, x), wanted), 2) << y << ' ' << x;
  }
  EXPECT_EQ(ArcTangent(0, 0), 0);
  EXPECT_EQ(ArcTangent(0, 1), 0);
  EXPECT_DOUBLE_EQ(ArcTangent(1, 0), std::acos(0.0));
  EXPECT_DOUBLE_EQ(ArcTangent(0, -1), std::acos(-1.0));
  EXPECT_DOUBLE_EQ(ArcTangent(-1, 1), -std::atan(1.0));
}

TEST(PortableMath, ArcSineErrsByLessThanFourUnits) {
  const RandomStream stream(3);
  for (std::uint64_t i = 0; i < kDraws; ++i) {
    const double x = stream.Between(i, -1, 1);
    EXPECT_LT(Units(ArcSine(x), std::asin(static_cast<long double>(x))), 4) << x;
  }
  EXPECT_DOUBLE_EQ(ArcSine(1), std::acos(0.0));
  EXPECT_DOUBLE_EQ(ArcSine(-1), -std::acos(0.0));
}

TEST(PortableMath, ExponentialLogarithmAndCubeRootErrByLessThanThreeUnits) {
  const RandomStream stream(4);
  for (std::uint64_t i = 0; i < kDraws; ++i) {
    const double x = stream.Between(i, -40, 40);
    EXPECT_LT(Units(Exponential(x), std::exp(static_cast<long double>(x))), 3) << x;
    const double y = stream.Between(i, 0.25, 1e9);
    const long double log = std::log(static_cast<long double>(y));
    EXPECT_TRUE(Units(Logarithm(y), log) < 3 || std::fabs(static_cast<double>(Logarithm(y) - log)) < 2e-16)
        << y;
    EXPECT_LT(Units(CubeRoot(y), std::cbrt(static_cast<long double>(y))), 3) << y;
  }
  EXPECT_EQ(Exponential(0), 1);
  EXPECT_EQ(Logarithm(1), 0);
}

}  // namespace
