#include "host/formats/rtcm/epoch_joiner.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace orsolva_host::rtcm {
namespace {

auto OrderOf(const ReceivedSignal& s) {
  return std::tuple(s.satellite.system, s.satellite.number, s.observation.code.band,
                    s.observation.code.attribute);
}

bool IsSame(const ReceivedSignal& a, const ReceivedSignal& b) { return OrderOf(a) == OrderOf(b); }

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
  // The finest family first, and among equals the first one.
  std::stable_sort(signals.begin(), signals.end(), [](const ReceivedSignal& a, const ReceivedSignal& b) {
    const auto left = OrderOf(a);
    const auto right = OrderOf(b);
    return left != right ? left < right : a.family > b.family;
  });
  const auto end = std::unique(signals.begin(), signals.end(), IsSame);
  duplicates_ += static_cast<std::uint64_t>(signals.end() - end);
  signals.erase(end, signals.end());
  MarkFamilies();
  last_complete_ns_ = open_->time_ns;
  complete_.push_back(std::move(*open_));
  open_.reset();
}

void EpochJoiner::MarkFamilies() {
  for (ReceivedSignal& signal : open_->signals) {
    if (std::isnan(signal.observation.phase_cycles)) continue;
    auto& known = families_[signal.satellite];
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
