// Epochs as MeasEpoch, for recordings of known content.
#ifndef ORSOLVA_FORMATS_SBF_SBF_WRITER_H
#define ORSOLVA_FORMATS_SBF_SBF_WRITER_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "host/formats/sbf/measurements.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::sbf {

/// Keeps the lock times from one epoch to the next: they begin again with kLossOfLock, and when the epoch
/// before had no phase of the signal.
///
/// Values lie on the grid of the block: 1 mm, 0.001 cycles, 0.0001 Hz, 0.25 dB-Hz. A phase lies within 8,388
/// cycles of its pseudorange, so whole cycles are added where its signal begins; where the two drift apart
/// beyond that, they are added again and lock begins again. Left out, because SBF cannot hold them: signals
/// and satellites without a number in signals.h, phases without pseudorange or without the channel of
/// GLONASS, pseudoranges 262 m and more from that of the first signal, and the fraction of a millisecond of
/// the time.
class MeasEpochWriter {
 public:
  /// @param channels  of GLONASS, by number
  explicit MeasEpochWriter(const std::array<std::optional<int>, 64>& channels) : channels_(channels) {}

  /// The block of an epoch.
  std::string Write(const ObservationEpoch& epoch);

 private:
  struct Lock {
    std::int64_t since_ns = 0;
    std::uint64_t last_epoch = 0;  ///< with a phase
    double added_cycles = 0;
  };
  /// Phase less pseudorange, and how long it is tracked.
  struct Carrier {
    bool given = false;
    int m_cycles = 0;
    std::int64_t lock_s = 0;
  };
  std::optional<FirstSignal> SatelliteOf(const ObservationEpoch& epoch,
                                         const SatelliteObservation& satellite);
  OtherSignal OtherOf(const SignalObservation& signal, const FirstSignal& first, SatelliteId satellite,
                      double first_hz);
  Carrier CarrierOf(const SignalObservation& signal, double pseudorange_m, SatelliteId satellite);
  /// Hz; 0 where the channel of a GLONASS satellite is not known.
  double FrequencyOf(SatelliteId satellite, SignalCode code) const;

  std::array<std::optional<int>, 64> channels_;
  std::uint64_t epochs_ = 0;
  std::int64_t time_ns_ = 0;
  std::map<std::pair<SatelliteId, int>, Lock> locks_;  ///< by satellite and signal number
};

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_SBF_WRITER_H
