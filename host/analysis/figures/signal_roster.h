// Numbers for the satellites and signals of a stream, in the order in which they appear, so that groups of
// figures keep their state in plain lists.
#ifndef ORSOLVA_ANALYSIS_FIGURES_SIGNAL_ROSTER_H
#define ORSOLVA_ANALYSIS_FIGURES_SIGNAL_ROSTER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

/// One signal of one satellite.
struct ListedSignal {
  std::size_t satellite = 0;  ///< in SignalRoster::Satellites
  std::size_t shared = 0;     ///< in SignalRoster::SharedSignals
  SignalCode code;
};

/// One signal of a whole system.
struct SharedSignal {
  char system = 'G';
  SignalCode code;
};

class SignalRoster {
 public:
  SignalRoster();

  /// Numbers the satellites and signals of an epoch, which SatelliteAt and SignalAt then give.
  void Take(const ObservationEpoch& epoch);

  /// @param place  in ObservationEpoch::satellites and ObservationEpoch::signals of the epoch taken last
  std::size_t SatelliteAt(std::size_t place) const { return satellite_at_[place]; }
  std::size_t SignalAt(std::size_t place) const { return signal_at_[place]; }

  std::optional<std::size_t> Find(SatelliteId id) const;
  std::optional<std::size_t> Find(SatelliteId id, SignalCode code) const;

  const std::vector<SatelliteId>& Satellites() const { return satellites_; }
  const std::vector<ListedSignal>& Signals() const { return signals_; }
  /// In Signals, of a satellite.
  const std::vector<std::size_t>& SignalsOf(std::size_t satellite) const { return signals_of_[satellite]; }
  const std::vector<SharedSignal>& SharedSignals() const { return shared_; }

 private:
  std::size_t NumberOf(SatelliteId id);
  std::size_t NumberOf(std::size_t satellite, SignalCode code, std::size_t guess);
  std::size_t NumberOfShared(char system, SignalCode code);

  std::vector<SatelliteId> satellites_;
  std::vector<std::vector<std::size_t>> signals_of_;  ///< of each satellite
  std::vector<ListedSignal> signals_;
  std::vector<SharedSignal> shared_;
  /// Places in satellites_, one more, by letter and number; 0 where the satellite is not listed.
  std::array<std::vector<std::size_t>, 128> by_letter_;
  std::vector<std::size_t> satellite_at_;
  std::vector<std::size_t> signal_at_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_SIGNAL_ROSTER_H
