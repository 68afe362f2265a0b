#include "host/analysis/figures/interval.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orsolva_host::analysis {
namespace {

constexpr std::int64_t kMillisecond_ns = 1'000'000;
constexpr std::int64_t kAlike = 50;  // steps that differ by a fiftieth are one kind

bool IsAlike(std::int64_t a_ns, std::int64_t b_ns) { return std::abs(a_ns - b_ns) <= b_ns / kAlike; }

}  // namespace

Interval::Interval(double hint_s)
    : hint_ns_(hint_s > 0 && hint_s < 1e6 ? static_cast<std::int64_t>(std::llround(hint_s * 1e9)) : 0),
      interval_ns_(hint_ns_) {}

void Interval::Add(std::int64_t step_ns) {
  if (step_ns <= 0) return;
  ++steps_;
  if (last_ >= kinds_.size() || !IsAlike(step_ns, kinds_[last_].first_ns)) {
    last_ = static_cast<std::size_t>(
        std::find_if(kinds_.begin(), kinds_.end(),
                     [&](const Step& kind) { return IsAlike(step_ns, kind.first_ns); }) -
        kinds_.begin());
    if (last_ == kMaxStepKinds) {
      // The rarest kind makes room; what stays may be counted too low, never too high.
      last_ = static_cast<std::size_t>(
          std::min_element(kinds_.begin(), kinds_.end(),
                           [](const Step& a, const Step& b) { return a.count < b.count; }) -
          kinds_.begin());
      kinds_[last_] = {step_ns, 0, 0};
    } else if (last_ == kinds_.size()) {
      kinds_.push_back({step_ns, 0, 0});
    }
  }
  kinds_[last_].sum_off_ns += step_ns - kinds_[last_].first_ns;
  ++kinds_[last_].count;
  interval_ns_ = Found();
}

bool Interval::IsMultipleOfHint(const Step& step) const {
  const std::int64_t times = (step.first_ns + hint_ns_ / 2) / hint_ns_;
  return times >= 1 && IsAlike(step.first_ns, times * hint_ns_);
}

std::int64_t Interval::Found() const {
  const Step& most = *std::max_element(kinds_.begin(), kinds_.end(), [](const Step& a, const Step& b) {
    return a.count != b.count ? a.count < b.count : a.first_ns > b.first_ns;
  });
  if (4 * most.count < steps_ && hint_ns_ > 0) {
    std::uint64_t multiples = 0;
    for (const Step& step : kinds_) multiples += IsMultipleOfHint(step) ? step.count : 0;
    if (4 * multiples >= steps_) return hint_ns_;
  }
  const std::int64_t mean_ns = most.first_ns + most.sum_off_ns / static_cast<std::int64_t>(most.count);
  const std::int64_t unit_ns = mean_ns >= 10 * kMillisecond_ns ? kMillisecond_ns : 1;
  return (mean_ns + unit_ns / 2) / unit_ns * unit_ns;
}

}  // namespace orsolva_host::analysis
