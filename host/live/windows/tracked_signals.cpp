#include "host/live/windows/tracked_signals.h"

#include <algorithm>

#include "host/live/windows/minute_store.h"
#include "host/observation/carriers.h"

namespace orsolva_host::live {

TrackedSatellite* TrackedSignals::Find(SatelliteId id) {
  const auto letter = static_cast<std::size_t>(id.system - 'A');
  if (letter >= kLetters) return nullptr;
  const std::uint16_t place = places_[letter][id.number];
  return place == 0 ? nullptr : &satellites_[place - 1U];
}

TrackedSatellite& TrackedSignals::Satellite(SatelliteId id) {
  if (TrackedSatellite* const known = Find(id)) return *known;
  satellites_.push_back({id, {}});
  places_[static_cast<std::size_t>(id.system - 'A')][id.number] =
      static_cast<std::uint16_t>(satellites_.size());
  return satellites_.back();
}

TrackedSignal& TrackedSignals::Signal(TrackedSatellite& satellite, SignalCode code) {
  for (TrackedSignal& signal : satellite.signals) {
    if (signal.code == code) return signal;
  }
  TrackedSignal& added = satellite.signals.emplace_back();
  added.code = code;
  added.shared = SharedPlace(satellite.id.system, code);
  return added;
}

std::size_t TrackedSignals::SharedPlace(char system, SignalCode code) {
  const SignalKey key{system, NameOf(code)};
  const auto place =
      std::find_if(shared_.begin(), shared_.end(), [&key](const SharedStrength& s) { return s.key == key; });
  if (place != shared_.end()) return static_cast<std::size_t>(place - shared_.begin());
  shared_.push_back({key, CarrierFrequency(system, code.band, 0), {}});
  return shared_.size() - 1;
}

void TrackedSignals::ForgetTimes() {
  for (TrackedSatellite& satellite : satellites_) {
    for (TrackedSignal& signal : satellite.signals) signal.last_seen_ns = 0;
  }
}

bool TrackedSignals::IsTracked(char system, std::int64_t gps_ns) const {
  constexpr std::int64_t kDay_ns = 24 * kHour_ns;
  return std::any_of(satellites_.begin(), satellites_.end(), [=](const TrackedSatellite& satellite) {
    return satellite.id.system == system &&
           std::any_of(satellite.signals.begin(), satellite.signals.end(),
                       [=](const TrackedSignal& s) { return gps_ns - s.last_seen_ns < kDay_ns; });
  });
}

}  // namespace orsolva_host::live
