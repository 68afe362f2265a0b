#include "host/live/windows/step_interval.h"

#include <algorithm>

namespace orsolva_host::live {

void StepInterval::Add(std::int64_t step_ns) {
  constexpr std::int64_t kMillisecond_ns = 1'000'000;
  const std::int64_t step_ms = (step_ns + kMillisecond_ns / 2) / kMillisecond_ns;
  if (step_ms <= 0) return;
  latest_ms_.push_back(step_ms);
  ++counts_[step_ms];
  if (latest_ms_.size() <= kSteps) return;
  const auto oldest = counts_.find(latest_ms_.front());
  if (--oldest->second == 0) counts_.erase(oldest);
  latest_ms_.pop_front();
}

std::optional<double> StepInterval::Seconds() const {
  const auto most = std::max_element(counts_.begin(), counts_.end(),
                                     [](const auto& a, const auto& b) { return a.second < b.second; });
  if (most == counts_.end()) return std::nullopt;
  return static_cast<double>(most->first) / 1000;
}

}  // namespace orsolva_host::live
