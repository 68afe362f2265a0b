#include "navigation/positioning/atmosphere.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace gnssqctoolkit {
namespace {

const double kZero[8] = {};
const double kDefaults[8] = {5.5879e-09, 1.4901e-08, -5.9605e-08, -1.1921e-07,
                             77824.0,    32768.0,    -65536.0,    -262140.0};
const GeodeticPosition kMiddle{0.7, 0.2, 100.0}, kSouth{-1.4, -2.0, 0.0};
const double kHigh[2] = {1.0, 0.9}, kLow[2] = {3.0, 0.2};

TEST(KlobucharDelay, TakesTheDefaultSetForAllZeroCoefficients) {
  const AbsoluteTime t{1599134400, 0.25};
  EXPECT_EQ(KlobucharDelay(t, kMiddle, kHigh, kZero), KlobucharDelay(t, kMiddle, kHigh, kDefaults));
  double other[8];
  for (int i = 0; i < 8; ++i) other[i] = kDefaults[i] * 1.5;
  EXPECT_NE(KlobucharDelay(t, kMiddle, kHigh, kZero), KlobucharDelay(t, kMiddle, kHigh, other));
}

// Expected values: the formulas of the broadcast model, with the reduced seconds in integers of any size, in
// Python.
TEST(KlobucharDelay, AgreesWithTheModelOnTheReducedTime) {
  EXPECT_NEAR(KlobucharDelay({1599134400, 0.25}, kMiddle, kHigh, kZero), 2.40889769533103, 1e-11);
  EXPECT_NEAR(KlobucharDelay({1599134407, 0.0}, kMiddle, kHigh, kZero), 2.40813858053918, 1e-11);
  EXPECT_NEAR(KlobucharDelay({1599134400, 0.25}, kSouth, kLow, kZero), 3.93124006201922, 1e-11);
}

TEST(KlobucharDelay, ReducesTheSecondsBySevensInThirtyTwoBitsSoThatNoonMayBeNight) {
  // 12:00:00 GPS time near Greenwich, where the model on the second of the day is far above its nightly
  // floor.
  EXPECT_NEAR(KlobucharDelay({1593000000, 0.0}, kMiddle, kHigh, kZero), 1.84531651794442, 1e-11);
}

TEST(KlobucharDelay, IsNightlyFloorBeyondTheHalfPeriod) {
  const double slant = 1.0 + 16.0 * std::pow(0.53 - 0.9 / 3.1415926535897932, 3.0);
  EXPECT_NEAR(KlobucharDelay({1600000003, 0.5}, kMiddle, kHigh, kZero), 299792458.0 * slant * 5e-9, 1e-12);
}

TEST(KlobucharDelay, IsZeroBelowTheHorizonAndDeepUnderground) {
  const AbsoluteTime t{1599134400, 0.0};
  const double level[2] = {1.0, 0.0};
  EXPECT_EQ(KlobucharDelay(t, kMiddle, level, kZero), 0.0);
  EXPECT_EQ(KlobucharDelay(t, {0.7, 0.2, -1000.1}, kHigh, kZero), 0.0);
  EXPECT_GT(KlobucharDelay(t, {0.7, 0.2, -1000.0}, kHigh, kZero), 0.0);
}

TEST(KlobucharDelay, LimitsAmplitudeAndPeriod) {
  const AbsoluteTime t{1599134400, 0.0};
  const double negative[8] = {-1e-7, 0, 0, 0, 77824, 0, 0, 0};
  const double slant = 1.0 + 16.0 * std::pow(0.53 - 0.9 / 3.1415926535897932, 3.0);
  EXPECT_NEAR(KlobucharDelay(t, kMiddle, kHigh, negative), 299792458.0 * slant * 5e-9, 1e-12);
  const double brief[8] = {1e-8, 0, 0, 0, 1000, 0, 0, 0}, floor[8] = {1e-8, 0, 0, 0, 72000, 0, 0, 0};
  EXPECT_EQ(KlobucharDelay(t, kMiddle, kHigh, brief), KlobucharDelay(t, kMiddle, kHigh, floor));
}

TEST(KlobucharDelay, StaysBetweenNightAndNoonForAbsurdTimes) {
  const double slant = 1.0 + 16.0 * std::pow(0.53 - 0.9 / 3.1415926535897932, 3.0);
  const double night = 299792458.0 * slant * 5e-9;
  for (std::int64_t s :
       {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
    for (double fraction : {0.0, 0.5, 1e300, -1e300}) {
      const double delay = KlobucharDelay({s, fraction}, kMiddle, kHigh, kZero);
      EXPECT_GE(delay, night - 1e-12) << s << " " << fraction;
      EXPECT_LE(delay, 100.0) << s << " " << fraction;
    }
    // What is not a time is night.
    const double unknown =
        KlobucharDelay({s, std::numeric_limits<double>::quiet_NaN()}, kMiddle, kHigh, kZero);
    EXPECT_NEAR(unknown, night, 1e-12);
  }
}

TEST(SaastamoinenDelay, IsAboutTwoAndAHalfMetresAtTheZenithOfTheSea) {
  const double dry_air = SaastamoinenDelay({0.785398, 0.0, 0.0}, 1.5707963267948966, 0.0);
  EXPECT_NEAR(dry_air, 0.0022768 * 1013.25, 1e-8);  // cos(2 lat) = 0 at 45 degrees
  const double moist = SaastamoinenDelay({0.785398, 0.0, 0.0}, 1.5707963267948966, 0.7);
  EXPECT_NEAR(moist - dry_air, 0.12, 0.02);
}

TEST(SaastamoinenDelay, GrowsAsTheCosecantOfTheElevation) {
  const GeodeticPosition at{0.7, 0.0, 300.0};
  EXPECT_NEAR(SaastamoinenDelay(at, 0.5, 0.7) * std::sin(0.5),
              SaastamoinenDelay(at, 1.2, 0.7) * std::sin(1.2), 1e-12);
}

TEST(SaastamoinenDelay, IsZeroOutsideItsAtmosphere) {
  EXPECT_EQ(SaastamoinenDelay({0.7, 0.0, -100.1}, 1.0, 0.7), 0.0);
  EXPECT_EQ(SaastamoinenDelay({0.7, 0.0, 10000.1}, 1.0, 0.7), 0.0);
  EXPECT_EQ(SaastamoinenDelay({0.7, 0.0, 0.0}, 0.0, 0.7), 0.0);
  EXPECT_GT(SaastamoinenDelay({0.7, 0.0, -50.0}, 1.0, 0.7), 2.0);
}

}  // namespace
}  // namespace gnssqctoolkit
