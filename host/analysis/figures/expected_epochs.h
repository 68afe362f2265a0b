// For each satellite with an orbit: the nominal epochs at which it was above the horizon and above the
// cut-off and was healthy, those inside gaps of the stream included, none before its first and after its last
// epoch.
#ifndef ORSOLVA_ANALYSIS_FIGURES_EXPECTED_EPOCHS_H
#define ORSOLVA_ANALYSIS_FIGURES_EXPECTED_EPOCHS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/visibility.h"

namespace orsolva_host::analysis {

class ExpectedEpochs {
 public:
  struct Counts {
    std::array<Count, Visibility::kLevels> healthy = {};
    std::array<Count, Visibility::kLevels> unhealthy = {};
  };

  /// Takes the next epoch of the stream; leaves the visibility there.
  /// @param steps  nominal epochs from the one before to this one, itself included; those between are spread
  /// evenly. With 0 nothing is counted.
  void Add(std::int64_t time_ns, std::int64_t steps, const Station& station, Visibility& visibility);

  /// Whether the satellite was counted as expected at the epoch taken last.
  bool IsExpected(std::size_t satellite, Visibility::Level level) const {
    return counted_now_ && IsHealthyAbove(satellite, level);
  }
  /// The same, whether or not that epoch was a nominal one.
  bool IsHealthyAbove(std::size_t satellite, Visibility::Level level) const {
    return satellite < above_now_.size() && (above_now_[satellite] & (1U << level)) != 0;
  }
  /// By the numbers of the visibility.
  const std::vector<Counts>& Satellites() const { return counts_; }

  /// Puts counts of the same epochs at another interval in place.
  void Replace(std::vector<Counts> counts) { counts_ = std::move(counts); }

 private:
  void CountGap(std::int64_t time_ns, std::int64_t steps, std::int64_t step_ns, const Station& station,
                Visibility& visibility);
  void NoteEpoch(std::int64_t time_ns, const Visibility& visibility);

  std::vector<Counts> counts_;
  std::vector<std::uint8_t> above_now_;  ///< bits by level
  bool counted_now_ = false;
  std::optional<std::int64_t> last_ns_;  ///< last nominal epoch
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_EXPECTED_EPOCHS_H
