// Position and clock of a satellite from one broadcast record.
//
// Frames: Earth-fixed at the time asked for. Notation as in IS-GPS-200, table 20-IV: tk time from toe, E
// eccentric anomaly, u argument of latitude, r radius, i inclination, om longitude of the ascending node.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_SATELLITE_ORBIT_H
#define ORSOLVA_ANALYSIS_GEOMETRY_SATELLITE_ORBIT_H

#include <cstdint>
#include <vector>

#include "host/analysis/geometry/vector3.h"
#include "host/observation/broadcast_records.h"

namespace orsolva_host::analysis {

/// A time of the GPS time scale as a whole number of nanoseconds and a small offset, so that differences of
/// two keep a picosecond.
struct Instant {
  std::int64_t ns = 0;
  double offset_s = 0;
};

/// Time since a reference time in seconds since 1970.
double SecondsSince(const Instant& time, double reference_s);

struct SatelliteState {
  Vector3 position_m = {};
  double clock_s = 0;  ///< satellite clock minus system time, with the relativistic part of eccentricity
};

/// Keplerian elements at a time. Geostationary BDS satellites (C01 to C05, C59 to C63) are turned by -5
/// degrees (BDS-SIS-ICD 2.1, table 5-12). @return positions that are not finite where the record is damaged
SatelliteState KeplerState(const KeplerRecord& record, const Instant& time);

/// The polynomial of the clock alone, s.
double KeplerClock(const KeplerRecord& record, const Instant& time);

/// A GLONASS state vector integrated by Runge-Kutta steps of 60 s on a grid from its reference time (ICD 5.1,
/// A.3.1.2), then one shorter step. Grid points are kept, so that a later call costs one step; what is kept
/// changes no bit. SBAS vectors are carried on by their accelerations alone (RTCA DO-229, A.4.4.11).
class StateVectorOrbit {
 public:
  explicit StateVectorOrbit(const StateVectorRecord& record) : record_(&record) {}
  SatelliteState At(const Instant& time);
  double Clock(const Instant& time) const;

 private:
  using Motion = std::array<double, 6>;
  const Motion& GridPoint(std::size_t steps, bool forward);

  const StateVectorRecord* record_;
  std::array<std::vector<Motion>, 2> grid_;  ///< backward, forward
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_SATELLITE_ORBIT_H
