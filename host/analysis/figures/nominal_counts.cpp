#include "host/analysis/figures/nominal_counts.h"

#include <algorithm>
#include <utility>

namespace orsolva_host::analysis {
namespace {

class Counter {
 public:
  Counter(Visibility visibility, const Station* station)
      : visibility_(std::move(visibility)), station_(station) {}

  void Add(const Span::Stretch& stretch) {
    if (stretch.steps == 0) return;
    if (station_ != nullptr) expected_.Add(stretch.last_ns, stretch.steps, *station_, visibility_);
    present_ += stretch.present;
    last_ns_ = stretch.last_ns;
  }

  /// Adds what lies before a border and leaves the rest.
  void AddBefore(std::int64_t border_ns, Span::Stretch& stretch) {
    const std::int64_t step_ns = stretch.steps > 1 ? (stretch.last_ns - last_ns_) / stretch.steps : 0;
    if (step_ns <= 0 || border_ns <= last_ns_) return;
    const std::int64_t steps = std::min(stretch.steps - 1, (border_ns - 1 - last_ns_) / step_ns);
    const auto present =
        static_cast<Count>(static_cast<std::int64_t>(stretch.present) * steps / stretch.steps);
    Add({last_ns_ + steps * step_ns, steps, present});
    stretch.steps -= steps;
    stretch.present -= present;
  }

  NominalCounts Counts() const { return {present_, expected_.Satellites()}; }

 private:
  Visibility visibility_;
  const Station* station_;
  ExpectedEpochs expected_;
  Count present_ = 0;
  std::int64_t last_ns_ = 0;
};

}  // namespace

std::vector<NominalCounts> CountAgain(const std::vector<Span::Stretch>& stretches,
                                      const std::vector<std::int64_t>& borders_ns, Visibility visibility,
                                      const Station* station) {
  std::vector<NominalCounts> counts;
  Counter counter(std::move(visibility), station);
  for (Span::Stretch stretch : stretches) {
    for (; counts.size() < borders_ns.size() && borders_ns[counts.size()] <= stretch.last_ns;) {
      counter.AddBefore(borders_ns[counts.size()], stretch);
      counts.push_back(counter.Counts());
    }
    counter.Add(stretch);
  }
  while (counts.size() <= borders_ns.size()) counts.push_back(counter.Counts());
  return counts;
}

}  // namespace orsolva_host::analysis
