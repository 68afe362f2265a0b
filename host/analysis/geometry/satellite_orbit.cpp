#include "host/analysis/geometry/satellite_orbit.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kWeek_s = 604800;
constexpr double kGridStep_s = 60;
constexpr double kLongestSpan_s =
    86400;  // a record is never used so far away; bounds the work on damaged times
constexpr double kGeoTurn_rad = -5 * kPi / 180;

struct SystemConstants {
  double gravity;
  double rotation;
};

SystemConstants ConstantsOf(char system) {
  if (system == 'C') return {kGravityGalileo_m3_s2, kEarthRotationBds_rad_s};
  if (system == 'E') return {kGravityGalileo_m3_s2, kEarthRotation_rad_s};
  return {kGravityGps_m3_s2, kEarthRotation_rad_s};
}

bool IsGeostationaryBds(SatelliteId id) { return id.system == 'C' && (id.number <= 5 || id.number >= 59); }

struct SineCosine {
  double s = 0;
  double c = 1;
};

SineCosine Of(double angle) { return {std::sin(angle), std::cos(angle)}; }

/// By the power series where the angle is small, which corrections to an orbit are.
SineCosine OfSmall(double angle) {
  if (!(std::fabs(angle) < 1e-3)) return Of(angle);
  const double x2 = angle * angle;
  return {angle * (1 - x2 / 6 * (1 - x2 / 20)), 1 - x2 / 2 * (1 - x2 / 12)};
}

/// Of the sum of two angles.
SineCosine Sum(const SineCosine& a, const SineCosine& b) {
  return {a.s * b.c + a.c * b.s, a.c * b.c - a.s * b.s};
}

/// Eccentric anomaly by Newton's method, from a start that is right to the third order of the eccentricity.
/// After a step d an error of some e d^2 / 2 is left.
SineCosine EccentricAnomaly(double mean, double eccentricity) {
  const SineCosine m = Of(mean);
  double e = mean + eccentricity * m.s * (1 + eccentricity * m.c);
  for (int i = 0;; ++i) {
    const SineCosine at = Of(e);
    const double step = (mean + eccentricity * at.s - e) / (1 - eccentricity * at.c);
    if (i == 10 || eccentricity * step * step < 1e-15) return Sum(at, OfSmall(step));
    e += step;
  }
}

/// From the frame of the record, turned by -5 degrees, to the Earth-fixed one.
Vector3 TurnGeostationary(const Vector3& p, double turned_rad) {
  const double sf = std::sin(kGeoTurn_rad), cf = std::cos(kGeoTurn_rad);
  const double sw = std::sin(turned_rad), cw = std::cos(turned_rad);
  return {cw * p[0] + sw * cf * p[1] + sw * sf * p[2], -sw * p[0] + cw * cf * p[1] + cw * sf * p[2],
          -sf * p[1] + cf * p[2]};
}

/// Derivative of a GLONASS state (ICD 5.1, A.3.1.2): central force, oblateness, rotating frame, Sun and Moon.
std::array<double, 6> Derivative(const std::array<double, 6>& v, const double* perturbation) {
  constexpr double w = kEarthRotation_rad_s;
  const double r2 = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
  const double r3 = r2 * std::sqrt(r2);
  const double a =
      1.5 * kJ2Glonass * kGravityGlonass_m3_s2 * kEarthRadiusGlonass_m * kEarthRadiusGlonass_m / r2 / r3;
  const double b = 5 * v[2] * v[2] / r2;
  const double c = -kGravityGlonass_m3_s2 / r3 - a * (1 - b);
  return {v[3],
          v[4],
          v[5],
          (c + w * w) * v[0] + 2 * w * v[4] + perturbation[0],
          (c + w * w) * v[1] - 2 * w * v[3] + perturbation[1],
          (c - 2 * a) * v[2] + perturbation[2]};
}

std::array<double, 6> Added(const std::array<double, 6>& v, const std::array<double, 6>& d, double h) {
  std::array<double, 6> out;
  for (std::size_t i = 0; i < 6; ++i) out[i] = v[i] + h * d[i];
  return out;
}

std::array<double, 6> RungeKutta(const std::array<double, 6>& v, double h, const double* perturbation) {
  const auto k1 = Derivative(v, perturbation);
  const auto k2 = Derivative(Added(v, k1, h / 2), perturbation);
  const auto k3 = Derivative(Added(v, k2, h / 2), perturbation);
  const auto k4 = Derivative(Added(v, k3, h), perturbation);
  std::array<double, 6> out;
  for (std::size_t i = 0; i < 6; ++i) out[i] = v[i] + h / 6 * (k1[i] + 2 * k2[i] + 2 * k3[i] + k4[i]);
  return out;
}

}  // namespace

