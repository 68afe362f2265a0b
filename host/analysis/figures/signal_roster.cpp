#include "host/analysis/figures/signal_roster.h"

namespace orsolva_host::analysis {

SignalRoster::SignalRoster() = default;

void SignalRoster::Take(const ObservationEpoch& epoch) {
  satellite_at_.resize(epoch.satellites.size());
  signal_at_.resize(epoch.signals.size());
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) {
    const SatelliteObservation& satellite = epoch.satellites[i];
    satellite_at_[i] = NumberOf(satellite.id);
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      const std::size_t place = satellite.first_signal + k;
      signal_at_[place] = NumberOf(satellite_at_[i], epoch.signals[place].code, k);
    }
  }
}

std::optional<std::size_t> SignalRoster::Find(SatelliteId id) const {
  const std::vector<std::size_t>& numbers = by_letter_[static_cast<unsigned char>(id.system) & 127];
  if (numbers.size() <= id.number || numbers[id.number] == 0) return std::nullopt;
  return numbers[id.number] - 1;
}

std::optional<std::size_t> SignalRoster::Find(SatelliteId id, SignalCode code) const {
  const auto satellite = Find(id);
  if (!satellite) return std::nullopt;
  for (const std::size_t number : signals_of_[*satellite]) {
    if (signals_[number].code == code) return number;
  }
  return std::nullopt;
}

std::size_t SignalRoster::NumberOf(SatelliteId id) {
  std::vector<std::size_t>& numbers = by_letter_[static_cast<unsigned char>(id.system) & 127];
  if (numbers.size() <= id.number) numbers.resize(static_cast<std::size_t>(id.number) + 1);
  if (numbers[id.number] == 0) {
    satellites_.push_back(id);
    signals_of_.emplace_back();
    numbers[id.number] = satellites_.size();
  }
  return numbers[id.number] - 1;
}

/// @param guess  place at which the signal was most likely listed before
std::size_t SignalRoster::NumberOf(std::size_t satellite, SignalCode code, std::size_t guess) {
  std::vector<std::size_t>& own = signals_of_[satellite];
  if (guess < own.size() && signals_[own[guess]].code == code) return own[guess];
  for (const std::size_t number : own) {
    if (signals_[number].code == code) return number;
  }
  own.push_back(signals_.size());
  signals_.push_back({satellite, NumberOfShared(satellites_[satellite].system, code), code});
  return own.back();
}

std::size_t SignalRoster::NumberOfShared(char system, SignalCode code) {
  for (std::size_t i = 0; i < shared_.size(); ++i) {
    if (shared_[i].system == system && shared_[i].code == code) return i;
  }
  shared_.push_back({system, code});
  return shared_.size() - 1;
}

}  // namespace orsolva_host::analysis
