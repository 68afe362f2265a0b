// Progress counters of a run and its cancellation flag, shared between threads.
#ifndef ORSOLVA_JUDGING_RUN_MONITOR_H
#define ORSOLVA_JUDGING_RUN_MONITOR_H

#include <atomic>
#include <cstdint>
#include <stdexcept>

namespace orsolva_host {

struct RunMonitor {
  std::atomic<std::uint64_t> epochs{0};  ///< read so far, of all files
  std::atomic<std::uint64_t> bytes{0};   ///< of observation files read so far, as they lie on disk
  std::atomic<bool> stop{false};         ///< files under way end with Stopped as soon as they see it
  bool count_bytes = false;              ///< set before the run begins
};

/// A run that was cancelled.
class Stopped : public std::runtime_error {
 public:
  Stopped() : std::runtime_error("stopped") {}
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_RUN_MONITOR_H
