#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "navigation/orbits/orbits.h"
#include "tests/support/exact_sky.h"

namespace gnssqctoolkit {
namespace {

using orsolva_test::GlonassRecord;

AbsoluteTime After(const GloEph_gbt& r, double seconds) {
  return AbsoluteTimeAdd({r.toe.time, r.toe.sec}, seconds);
}

void Start(const GloEph_gbt& r, double state[6], double acceleration[3]) {
  const double s[6] = {r.x, r.y, r.z, r.vx, r.vy, r.vz}, a[3] = {r.ax, r.ay, r.az};
  for (int i = 0; i < 6; ++i) state[i] = s[i] * 1000.0;
  for (int i = 0; i < 3; ++i) acceleration[i] = a[i] * 1000.0;
}

GloEph_gbt WithAcceleration() {
  GloEph_gbt r = GlonassRecord(5);
  r.ax = 1e-9, r.ay = -2e-9, r.az = 3e-9;
  return r;
}

TEST(GlonassOrbit, StepsSixtySixtyFiveFor125Seconds) {
  const GloEph_gbt r = WithAcceleration();
  double state[6], acceleration[3], position[3], clock;
  Start(r, state, acceleration);
  for (double step : {60.0, 60.0, 5.0}) ASSERT_TRUE(GlonassStep(step, state, acceleration));
  ASSERT_EQ(GlonassOrbit(After(r, 125.0), r, position, clock), 1);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(position[i], state[i]);
}

TEST(GlonassOrbit, TakesOneStepBackFor30Seconds) {
  const GloEph_gbt r = WithAcceleration();
  double state[6], acceleration[3], position[3], clock;
  Start(r, state, acceleration);
  ASSERT_TRUE(GlonassStep(-30.0, state, acceleration));
  ASSERT_EQ(GlonassOrbit(After(r, -30.0), r, position, clock), 1);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(position[i], state[i]);
}

TEST(GlonassOrbit, IsTheStateAtTheReference) {
  const GloEph_gbt r = WithAcceleration();
  double position[3], clock;
  ASSERT_EQ(GlonassOrbit(After(r, 0.0), r, position, clock), 1);
  EXPECT_EQ(position[0], r.x * 1000.0);
  EXPECT_EQ(position[1], r.y * 1000.0);
  EXPECT_EQ(position[2], r.z * 1000.0);
  EXPECT_EQ(clock, r.clock_bias);
}

TEST(GlonassOrbit, ComesBackToItsStart) {
  const GloEph_gbt r = WithAcceleration();
  double state[6], start[6], acceleration[3];
  Start(r, state, acceleration);
  Start(r, start, acceleration);
  for (int i = 0; i < 30; ++i) GlonassStep(60.0, state, acceleration);
  for (int i = 0; i < 30; ++i) GlonassStep(-60.0, state, acceleration);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(state[i], start[i], 1e-4);  // fourth order, 60 s
}

// GLONASS ICD, edition 5.1, appendix 3.1: the energy of the motion in the turning frame (the Jacobi constant)
// does not change while no lunisolar acceleration acts.
TEST(GlonassOrbit, KeepsTheJacobiConstant) {
  const double gm = 3.9860044e14, j2 = 1.0826257e-3, re = 6378136.0, omega = 7.292115e-5;
  const auto constant = [&](const double s[6]) {
    const double r = std::sqrt(s[0] * s[0] + s[1] * s[1] + s[2] * s[2]);
    const double sin2 = s[2] * s[2] / (r * r);
    const double potential = gm / r * (1.0 - j2 * re * re / (r * r) * (1.5 * sin2 - 0.5));
    return 0.5 * (s[3] * s[3] + s[4] * s[4] + s[5] * s[5]) - potential -
           0.5 * omega * omega * (s[0] * s[0] + s[1] * s[1]);
  };
  double state[6], none[3];
  Start(GlonassRecord(7), state, none);
  const double before = constant(state);
  for (int i = 0; i < 60; ++i) GlonassStep(60.0, state, none);
  EXPECT_NEAR(constant(state) / before, 1.0, 1e-10);
}

TEST(GlonassOrbit, ReadsItsClockAtTheTime) {
  const GloEph_gbt r = WithAcceleration();
  double position[3], clock;
  ASSERT_EQ(GlonassOrbit(After(r, -400.0), r, position, clock), 1);
  EXPECT_EQ(clock, r.clock_bias + r.clock_rate * -400.0);
}

TEST(GlonassTrajectory, KeptTrajectoryChangesNoBit) {
  const GloEph_gbt records[] = {WithAcceleration(), GlonassRecord(6)};
  GlonassTrajectory kept;
  // Forwards, backwards, shorter and longer spans, and two records in turn.
  for (double seconds : {0.0, 30.0, 725.0, -90.0, 60.0, -1800.0, 900.5, 3600.0, -0.5, 2e-10}) {
    for (const GloEph_gbt& r : records) {
      double anew[3], again[3], clock_anew, clock_again;
      ASSERT_EQ(GlonassOrbit(After(r, seconds), r, anew, clock_anew), 1);
      ASSERT_EQ(GlonassOrbit(After(r, seconds), r, kept, again, clock_again), 1);
      for (int i = 0; i < 3; ++i) EXPECT_EQ(anew[i], again[i]) << seconds;
      EXPECT_EQ(clock_anew, clock_again);
    }
  }
}

TEST(GlonassOrbit, FailsAtTheGeocentre) {
  GloEph_gbt r{};
  r.toe = {orsolva_test::kSkyTime, 0.0};
  double position[3] = {1, 2, 3}, clock = 4;
  EXPECT_EQ(GlonassOrbit(After(r, 60.0), r, position, clock), 0);
  EXPECT_EQ(position[0], 1);
  EXPECT_EQ(clock, 4);
}

TEST(GlonassOrbit, EndsForAbsurdTimes) {
  const GloEph_gbt r = WithAcceleration();
  double position[3], clock;
  EXPECT_EQ(GlonassOrbit({std::numeric_limits<std::int64_t>::max(), 0.0}, r, position, clock), 0);
  EXPECT_EQ(GlonassOrbit({0, std::numeric_limits<double>::quiet_NaN()}, r, position, clock), 0);
  EXPECT_EQ(GlonassOrbit(After(r, 200000.0), r, position, clock), 0);
  EXPECT_EQ(GlonassOrbit(After(r, 86400.0), r, position, clock), 1);
}

}  // namespace
}  // namespace gnssqctoolkit
