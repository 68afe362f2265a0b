#include "host/analysis/geometry/broadcast_store.h"

#include <algorithm>
#include <cmath>

namespace orsolva_host::analysis {
namespace {

constexpr double kFirstMessageReach_s = 4 * 3600;
constexpr double kClockReach_s = 604800;
constexpr double kLastTime_s = 9e9;  // what nanoseconds since 1970 can count

double LongestAge_s(bool kepler, char system) {
  if (kepler) return 7500;
  return system == 'R' ? 2000 : 600;
}

}  // namespace

bool SatelliteRecords::HasNearFirstMessage(const KeplerRecord& record) const {
  return std::any_of(kepler_.begin(), kepler_.end(), [&](const KeplerRecord& other) {
    return !other.second_message && std::fabs(other.toe_s - record.toe_s) <= kFirstMessageReach_s;
  });
}

void SatelliteRecords::Add(const KeplerRecord& record) {
  // A clock of another week, or of no time at all, is no clock of this orbit.
  const bool has_clock = std::fabs(record.toc_s - record.toe_s) <= kClockReach_s;
  if (!std::isfinite(record.toe_s) || !has_clock || !vectors_.empty()) return;
  if (record.second_message && HasNearFirstMessage(record)) return;
  const auto place =
      std::upper_bound(reference_s_.begin(), reference_s_.end(), record.toe_s) - reference_s_.begin();
  reference_s_.insert(reference_s_.begin() + place, record.toe_s);
  kepler_.insert(kepler_.begin() + place, record);
}

void SatelliteRecords::Add(const StateVectorRecord& record) {
  if (!std::isfinite(record.toe_s) || !kepler_.empty()) return;
  const auto place =
      std::upper_bound(reference_s_.begin(), reference_s_.end(), record.toe_s) - reference_s_.begin();
  reference_s_.insert(reference_s_.begin() + place, record.toe_s);
  auto entry = std::make_unique<VectorWithOrbit>();
  entry->record = record;
  entry->orbit = std::make_unique<StateVectorOrbit>(entry->record);
  vectors_.insert(vectors_.begin() + place, std::move(entry));
}

std::optional<std::size_t> SatelliteRecords::Select(std::int64_t time_ns) const {
  if (precise_ && precise_->Covers(time_ns)) return kPreciseOrbit;
  return Nearest(time_ns);
}

double SatelliteRecords::LongestAge() const {
  return LongestAge_s(!kepler_.empty(), kepler_.empty() ? vectors_.front()->record.satellite.system : 'G');
}

bool SatelliteRecords::IsUnhealthy(std::int64_t time_ns) const {
  const std::optional<std::size_t> record = Nearest(time_ns);
  return record && !IsHealthy(*record);
}

std::optional<std::int64_t> SatelliteRecords::NextCovered(std::int64_t time_ns) const {
  if (Select(time_ns)) return time_ns;
  std::optional<std::int64_t> next;
  const double time_s = static_cast<double>(time_ns / kNanosecondsPerSecond);
  const auto after = std::upper_bound(reference_s_.begin(), reference_s_.end(), time_s);
  if (after != reference_s_.end()) {
    const double from_s = std::max(time_s, *after - LongestAge());
    if (from_s < kLastTime_s) next = static_cast<std::int64_t>(from_s) * kNanosecondsPerSecond;
  }
  const auto precise = precise_ ? precise_->NextPoint(time_ns) : std::nullopt;
  return precise && (!next || *precise < *next) ? precise : next;
}

std::optional<std::size_t> SatelliteRecords::Nearest(std::int64_t time_ns) const {
  if (reference_s_.empty()) return std::nullopt;
  const double time_s = static_cast<double>(time_ns / kNanosecondsPerSecond);
  const auto after = std::lower_bound(reference_s_.begin(), reference_s_.end(), time_s);
  auto best = after == reference_s_.end() ? after - 1 : after;
  if (after != reference_s_.begin() && after != reference_s_.end() &&
      time_s - *(after - 1) <= *after - time_s) {
    best = after - 1;
  }
  // Of records with one reference time the first counts.
  best = std::lower_bound(reference_s_.begin(), reference_s_.end(), *best);
  if (std::fabs(time_s - *best) > LongestAge()) return std::nullopt;
  return static_cast<std::size_t>(best - reference_s_.begin());
}

SatelliteState SatelliteRecords::StateAt(std::size_t record, const Instant& time) {
  if (record == kPreciseOrbit) return precise_->StateAt(time);
  return kepler_.empty() ? vectors_[record]->orbit->At(time) : KeplerState(kepler_[record], time);
}

double SatelliteRecords::ClockAt(std::size_t record, const Instant& time) const {
  if (record == kPreciseOrbit) return precise_->ClockAt(time);
  return kepler_.empty() ? vectors_[record]->orbit->Clock(time) : KeplerClock(kepler_[record], time);
}

bool SatelliteRecords::IsHealthy(std::size_t record) const {
  if (record == kPreciseOrbit) return true;
  return !(kepler_.empty() ? vectors_[record]->record.unhealthy : kepler_[record].unhealthy);
}

double SatelliteRecords::GroupDelay(std::size_t record) const {
  return record == kPreciseOrbit || kepler_.empty() ? 0 : kepler_[record].group_delay_s;
}

std::optional<int> SatelliteRecords::Channel() const {
  for (const auto& entry : vectors_) {
    if (entry->record.channel) return entry->record.channel;
  }
  return std::nullopt;
}

void BroadcastStore::Add(const BroadcastRecords& records) {
  for (const bool second : {false, true}) {
    for (const KeplerRecord& record : records.kepler) {
      if (record.second_message == second) satellites_[record.satellite].Add(record);
    }
  }
  for (const StateVectorRecord& record : records.state_vectors) satellites_[record.satellite].Add(record);
}

void BroadcastStore::Add(const PreciseOrbits& orbits) {
  for (const auto& [satellite, points] : orbits.satellites) satellites_[satellite].SetPrecise(points);
}

SatelliteRecords* BroadcastStore::Find(SatelliteId satellite) {
  const auto found = satellites_.find(satellite);
  return found == satellites_.end() ? nullptr : &found->second;
}

std::vector<SatelliteId> BroadcastStore::Satellites() const {
  std::vector<SatelliteId> ids;
  ids.reserve(satellites_.size());
  for (const auto& [id, records] : satellites_) ids.push_back(id);
  return ids;
}

}  // namespace orsolva_host::analysis