double SecondsSince(const Instant& time, double reference_s) {
  const double whole_s = std::floor(reference_s);
  const auto reference_ns = static_cast<std::int64_t>(whole_s) * kNanosecondsPerSecond;
  return SecondsBetween(time.ns, reference_ns) + (time.offset_s - (reference_s - whole_s));
}

double KeplerClock(const KeplerRecord& r, const Instant& time) {
  const double dt = SecondsSince(time, r.toc_s);
  return r.af0 + r.af1 * dt + r.af2 * dt * dt;
}

SatelliteState KeplerState(const KeplerRecord& r, const Instant& time) {
  const SystemConstants constants = ConstantsOf(r.satellite.system);
  const double tk = std::remainder(SecondsSince(time, r.toe_s), kWeek_s);
  const double a = r.sqrt_a * r.sqrt_a;
  const double n = std::sqrt(constants.gravity) / (a * r.sqrt_a) + r.delta_n;
  const SineCosine e = EccentricAnomaly(r.m0 + n * tk, r.eccentricity);
  const double ecc = r.eccentricity;
  const double nearness = 1 - ecc * e.c;
  const SineCosine true_anomaly = {std::sqrt(1 - ecc * ecc) * e.s / nearness, (e.c - ecc) / nearness};
  SineCosine u = Sum(true_anomaly, Of(r.omega));
  const double s2 = 2 * u.s * u.c, c2 = u.c * u.c - u.s * u.s;
  const double radius = a * nearness + r.crc * c2 + r.crs * s2;
  const double i = r.i0 + r.idot * tk + r.cic * c2 + r.cis * s2;
  u = Sum(u, OfSmall(r.cuc * c2 + r.cus * s2));
  const bool geo = IsGeostationaryBds(r.satellite);
  const double om =
      r.omega0 + (r.omega_dot - (geo ? 0 : constants.rotation)) * tk - constants.rotation * r.toe_of_week_s;
  const double x = radius * u.c, y = radius * u.s;
  const auto [so, co] = Of(om);
  const auto [si, ci] = Of(i);
  SatelliteState state;
  state.position_m = {x * co - y * ci * so, x * so + y * ci * co, y * si};
  if (geo) state.position_m = TurnGeostationary(state.position_m, constants.rotation * tk);
  const double relativity =
      -2 * std::sqrt(constants.gravity) * r.sqrt_a * ecc * e.s / (kLightSpeed_m_s * kLightSpeed_m_s);
  state.clock_s = KeplerClock(r, time) + relativity;
  return state;
}

const StateVectorOrbit::Motion& StateVectorOrbit::GridPoint(std::size_t steps, bool forward) {
  std::vector<Motion>& grid = grid_[forward ? 1 : 0];
  const StateVectorRecord& r = *record_;
  if (grid.empty()) {
    grid.push_back({r.position_m[0], r.position_m[1], r.position_m[2], r.velocity_m_s[0], r.velocity_m_s[1],
                    r.velocity_m_s[2]});
  }
  while (grid.size() <= steps) {
    grid.push_back(RungeKutta(grid.back(), forward ? kGridStep_s : -kGridStep_s, r.acceleration_m_s2));
  }
  return grid[steps];
}

double StateVectorOrbit::Clock(const Instant& time) const {
  return record_->clock_bias_s + record_->clock_rate * SecondsSince(time, record_->toe_s);
}

SatelliteState StateVectorOrbit::At(const Instant& time) {
  const StateVectorRecord& r = *record_;
  const double tk = std::clamp(SecondsSince(time, r.toe_s), -kLongestSpan_s, kLongestSpan_s);
  SatelliteState state;
  state.clock_s = Clock(time);
  if (r.satellite.system != 'R') {
    for (std::size_t i = 0; i < 3; ++i) {
      state.position_m[i] = r.position_m[i] + tk * (r.velocity_m_s[i] + 0.5 * tk * r.acceleration_m_s2[i]);
    }
    return state;
  }
  const double span = std::fabs(tk);
  // A time that is no number has no whole step, and no position.
  const auto steps = span >= kGridStep_s ? static_cast<std::size_t>(span / kGridStep_s) : 0;
  const double rest = span - kGridStep_s * static_cast<double>(steps);
  const Motion motion = RungeKutta(GridPoint(steps, tk >= 0), tk >= 0 ? rest : -rest, r.acceleration_m_s2);
  state.position_m = {motion[0], motion[1], motion[2]};
  return state;
}

}  // namespace orsolva_host::analysis
