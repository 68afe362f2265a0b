// Signals in any order to an epoch.
#ifndef ORSOLVA_FORMATS_STREAMS_EPOCH_SIGNALS_H
#define ORSOLVA_FORMATS_STREAMS_EPOCH_SIGNALS_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "host/observation/observation_epoch.h"

namespace orsolva_host {

struct SatelliteSignal {
  SatelliteId satellite;
  SignalObservation observation;
};

inline bool HasValue(const SignalObservation& o) {
  return !std::isnan(o.pseudorange_m) || !std::isnan(o.phase_cycles) || !std::isnan(o.doppler_hz) ||
         !std::isnan(o.snr_dbhz);
}

/// Adds a signal behind those of the same satellite. @pre signals of a satellite come one after another
void AppendSignal(SatelliteId satellite, const SignalObservation& observation, ObservationEpoch& epoch);

/// Clears the epoch and fills it: satellites in the order of system and number, signals in that of their
/// codes, of several of one code the first. @return how many were left out for that
std::uint64_t FillEpoch(std::int64_t time_ns, std::vector<SatelliteSignal> signals, ObservationEpoch& epoch);

}  // namespace orsolva_host

#endif  // ORSOLVA_FORMATS_STREAMS_EPOCH_SIGNALS_H
