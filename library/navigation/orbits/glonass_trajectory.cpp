// Integration of the broadcast state vector in the rotating PZ-90 frame.
// Notation: a and b the oblateness factors, c the central acceleration over distance, omega the Earth's rate.
#include "navigation/orbits/glonass_trajectory.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "navigation/orbits/constants.h"

namespace gnssqctoolkit {
namespace {

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

bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
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

void GlonassTrajectory::StartFrom(const GloEph_gbt& record) {
  const std::array<double, 9> broadcast = {record.x,  record.y,  record.z,  record.vx, record.vy,
                                           record.vz, record.ax, record.ay, record.az};
  // Bits are compared, not values, so that a record with a NaN finds itself again.
  const bool same = std::equal(broadcast.begin(), broadcast.end(), broadcast_.begin(), SameBits);
  if (same && started_) return;
  started_ = false;  // until both legs are, should one find no memory
  broadcast_ = broadcast;
  GlonassState state;
  for (std::size_t i = 0; i < state.size(); ++i) state[i] = broadcast[i] * 1000.0;
  for (Leg* leg : {&forwards_, &backwards_}) {
    leg->States.assign(1, state);
    leg->Ended = false;
  }
  started_ = true;
}

const GlonassState* GlonassTrajectory::StateAfter(const GloEph_gbt& record, bool backwards, int steps) {
  StartFrom(record);
  Leg& leg = backwards ? backwards_ : forwards_;
  const double acceleration[3] = {record.ax * 1000.0, record.ay * 1000.0, record.az * 1000.0};
  const auto wanted = static_cast<std::size_t>(steps);
  while (leg.States.size() <= wanted && !leg.Ended) {
    GlonassState next = leg.States.back();
    leg.Ended = !GlonassStep(backwards ? -kGlonassStep : kGlonassStep, next.data(), acceleration);
    if (!leg.Ended) leg.States.push_back(next);
  }
  return wanted < leg.States.size() ? &leg.States[wanted] : nullptr;
}

}  // namespace gnssqctoolkit
