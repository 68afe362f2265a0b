// Notation as in kepler_orbit.cpp: n mean motion, u argument of latitude, r radius, i inclination.
#include "navigation/orbits/orbit_speed.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#include "navigation/orbits/constants.h"

namespace gnssqctoolkit {
namespace {

constexpr double kNoLimit = std::numeric_limits<double>::infinity();
// The transmission time runs as the reception time does but for the rate of the satellite's clock.
constexpr double kClockRateShare = 1.01;

bool Within(double bound, std::initializer_list<double> values) {
  return std::all_of(values.begin(), values.end(), [&](double value) { return std::fabs(value) <= bound; });
}

// With a bias of at most 205 s and a rate below 0.2 % as far as the bounds reach.
bool HasOrdinaryClock(const ClockElements& clock, const AbsoluteTime& toe) {
  return Within(1.0, {clock.Af0}) && Within(1e-3, {clock.Af1}) && Within(1e-9, {clock.Af2}) &&
         Within(86400.0, {TimeDifference(clock.Toc, toe)});
}

// Angles small enough for Kepler's equation to settle to its tolerance, in far less than its most iterations.
bool HasOrdinaryOrbit(const KeplerElements& el) {
  return el.SqrtA >= 4000.0 && el.SqrtA <= 8000.0 && el.E >= 0.0 && el.E <= 0.25 &&
         Within(10.0, {el.M0, el.Omg, el.Omg0, el.I0}) && Within(1e-6, {el.Deln, el.OmgDot, el.Idot}) &&
         Within(1e-3, {el.Cuc, el.Cus, el.Cic, el.Cis}) && Within(1e5, {el.Crc, el.Crs}) &&
         Within(2.0 * kWeek, {el.Toes});
}

double Norm(double x, double y, double z) { return std::sqrt(x * x + y * y + z * z); }

// Bound of the angular speed of the turn along the orbit together with that of its plane. Both directions
// are at an angle whose cosine is at least that of the inclination i, so that its square is at most
// u'^2 + w^2 - 2 u' w cos i, with w the turn of the Earth against the node; between rest and the greatest u'
// it is greatest at one end. The node of a geostationary orbit turns with a tilted plane: nothing cancels.
double TurnLimit(const KeplerModel& model, const KeplerElements& el, double u_rate) {
  const double turn = model.Rotation - el.OmgDot;
  if (model.BdsGeo) return u_rate + model.Rotation + std::fabs(el.OmgDot);
  const double drift = std::fabs(el.Idot) * kBoundedKeplerAge + std::fabs(el.Cic) + std::fabs(el.Cis);
  const double cos_i = std::max(-1.0, std::cos(el.I0) - drift);
  return std::sqrt(std::max(turn * turn, u_rate * u_rate + turn * turn - 2.0 * u_rate * turn * cos_i));
}

}  // namespace

// The parts of the motion, along the radius, across the orbit and with its turn, are added as if they never
// cancelled.
double KeplerSpeedLimit(const KeplerModel& model, const AbsoluteTime& toe, const ClockElements& clock,
                        const KeplerElements& el) {
  if (!HasOrdinaryOrbit(el) || !HasOrdinaryClock(clock, toe)) return kNoLimit;
  const double a = el.SqrtA * el.SqrtA;
  const double n = std::sqrt(model.Gm) / (a * el.SqrtA) + std::fabs(el.Deln);
  const double anomaly_rate = n * std::sqrt((1.0 + el.E) / (1.0 - el.E)) / (1.0 - el.E);
  const double harmonic_rate = 2.0 * anomaly_rate;
  const double u_rate = anomaly_rate + harmonic_rate * (std::fabs(el.Cuc) + std::fabs(el.Cus));
  const double i_rate = std::fabs(el.Idot) + harmonic_rate * (std::fabs(el.Cic) + std::fabs(el.Cis));
  const double r_rate = a * el.E * n / (1.0 - el.E) + harmonic_rate * (std::fabs(el.Crc) + std::fabs(el.Crs));
  const double r = a * (1.0 + el.E) + std::fabs(el.Crc) + std::fabs(el.Crs);
  return kClockRateShare * (r_rate + r * (i_rate + TurnLimit(model, el, u_rate)));
}

// From at least 25,000 km and at most 3.8 km/s, falling straight towards the Earth with every acceleration of
// the rotating frame along the motion, a state gains less than 3.8 km/s within kBoundedGlonassAge.
double GlonassSpeedLimit(const GloEph_gbt& record) {
  constexpr double kLimit = 7600.0;
  const double r_km = Norm(record.x, record.y, record.z);
  const double v_km = Norm(record.vx, record.vy, record.vz);
  const bool ordinary = r_km >= 25000.0 && r_km <= 27000.0 && v_km <= 3.8 &&
                        Within(1e-7, {record.ax, record.ay, record.az}) && Within(1.0, {record.clock_bias}) &&
                        Within(1e-3, {record.clock_rate});
  return ordinary ? kClockRateShare * kLimit : kNoLimit;
}

}  // namespace gnssqctoolkit
