// The signals that a station tracks, satellite by satellite, for quick access epoch after epoch.
#ifndef ORSOLVA_LIVE_WINDOWS_TRACKED_SIGNALS_H
#define ORSOLVA_LIVE_WINDOWS_TRACKED_SIGNALS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/live/live_state.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::live {

constexpr int kElevationBins = 18;  ///< of 5 degrees
/// A mean that forgets: after `most` values each new one weighs 1 / most.
struct SlidingMean {
  float mean = 0;
  std::uint32_t values = 0;

  void Add(double value, std::uint32_t most) {
    if (values < most) ++values;
    mean += static_cast<float>((value - static_cast<double>(mean)) / values);
  }
};
using ElevationMeans = std::array<SlidingMean, kElevationBins>;

/// A signal of a satellite.
struct TrackedSignal {
  SignalCode code;
  std::size_t shared = 0;         ///< place of the system's signal
  std::int64_t last_seen_ns = 0;  ///< with code and phase
  ElevationMeans usual_dbhz;      ///< strength by elevation
};

struct TrackedSatellite {
  SatelliteId id;
  std::vector<TrackedSignal> signals;
};

/// A signal of a system.
struct SharedStrength {
  SignalKey key;
  double carrier_hz = 0;  ///< GLONASS: of channel 0
  ElevationMeans usual_dbhz;
};

/// Memory: 150 bytes per signal of a satellite that was ever observed.
class TrackedSignals {
 public:
  TrackedSatellite& Satellite(SatelliteId id);
  /// Null when it was never observed.
  TrackedSatellite* Find(SatelliteId id);
  TrackedSignal& Signal(TrackedSatellite& satellite, SignalCode code);

  std::vector<SharedStrength>& Shared() { return shared_; }
  const std::vector<SharedStrength>& Shared() const { return shared_; }
  /// Forgets when each signal was observed last, and keeps its usual strength.
  void ForgetTimes();
  /// Whether a satellite of the system was observed within a day before a time.
  bool IsTracked(char system, std::int64_t gps_ns) const;

 private:
  static constexpr std::size_t kLetters = 26;
  std::size_t SharedPlace(char system, SignalCode code);

  /// By system letter and number: the place in satellites_ plus 1.
  std::array<std::array<std::uint16_t, 256>, kLetters> places_ = {};
  std::vector<TrackedSatellite> satellites_;
  std::vector<SharedStrength> shared_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_WINDOWS_TRACKED_SIGNALS_H
