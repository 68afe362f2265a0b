#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "navigation/orbits/orbits.h"
#include "tests/support/trace_recorder.h"
#include "toolkit/satellite.h"

namespace gnssqctoolkit {
namespace {

constexpr double kGm = 3.986004418e14, kOmega = 7.292115e-5;
const KeplerModel kModel{kGm, kOmega, false};
const AbsoluteTime kToe{1599134400, 0.0};

KeplerElements Circular() {
  KeplerElements el{};
  el.Prn = 12;
  el.SqrtA = 5282.6;
  el.M0 = 0.4;
  el.Omg0 = 0.7;
  el.I0 = 0.95;
  el.Omg = 0.2;
  el.Toes = 388800.0;
  return el;
}

AbsoluteTime After(double seconds) { return AbsoluteTimeAdd(kToe, seconds); }

TEST(KeplerOrbit, OfACircleIsTheClosedForm) {
  const KeplerElements el = Circular();
  const double tk = 1234.5, radius = el.SqrtA * el.SqrtA;
  const double u = el.M0 + std::sqrt(kGm / (radius * radius * radius)) * tk + el.Omg;
  const double node = el.Omg0 - kOmega * tk - kOmega * el.Toes;
  double position[3], clock;
  ASSERT_EQ(KeplerOrbit(kModel, After(tk), kToe, {}, el, position, clock), 1);
  EXPECT_NEAR(position[0],
              radius * (std::cos(u) * std::cos(node) - std::sin(u) * std::cos(el.I0) * std::sin(node)), 1e-5);
  EXPECT_NEAR(position[1],
              radius * (std::cos(u) * std::sin(node) + std::sin(u) * std::cos(el.I0) * std::cos(node)), 1e-5);
  EXPECT_NEAR(position[2], radius * std::sin(u) * std::sin(el.I0), 1e-5);
}

TEST(KeplerOrbit, HoldsEachCorrection) {
  // At M0 = omg = 0 and the reference time the argument of latitude is zero: cosine terms act, sine terms do
  // not.
  KeplerElements el = Circular();
  el.M0 = 0.0;
  el.Omg = 0.0;
  el.Omg0 = kOmega * el.Toes;
  el.Crc = 100.0;
  el.Crs = 5000.0;
  double position[3], clock;
  ASSERT_EQ(KeplerOrbit(kModel, kToe, kToe, {}, el, position, clock), 1);
  EXPECT_NEAR(position[0], el.SqrtA * el.SqrtA + 100.0, 1e-6);
  el.Cuc = 1e-3;
  el.Cus = 0.5;
  ASSERT_EQ(KeplerOrbit(kModel, kToe, kToe, {}, el, position, clock), 1);
  EXPECT_NEAR(std::atan2(std::hypot(position[1], position[2]), position[0]), 1e-3, 1e-12);
  el.Cic = 2e-3;
  el.Cis = 0.5;
  ASSERT_EQ(KeplerOrbit(kModel, kToe, kToe, {}, el, position, clock), 1);
  EXPECT_NEAR(std::atan2(position[2], position[1]), el.I0 + 2e-3, 1e-9);
  // At a quarter turn the argument doubles to pi: the cosine terms change sign.
  el.Omg = 1.5707963267948966;
  el.Cuc = el.Cus = el.Cic = el.Cis = 0.0;
  ASSERT_EQ(KeplerOrbit(kModel, kToe, kToe, {}, el, position, clock), 1);
  EXPECT_NEAR(std::sqrt(position[0] * position[0] + position[1] * position[1] + position[2] * position[2]),
              el.SqrtA * el.SqrtA - 100.0, 1e-3);
}

TEST(KeplerOrbit, DriftsByItsRates) {
  KeplerElements el = Circular(), drifted = Circular();
  const double tk = 3600.0;
  drifted.OmgDot = 1e-8;
  drifted.Idot = 1e-9;
  drifted.Deln = 2e-9;
  el.Omg0 += 1e-8 * tk;
  el.I0 += 1e-9 * tk;
  el.M0 += 2e-9 * tk;
  double a[3], b[3], clock;
  ASSERT_EQ(KeplerOrbit(kModel, After(tk), kToe, {}, el, a, clock), 1);
  ASSERT_EQ(KeplerOrbit(kModel, After(tk), kToe, {}, drifted, b, clock), 1);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(a[i], b[i], 1e-5);
}

TEST(KeplerOrbit, WrapsTheTimeByWholeWeeks) {
  const KeplerElements el = Circular();
  for (double tk : {1000.0, -302400.0, 302400.0}) {
    double near[3], week_later[3], years_later[3], clock;
    KeplerOrbit(kModel, After(tk), kToe, {}, el, near, clock);
    KeplerOrbit(kModel, After(tk + 604800.0 * (tk < 0 ? -1 : 1)), kToe, {}, el, week_later, clock);
    KeplerOrbit(kModel, After(tk + 604800.0 * 300 * (tk < 0 ? -1 : 1)), kToe, {}, el, years_later, clock);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(near[i], week_later[i]);
      EXPECT_EQ(near[i], years_later[i]);
    }
  }
  // One second beyond half a week is the other side of it.
  double beyond[3], wrapped[3], clock;
  KeplerOrbit(kModel, After(302401.0), kToe, {}, el, beyond, clock);
  KeplerOrbit(kModel, After(-302399.0), kToe, {}, el, wrapped, clock);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(beyond[i], wrapped[i]);
}

bool AllFinite(const double position[3], double clock) {
  return std::isfinite(position[0]) && std::isfinite(position[1]) && std::isfinite(position[2]) &&
         std::isfinite(clock);
}

// The distance of a circular orbit, whatever the time.
void ExpectOnTheCircle(const AbsoluteTime& t) {
  const KeplerElements el = Circular();
  double position[3], clock;
  ASSERT_EQ(KeplerOrbit(kModel, t, kToe, {}, el, position, clock), 1);
  const double radius = std::hypot(position[0], position[1], position[2]);
  EXPECT_NEAR(radius, el.SqrtA * el.SqrtA, 1e-6) << t.Seconds << " " << t.Fraction;
}

TEST(KeplerOrbit, StaysOnTheCircleForAbsurdTimes) {
  ExpectOnTheCircle({std::numeric_limits<std::int64_t>::max(), 0.0});
  ExpectOnTheCircle({std::numeric_limits<std::int64_t>::min(), 0.5});
  ExpectOnTheCircle({kToe.Seconds, 1e308});
}

TEST(KeplerOrbit, IsNoNumberForAbsurdElements) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  const auto no_number = [](const AbsoluteTime& t, const KeplerElements& el) {
    double position[3], clock;
    return KeplerOrbit(kModel, t, kToe, {}, el, position, clock) == 0 || !AllFinite(position, clock);
  };
  for (double bad : {nan, inf, -inf, 1e308}) {
    if (!std::isfinite(bad)) {
      EXPECT_TRUE(no_number({kToe.Seconds, bad}, Circular())) << bad;
    }
    KeplerElements el = Circular();
    el.E = bad;
    EXPECT_TRUE(no_number(kToe, el)) << bad;
    el = Circular();
    el.SqrtA = bad;
    EXPECT_TRUE(no_number(kToe, el)) << bad;
  }
}

