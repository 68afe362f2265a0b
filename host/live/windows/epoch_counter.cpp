#include "host/live/windows/epoch_counter.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orsolva_host::live {
namespace {

constexpr std::int64_t kDay_ns = 24 * kHour_ns;
constexpr double kLow_deg = 30;
constexpr double kMilli = 1000;

bool HasCodeAndPhase(const SignalObservation& signal) {
  return !std::isnan(signal.pseudorange_m) && !std::isnan(signal.phase_cycles);
}

}  // namespace

void EpochCounter::BeginEpochs(std::int64_t gps_ns, Count epochs) {
  const std::int64_t begin_ns = BeginOfMinute(gps_ns);
  if (begin_ns != minute_ns_) Flush();
  minute_ns_ = begin_ns;
  sums_.epochs_expected += epochs;
}

void EpochCounter::Flush() {
  if (minute_ns_ < 0) return;
  for (std::size_t i = 0; i < by_signal_.size(); ++i) {
    if (by_signal_[i] == SignalSums()) continue;
    sums_.signals[signals_->Shared()[i].key] = by_signal_[i];
    by_signal_[i] = {};
  }
  minutes_->Add(minute_ns_, std::exchange(sums_, {}));
}

void EpochCounter::AddExpected(std::int64_t gps_ns, Count epochs, const SkyView& sky) {
  for (const SatelliteId id : sky.Expected()) {
    TrackedSatellite* const satellite = signals_->Find(id);
    if (satellite == nullptr) continue;
    for (const TrackedSignal& signal : satellite->signals) {
      if (signal.last_seen_ns != 0 && gps_ns - signal.last_seen_ns < kDay_ns)
        by_signal_[signal.shared].expected += epochs;
    }
  }
}

void EpochCounter::AddLost(std::int64_t gps_ns, Count epochs, SkyView* sky) {
  BeginEpochs(gps_ns, epochs);
  if (sky != nullptr) AddExpected(gps_ns, epochs, *sky);
}

void EpochCounter::AddSignal(const SignalObservation& observed, TrackedSignal& tracked, double elevation_deg,
                             bool expected) {
  SignalSums& sums = by_signal_[tracked.shared];
  if (expected && HasCodeAndPhase(observed)) ++sums.observed;
  if ((observed.loss_of_lock & kLossOfLock) != 0) ++sums.lock_losses;
  if (!(observed.snr_dbhz > 0) || elevation_deg < cutoff_deg_) return;
  const std::int64_t milli_db = std::llround(observed.snr_dbhz * kMilli);
  ++sums.snr_values;
  sums.snr_milli_db += milli_db;
  if (!(elevation_deg < kLow_deg)) return;
  ++sums.snr_low_values;
  sums.snr_low_milli_db += milli_db;
}

void EpochCounter::Add(const ObservationEpoch& epoch, SkyView* sky) {
  BeginEpochs(epoch.time_ns, 1);
  if (!epoch.signals.empty()) ++sums_.epochs_present;
  sums_.satellite_epochs += epoch.satellites.size();
  elevations_deg_.assign(epoch.satellites.size(), kAbsent);
  present_ = {};
  by_system_.clear();
  // Signals first, so that one seen for the first time is expected as well.
  for (const SatelliteObservation& satellite : epoch.satellites) {
    TrackedSatellite& tracked = signals_->Satellite(satellite.id);
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const SignalObservation& observed = epoch.signals[satellite.first_signal + i];
      TrackedSignal& signal = signals_->Signal(tracked, observed.code);
      if (HasCodeAndPhase(observed)) signal.last_seen_ns = epoch.time_ns;
    }
  }
  by_signal_.resize(signals_->Shared().size());
  if (sky != nullptr) {
    AddExpected(epoch.time_ns, 1, *sky);
    for (const SatelliteId id : sky->Expected()) ++by_system_[id.system].expected;
  }
  for (std::size_t s = 0; s < epoch.satellites.size(); ++s) {
    const SatelliteObservation& satellite = epoch.satellites[s];
    bool expected = false;
    if (sky != nullptr) {
      elevations_deg_[s] = sky->ElevationOf(satellite.id);
      const auto& all = sky->Expected();
      expected = std::find(all.begin(), all.end(), satellite.id) != all.end();
    }
    if (expected) ++by_system_[satellite.id.system].observed;
    TrackedSatellite& tracked = *signals_->Find(satellite.id);
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const SignalObservation& observed = epoch.signals[satellite.first_signal + i];
      AddSignal(observed, signals_->Signal(tracked, observed.code), elevations_deg_[s], expected);
    }
  }
  for (auto place = by_system_.begin(); place != by_system_.end();) {
    if (place->second.observed == 0 && !signals_->IsTracked(place->first, epoch.time_ns)) {
      place = by_system_.erase(place);
      continue;
    }
    present_.expected += place->second.expected;
    present_.observed += place->second.observed;
    ++place;
  }
}

}  // namespace orsolva_host::live
