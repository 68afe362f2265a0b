// Satellite positions from broadcast records. Times are GPS time in seconds after the start of a span;
// positions are Earth-fixed, m.
//
// Sources: IS-GPS-200, table 20-IV; Galileo OS SIS ICD, section 5.1; BDS-SIS-ICD-2.1, table 5-12 (with the
// rotation of geostationary orbits); GLONASS ICD 5.1, appendix A.3.1.2.
#ifndef ORSOLVA_SIMULATOR_ORBITS_H
#define ORSOLVA_SIMULATOR_ORBITS_H

#include <array>
#include <vector>

#include "host/observation/physical_constants.h"

namespace orsolva_host {

inline constexpr double kGeoTilt_rad = -0.08726646259971647;

struct KeplerSet {
  double reference_s = 0;  ///< toe and toc
  double af0 = 0, af1 = 0, af2 = 0;
  double sqrt_a = 0, e = 0, m0 = 0, deln = 0;
  double node_at_week = 0;  ///< OMG0
  double node_rate = 0;     ///< OMGd
  double seconds_of_week = 0;
  double i0 = 0, idot = 0, perigee = 0;
  double cuc = 0, cus = 0, crc = 0, crs = 0, cic = 0, cis = 0;
  double gravity = kGravityGps_m3_s2;
  double earth_rate = kEarthRotation_rad_s;
  bool geostationary = false;  ///< BDS form
};

/// A record prepared for evaluation: what does not change from epoch to epoch is computed once.
class KeplerOrbit {
 public:
  explicit KeplerOrbit(const KeplerSet& record);
  /// @param position_m  three coordinates, filled
  /// @return the clock with its relativistic term, s
  double StateAt(double time_s, double* position_m) const;

 private:
  void ToEarth(double node, double x, double y, double inclination, double* out) const;
  void RotateGeostationary(double tk, double* position) const;

  KeplerSet r_;
  double axis_, motion_, root_, relativity_, node_;
};

/// Position, velocity (m, m/s) in the rotating Earth-fixed frame.
using GlonassState = std::array<double, 6>;
using GlonassAcceleration = std::array<double, 3>;

/// One fourth-order Runge-Kutta step with the central field, the flattening and a constant acceleration.
GlonassState GlonassStep(const GlonassState& state, const GlonassAcceleration& acceleration, double step_s);

inline constexpr double kGlonassStep_s = 60;

/// A state vector with its states at full steps before and after, so that a position costs one short step.
class GlonassOrbit {
 public:
  /// @param reach_s  largest distance from the reference time at which states are needed
  GlonassOrbit(double reference_s, const GlonassState& state, const GlonassAcceleration& acceleration,
               double bias_s, double rate, double reach_s);
  double StateAt(double time_s, double* position_m) const;

 private:
  double reference_s_, bias_s_, rate_;
  GlonassAcceleration acceleration_;
  std::vector<GlonassState> after_, before_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_ORBITS_H
