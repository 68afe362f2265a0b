// The station: its position, and what the troposphere delays a signal there.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_STATION_H
#define ORSOLVA_ANALYSIS_GEOMETRY_STATION_H

#include "host/analysis/geometry/satellite_orbit.h"

namespace orsolva_host::analysis {

/// Latitude and longitude in radians and height in metres on the WGS 84 ellipsoid.
struct Geodetic {
  double latitude_rad = 0;
  double longitude_rad = 0;
  double height_m = 0;
};

Geodetic ToGeodetic(const Vector3& position_m);

class Station {
 public:
  Station() = default;
  explicit Station(const Vector3& position_m);

  const Vector3& Position() const { return position_m_; }
  const Vector3& Up() const { return up_; }

  /// Slant delay, m: zenith delays of Saastamoinen (1972) in a standard atmosphere, mapped as Niell (1996)
  /// does at mean epoch. Below 1.7 degrees the value there.
  double TroposphereDelay(double sin_elevation) const;

 private:
  struct Mapping {
    double a = 0, b = 0, c = 0;
  };
  static double Mapped(const Mapping& mapping, double sin_elevation);

  Vector3 position_m_ = {};
  Vector3 up_ = {};
  double zenith_dry_m_ = 0;
  double zenith_wet_m_ = 0;
  Mapping dry_, wet_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_STATION_H
