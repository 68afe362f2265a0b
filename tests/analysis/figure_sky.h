// Orbits for tests of figures: a station on the equator, a satellite of medium height and a geostationary
// one.
#ifndef ORSOLVA_TESTS_ANALYSIS_FIGURE_SKY_H
#define ORSOLVA_TESTS_ANALYSIS_FIGURE_SKY_H

#include <cmath>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/constants.h"
#include "host/analysis/geometry/station.h"
#include "tests/analysis/figure_epochs.h"

namespace orsolva_host::analysis {

constexpr double kTowOfMidnight_s = 345600;  // 2020-06-25 is a Thursday

inline Station EquatorStation() { return Station({6378137, 0, 0}); }

/// One circular orbit in a record every two hours. @param node_rad  longitude of the ascending node at
/// midnight
inline void AddOrbit(BroadcastRecords& records, SatelliteId id, double sqrt_a, double inclination_rad,
                     double node_rad, double m0_rad, double hours = 24) {
  const double n = std::sqrt(kGravityGps_m3_s2) / (sqrt_a * sqrt_a * sqrt_a);
  for (double t = 0; t <= hours * 3600; t += 7200) {
    KeplerRecord r;
    r.satellite = id;
    r.toe_s = r.toc_s = static_cast<double>(kMidnight_ns / kNanosecondsPerSecond) + t;
    r.toe_of_week_s = kTowOfMidnight_s + t;
    r.sqrt_a = sqrt_a;
    r.i0 = inclination_rad;
    r.m0 = m0_rad + n * t;
    r.omega0 = node_rad + kEarthRotation_rad_s * kTowOfMidnight_s;
    records.kepler.push_back(r);
  }
}

/// A GPS satellite that passes over the station.
inline void AddMediumOrbit(BroadcastRecords& records, SatelliteId id) {
  AddOrbit(records, id, 5153.7, 0.96, 0.2, -0.6);
}

/// One that stays above a longitude on the equator, for a station there at the zenith.
inline void AddStillOrbit(BroadcastRecords& records, SatelliteId id, double longitude_rad,
                          double hours = 24) {
  const double a = std::cbrt(kGravityGps_m3_s2 / (kEarthRotation_rad_s * kEarthRotation_rad_s));
  AddOrbit(records, id, std::sqrt(a), 0, longitude_rad, 0, hours);
}

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_TESTS_ANALYSIS_FIGURE_SKY_H
