// Range, direction and geodetic conversion on WGS-84. Positions are ECEF in metres, angles in radians.
#ifndef ORSOLVA_NAVIGATION_ORBITS_GEOMETRY_H
#define ORSOLVA_NAVIGATION_ORBITS_GEOMETRY_H

namespace gnssqctoolkit {

/// Geodetic position: latitude and longitude in radians, height in metres above WGS-84.
struct GeodeticPosition {
  double Latitude = 0.0;
  double Longitude = 0.0;
  double Height = 0.0;
};

/// Range from receiver to satellite with the Earth-rotation (Sagnac) term, and the unit vector towards the
/// satellite.
/// @return metres, or -1.0 with `unit` untouched for a satellite closer to the geocentre than the equator
double GeometricRange(const double satellite[3], const double receiver[3], double unit[3]);

/// Azimuth (0 to 2 pi, from north) and elevation of a direction seen from a receiver.
/// @param azimuth_elevation  two values, may be null
/// @return the elevation; pi/2 (azimuth 0) for a receiver at or below the geocentre
double AzimuthElevation(const GeodeticPosition& receiver, const double unit[3], double* azimuth_elevation);

/// East, north and up at a receiver, for many directions seen from one place.
struct LocalFrame {
  LocalFrame() = default;
  explicit LocalFrame(const GeodeticPosition& receiver);

  bool Defined = false;  ///< false at or below the geocentre
  double SinLat = 0.0, CosLat = 1.0, SinLon = 0.0, CosLon = 1.0;
};
/// AzimuthElevation with a frame made before, bit for bit.
double AzimuthElevation(const LocalFrame& frame, const double unit[3], double* azimuth_elevation);

GeodeticPosition EcefToGeodetic(const double position[3]);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_ORBITS_GEOMETRY_H
