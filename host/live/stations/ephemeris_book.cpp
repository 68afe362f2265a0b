#include "host/live/stations/ephemeris_book.h"

#include <algorithm>

#include "host/formats/rtcm/frame.h"
#include "host/judging/stream_navigation.h"

namespace orsolva_host::live {

SatelliteId EphemerisBook::Entry::Satellite() const {
  return rtcm::IsStateVector(message) ? vector.satellite : kepler.satellite;
}

std::set<char> EphemerisBook::Add(const std::vector<rtcm::EphemerisMessage>& messages,
                                  const BroadcastRecords& records) {
  std::set<char> systems;
  auto kepler = records.kepler.begin();
  auto vector = records.state_vectors.begin();
  for (const rtcm::EphemerisMessage& message : messages) {
    Entry entry;
    entry.message = message;
    if (rtcm::IsStateVector(message)) {
      entry.vector = *vector++;
    } else {
      entry.kepler = *kepler++;
    }
    const bool known = std::any_of(entries_.begin(), entries_.end(), [&entry](const Entry& e) {
      return e.message.message == entry.message.message && e.message.values == entry.message.values &&
             e.ReferenceTime() == entry.ReferenceTime();
    });
    if (known) continue;
    systems.insert(entry.Satellite().system);
    entries_.push_back(std::move(entry));
    changed_ = true;
  }
  return systems;
}

void EphemerisBook::Prune(std::int64_t gps_ns) {
  const double oldest_s = static_cast<double>(gps_ns) / 1e9 - kKept_s;
  const auto is_old = [oldest_s](const Entry& e) { return e.ReferenceTime() < oldest_s; };
  const auto taken = entries_.begin() + static_cast<std::ptrdiff_t>(taken_);
  taken_ -= static_cast<std::size_t>(std::count_if(entries_.begin(), taken, is_old));
  entries_.erase(std::remove_if(entries_.begin(), entries_.end(), is_old), entries_.end());
}

std::size_t EphemerisBook::Satellites() const {
  std::set<SatelliteId> satellites;
  for (const Entry& entry : entries_) satellites.insert(entry.Satellite());
  return satellites.size();
}

BroadcastRecords EphemerisBook::Records() const {
  BroadcastRecords records;
  for (const Entry& entry : entries_) {
    if (rtcm::IsStateVector(entry.message)) {
      records.state_vectors.push_back(entry.vector);
    } else {
      records.kepler.push_back(entry.kepler);
    }
  }
  return records;
}

/// Whether it is F/NAV of a Galileo satellite that sends I/NAV too: their clocks differ by a group delay, and
/// of records that come apart nobody else sees to it.
bool EphemerisBook::IsSecond(const Entry& entry) const {
  constexpr int kInav = 1046;
  if (!entry.kepler.second_message) return false;
  return std::any_of(entries_.begin(), entries_.end(), [&entry](const Entry& e) {
    return e.message.message == kInav && e.kepler.satellite == entry.kepler.satellite;
  });
}

std::shared_ptr<ReadNavigation> EphemerisBook::NavigationFrom(std::size_t first,
                                                              const std::string& name) const {
  std::vector<rtcm::EphemerisMessage> messages;
  BroadcastRecords records;
  for (std::size_t i = first; i < entries_.size(); ++i) {
    const Entry& entry = entries_[i];
    if (first > 0 && IsSecond(entry)) continue;
    messages.push_back(entry.message);
    if (rtcm::IsStateVector(entry.message)) {
      records.state_vectors.push_back(entry.vector);
    } else {
      records.kepler.push_back(entry.kepler);
    }
  }
  StreamNavigation stream;
  stream.Take(messages, records);
  auto navigation = std::make_shared<ReadNavigation>();
  if (!stream.Empty()) navigation->files = {name};
  navigation->has_record_files = !stream.Empty();
  stream.AppendTo(navigation->set, navigation->broadcast);
  return navigation;
}

std::shared_ptr<ReadNavigation> EphemerisBook::Navigation(const std::string& name) const {
  return NavigationFrom(0, name);
}

std::shared_ptr<ReadNavigation> EphemerisBook::TakeNew(const std::string& name) {
  auto navigation = NavigationFrom(taken_, name);
  taken_ = entries_.size();
  return navigation;
}

std::string EphemerisBook::Frames() const {
  std::string frames;
  for (const Entry& entry : entries_) frames += rtcm::FrameOf(rtcm::WriteEphemeris(entry.message));
  return frames;
}

}  // namespace orsolva_host::live