// Iterations Kepler's equation takes, from the same start.
int Iterations(double mean, double e, bool& converged) {
  double anomaly = mean;
  for (int n = 1;; ++n) {
    const double next = mean + e * std::sin(anomaly);
    converged = std::fabs(next - anomaly) <= 1e-13;
    if (converged || n == 60) return n;
    anomaly = next;
  }
}

TEST(KeplerOrbit, FailsAtThirtyIterationsEvenWhenTheLastConverges) {
  int at_limit = 0, below = 0;
  for (double mean = 0.01; mean < 3.1 && (at_limit == 0 || below == 0); mean += 0.01) {
    for (double e = 0.30; e < 0.6; e += 0.01) {
      bool converged = false;
      const int n = Iterations(mean, e, converged);
      if (!converged || (n != 30 && n != 29)) continue;
      (n == 30 ? at_limit : below)++;
      KeplerElements el = Circular();
      el.M0 = mean;
      el.E = e;
      double position[3] = {1, 2, 3}, clock = 4;
      EXPECT_EQ(KeplerOrbit(kModel, kToe, kToe, {}, el, position, clock), n == 29 ? 1 : 0);
      if (n == 30) {
        EXPECT_EQ(position[0], 1);
        EXPECT_EQ(clock, 4);
      }
    }
  }
  EXPECT_GT(at_limit, 0);
  EXPECT_GT(below, 0);
}

TEST(KeplerOrbit, NamesGpsWhateverTheSystemWhenTheIterationOverflows) {
  orsolva_test::TraceRecorder trace;
  KeplerElements el = Circular();
  el.E = 0.99;
  el.M0 = 0.1;
  double position[3], clock;
  EXPECT_EQ(KeplerOrbit(kModel, kToe, kToe, {}, el, position, clock), 0);
  ASSERT_EQ(trace.Texts.size(), 1u);
  EXPECT_EQ(trace.Texts[0], "BroadcastEphemerisSatellitePositionGPS: kepler iteration overflow prn= 12\n");
  EXPECT_EQ(trace.Levels[0], 2);
}

