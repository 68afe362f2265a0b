#include "navigation/orbits/geometry.h"

#include <cmath>

#include "navigation/orbits/constants.h"

namespace gnssqctoolkit {
namespace {

double Norm(const double vector[3]) {
  return std::sqrt(vector[0] * vector[0] + vector[1] * vector[1] + vector[2] * vector[2]);
}

// Components of a direction in a frame, east first.
double East(const LocalFrame& f, const double unit[3]) { return -f.SinLon * unit[0] + f.CosLon * unit[1]; }
double North(const LocalFrame& f, const double unit[3]) {
  return -f.SinLat * f.CosLon * unit[0] - f.SinLat * f.SinLon * unit[1] + f.CosLat * unit[2];
}
double Up(const LocalFrame& f, const double unit[3]) {
  return f.CosLat * f.CosLon * unit[0] + f.CosLat * f.SinLon * unit[1] + f.SinLat * unit[2];
}

double Azimuth(const LocalFrame& frame, const double unit[3]) {
  const double east = East(frame, unit), north = North(frame, unit);
  const double azimuth = east * east + north * north < 1e-12 ? 0.0 : std::atan2(east, north);
  return azimuth < 0.0 ? azimuth + 2.0 * kPi : azimuth;
}

double Elevation(const LocalFrame& frame, const double unit[3]) {
  // Rounding may carry a unit vector's component a little beyond one.
  const double up = Up(frame, unit);
  return std::asin(up > 1.0 ? 1.0 : (up < -1.0 ? -1.0 : up));
}

}  // namespace

double GeometricRange(const double satellite[3], const double receiver[3], double unit[3]) {
  if (Norm(satellite) < kEarthRadius) return -1.0;
  double line[3];
  for (int i = 0; i < 3; ++i) line[i] = satellite[i] - receiver[i];
  const double range = Norm(line);
  for (int i = 0; i < 3; ++i) unit[i] = line[i] / range;
  return range +
         kEarthRotationGps * (satellite[0] * receiver[1] - satellite[1] * receiver[0]) / kSpeedOfLight;
}

LocalFrame::LocalFrame(const GeodeticPosition& receiver)
    : Defined(receiver.Height > -kEarthRadius),
      SinLat(std::sin(receiver.Latitude)),
      CosLat(std::cos(receiver.Latitude)),
      SinLon(std::sin(receiver.Longitude)),
      CosLon(std::cos(receiver.Longitude)) {}

double AzimuthElevation(const LocalFrame& frame, const double unit[3], double* azimuth_elevation) {
  const double elevation = frame.Defined ? Elevation(frame, unit) : kPi / 2.0;
  // Most callers want no azimuth: its arc tangent is computed only where it is stored.
  if (azimuth_elevation != nullptr) {
    azimuth_elevation[0] = frame.Defined ? Azimuth(frame, unit) : 0.0;
    azimuth_elevation[1] = elevation;
  }
  return elevation;
}

double AzimuthElevation(const GeodeticPosition& receiver, const double unit[3], double* azimuth_elevation) {
  return AzimuthElevation(LocalFrame(receiver), unit, azimuth_elevation);
}

GeodeticPosition EcefToGeodetic(const double position[3]) {
  // The iteration contracts by a factor of about 150 a round wherever it is meant to be used; the bound only
  // serves positions deep inside the Earth, where it may cycle.
  constexpr int kMaxRounds = 1000;
  const double r2 = position[0] * position[0] + position[1] * position[1];
  double z = position[2], previous = 0.0, v = kEarthRadius;
  for (int round = 0; std::fabs(z - previous) >= 1e-4 && round < kMaxRounds; ++round) {
    previous = z;
    const double sin_lat = previous / std::sqrt(r2 + previous * previous);
    v = kEarthRadius / std::sqrt(1.0 - kEarthEccentricitySquared * sin_lat * sin_lat);
    z = position[2] + v * kEarthEccentricitySquared * sin_lat;
  }
  GeodeticPosition geodetic;
  const bool off_axis = r2 > 1e-12;
  geodetic.Latitude = off_axis ? std::atan(z / std::sqrt(r2)) : (position[2] > 0.0 ? kPi / 2.0 : -kPi / 2.0);
  geodetic.Longitude = off_axis ? std::atan2(position[1], position[0]) : 0.0;
  geodetic.Height = std::sqrt(r2 + z * z) - v;
  return geodetic;
}

}  // namespace gnssqctoolkit
