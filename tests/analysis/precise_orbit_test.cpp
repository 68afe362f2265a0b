// Interpolation of precise orbits against motions in closed form.
#include <gtest/gtest.h>

#include <cmath>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/constants.h"
#include "host/analysis/geometry/precise_orbit.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::int64_t kBegin_ns = 1593043200LL * kNanosecondsPerSecond;  // 2020-06-25
constexpr std::int64_t kSpacing_ns = 900 * kNanosecondsPerSecond;
constexpr double kRadius_m = 2.66e7;
constexpr double kTurn_rad_s = 2 * kPi / 43080;  // of the satellite

/// A circle about a point 100 km off the Earth's centre, seen from the turning Earth: r v is not zero.
Vector3 PositionAt(double seconds) {
  const double u = kTurn_rad_s * seconds, w = kEarthRotation_rad_s * seconds;
  const double x = kRadius_m * std::cos(u) + 1e5, y = kRadius_m * std::sin(u) * 0.6,
               z = kRadius_m * std::sin(u) * 0.8;
  return {x * std::cos(w) + y * std::sin(w), -x * std::sin(w) + y * std::cos(w), z};
}

std::vector<PrecisePoint> Points(int count) {
  std::vector<PrecisePoint> points(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    PrecisePoint& p = points[static_cast<std::size_t>(i)];
    p.time_ns = kBegin_ns + i * kSpacing_ns;
    p.position_m = PositionAt(900.0 * i);
    p.clock_s = 1e-4 + 1e-11 * 900 * i;
  }
  return points;
}

Instant At(double seconds) {
  const auto whole = static_cast<std::int64_t>(seconds);
  return {kBegin_ns + whole * kNanosecondsPerSecond, seconds - static_cast<double>(whole)};
}

