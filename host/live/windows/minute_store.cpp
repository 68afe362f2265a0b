#include "host/live/windows/minute_store.h"

#include <algorithm>

namespace orsolva_host::live {
namespace {

constexpr std::size_t kHourMinutes = 60;
constexpr Count Minus(Count a, Count b) { return a - b; }

/// What was added before is taken off: none falls below zero.
void Subtract(const SignalSums& from, SignalSums& sums) {
  sums.expected = Minus(sums.expected, from.expected);
  sums.observed = Minus(sums.observed, from.observed);
  sums.snr_values = Minus(sums.snr_values, from.snr_values);
  sums.snr_milli_db -= from.snr_milli_db;
  sums.snr_low_values = Minus(sums.snr_low_values, from.snr_low_values);
  sums.snr_low_milli_db -= from.snr_low_milli_db;
  sums.multipath_values = Minus(sums.multipath_values, from.multipath_values);
  sums.multipath_square_um2 = Minus(sums.multipath_square_um2, from.multipath_square_um2);
  sums.slips = Minus(sums.slips, from.slips);
  sums.jumps = Minus(sums.jumps, from.jumps);
  sums.lock_losses = Minus(sums.lock_losses, from.lock_losses);
}

/// A signal of which nothing is left is no longer listed.
void Subtract(const WindowSums& from, WindowSums& sums) {
  sums.epochs_expected -= from.epochs_expected;
  sums.epochs_present -= from.epochs_present;
  sums.messages -= from.messages;
  sums.crc_errors -= from.crc_errors;
  sums.slip_events -= from.slip_events;
  sums.satellite_epochs -= from.satellite_epochs;
  for (const auto& [key, signal] : from.signals) {
    const auto place = sums.signals.find(key);
    if (place == sums.signals.end()) continue;
    Subtract(signal, place->second);
    if (place->second == SignalSums()) sums.signals.erase(place);
  }
}

}  // namespace

/// The minute to be changed: a copy where somebody else has it.
Minute& MinuteStore::Writable(std::size_t place) {
  std::shared_ptr<Minute>& minute = minutes_[place];
  if (minute.use_count() > 1) minute = std::make_shared<Minute>(*minute);
  return *minute;
}

void MinuteStore::Restart() {
  minutes_.clear();
  whole_ = 0;
  hour_ = day_ = {};
}

/// Makes minutes up to the one that begins at a time.
void MinuteStore::Grow(std::int64_t begin_gps_ns) {
  constexpr auto kDay_ns = static_cast<std::int64_t>(kKept) * kMinute_ns;
  if (!minutes_.empty() && begin_gps_ns - minutes_.back()->begin_gps_ns >= kDay_ns) Restart();
  if (minutes_.empty()) {
    minutes_.push_back(std::make_shared<Minute>());
    minutes_.back()->begin_gps_ns = begin_gps_ns;
  }
  while (minutes_.back()->begin_gps_ns < begin_gps_ns) {
    auto next = std::make_shared<Minute>();
    next->begin_gps_ns = minutes_.back()->begin_gps_ns + kMinute_ns;
    minutes_.push_back(std::move(next));
  }
}

void MinuteStore::Add(std::int64_t gps_ns, const WindowSums& sums) {
  const std::int64_t begin_ns = BeginOfMinute(gps_ns);
  total_ += sums;
  Grow(begin_ns);
  const std::int64_t behind = (begin_ns - minutes_.front()->begin_gps_ns) / kMinute_ns;
  if (behind < 0) return;
  const auto place = static_cast<std::size_t>(behind);
  Writable(place).sums += sums;
  if (place >= whole_) return;
  day_ += sums;
  if (whole_ - place <= kHourMinutes) hour_ += sums;
}

void MinuteStore::CloseUntil(std::int64_t gps_ns) {
  while (whole_ < minutes_.size() && minutes_[whole_]->begin_gps_ns + kMinute_ns <= gps_ns) Close();
}

void MinuteStore::Close() {
  hour_ += minutes_[whole_]->sums;
  day_ += minutes_[whole_]->sums;
  ++whole_;
  if (whole_ > kHourMinutes) Subtract(minutes_[whole_ - kHourMinutes - 1]->sums, hour_);
  if (whole_ <= kKept) return;
  Subtract(minutes_.front()->sums, day_);
  minutes_.pop_front();
  --whole_;
}

std::vector<std::shared_ptr<const Minute>> MinuteStore::Whole() const {
  return {minutes_.begin(), minutes_.begin() + static_cast<std::ptrdiff_t>(whole_)};
}

std::array<Window, 3> MinuteStore::Windows() const {
  std::array<Window, 3> windows;
  constexpr std::size_t kMinutes[] = {1, kHourMinutes, kKept};
  for (std::size_t i = 0; i < windows.size(); ++i) {
    Window& window = windows[i];
    window.length_s = static_cast<std::int64_t>(kMinutes[i]) * 60;
    if (whole_ == 0) continue;
    window.to_gps_ns = minutes_[whole_ - 1]->begin_gps_ns + kMinute_ns;
    window.from_gps_ns = minutes_[whole_ - std::min(whole_, kMinutes[i])]->begin_gps_ns;
  }
  if (whole_ > 0) windows[0].sums = minutes_[whole_ - 1]->sums;
  windows[1].sums = hour_;
  windows[2].sums = day_;
  return windows;
}

}  // namespace orsolva_host::live
