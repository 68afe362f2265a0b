#include "host/live/stations/hour_bridge.h"

#include <algorithm>

#include "host/analysis/slips/detector_constants.h"

namespace orsolva_host::live {
namespace {

constexpr std::int64_t kLongestGap_ns =
    static_cast<std::int64_t>(analysis::kLongestGap_s) * kNanosecondsPerSecond;
/// Epochs of the new hour that are covered at least: the new run decides its first ones late.
constexpr int kLeastEpochs = 24;

}  // namespace

void RecentEpochs::Add(const ObservationEpoch& epoch) {
  if (epochs_.size() < kKept) epochs_.resize(kKept);
  epochs_[next_] = epoch;
  next_ = (next_ + 1) % kKept;
  count_ = std::min(count_ + 1, kKept);
}

const ObservationEpoch& RecentEpochs::At(std::size_t place) const {
  return epochs_[(next_ + kKept - count_ + place) % kKept];
}

bool HourBridge::CanSpan(const RecentEpochs& before, std::int64_t next_ns) {
  if (before.Size() == 0) return false;
  const std::int64_t step_ns = next_ns - before.At(before.Size() - 1).time_ns;
  return step_ns > 0 && step_ns <= kLongestGap_ns;
}

HourBridge::HourBridge(const analysis::DetectorOptions& options, const BroadcastRecords& records,
                       const RecentEpochs& before, std::int64_t from_ns)
    : detector_(options, records), from_ns_(from_ns) {
  for (std::size_t i = 0; i < before.Size(); ++i) detector_.Add(before.At(i));
  detector_.TakeEvents();  // of the hour before, which its run has found
}

void HourBridge::Add(const ObservationEpoch& epoch, EventSink& events) {
  detector_.Add(epoch);
  ++epochs_;
  if (epochs_ > kLeastEpochs && epoch.time_ns - from_ns_ > kLongestGap_ns) {
    if (epochs_after_++ == 0) until_ns_ = epoch.time_ns;
  }
  Pass(events);
}

void HourBridge::Finish(EventSink& events) {
  detector_.Finish();
  Pass(events);
}

bool HourBridge::IsOver() const { return epochs_after_ > analysis::kLead; }

void HourBridge::Pass(EventSink& events) {
  for (const analysis::Event& event : detector_.TakeEvents()) {
    if (Covers(event.time_ns)) events.Add(event);
  }
}

}  // namespace orsolva_host::live
