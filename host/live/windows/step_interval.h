// The nominal interval of a stream, from the steps between its epochs.
#ifndef ORSOLVA_LIVE_WINDOWS_STEP_INTERVAL_H
#define ORSOLVA_LIVE_WINDOWS_STEP_INTERVAL_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>

namespace orsolva_host::live {

/// The most frequent of the last kSteps steps, to the millisecond; of equally frequent ones the shortest. A
/// receiver that is set to another interval is followed after half as many steps.
class StepInterval {
 public:
  static constexpr std::size_t kSteps = 120;

  /// Steps below half a millisecond are left out.
  void Add(std::int64_t step_ns);
  /// Absent before the first step.
  std::optional<double> Seconds() const;

 private:
  std::deque<std::int64_t> latest_ms_;
  std::map<std::int64_t, int> counts_;  ///< by step, ms
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_WINDOWS_STEP_INTERVAL_H
