// Small epochs for tests of figures.
#ifndef ORSOLVA_TESTS_ANALYSIS_FIGURE_EPOCHS_H
#define ORSOLVA_TESTS_ANALYSIS_FIGURE_EPOCHS_H

#include <cmath>
#include <string>
#include <vector>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

constexpr std::int64_t kMidnight_ns = 1593043200LL * kNanosecondsPerSecond;  // 2020-06-25, day 177

inline std::int64_t At(double seconds) {
  return kMidnight_ns + static_cast<std::int64_t>(std::llround(seconds * 1e9));
}

/// A satellite's signals, "1C", each with code, phase and strength.
inline void AddSatellite(ObservationEpoch& epoch, SatelliteId id, const std::vector<std::string>& signals,
                         double snr_dbhz = 45) {
  epoch.satellites.push_back({id, epoch.signals.size(), signals.size()});
  for (const std::string& name : signals) {
    SignalObservation o;
    o.code = {name[0], name[1]};
    o.pseudorange_m = 2.2e7;
    o.phase_cycles = 1.1e8;
    o.snr_dbhz = snr_dbhz;
    epoch.signals.push_back(o);
  }
}

/// An epoch of GPS satellites 1 to n with 1C and 2W.
inline ObservationEpoch EpochOf(double seconds, int satellites) {
  ObservationEpoch epoch;
  epoch.time_ns = At(seconds);
  for (int i = 1; i <= satellites; ++i)
    AddSatellite(epoch, {'G', static_cast<std::uint8_t>(i)}, {"1C", "2W"});
  return epoch;
}

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_TESTS_ANALYSIS_FIGURE_EPOCHS_H
