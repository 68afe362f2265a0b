#include "host/live/alarms/message_watch.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/msm.h"

namespace orsolva_host::live {
namespace {

constexpr double kShortest_s = 30;
constexpr double kLongestTimes = 3;
constexpr double kLeastMinute_s = 1;
constexpr double kOneBurst_s = 0.9;
constexpr double kObservations_s = 120, kOthers_s = 600;

double Seconds(std::int64_t later_ns, std::int64_t earlier_ns) {
  return static_cast<double>(later_ns - earlier_ns) / 1e9;
}

/// Whether satellites of its system are always in view.
bool IsGlobal(int type) {
  const auto msm = rtcm::MsmTypeOf(type);
  return !msm || std::string("JIS").find(msm->system) == std::string::npos;
}

}  // namespace

std::vector<int> TypesOf(const std::string& required) {
  constexpr int kMost = 4095;  // 12 bits
  std::vector<int> types;
  for (std::size_t at = 0; at <= required.size();) {
    const std::size_t end = std::min(required.find('|', at), required.size());
    int type = 0;
    const auto [stopped, error] = std::from_chars(required.data() + at, required.data() + end, type);
    if (error != std::errc() || stopped != required.data() + end || type < 1 || type > kMost) return {};
    types.push_back(type);
    at = end + 1;
  }
  return types;
}

void MessageWatch::Take(int type, std::int64_t now_ns) {
  if (!began_ns_) began_ns_ = minute_ns_ = now_ns;
  latest_ns_ = now_ns;
  Track& track = tracks_[type];
  const double step_s = track.total > 0 ? Seconds(now_ns, track.absent_since_ns) : kOneBurst_s;
  if (step_s >= kOneBurst_s) ++track.times;
  if (track.total > 0) track.longest_s = std::max(track.longest_s, step_s);
  track.last_ns = track.absent_since_ns = now_ns;
  ++track.total;
  // Those at the beginning of the first minute end no interval.
  if (now_ns > minute_ns_) ++track.this_minute;
}

void MessageWatch::Resume(std::int64_t now_ns) {
  if (!began_ns_) return;
  const std::int64_t away_ns = std::max<std::int64_t>(0, now_ns - latest_ns_);
  latest_ns_ = now_ns;
  *began_ns_ += away_ns;
  minute_ns_ += away_ns;
  for (auto& [type, track] : tracks_) track.absent_since_ns += away_ns;
}

void MessageWatch::EndMinute(std::int64_t now_ns) {
  const double covered_s = Seconds(now_ns, minute_ns_);
  if (covered_s < kLeastMinute_s) return;
  minute_ns_ = now_ns;
  for (auto& [type, track] : tracks_) {
    if (track.this_minute > 0) track.interval_s = covered_s / static_cast<double>(track.this_minute);
    track.this_minute = 0;
  }
}

std::vector<MessageWatch::Missing> MessageWatch::Announced(std::int64_t now_ns) const {
  std::vector<Missing> missing;
  for (const auto& [type, track] : tracks_) {
    if (track.times < kAnnounced || !rtcm::IsDecoded(type) || !IsGlobal(type)) continue;
    const double allowed_s = std::max(kShortest_s, kLongestTimes * track.longest_s);
    const double age_s = Seconds(now_ns, track.absent_since_ns);
    if (age_s > allowed_s) missing.push_back({std::to_string(type), age_s, allowed_s});
  }
  return missing;
}

std::vector<MessageWatch::Missing> MessageWatch::Required(const std::vector<std::string>& required,
                                                          std::int64_t now_ns) const {
  std::vector<Missing> missing;
  if (!began_ns_) return missing;
  for (const std::string& entry : required) {
    double age_s = Seconds(now_ns, *began_ns_);
    double allowed_s = kOthers_s;
    for (const int type : TypesOf(entry)) {
      if (rtcm::HoldsObservations(type)) allowed_s = kObservations_s;
      const auto track = tracks_.find(type);
      if (track != tracks_.end()) age_s = std::min(age_s, Seconds(now_ns, track->second.absent_since_ns));
    }
    if (age_s > allowed_s) missing.push_back({entry, age_s, allowed_s});
  }
  return missing;
}

void MessageWatch::FillIn(std::int64_t now_ns, std::map<int, MessageState>& messages) const {
  for (const auto& [type, track] : tracks_) {
    MessageState& message = messages[type];
    message.total = track.total;
    message.age_s = std::max(0.0, Seconds(now_ns, track.last_ns));
    message.interval_s = track.interval_s;
  }
}

}  // namespace orsolva_host::live
