#include "host/analysis/slips/hole_window.h"

#include <algorithm>

namespace orsolva_host::analysis {

void HoleWindow::Settle(const SatelliteTrack& track, std::int64_t step, double interval_s) {
  step_ = step;
  before_count_ = count_ = 0;
  const std::int64_t last = std::min(step + kReach, track.next - 1);
  for (std::int64_t i = std::max(step - kReach, track.first + 1); i <= last; ++i) {
    if (track.At(i).broken) continue;
    StepTest& test = tests_[count_];
    MakeTest(track, i, interval_s, test);
    if (i < step) {
      before_[before_count_++] = Chi2(test);
    } else {
      steps_[count_++] = i;
    }
  }
}

double HoleWindow::Chi2Without(const SatelliteTrack& track, const SignalMetres& metres, double enough) {
  double sum = 0;
  for (std::size_t k = 0; k < before_count_ && sum <= enough; ++k) sum += before_[k];
  for (std::size_t k = 0; k < count_ && sum <= enough; ++k) {
    TakePhases(track, steps_[k], step_, metres, tests_[k]);
    sum += Chi2(tests_[k]);
  }
  return sum;
}

}  // namespace orsolva_host::analysis
