// Counts what epochs hold, and what they lack, into minutes.
//
//   expected  nominal epochs times healthy satellites above the cut-off, for each signal that the satellite
//             was observed with (code and phase) within the last 24 hours; nominal epochs that were lost
//             count at their nominal times. Without orbits or a position nothing is expected.
//   observed  those of them with code and phase
//   strength  C/N0 of satellites above the cut-off, in whole 0.001 dB-Hz as a file holds them; without orbits
//             of all, and all of them as high
#ifndef ORSOLVA_LIVE_WINDOWS_EPOCH_COUNTER_H
#define ORSOLVA_LIVE_WINDOWS_EPOCH_COUNTER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/live/live_state.h"
#include "host/live/windows/minute_store.h"
#include "host/live/windows/sky_view.h"
#include "host/live/windows/tracked_signals.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::live {

class EpochCounter {
 public:
  EpochCounter(MinuteStore& minutes, TrackedSignals& signals, double cutoff_deg)
      : minutes_(&minutes), signals_(&signals), cutoff_deg_(cutoff_deg) {}

  /// Takes an epoch. @param sky  moved to its time; null while elevations are not known
  void Add(const ObservationEpoch& epoch, SkyView* sky);
  /// Counts nominal epochs of one minute that were lost. @param gps_ns  of one of them, for all
  /// @param sky  moved to that time
  void AddLost(std::int64_t gps_ns, Count epochs, SkyView* sky);
  /// Hands what was counted over to the minutes.
  void Flush();
  /// The same, and any time may follow.
  void EndMinutes() {
    Flush();
    minute_ns_ = -1;
  }

  /// Elevations of the satellites of the epoch taken last, degrees; NaN where they are not known.
  const std::vector<double>& Elevations() const { return elevations_deg_; }
  /// Of those expected in the epoch taken last: how many, of tracked systems, and how many were observed.
  struct Presence {
    int expected = 0;
    int observed = 0;
  };
  const Presence& Present() const { return present_; }
  const std::map<char, Presence>& PresentOfSystems() const { return by_system_; }

 private:
  void BeginEpochs(std::int64_t gps_ns, Count epochs);
  void AddExpected(std::int64_t gps_ns, Count epochs, const SkyView& sky);
  void AddSignal(const SignalObservation& observed, TrackedSignal& tracked, double elevation_deg,
                 bool expected);

  MinuteStore* minutes_;
  TrackedSignals* signals_;
  double cutoff_deg_;
  std::int64_t minute_ns_ = -1;  ///< beginning of the one at hand
  WindowSums sums_;              ///< without signals
  std::vector<SignalSums> by_signal_;
  std::vector<double> elevations_deg_;
  Presence present_;
  std::map<char, Presence> by_system_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_WINDOWS_EPOCH_COUNTER_H