double Distance(const Vector3& a, const Vector3& b) {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

TEST(PreciseOrbit, ReproducesAnOrbitToATenthOfAMillimetreInside) {
  const std::vector<PrecisePoint> points = Points(20);
  PreciseOrbit orbit(points);
  for (double t = 4 * 900; t < 15 * 900; t += 97.3) {
    EXPECT_LT(Distance(orbit.StateAt(At(t)).position_m, PositionAt(t)), 1e-4) << t;
  }
}

TEST(PreciseOrbit, IsGoodToMillimetresInTheFirstAndLastStep) {
  const std::vector<PrecisePoint> points = Points(20);
  PreciseOrbit orbit(points);
  for (const double t : {450.0, 18 * 900 + 450.0}) {
    EXPECT_LT(Distance(orbit.StateAt(At(t)).position_m, PositionAt(t)), 3e-3) << t;
  }
}

TEST(PreciseOrbit, GivesItsPointsAtTheirTimes) {
  const std::vector<PrecisePoint> points = Points(12);
  PreciseOrbit orbit(points);
  for (int i = 0; i < 12; ++i) {
    ASSERT_TRUE(orbit.Covers(kBegin_ns + i * kSpacing_ns));
    const SatelliteState state = orbit.StateAt(At(900.0 * i));
    EXPECT_LT(Distance(state.position_m, points[static_cast<std::size_t>(i)].position_m), 1e-7) << i;
    EXPECT_NEAR(orbit.ClockAt(At(900.0 * i)), points[static_cast<std::size_t>(i)].clock_s, 1e-19);
  }
}

// The circle lies 1e5 m off the centre along x: r v = -1e5 * kRadius_m * kTurn_rad_s * sin(u).
TEST(PreciseOrbit, AddsTheRelativityOfAnEccentricOrbitToALinearClock) {
  const std::vector<PrecisePoint> points = Points(20);
  PreciseOrbit orbit(points);
  const double t = 10 * 900 + 300;
  const double u = kTurn_rad_s * t;
  const double radius_times_speed = -1e5 * kRadius_m * kTurn_rad_s * std::sin(u);
  const double relativity = -2 * radius_times_speed / (kLightSpeed_m_s * kLightSpeed_m_s);
  const SatelliteState state = orbit.StateAt(At(t));
  EXPECT_NEAR(orbit.ClockAt(At(t)), 1e-4 + 1e-11 * t, 1e-18);
  EXPECT_NEAR(state.clock_s - orbit.ClockAt(At(t)), relativity, 1e-15);
}

TEST(PreciseOrbit, CoversNothingOutsideItsPointsAndNothingWithLessThanTen) {
  const std::vector<PrecisePoint> ten = Points(10), nine = Points(9), none;
  EXPECT_TRUE(PreciseOrbit(ten).Covers(kBegin_ns));
  EXPECT_TRUE(PreciseOrbit(ten).Covers(kBegin_ns + 9 * kSpacing_ns));
  EXPECT_FALSE(PreciseOrbit(ten).Covers(kBegin_ns - 1));
  EXPECT_FALSE(PreciseOrbit(ten).Covers(kBegin_ns + 9 * kSpacing_ns + 1));
  EXPECT_FALSE(PreciseOrbit(nine).Covers(kBegin_ns + 4 * kSpacing_ns));
  EXPECT_FALSE(PreciseOrbit(none).Covers(kBegin_ns));
}

TEST(PreciseOrbit, StopsAtAMissingPointAndGoesOnAfterIt) {
  std::vector<PrecisePoint> points = Points(30);
  points.erase(points.begin() + 12);
  PreciseOrbit orbit(points);
  EXPECT_TRUE(orbit.Covers(At(11 * 900 - 1).ns));
  EXPECT_FALSE(orbit.Covers(At(11 * 900 + 1).ns));
  EXPECT_FALSE(orbit.Covers(At(13 * 900 - 1).ns));
  EXPECT_TRUE(orbit.Covers(At(13 * 900).ns));
  EXPECT_LT(Distance(orbit.StateAt(At(10 * 900 + 450)).position_m, PositionAt(10 * 900 + 450)), 3e-3);
}

TEST(PreciseOrbit, StopsAtAManeuver) {
  std::vector<PrecisePoint> points = Points(30);
  points[12].flags = kManeuver;
  PreciseOrbit orbit(points);
  EXPECT_TRUE(orbit.Covers(At(10 * 900 + 1).ns));
  EXPECT_FALSE(orbit.Covers(At(11 * 900 + 1).ns));
  EXPECT_TRUE(orbit.Covers(At(12 * 900).ns));
}

TEST(PreciseOrbit, StopsWhereTheClockIsAbsentOrJumps) {
  std::vector<PrecisePoint> points = Points(30);
  points[5].clock_s = kAbsent;
  points[20].flags = kClockEvent;
  PreciseOrbit orbit(points);
  EXPECT_FALSE(orbit.Covers(At(5 * 900 - 1).ns));
  EXPECT_FALSE(orbit.Covers(At(5 * 900 + 1).ns));
  EXPECT_TRUE(orbit.Covers(At(6 * 900).ns));
  EXPECT_FALSE(orbit.Covers(At(20 * 900 - 1).ns));
  EXPECT_TRUE(orbit.Covers(At(20 * 900).ns));
}

TEST(PreciseOrbit, DoesNotDependOnWhatWasAskedBefore) {
  const std::vector<PrecisePoint> points = Points(30);
  PreciseOrbit fresh(points), used(points);
  for (const double t : {100.0, 20000.5, 9000.0, 25000.25}) used.StateAt(At(t));
  EXPECT_EQ(fresh.StateAt(At(12345.5)).position_m, used.StateAt(At(12345.5)).position_m);
}

TEST(BroadcastStore, PrefersThePreciseOrbitWhereItCoversATime) {
  BroadcastRecords records;
  KeplerRecord record;
  record.satellite = {'G', 7};
  record.toe_s = record.toc_s = 1593043200;
  records.kepler = {record};
  PreciseOrbits orbits;
  orbits.satellites[{'G', 7}] = Points(10);
  orbits.satellites[{'G', 8}] = Points(10);
  BroadcastStore store;
  store.Add(records);
  store.Add(orbits);
  EXPECT_EQ(store.Find({'G', 7})->Select(At(60).ns), kPreciseOrbit);
  EXPECT_EQ(store.Find({'G', 7})->Select(At(-60).ns), 0U);
  EXPECT_FALSE(store.Find({'G', 8})->Select(At(-60).ns).has_value());
  EXPECT_LT(Distance(store.Find({'G', 8})->StateAt(kPreciseOrbit, At(450)).position_m, PositionAt(450)),
            3e-3);
}

}  // namespace
}  // namespace orsolva_host::analysis
