// Generates the broadcast records of a nominal orbit over a span, as the control segment of the system would
// send them: a series of sets that describe one orbit and one clock.
#ifndef ORSOLVA_SIMULATOR_BROADCAST_H
#define ORSOLVA_SIMULATOR_BROADCAST_H

#include <cstdint>
#include <vector>

#include "host/simulator/constellation.h"
#include "host/simulator/orbits.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// Rounds to the 12 decimals with exponent of a navigation file.
double AsBroadcast(double value);

/// Reference times of records, GPS time as whole seconds since 1970.
struct RecordTimes {
  std::int64_t first = 0;
  std::int64_t step = 3600;
  std::int64_t count = 0;
};

/// Times that are integer multiples of the step plus `offset_s`, from the last one at or before `start` minus
/// one step to the first one at or after `end` plus one step.
RecordTimes TimesOver(std::int64_t start, std::int64_t end, std::int64_t step_s, std::int64_t offset_s);

/// UTC is this many seconds behind GPS time.
int LeapSeconds(std::int64_t gps_time);

inline constexpr std::int64_t kWeek_s = 604800;
inline constexpr std::int64_t kGpsEpoch = 315964800;   // 1980-01-06
inline constexpr std::int64_t kBdsEpoch = 1136073600;  // 2006-01-01
inline constexpr std::int64_t kBdsBehindGps_s = 14;

/// Kepler records at the times given, already rounded; reference_s counts from `origin`.
std::vector<KeplerSet> KeplerSets(const NominalOrbit& orbit, const RecordTimes& times, std::int64_t origin);

/// GLONASS records at the times given, already rounded, with UTC reference times.
std::vector<GloEph_gbt> GlonassRecords(const NominalOrbit& orbit, const RecordTimes& times);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_BROADCAST_H
