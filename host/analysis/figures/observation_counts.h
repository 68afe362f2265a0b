// Counts of what the data hold, whatever the elevation: values per signal; epochs, first and last per
// satellite.
//
// A value is counted where it is in the data, each time; a satellite is observed in an epoch with at least
// one code or phase of it, and a signal on a satellite with at least one value of any kind.
#ifndef ORSOLVA_ANALYSIS_FIGURES_OBSERVATION_COUNTS_H
#define ORSOLVA_ANALYSIS_FIGURES_OBSERVATION_COUNTS_H

#include <cstdint>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

class ObservationCounts {
 public:
  /// @param roster  has taken the epoch
  void Add(const ObservationEpoch& epoch, const SignalRoster& roster);
  void FillIn(const SignalRoster& roster, AnalysisResult& result) const;

 private:
  struct SignalCounts {
    Count codes = 0, phases = 0, dopplers = 0, strengths = 0;
  };
  struct SatelliteCounts {
    Count epochs = 0;
    std::int64_t first_ns = 0, last_ns = 0;
  };
  std::vector<SignalCounts> signals_;
  std::vector<SatelliteCounts> satellites_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_OBSERVATION_COUNTS_H
