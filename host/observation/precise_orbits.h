// Precise orbits and clocks of satellites as plain data, whatever the format they came in.
//
// Times are nanoseconds since 1970-01-01 on the GPS time scale. Positions are Earth-fixed, of the centre of
// mass. Clocks are without the relativistic effect of eccentric orbits, as IGS products give them.
#ifndef ORSOLVA_OBSERVATION_PRECISE_ORBITS_H
#define ORSOLVA_OBSERVATION_PRECISE_ORBITS_H

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include "host/observation/observation_epoch.h"

namespace orsolva_host {

/// Bits of PrecisePoint::flags.
constexpr std::uint8_t kClockEvent = 1;  ///< the clock was discontinuous since the point before
constexpr std::uint8_t kClockPredicted = 2;
constexpr std::uint8_t kManeuver = 4;  ///< the orbit was changed since the point before
constexpr std::uint8_t kOrbitPredicted = 8;

struct PrecisePoint {
  std::int64_t time_ns = 0;
  std::array<double, 3> position_m = {kAbsent, kAbsent, kAbsent};  ///< all or none are absent
  double clock_s = kAbsent;                                        ///< satellite clock minus system time
  std::uint8_t flags = 0;
};

struct PreciseOrbits {
  std::map<SatelliteId, std::vector<PrecisePoint>> satellites;  ///< in the order of time, each time once
};

}  // namespace orsolva_host

#endif  // ORSOLVA_OBSERVATION_PRECISE_ORBITS_H
