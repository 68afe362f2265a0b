#include "host/live/stations/ephemeris_book.h"

#include <algorithm>
#include <iterator>

#include "host/formats/rtcm/frame.h"
#include "host/judging/stream_navigation.h"

namespace orsolva_host::live {

SatelliteId EphemerisBook::Entry::Satellite() const {
  return rtcm::IsStateVector(message) ? vector.satellite : kepler.satellite;
}

/// @return whether it is new
bool EphemerisBook::AddEntry(Entry entry) {
  std::vector<Entry>& same = entries_[{entry.message.message, entry.Satellite()}];
  const bool known = std::any_of(same.begin(), same.end(), [&entry](const Entry& e) {
    return e.message.values == entry.message.values && e.ReferenceTime() == entry.ReferenceTime();
  });
  if (known) return false;
  const auto of_stream = [](const Entry& e) { return e.origin == Origin::kStream; };
  if (of_stream(entry) && std::count_if(same.begin(), same.end(), of_stream) >= std::ptrdiff_t{kMost})
    same.erase(std::find_if(same.begin(), same.end(), of_stream));
  entry.place = next_place_++;
  same.push_back(std::move(entry));
  changed_ = true;
  return true;
}

std::set<char> EphemerisBook::Add(const std::vector<rtcm::EphemerisMessage>& messages,
                                  const BroadcastRecords& records, Origin origin) {
  std::set<char> systems;
  auto kepler = records.kepler.begin();
  auto vector = records.state_vectors.begin();
  for (const rtcm::EphemerisMessage& message : messages) {
    Entry entry;
    entry.origin = origin;
    entry.message = message;
    if (rtcm::IsStateVector(message)) {
      entry.vector = *vector++;
    } else {
      entry.kepler = *kepler++;
    }
    const char system = entry.Satellite().system;
    if (AddEntry(std::move(entry))) systems.insert(system);
  }
  return systems;
}

void EphemerisBook::Prune(std::int64_t gps_ns) {
  const double now_s = static_cast<double>(gps_ns) / 1e9;
  const auto is_out = [now_s](const Entry& e) {
    const double ahead_s = e.ReferenceTime() - now_s;
    return ahead_s < -kKept_s || (e.origin == Origin::kStream && ahead_s > kAhead_s);
  };
  for (auto place = entries_.begin(); place != entries_.end();) {
    std::vector<Entry>& same = place->second;
    same.erase(std::remove_if(same.begin(), same.end(), is_out), same.end());
    place = same.empty() ? entries_.erase(place) : std::next(place);
  }
}

std::size_t EphemerisBook::Size() const {
  std::size_t size = 0;
  for (const auto& [key, same] : entries_) size += same.size();
  return size;
}

std::size_t EphemerisBook::Satellites() const {
  std::set<SatelliteId> satellites;
  for (const auto& [key, same] : entries_) satellites.insert(key.second);
  return satellites.size();
}

std::vector<const EphemerisBook::Entry*> EphemerisBook::From(std::uint64_t first) const {
  std::vector<const Entry*> found;
  for (const auto& [key, same] : entries_) {
    for (const Entry& entry : same) {
      if (entry.place >= first) found.push_back(&entry);
    }
  }
  std::sort(found.begin(), found.end(), [](const Entry* a, const Entry* b) { return a->place < b->place; });
  return found;
}

BroadcastRecords EphemerisBook::Records() const {
  BroadcastRecords records;
  for (const Entry* entry : From(0)) {
    if (rtcm::IsStateVector(entry->message)) {
      records.state_vectors.push_back(entry->vector);
    } else {
      records.kepler.push_back(entry->kepler);
    }
  }
  return records;
}

/// Whether it is F/NAV of a Galileo satellite that sends I/NAV too: their clocks differ by a group delay, and
/// of records that come apart nobody else sees to it.
bool EphemerisBook::IsSecond(const Entry& entry) const {
  constexpr int kInav = 1046;
  if (!entry.kepler.second_message) return false;
  return entries_.count({kInav, entry.kepler.satellite}) > 0;
}

std::shared_ptr<ReadNavigation> EphemerisBook::NavigationFrom(std::uint64_t first,
                                                              const std::string& name) const {
  std::vector<rtcm::EphemerisMessage> messages;
  BroadcastRecords records;
  for (const Entry* const place : From(first)) {
    const Entry& entry = *place;
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
  taken_ = next_place_;
  return navigation;
}

std::string EphemerisBook::Frames() const {
  std::string frames;
  for (const Entry* entry : From(0)) frames += rtcm::FrameOf(rtcm::WriteEphemeris(entry->message));
  return frames;
}

}  // namespace orsolva_host::live
