// GLONASS orbits: integration of the broadcast state vector in the rotating PZ-90 frame.
// Notation: a and b the oblateness factors, c the central acceleration over distance, omega the Earth's rate.
#include <cmath>

#include "navigation/constants.h"
#include "navigation/orbits.h"

namespace gnssqctoolkit {
namespace {

constexpr double kStep = 60.0;      // s
constexpr double kTimeDone = 1e-9;  // s, what may be left of the interval
// A record is never selected more than a day from its reference; what lies further out is an absurd time or
// pseudorange, and would only cost steps.
constexpr double kLongestSpan = 86400.0 + 1000.0;  // s

bool Derivative(const double state[6], const double acceleration[3], double rate[6]) {
  const double x = state[0], y = state[1], z = state[2];
  const double r2 = x * x + y * y + z * z;
  if (r2 <= 0.0) {
    for (int i = 0; i < 6; ++i) rate[i] = 0.0;
    return false;
  }
  const double r3 = r2 * std::sqrt(r2);
  const double a = kGlonassJ2Factor / r2 / r3;
  const double b = 5.0 * z * z / r2;
  const double c = -kGmGlonass / r3 - a * (1.0 - b);
  for (int i = 0; i < 3; ++i) rate[i] = state[3 + i];
  rate[3] = (c + kEarthRotationGlonassSquared) * x + kEarthRotationGlonassDouble * state[4] + acceleration[0];
  rate[4] = (c + kEarthRotationGlonassSquared) * y - kEarthRotationGlonassDouble * state[3] + acceleration[1];
  rate[5] = (c - 2.0 * a) * z + acceleration[2];
  return true;
}

}  // namespace

bool GlonassStep(double step_s, double state[6], const double acceleration[3]) {
  double k1[6], k2[6], k3[6], k4[6], at[6];
  bool good = Derivative(state, acceleration, k1);
  for (int i = 0; i < 6; ++i) at[i] = state[i] + k1[i] * step_s / 2.0;
  good = Derivative(at, acceleration, k2) && good;
  for (int i = 0; i < 6; ++i) at[i] = state[i] + k2[i] * step_s / 2.0;
  good = Derivative(at, acceleration, k3) && good;
  for (int i = 0; i < 6; ++i) at[i] = state[i] + k3[i] * step_s;
  good = Derivative(at, acceleration, k4) && good;
  for (int i = 0; i < 6; ++i) state[i] += (k1[i] + 2.0 * k2[i] + 2.0 * k3[i] + k4[i]) * step_s / 6.0;
  return good;
}

int GlonassOrbit(const AbsoluteTime& t, const GloEph_gbt& record, double position[3], double& clock) {
  double tk = TimeDifference(t, {record.toe.time, record.toe.sec});
  if (!(std::fabs(tk) <= kLongestSpan)) return 0;
  const double bias = record.clock_bias + record.clock_rate * tk;
  double state[6] = {record.x * 1000.0,  record.y * 1000.0,  record.z * 1000.0,
                     record.vx * 1000.0, record.vy * 1000.0, record.vz * 1000.0};
  const double acceleration[3] = {record.ax * 1000.0, record.ay * 1000.0, record.az * 1000.0};
  double step = tk < 0.0 ? -kStep : kStep;
  while (std::fabs(tk) > kTimeDone) {
    if (std::fabs(tk) < kStep) step = tk;
    if (!GlonassStep(step, state, acceleration)) return 0;
    tk -= step;
  }
  for (int i = 0; i < 3; ++i) position[i] = state[i];
  clock = bias;
  return 1;
}

}  // namespace gnssqctoolkit
