// How long a signal has been tracked without loss of lock, and whether lock was lost between two epochs.
#ifndef ORSOLVA_FORMATS_STREAMS_LOCK_TIME_H
#define ORSOLVA_FORMATS_STREAMS_LOCK_TIME_H

#include <cstdint>
#include <limits>
#include <map>

#include "host/observation/observation_epoch.h"

namespace orsolva_host {

/// Closed below, open above, ms.
struct LockTime {
  std::int64_t from_ms = 0;
  std::int64_t below_ms = std::numeric_limits<std::int64_t>::max();
};

/// Whether lock was lost since an epoch `passed_ms` before with a lock time from `before_ms` on: the whole
/// range of the lock time is below the one before, or below the time passed since then.
bool LockLost(std::int64_t before_ms, LockTime now, std::int64_t passed_ms);

/// Follows the lock of every signal from epoch to epoch. It says nothing of whether cycles were lost: finding
/// slips is not done here.
class LockTracker {
 public:
  /// @param half_cycle_subtracted  the receiver has resolved the half-cycle ambiguity by subtracting half a
  /// cycle; where that changes, the phase changes by half a cycle
  /// @return whether lock was lost, or the phase stepped by half a cycle, since the last epoch of the signal
  /// with a phase
  bool Lost(std::int64_t time_ns, SatelliteId satellite, SignalCode code, LockTime lock,
            bool half_cycle_subtracted = false);

 private:
  struct State {
    std::int64_t time_ns = 0;
    std::int64_t lock_from_ms = 0;
    bool half_cycle_subtracted = false;
  };
  std::map<std::uint32_t, State> states_;  ///< by satellite and signal
};

}  // namespace orsolva_host

#endif  // ORSOLVA_FORMATS_STREAMS_LOCK_TIME_H
