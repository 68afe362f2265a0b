#include "host/simulator/orbits.h"

#include <cmath>

#include "host/simulator/portable_math.h"

namespace orsolva_host {
namespace {

constexpr double kEarthRateSquared = 5.3174941173225e-09;
constexpr double kEarthRateTwice = 0.0001458423;
constexpr double kFlattening = 2.633267117769225e+25;  // 1.5 J2 GM Re^2 of PZ-90

double SolveKepler(double m, double e) {
  double anomaly = m + e * Sine(m);
  for (int i = 0; i < 10; ++i) {
    const auto [sine, cosine] = SineCosineOf(anomaly);
    const double change = (anomaly - e * sine - m) / (1 - e * cosine);
    anomaly -= change;
    if (std::fabs(change) < 1e-9) break;  // the next change would be below 1e-18
  }
  return anomaly;
}

GlonassState Derivative(const GlonassState& s, const GlonassAcceleration& a) {
  const double r2 = s[0] * s[0] + s[1] * s[1] + s[2] * s[2];
  const double r3 = r2 * std::sqrt(r2);
  const double flat = kFlattening / r2 / r3;
  const double b = 5 * s[2] * s[2] / r2;
  const double c = -kGravityGlonassRounded_m3_s2 / r3 - flat * (1 - b);
  return {s[3],
          s[4],
          s[5],
          (c + kEarthRateSquared) * s[0] + kEarthRateTwice * s[4] + a[0],
          (c + kEarthRateSquared) * s[1] - kEarthRateTwice * s[3] + a[1],
          (c - 2 * flat) * s[2] + a[2]};
}

GlonassState Moved(const GlonassState& s, const GlonassState& rate, double step) {
  GlonassState moved;
  for (std::size_t i = 0; i < s.size(); ++i) moved[i] = s[i] + rate[i] * step;
  return moved;
}

}  // namespace

KeplerOrbit::KeplerOrbit(const KeplerSet& record)
    : r_(record),
      axis_(record.sqrt_a * record.sqrt_a),
      motion_(std::sqrt(record.gravity) / (axis_ * record.sqrt_a) + record.deln),
      root_(std::sqrt(1 - record.e * record.e)),
      relativity_(-2 * std::sqrt(kGravityGalileo_m3_s2 * axis_) * record.e /
                  (kLightSpeed_m_s * kLightSpeed_m_s)),
      node_(record.node_at_week - record.earth_rate * record.seconds_of_week) {}

double KeplerOrbit::StateAt(double time_s, double* position_m) const {
  const double tk = time_s - r_.reference_s;
  const double anomaly = SolveKepler(r_.m0 + motion_ * tk, r_.e);
  const auto [sine, cosine] = SineCosineOf(anomaly);
  const double u0 = ArcTangent(root_ * sine, cosine - r_.e) + r_.perigee;
  const auto [s2, c2] = SineCosineOf(2 * u0);
  const double u = u0 + r_.cuc * c2 + r_.cus * s2;
  const double radius = axis_ * (1 - r_.e * cosine) + r_.crc * c2 + r_.crs * s2;
  const double inclination = r_.i0 + r_.idot * tk + r_.cic * c2 + r_.cis * s2;
  const auto [su, cu] = SineCosineOf(u);
  const double x = radius * cu, y = radius * su;
  if (r_.geostationary) {
    ToEarth(node_ + r_.node_rate * tk, x, y, inclination, position_m);
    RotateGeostationary(tk, position_m);
  } else {
    ToEarth(node_ + (r_.node_rate - r_.earth_rate) * tk, x, y, inclination, position_m);
  }
  return r_.af0 + r_.af1 * tk + r_.af2 * tk * tk + relativity_ * sine;
}

void KeplerOrbit::ToEarth(double node, double x, double y, double inclination, double* out) const {
  const auto [sn, cn] = SineCosineOf(node);
  const auto [si, ci] = SineCosineOf(inclination);
  out[0] = x * cn - y * ci * sn;
  out[1] = x * sn + y * ci * cn;
  out[2] = y * si;
}

void KeplerOrbit::RotateGeostationary(double tk, double* p) const {
  const double turn = r_.earth_rate * tk;
  const auto [sw, cw] = SineCosineOf(turn);
  const auto [sf, cf] = SineCosineOf(kGeoTilt_rad);
  const double x = p[0], y = p[1], z = p[2];
  p[0] = cw * x + sw * cf * y + sw * sf * z;
  p[1] = -sw * x + cw * cf * y + cw * sf * z;
  p[2] = -sf * y + cf * z;
}

GlonassState GlonassStep(const GlonassState& s, const GlonassAcceleration& a, double h) {
  const GlonassState k1 = Derivative(s, a);
  const GlonassState k2 = Derivative(Moved(s, k1, h / 2), a);
  const GlonassState k3 = Derivative(Moved(s, k2, h / 2), a);
  const GlonassState k4 = Derivative(Moved(s, k3, h), a);
  GlonassState next;
  for (std::size_t i = 0; i < s.size(); ++i) {
    next[i] = s[i] + (k1[i] + 2 * k2[i] + 2 * k3[i] + k4[i]) * h / 6;
  }
  return next;
}

GlonassOrbit::GlonassOrbit(double reference_s, const GlonassState& state,
                           const GlonassAcceleration& acceleration, double bias_s, double rate,
                           double reach_s)
    : reference_s_(reference_s), bias_s_(bias_s), rate_(rate), acceleration_(acceleration) {
  after_.push_back(state);
  before_.push_back(state);
  for (double t = kGlonassStep_s; t < reach_s; t += kGlonassStep_s) {
    after_.push_back(GlonassStep(after_.back(), acceleration_, kGlonassStep_s));
    before_.push_back(GlonassStep(before_.back(), acceleration_, -kGlonassStep_s));
  }
}

double GlonassOrbit::StateAt(double time_s, double* position_m) const {
  const double tk = time_s - reference_s_;
  const std::vector<GlonassState>& nodes = tk < 0 ? before_ : after_;
  const double last = static_cast<double>(nodes.size() - 1);
  const double whole = std::fmin(std::floor(std::fabs(tk) / kGlonassStep_s), last);
  const double rest = std::fabs(tk) - whole * kGlonassStep_s;
  const GlonassState s =
      GlonassStep(nodes[static_cast<std::size_t>(whole)], acceleration_, tk < 0 ? -rest : rest);
  for (std::size_t i = 0; i < 3; ++i) position_m[i] = s[i];
  return bias_s_ + rate_ * tk;
}

}  // namespace orsolva_host
