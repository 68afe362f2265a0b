#include "navigation/geometry.h"

#include <cmath>

#include "navigation/constants.h"

namespace gnssqctoolkit {
namespace {

double Norm(const double vector[3]) {
  return std::sqrt(vector[0] * vector[0] + vector[1] * vector[1] + vector[2] * vector[2]);
}

// East, north and up components of a direction at a geodetic position.
void ToLocal(const GeodeticPosition& receiver, const double unit[3], double enu[3]) {
  const double sin_lat = std::sin(receiver.Latitude), cos_lat = std::cos(receiver.Latitude);
  const double sin_lon = std::sin(receiver.Longitude), cos_lon = std::cos(receiver.Longitude);
  enu[0] = -sin_lon * unit[0] + cos_lon * unit[1];
  enu[1] = -sin_lat * cos_lon * unit[0] - sin_lat * sin_lon * unit[1] + cos_lat * unit[2];
  enu[2] = cos_lat * cos_lon * unit[0] + cos_lat * sin_lon * unit[1] + sin_lat * unit[2];
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

double AzimuthElevation(const GeodeticPosition& receiver, const double unit[3], double* azimuth_elevation) {
  double azimuth = 0.0;
  double elevation = kPi / 2.0;
  if (receiver.Height > -kEarthRadius) {
    double enu[3];
    ToLocal(receiver, unit, enu);
    azimuth = enu[0] * enu[0] + enu[1] * enu[1] < 1e-12 ? 0.0 : std::atan2(enu[0], enu[1]);
    if (azimuth < 0.0) azimuth += 2.0 * kPi;
    // Rounding may carry a unit vector's component a little beyond one.
    const double up = enu[2] > 1.0 ? 1.0 : (enu[2] < -1.0 ? -1.0 : enu[2]);
    elevation = std::asin(up);
  }
  if (azimuth_elevation != nullptr) {
    azimuth_elevation[0] = azimuth;
    azimuth_elevation[1] = elevation;
  }
  return elevation;
}

GeodeticPosition EcefToGeodetic(const double position[3]) {
  // The iteration contracts by a factor of about 150 a round wherever it is meant to be used; the bound only
  // serves positions deep inside the Earth, where it may cycle.
  constexpr int kMostRounds = 1000;
  const double r2 = position[0] * position[0] + position[1] * position[1];
  double z = position[2], previous = 0.0, v = kEarthRadius;
  for (int round = 0; std::fabs(z - previous) >= 1e-4 && round < kMostRounds; ++round) {
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
