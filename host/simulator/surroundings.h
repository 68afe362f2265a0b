// Between satellite and receiver: directions, troposphere and ionosphere.
#ifndef ORSOLVA_SIMULATOR_SURROUNDINGS_H
#define ORSOLVA_SIMULATOR_SURROUNDINGS_H

#include <array>

namespace orsolva_host {

/// A place on the Earth: WGS-84 latitude and longitude (rad), height (m), and the local axes.
struct Site {
  std::array<double, 3> position_m = {};
  double latitude_rad = 0;
  double longitude_rad = 0;
  double height_m = 0;
  std::array<double, 3> east = {}, north = {}, up = {};
};

Site MakeSite(const std::array<double, 3>& position_m);

struct Direction {
  double elevation_rad = 0;
  double azimuth_rad = 0;
};

/// @param line  from the site to the satellite, m
Direction DirectionOf(const Site& site, const double* line, double length_m);

/// Slant delay in metres: Saastamoinen 1972 with the standard atmosphere and a relative humidity of 0.7.
double TroposphereDelay(const Site& site, double elevation_rad);

/// Slant electron content of a quiet day in TECU: a thin shell at 400 km whose vertical content is `night`
/// and rises by `day` at 14 h local time.
/// @param day_s  seconds of the day, GPS time
double SlantTec(const Site& site, const Direction& direction, double day_s, double night, double day);

/// Code delay in metres per TECU on a carrier; the phase advances by the same amount.
double MetresPerTecu(double frequency_hz);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SURROUNDINGS_H
