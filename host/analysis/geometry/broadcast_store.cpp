#include "host/analysis/geometry/broadcast_store.h"

#include <algorithm>
#include <cmath>

namespace orsolva_host::analysis {
namespace {

constexpr double kFirstMessageReach_s = 4 * 3600;

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
  if (!std::isfinite(record.toe_s) || !vectors_.empty()) return;
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
  const char system = kepler_.empty() ? vectors_.front()->record.satellite.system : 'G';
  if (std::fabs(time_s - *best) > LongestAge_s(!kepler_.empty(), system)) return std::nullopt;
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

}  // namespace orsolva_host::analysis
