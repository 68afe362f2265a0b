// Orbits, clocks, station and troposphere against laws and published values.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/constants.h"
#include "host/analysis/geometry/range_model.h"
#include "host/analysis/geometry/satellite_orbit.h"
#include "host/analysis/geometry/station.h"
#include "host/analysis/slips/glonass_channel.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kToe_s = 1593064800;  // 2020-06-25 06:00:00

Instant At(double seconds_after_toe) {
  return {static_cast<std::int64_t>(kToe_s) * kNanosecondsPerSecond, seconds_after_toe};
}

double Length(const Vector3& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

KeplerRecord Elliptic(char system, int number) {
  KeplerRecord r;
  r.satellite = {system, static_cast<std::uint8_t>(number)};
  r.toe_s = r.toc_s = kToe_s;
  r.sqrt_a = 5153.7;
  r.eccentricity = 0.01;
  r.i0 = 0.96;
  r.m0 = 1.2;
  r.omega0 = 0.3;
  r.omega = -0.7;
  r.af0 = 1e-4;
  r.af1 = 2e-11;
  r.toe_of_week_s = 367200;
  return r;
}

StateVectorRecord Glonass() {
  StateVectorRecord r;
  r.satellite = {'R', 5};
  r.toe_s = kToe_s;
  r.position_m[0] = 12e6, r.position_m[1] = 15e6, r.position_m[2] = 16.9e6;
  r.velocity_m_s[0] = 2100, r.velocity_m_s[1] = 500, r.velocity_m_s[2] = -1900;
  return r;
}

TEST(KeplerState, RadiusStaysBetweenPerigeeAndApogee) {
  const KeplerRecord r = Elliptic('G', 7);
  const double a = r.sqrt_a * r.sqrt_a;
  for (int t = -7200; t <= 7200; t += 600) {
    const double radius = Length(KeplerState(r, At(t)).position_m);
    EXPECT_GE(radius, a * (1 - r.eccentricity) - 1e-3);
    EXPECT_LE(radius, a * (1 + r.eccentricity) + 1e-3);
  }
}

// IS-GPS-200, 20.3.3.3.3.1: F e sqrt(A) sin E with F = -4.442807633e-10 s/m^0.5.
TEST(KeplerState, ClockHasTheRelativisticPartOfTheInterfaceDocument) {
  KeplerRecord r = Elliptic('G', 7);
  r.m0 = kPi / 2 - r.eccentricity;  // E = 90 degrees: M = E - e
  const double relativity = KeplerState(r, At(0)).clock_s - KeplerClock(r, At(0));
  EXPECT_NEAR(relativity, -4.442807633e-10 * r.eccentricity * r.sqrt_a, 1e-16);
}

TEST(KeplerState, GeostationaryBdsSatellitesAreTurnedAndOthersAreNot) {
  const Vector3 c05 = KeplerState(Elliptic('C', 5), At(0)).position_m;
  const Vector3 c06 = KeplerState(Elliptic('C', 6), At(0)).position_m;
  EXPECT_GT(std::fabs(c05[2] - c06[2]), 1e5);
  EXPECT_NEAR(Length(c05), Length(c06), 1e-6);
}

TEST(StateVectorOrbit, DoesNotDependOnWhatWasAskedBefore) {
  const StateVectorRecord record = Glonass();
  StateVectorOrbit fresh(record);
  StateVectorOrbit used(record);
  for (const double t : {1799.5, -900.25, 60.0, 0.5, 1200.0}) used.At(At(t));
  const Vector3 a = fresh.At(At(733.25)).position_m;
  const Vector3 b = used.At(At(733.25)).position_m;
  EXPECT_EQ(a, b);
}

/// Potential and kinetic energy in the rotating frame stay together without forces of Sun and Moon (Jacobi's
/// constant).
TEST(StateVectorOrbit, KeepsTheJacobiConstant) {
  const StateVectorRecord record = Glonass();
  StateVectorOrbit orbit(record);
  const auto constant = [&](double t) {
    const Vector3 p = orbit.At(At(t)).position_m;
    const Vector3 before = orbit.At(At(t - 0.5)).position_m, after = orbit.At(At(t + 0.5)).position_m;
    double v2 = 0;
    for (std::size_t i = 0; i < 3; ++i) v2 += (after[i] - before[i]) * (after[i] - before[i]);
    const double r = Length(p);
    const double w = kEarthRotation_rad_s;
    const double sine = p[2] / r;
    const double oblate = kJ2Glonass * std::pow(kEarthRadiusGlonass_m / r, 2) * (1.5 * sine * sine - 0.5);
    return v2 / 2 - w * w * (p[0] * p[0] + p[1] * p[1]) / 2 - kGravityGlonass_m3_s2 / r * (1 - oblate);
  };
  // 0.05 m^2/s^2 of 2e7 is what central differences over a second leave.
  EXPECT_NEAR(constant(0), constant(1500), 0.5);
}

TEST(BroadcastStore, ChoosesTheNearestRecordAndNoneThatIsTooOld) {
  BroadcastRecords records;
  for (const double hours : {0.0, 2.0, 4.0}) {
    records.kepler.push_back(Elliptic('G', 7));
    records.kepler.back().toe_s = kToe_s + 3600 * hours;
  }
  BroadcastStore store;
  store.Add(records);
  SatelliteRecords* g07 = store.Find({'G', 7});
  ASSERT_NE(g07, nullptr);
  const auto at = [&](double seconds) {
    return g07->Select(static_cast<std::int64_t>(kToe_s + seconds) * kNanosecondsPerSecond);
  };
  EXPECT_EQ(at(3599), 0U);
  EXPECT_EQ(at(3600), 0U);
  EXPECT_EQ(at(3601), 1U);
  EXPECT_EQ(at(4 * 3600 + 7500), 2U);
  EXPECT_FALSE(at(4 * 3600 + 7501));
  EXPECT_EQ(store.Find({'G', 8}), nullptr);
}

TEST(BroadcastStore, LeavesGalileoFnavOutWhereThereIsInav) {
  BroadcastRecords records;
  records.kepler = {Elliptic('E', 1), Elliptic('E', 1)};
  records.kepler[0].second_message = true;
  records.kepler[0].af0 = 5e-4;
  BroadcastStore store;
  store.Add(records);
  EXPECT_NEAR(store.Find({'E', 1})->ClockAt(0, At(0)), 1e-4, 1e-12);
}

TEST(Station, GeodeticOfTheSemiAxes) {
  EXPECT_NEAR(ToGeodetic({6378137.0, 0, 0}).height_m, 0, 1e-6);
  const Geodetic pole = ToGeodetic({0, 0, 6356752.314245});
  EXPECT_NEAR(pole.latitude_rad, kPi / 2, 1e-12);
  EXPECT_NEAR(pole.height_m, 0, 1e-5);
}

// Saastamoinen 1972: about 2.3 m dry and 0.1 m wet at sea level; Niell 1996: mapping near 10.15 at 5 degrees.
TEST(Station, TroposphereAtTheZenithAndAtFiveDegrees) {
  const Station station({6378137.0, 0, 0});
  const double zenith = station.TroposphereDelay(1);
  EXPECT_GT(zenith, 2.2);
  EXPECT_LT(zenith, 2.7);
  EXPECT_NEAR(station.TroposphereDelay(std::sin(5 * kPi / 180)) / zenith, 10.15, 0.1);
}

TEST(RangeAt, ReceiverClockShiftsTagAndCodeAlikeAndChangesNothingElse) {
  BroadcastRecords records;
  records.kepler = {Elliptic('G', 7)};
  BroadcastStore store;
  store.Add(records);
  SatelliteRecords& g07 = *store.Find({'G', 7});
  const Vector3 satellite = KeplerState(records.kepler[0], At(-0.07)).position_m;
  const double scale = 6.371e6 / Length(satellite);
  const Station station({satellite[0] * scale, satellite[1] * scale, satellite[2] * scale});
  const std::int64_t tag = At(0).ns;
  const double code = 2.02e7;
  const ModelledRange a = RangeAt(g07, 0, station, tag, code);
  const ModelledRange b = RangeAt(g07, 0, station, tag + 1000000, code + 1e-3 * kLightSpeed_m_s);
  ASSERT_TRUE(a.valid);
  EXPECT_NEAR(a.metres, b.metres, 1e-6);
  EXPECT_NEAR(a.sin_elevation, 1, 1e-2);
}

TEST(GlonassChannel, ComesFromCodeAndPhase) {
  for (int channel = -7; channel <= 6; ++channel) {
    GlonassChannel learned;
    const double wavelength = kLightSpeed_m_s / (1602e6 + 0.5625e6 * channel);
    for (int i = 0; i < 20; ++i) {
      const double range = 2.1e7 + 15000.0 * i;
      EXPECT_TRUE(!learned.Known() || *learned.Known() == channel);
      learned.Add(range + (i % 3) * 0.5, range / wavelength + 12345.0);
    }
    EXPECT_EQ(learned.Known(), channel);
  }
}

TEST(GlonassChannel, ASlipOfManyCyclesBeginsAgain) {
  GlonassChannel learned;
  const double wavelength = kLightSpeed_m_s / 1602e6;
  for (int i = 0; i < 10; ++i) learned.Add(2.1e7 + 15000.0 * i, (2.1e7 + 15000.0 * i) / wavelength);
  for (int i = 10; i < 20; ++i) learned.Add(2.1e7 + 15000.0 * i, (2.1e7 + 15000.0 * i) / wavelength + 9000);
  EXPECT_FALSE(learned.Known().has_value());
}

TEST(BroadcastStore, LeavesOutARecordWhoseClockIsOfNoTimeNearIts) {
  for (const double toc_s : {-std::numeric_limits<double>::infinity(), kAbsent, 1e300, kToe_s + 604801}) {
    KeplerRecord record = Elliptic('G', 1);
    record.toc_s = toc_s;
    BroadcastStore store;
    store.Add({{record, Elliptic('G', 2)}, {}});
    ASSERT_NE(store.Find({'G', 1}), nullptr);
    const auto time_ns = static_cast<std::int64_t>(kToe_s) * kNanosecondsPerSecond;
    EXPECT_FALSE(store.Find({'G', 1})->Select(time_ns)) << toc_s;
    EXPECT_TRUE(store.Find({'G', 2})->Select(time_ns));
  }
}

}  // namespace
}  // namespace orsolva_host::analysis
