// Position and clock of a satellite at transmission time.
#ifndef ORSOLVA_NAVIGATION_ORBITS_SATELLITE_STATE_H
#define ORSOLVA_NAVIGATION_ORBITS_SATELLITE_STATE_H

#include <cstdint>

namespace gnssqctoolkit {

struct SatelliteState {
  double Position[3] = {0.0, 0.0, 0.0};  ///< ECEF, m
  double Clock = 0.0;                    ///< clock bias, s
  double Variance = 0.0;                 ///< of the position, m^2
  std::int32_t Health = -1;              ///< health word of the record, -1 without one
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_ORBITS_SATELLITE_STATE_H