TEST(KeplerOrbit, SolvesKeplersEquation) {
  KeplerElements el = Circular();
  el.E = 0.16;
  el.M0 = 1.1;
  double anomaly = 1.1;
  for (int i = 0; i < 20; ++i)
    anomaly -= (anomaly - 0.16 * std::sin(anomaly) - 1.1) / (1 - 0.16 * std::cos(anomaly));
  double position[3], clock;
  ASSERT_EQ(KeplerOrbit(kModel, kToe, kToe, {}, el, position, clock), 1);
  const double radius =
      std::sqrt(position[0] * position[0] + position[1] * position[1] + position[2] * position[2]);
  EXPECT_NEAR(radius, el.SqrtA * el.SqrtA * (1 - 0.16 * std::cos(anomaly)), 1e-4);
}

TEST(KeplerOrbit, TakesOneGmForTheRelativisticClockOfEverySystem) {
  KeplerElements el = Circular();
  el.E = 0.01;
  el.M0 = 1.2;
  const ClockElements polynomial{AbsoluteTimeAdd(kToe, -100.0), 1e-4, 1e-9, 1e-13};
  double position[3], bds = 0, gps = 0;
  ASSERT_EQ(KeplerOrbit(kModel, kToe, kToe, polynomial, el, position, bds), 1);
  ASSERT_EQ(KeplerOrbit({3.986005e14, 7.2921151467e-5, false}, kToe, kToe, polynomial, el, position, gps), 1);
  EXPECT_EQ(bds, gps);
  double anomaly = 1.2;
  for (int i = 0; i < 20; ++i) anomaly = 1.2 + 0.01 * std::sin(anomaly);
  const double relativity =
      2.0 * std::sqrt(3.986004418e14) * el.SqrtA * 0.01 * std::sin(anomaly) / (299792458.0 * 299792458.0);
  EXPECT_NEAR(gps, 1e-4 + 1e-7 + 1e-9 - relativity, 1e-20);
}

TEST(KeplerOrbit, TurnsGeostationarySatellitesByTiltAndEarth) {
  KeplerElements el = Circular();
  el.SqrtA = 6493.4;
  el.I0 = 0.0873;
  const double tk = 1800.0, f = -0.08726646259971647, w = kOmega * tk;
  const double radius = el.SqrtA * el.SqrtA;
  const double u = el.M0 + el.Omg + std::sqrt(kGm / (radius * radius * radius)) * tk;
  const double node = el.Omg0 - kOmega * el.Toes;
  const double g[3] = {
      radius * (std::cos(u) * std::cos(node) - std::sin(u) * std::cos(el.I0) * std::sin(node)),
      radius * (std::cos(u) * std::sin(node) + std::sin(u) * std::cos(el.I0) * std::cos(node)),
      radius * std::sin(u) * std::sin(el.I0)};
  // First about x by f, then about z by w.
  const double t[3] = {g[0], std::cos(f) * g[1] + std::sin(f) * g[2],
                       -std::sin(f) * g[1] + std::cos(f) * g[2]};
  const double expected[3] = {std::cos(w) * t[0] + std::sin(w) * t[1],
                              -std::sin(w) * t[0] + std::cos(w) * t[1], t[2]};
  double position[3], clock;
  ASSERT_EQ(KeplerOrbit({kGm, kOmega, true}, After(tk), kToe, {}, el, position, clock), 1);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(position[i], expected[i], 1e-5);
}

TEST(KeplerOrbit, FormsTheReferenceTimeFromTheWeekOfItsSystem) {
  const KeplerElements el = Circular();
  double by_time[3], by_week[3], clock;
  KeplerOrbit(kModel, After(77.0), kToe, {}, el, by_time, clock);
  EXPECT_EQ(KeplerOrbit(kGps, kModel, After(77.0), {}, el, 2121, by_week, clock), 1);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(by_time[i], by_week[i]);
  EXPECT_EQ(KeplerOrbit(kBds, kModel, After(77.0), {}, el, 2121 - 1356, by_week, clock), 1);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(by_time[i], by_week[i]);
}

TEST(BroadcastClock, RefinesTheReadingTwice) {
  const double af0 = 1e-3, af1 = 1e-6, af2 = 1e-9, raw = 500.0;
  double dt = raw;
  dt -= af0 + af1 * dt + af2 * dt * dt;
  dt -= af0 + af1 * dt + af2 * dt * dt;
  EXPECT_EQ(BroadcastClock(After(raw), kToe, af0, af1, af2), af0 + af1 * dt + af2 * dt * dt);
}

}  // namespace
}  // namespace gnssqctoolkit
