#include "host/formats/rtcm/epoch_joiner.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace orsolva_host::rtcm {
namespace {

/// Of an epoch: more than all satellites of all systems send. What repeats itself without end stays bounded.
constexpr std::size_t kMaxSignals = 16384;

/// Satellites by system and number, signals by code: what is smaller comes first.
std::uint64_t OrderOf(const ReceivedSignal& s) {
  std::uint64_t order = 0;
  for (const int part : {int{s.satellite.system}, int{s.satellite.number}, int{s.observation.code.band},
                         int{s.observation.code.attribute}}) {
    order = order << 8 | static_cast<std::uint64_t>(part & 0xFF);
  }
  return order;
}

}  // namespace

bool EpochJoiner::Accepts(std::int64_t time_ns, int station) {
  if (!station_) station_ = station;
  if (*station_ != station) {
    ++other_stations_;
    return false;
  }
  const bool is_open = open_ && open_->time_ns == time_ns;
  const bool late = !is_open && last_complete_ns_ == time_ns;
  if (late) ++late_;
  return !late;
}

void EpochJoiner::Add(EpochPart part) {
  if (open_ && open_->time_ns != part.time_ns) Complete();
  const bool last = end_ == EpochEnd::kLastMessage && !part.more;
  if (!open_) {
    open_ = std::move(part);
  } else if (open_->signals.size() > kMaxSignals) {
    duplicates_ += part.signals.size();
  } else {
    open_->signals.insert(open_->signals.end(), part.signals.begin(), part.signals.end());
  }
  if (last) Complete();
}

void EpochJoiner::Finish() {
  if (open_) Complete();
}

void EpochJoiner::Complete() {
  std::vector<ReceivedSignal>& signals = open_->signals;
  order_.clear();
  for (std::uint32_t i = 0; i < signals.size(); ++i) {
    // The finest family first, and among equals the first one.
    order_.push_back({OrderOf(signals[i]) << 8 | (0xFFU - static_cast<unsigned>(signals[i].family)), i});
  }
  std::sort(order_.begin(), order_.end());
  std::vector<ReceivedSignal> ordered;
  ordered.reserve(signals.size());
  for (std::size_t i = 0; i < order_.size(); ++i) {
    const bool again = i > 0 && order_[i].first >> 8 == order_[i - 1].first >> 8;
    duplicates_ += again ? 1 : 0;
    if (!again) ordered.push_back(signals[order_[i].second]);
  }
  signals.swap(ordered);
  MarkFamilies();
  last_complete_ns_ = open_->time_ns;
  complete_.push_back(std::move(*open_));
  open_.reset();
}

void EpochJoiner::MarkFamilies() {
  const ReceivedSignal* before = nullptr;
  std::vector<std::pair<SignalCode, Family>>* of_satellite = nullptr;
  for (ReceivedSignal& signal : open_->signals) {
    if (std::isnan(signal.observation.phase_cycles)) continue;
    if (before == nullptr || !(before->satellite == signal.satellite))
      of_satellite = &families_[signal.satellite];
    before = &signal;
    auto& known = *of_satellite;
    const auto place = std::find_if(known.begin(), known.end(), [&](const auto& entry) {
      return entry.first == signal.observation.code;
    });
    if (place == known.end()) {
      known.emplace_back(signal.observation.code, signal.family);
    } else if (place->second != signal.family) {
      place->second = signal.family;
      signal.observation.loss_of_lock |= kLossOfLock;
    }
  }
}

bool EpochJoiner::Next(ObservationEpoch& epoch) {
  if (complete_.empty()) return false;
  const EpochPart& part = complete_.front();
  epoch.Clear();
  epoch.time_ns = part.time_ns;
  for (const ReceivedSignal& signal : part.signals) AppendSignal(signal.satellite, signal.observation, epoch);
  complete_.pop_front();
  return true;
}

}  // namespace orsolva_host::rtcm
