// The faults of a scenario by epoch: random ones are drawn, times become epoch numbers, and each fault is
// recorded in the truth when it happens.
#ifndef ORSOLVA_SIMULATOR_ACTIVE_FAULTS_H
#define ORSOLVA_SIMULATOR_ACTIVE_FAULTS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/simulator/scenario.h"
#include "host/simulator/truth.h"

namespace orsolva_host {

struct ActiveFault {
  Fault fault;
  std::int64_t first = 0;  ///< number of the first epoch affected
  std::int64_t end = 0;    ///< number of the first epoch after it
  int record = -1;         ///< index in Truth::faults once it has happened

  bool At(std::int64_t epoch) const { return epoch >= first && epoch < end; }
  bool Meets(char system, int satellite) const {
    return (fault.target.system == 0 || fault.target.system == system) &&
           (fault.target.satellite == 0 || fault.target.satellite == satellite);
  }
  bool Meets(const std::string& signal) const {
    return fault.target.signal.empty() || fault.target.signal == signal;
  }
};

/// Records that a fault shows in the data.
inline void MarkSeen(const ActiveFault& fault, std::vector<InjectedFault>& log) {
  if (fault.record >= 0) log[static_cast<std::size_t>(fault.record)].seen = true;
}

/// Whether a fault of a kind is active at an epoch.
bool HasFault(const std::vector<ActiveFault>& faults, FaultKind kind, std::int64_t epoch);
/// Seconds by which an epoch is late.
double LateBy(const std::vector<ActiveFault>& faults, std::int64_t epoch);

/// Epoch numbers of a span.
struct EpochGrid {
  std::int64_t interval_ticks = 0;  ///< 100 ns
  std::int64_t epochs = 0;

  /// The first epoch at or after a time, s after the start.
  std::int64_t AtOrAfter(double seconds) const;
  double Seconds(std::int64_t epoch) const { return static_cast<double>(epoch * interval_ticks) / 1e7; }
};

EpochGrid GridOf(const Scenario& scenario);

/// Satellites of a target whose elevation is above a limit at a time.
using VisibleAt =
    std::function<std::vector<FaultTarget>(const FaultTarget& target, double seconds, double above_deg)>;

/// @param visible  used to draw the satellites and signals of random faults
std::vector<ActiveFault> ResolveFaults(const Scenario& scenario, const EpochGrid& grid,
                                       const VisibleAt& visible);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_ACTIVE_FAULTS_H
