#include "host/analysis/figures/expected_epochs.h"

#include <algorithm>

namespace orsolva_host::analysis {
namespace {

/// Rounded towards minus infinity. @param b  positive
std::int64_t FloorDivision(std::int64_t a, std::int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

}  // namespace

void ExpectedEpochs::Add(std::int64_t time_ns, std::int64_t steps, const Station& station,
                         Visibility& visibility) {
  counts_.resize(visibility.Satellites());
  above_now_.assign(visibility.Satellites(), 0);
  if (last_ns_ && steps > 1) CountGap(time_ns, steps, (time_ns - *last_ns_) / steps, station, visibility);
  visibility.MoveTo(time_ns, station);
  counted_now_ = steps > 0;
  NoteEpoch(time_ns, visibility);
  if (counted_now_) last_ns_ = time_ns;
}

void ExpectedEpochs::NoteEpoch(std::int64_t time_ns, const Visibility& visibility) {
  for (const std::size_t satellite : visibility.InView()) {
    for (const Visibility::Window& window : visibility.WindowsOf(satellite)) {
      if (time_ns < window.from_ns || time_ns >= window.to_ns) continue;
      if (window.healthy) above_now_[satellite] |= static_cast<std::uint8_t>(1U << window.level);
      if (!counted_now_) continue;
      Counts& counts = counts_[satellite];
      ++(window.healthy ? counts.healthy : counts.unhealthy)[window.level];
    }
  }
}

/// The missing nominal epochs, segment by segment: time_ns - j step_ns with j from 1 to steps - 1.
void ExpectedEpochs::CountGap(std::int64_t time_ns, std::int64_t steps, std::int64_t step_ns,
                              const Station& station, Visibility& visibility) {
  for (std::int64_t j = steps - 1; j >= 1;) {
    visibility.MoveTo(time_ns - j * step_ns, station);
    // The last missing epoch of this segment.
    const std::int64_t end =
        std::max<std::int64_t>(FloorDivision(time_ns - visibility.SegmentEnd(), step_ns) + 1, 1);
    for (const std::size_t satellite : visibility.InView()) {
      for (const Visibility::Window& window : visibility.WindowsOf(satellite)) {
        const std::int64_t first = std::min(FloorDivision(time_ns - window.from_ns, step_ns), j);
        const std::int64_t last = std::max(FloorDivision(time_ns - window.to_ns, step_ns) + 1, end);
        if (first < last) continue;
        Counts& counts = counts_[satellite];
        (window.healthy ? counts.healthy : counts.unhealthy)[window.level] +=
            static_cast<Count>(first - last + 1);
      }
    }
    j = end - 1;
    if (j >= 1 && visibility.InView().empty()) {
      const auto next_ns = visibility.NextCovered(time_ns - j * step_ns);
      j = next_ns ? std::min(j, FloorDivision(time_ns - *next_ns, step_ns)) : 0;
    }
  }
}

}  // namespace orsolva_host::analysis
