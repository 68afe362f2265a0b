// Broadcast orbits and clocks of every system as plain data, whatever the format they came in.
//
// Reference times are seconds since 1970-01-01 on the GPS time scale, for all systems: readers add the 14 s
// of BDS time and the leap seconds of UTC. Lengths are metres, angles radians.
#ifndef ORSOLVA_OBSERVATION_BROADCAST_RECORDS_H
#define ORSOLVA_OBSERVATION_BROADCAST_RECORDS_H

#include <optional>
#include <vector>

#include "host/observation/observation_epoch.h"

namespace orsolva_host {

/// Keplerian elements of GPS, Galileo, BDS, QZSS and NavIC (IS-GPS-200, table 20-III, and its likes).
struct KeplerRecord {
  SatelliteId satellite;
  double toe_s = 0;
  double toc_s = 0;
  double af0 = 0;  ///< s
  double af1 = 0;  ///< s/s
  double af2 = 0;  ///< s/s^2
  double sqrt_a = 0;
  double eccentricity = 0;
  double m0 = 0;
  double delta_n = 0;    ///< rad/s
  double omega0 = 0;     ///< right ascension at the beginning of the week of toe
  double omega_dot = 0;  ///< rad/s
  double i0 = 0;
  double idot = 0;   ///< rad/s
  double omega = 0;  ///< argument of perigee
  double cuc = 0, cus = 0, cic = 0, cis = 0;
  double crc = 0, crs = 0;
  double toe_of_week_s = 0;  ///< in the system's own week
  double group_delay_s = 0;  ///< BDS: TGD1, of B1I against B3I, to which the clock belongs
  bool unhealthy = false;
  bool second_message = false;  ///< Galileo F/NAV, whose clock differs from I/NAV's by a group delay
};

/// State vectors of GLONASS (ICD 5.1, section 4.4) and SBAS (RTCA DO-229), Earth-fixed.
struct StateVectorRecord {
  SatelliteId satellite;
  double toe_s = 0;
  double clock_bias_s = 0;  ///< to be added to satellite time: -TauN, or aGf0
  double clock_rate = 0;    ///< +GammaN, or aGf1
  double position_m[3] = {};
  double velocity_m_s[3] = {};
  double acceleration_m_s2[3] = {};
  std::optional<int> channel;  ///< GLONASS frequency channel
  bool unhealthy = false;
};

struct BroadcastRecords {
  std::vector<KeplerRecord> kepler;
  std::vector<StateVectorRecord> state_vectors;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_OBSERVATION_BROADCAST_RECORDS_H
