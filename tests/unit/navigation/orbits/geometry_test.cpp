#include "navigation/orbits/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace gnssqctoolkit {
namespace {

constexpr double kHalfPi = 1.5707963267948966;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// Closed form of the ellipsoid, the inverse of EcefToGeodetic.
void ToEcef(double lat, double lon, double height, double out[3]) {
  const double a = 6378137.0, e2 = 0.0066943799901413165;
  const double n = a / std::sqrt(1.0 - e2 * std::sin(lat) * std::sin(lat));
  out[0] = (n + height) * std::cos(lat) * std::cos(lon);
  out[1] = (n + height) * std::cos(lat) * std::sin(lon);
  out[2] = (n * (1.0 - e2) + height) * std::sin(lat);
}

TEST(GeometricRange, AddsTheTurnOfTheEarthDuringTheTravel) {
  const double satellite[3] = {2e7, 1e7, 5e6}, receiver[3] = {6e6, 1e6, 2e6};
  double unit[3];
  const double distance = std::sqrt(14e6 * 14e6 + 9e6 * 9e6 + 3e6 * 3e6);
  const double sagnac = 7.2921151467e-5 * (2e7 * 1e6 - 1e7 * 6e6) / 299792458.0;
  EXPECT_DOUBLE_EQ(GeometricRange(satellite, receiver, unit), distance + sagnac);
  EXPECT_LT(sagnac, -5.0);
  EXPECT_DOUBLE_EQ(unit[0], 14e6 / distance);
  EXPECT_DOUBLE_EQ(unit[2], 3e6 / distance);
}

TEST(GeometricRange, RefusesASatelliteInsideTheEarthAndLeavesTheUnitVector) {
  const double inside[3] = {6378136.9, 0, 0}, on[3] = {6378137.0, 0, 0}, receiver[3] = {0, 0, 6e6};
  double unit[3] = {7, 8, 9};
  EXPECT_EQ(GeometricRange(inside, receiver, unit), -1.0);
  EXPECT_EQ(unit[0], 7);
  EXPECT_EQ(unit[2], 9);
  EXPECT_GT(GeometricRange(on, receiver, unit), 0.0);
}

TEST(AzimuthElevation, CountsFromNorthThroughEast) {
  const GeodeticPosition origin{0.0, 0.0, 0.0};  // up +x, east +y, north +z
  double azel[2];
  const double north[3] = {0, 0, 1}, east[3] = {0, 1, 0}, west[3] = {0, -1, 0};
  EXPECT_DOUBLE_EQ(AzimuthElevation(origin, north, azel), 0.0);
  EXPECT_DOUBLE_EQ(azel[0], 0.0);
  AzimuthElevation(origin, east, azel);
  EXPECT_DOUBLE_EQ(azel[0], kHalfPi);
  AzimuthElevation(origin, west, azel);
  EXPECT_DOUBLE_EQ(azel[0], 3.0 * kHalfPi);  // negative azimuths get a full turn
  const double s = std::sqrt(0.5), half_up[3] = {s, 0, s};
  EXPECT_NEAR(AzimuthElevation(origin, half_up, nullptr), kHalfPi / 2.0, 1e-15);
}

TEST(AzimuthElevation, HasNoAzimuthStraightUp) {
  const GeodeticPosition origin{0.0, 0.0, 0.0};
  double azel[2] = {9, 9};
  const double nearly_up[3] = {1.0, 5e-7, -5e-7};  // east^2 + north^2 = 5e-13
  AzimuthElevation(origin, nearly_up, azel);
  EXPECT_EQ(azel[0], 0.0);
}

TEST(AzimuthElevation, IsStraightUpFromTheGeocentreOrBelow) {
  double azel[2] = {9, 9};
  const double south[3] = {0, 0, -1};
  EXPECT_DOUBLE_EQ(AzimuthElevation({0.0, 0.0, -6378137.0}, south, azel), kHalfPi);
  EXPECT_EQ(azel[0], 0.0);
  EXPECT_DOUBLE_EQ(azel[1], kHalfPi);
  EXPECT_NEAR(AzimuthElevation({0.0, 0.0, -6378136.0}, south, azel), 0.0, 1e-15);
}

TEST(AzimuthElevation, HoldsTheSineOfTheElevationWithinOne) {
  const double a_little_long[3] = {1.0 + 1e-12, 0, 0}, down[3] = {-1.0 - 1e-12, 0, 0};
  EXPECT_DOUBLE_EQ(AzimuthElevation({0.0, 0.0, 0.0}, a_little_long, nullptr), kHalfPi);
  EXPECT_DOUBLE_EQ(AzimuthElevation({0.0, 0.0, 0.0}, down, nullptr), -kHalfPi);
}

TEST(EcefToGeodetic, InvertsTheClosedForm) {
  // The iteration stops when z moves less than 1e-4 m, which leaves less than a micrometre after contraction.
  for (double lat : {-1.5, -0.7, -0.01, 0.02, 0.4, 1.0, 1.55}) {
    for (double lon : {-3.0, 0.1, 2.2}) {
      for (double height : {-200.0, 0.0, 4000.0, 2.02e7}) {
        double ecef[3];
        ToEcef(lat, lon, height, ecef);
        const GeodeticPosition back = EcefToGeodetic(ecef);
        EXPECT_NEAR(back.Latitude, lat, 1e-12);
        EXPECT_NEAR(back.Longitude, lon, 1e-14);
        EXPECT_NEAR(back.Height, height, 2e-6);
      }
    }
  }
}

TEST(EcefToGeodetic, PutsTheAxisAtThePoles) {
  const double north[3] = {0, 0, 6356752.0}, south[3] = {0, 0, -6356752.0}, centre[3] = {0, 0, 0};
  EXPECT_DOUBLE_EQ(EcefToGeodetic(north).Latitude, kHalfPi);
  EXPECT_EQ(EcefToGeodetic(north).Longitude, 0.0);
  EXPECT_NEAR(EcefToGeodetic(north).Height, 6356752.0 - 6356752.314, 1e-3);
  EXPECT_DOUBLE_EQ(EcefToGeodetic(south).Latitude, -kHalfPi);
  EXPECT_DOUBLE_EQ(EcefToGeodetic(centre).Latitude, -kHalfPi);
}

TEST(EcefToGeodetic, DoesNotIterateOnTheEquator) {
  const double equator[3] = {6378137.0 + 12.0, 0, 0.9e-4};
  EXPECT_NEAR(EcefToGeodetic(equator).Height, 12.0, 1e-8);
  const double centre[3] = {0, 0, 0};
  EXPECT_EQ(EcefToGeodetic(centre).Height, -6378137.0);
}

TEST(EcefToGeodetic, NeverPassesThePolesAndIsFiniteForFinitePositions) {
  const double inf = std::numeric_limits<double>::infinity();
  for (double x : {kNaN, inf, 1e300, 1e-300, 40000.0}) {
    for (double z : {kNaN, inf, 1e300, 1.0, 42000.0}) {
      const double position[3] = {x, 0.0, z};
      const GeodeticPosition geodetic = EcefToGeodetic(position);
      EXPECT_FALSE(std::fabs(geodetic.Latitude) > kHalfPi) << x << " " << z;
      if (!(x < 1e100 && z < 1e100)) continue;  // squares that overflow, infinity, not a number
      EXPECT_TRUE(std::isfinite(geodetic.Latitude) && std::isfinite(geodetic.Height)) << x << " " << z;
      EXPECT_EQ(geodetic.Longitude, 0.0) << x << " " << z;
    }
  }
}

}  // namespace
}  // namespace gnssqctoolkit
