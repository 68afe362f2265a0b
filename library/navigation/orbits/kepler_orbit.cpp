// Kepler orbits of GPS, Galileo, QZSS and BDS, and the clock polynomial.
// Notation as in IS-GPS-200, table 20-IV: tk time from reference, M mean and E eccentric anomaly, u argument
// of latitude, r radius, i inclination, node longitude of the ascending node.
#include <cmath>

#include "navigation/orbits/constants.h"
#include "navigation/orbits/orbits.h"
#include "toolkit/satellite.h"
#include "toolkit/trace.h"

namespace gnssqctoolkit {
namespace {

constexpr int kMaxKeplerIterations = 30;
constexpr double kKeplerTolerance = 1e-13;  // rad

// Wraps by whole weeks into half a week around zero. Far values are brought near first; the remainder of a
// division is exact, so the result is the one of subtracting week by week.
double WrapHalfWeek(double tk) {
  if (std::fabs(tk) > 100.0 * kWeek) tk = std::fmod(tk, kWeek);
  while (tk > kHalfWeek) tk -= kWeek;
  while (tk < -kHalfWeek) tk += kWeek;
  return tk;
}

// Kept for compatibility: a count of 30 fails even if the last iteration converged, and the text names GPS
// for every system.
bool SolveKepler(double mean, double eccentricity, std::int32_t prn, double& anomaly) {
  anomaly = mean;
  double previous = 0.0;
  int iterations = 0;
  do {
    previous = anomaly;
    anomaly = mean + eccentricity * std::sin(previous);
    ++iterations;
  } while (std::fabs(anomaly - previous) > kKeplerTolerance && iterations < kMaxKeplerIterations);
  if (iterations < kMaxKeplerIterations) return true;
  Trace(2, "BroadcastEphemerisSatellitePositionGPS: kepler iteration overflow prn=%3d\n", prn);
  return false;
}

struct OrbitPlane {
  double X, Y;         // m, in the orbit plane, x towards the ascending node
  double Inclination;  // rad
};

OrbitPlane PlaneCoordinates(const KeplerElements& el, double semi_major, double sin_e, double cos_e,
                            double tk) {
  const double u0 = std::atan2(std::sqrt(1.0 - el.E * el.E) * sin_e, cos_e - el.E) + el.Omg;
  const double c2 = std::cos(2.0 * u0), s2 = std::sin(2.0 * u0);
  const double u = u0 + el.Cuc * c2 + el.Cus * s2;
  const double r = semi_major * (1.0 - el.E * cos_e) + el.Crc * c2 + el.Crs * s2;
  const double i = el.I0 + el.Idot * tk + el.Cic * c2 + el.Cis * s2;
  return {r * std::cos(u), r * std::sin(u), i};
}

void RotateToNode(const OrbitPlane& plane, double node, double out[3]) {
  const double sin_node = std::sin(node), cos_node = std::cos(node);
  const double cos_i = std::cos(plane.Inclination);
  out[0] = plane.X * cos_node - plane.Y * cos_i * sin_node;
  out[1] = plane.X * sin_node + plane.Y * cos_i * cos_node;
  out[2] = plane.Y * std::sin(plane.Inclination);
}

// BDS-SIS-ICD, 5.2.4.12: a node that does not turn with the Earth, then a tilt and the turn of the Earth.
void RotateGeo(const double inertial[3], double turn, double out[3]) {
  const double sin_w = std::sin(turn), cos_w = std::cos(turn);
  const double sin_f = std::sin(kBdsGeoTilt), cos_f = std::cos(kBdsGeoTilt);
  out[0] = cos_w * inertial[0] + sin_w * cos_f * inertial[1] + sin_w * sin_f * inertial[2];
  out[1] = -sin_w * inertial[0] + cos_w * cos_f * inertial[1] + cos_w * sin_f * inertial[2];
  out[2] = -sin_f * inertial[1] + cos_f * inertial[2];
}

}  // namespace

double BroadcastClock(const AbsoluteTime& t, const AbsoluteTime& toc, double af0, double af1, double af2) {
  double dt = TimeDifference(t, toc);
  for (int round = 0; round < 2; ++round) dt -= af0 + af1 * dt + af2 * dt * dt;
  return af0 + af1 * dt + af2 * dt * dt;
}

int KeplerOrbit(const KeplerModel& model, const AbsoluteTime& t, const AbsoluteTime& toe,
                const ClockElements& clock_elements, const KeplerElements& el, double position[3],
                double& clock) {
  const double tk = WrapHalfWeek(TimeDifference(t, toe));
  const double semi_major = el.SqrtA * el.SqrtA;
  const double motion = std::sqrt(model.Gm) / (semi_major * el.SqrtA) + el.Deln;
  double anomaly = 0.0;
  if (!SolveKepler(el.M0 + motion * tk, el.E, el.Prn, anomaly)) return 0;
  const double sin_e = std::sin(anomaly), cos_e = std::cos(anomaly);
  const OrbitPlane plane = PlaneCoordinates(el, semi_major, sin_e, cos_e, tk);
  if (model.BdsGeo) {
    double inertial[3];
    RotateToNode(plane, el.Omg0 + el.OmgDot * tk - model.Rotation * el.Toes, inertial);
    RotateGeo(inertial, model.Rotation * tk, position);
  } else {
    RotateToNode(plane, el.Omg0 + (el.OmgDot - model.Rotation) * tk - model.Rotation * el.Toes, position);
  }
  const double dt = TimeDifference(t, clock_elements.Toc);
  // Kept for compatibility: the relativistic term takes one GM for every system, also for GPS, whose orbit
  // takes another.
  clock = clock_elements.Af0 + clock_elements.Af1 * dt + clock_elements.Af2 * dt * dt -
          2.0 * std::sqrt(kGmBdsGalileo * semi_major) * el.E * sin_e / (kSpeedOfLight * kSpeedOfLight);
  return 1;
}

int KeplerOrbit(int system, const KeplerModel& model, const AbsoluteTime& t,
                const ClockElements& clock_elements, const KeplerElements& elements, std::int32_t week,
                double position[3], double& clock) {
  const AbsoluteTime toe = system == kBds ? BdsWeekToTime(week, elements.Toes).Absolute()
                                          : GNSSTime(week, elements.Toes).Absolute();
  return KeplerOrbit(model, t, toe, clock_elements, elements, position, clock);
}

}  // namespace gnssqctoolkit
