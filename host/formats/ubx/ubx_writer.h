// Epochs as RXM-RAWX, for recordings of known content.
#ifndef ORSOLVA_FORMATS_UBX_UBX_WRITER_H
#define ORSOLVA_FORMATS_UBX_UBX_WRITER_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::ubx {

/// Keeps the lock times from one epoch to the next: they begin again with kLossOfLock, and when the epoch
/// before had no phase of the signal.
///
/// Pseudoranges and phases are written as they are, Doppler in single precision, strengths as whole dB-Hz.
/// Left out, because UBX cannot hold them: signals and satellites without a number in signals.h, and what is
/// beyond 255 signals. Times are those of a receiver with an exact clock.
class RawxWriter {
 public:
  /// @param channels  of GLONASS, by number
  explicit RawxWriter(const std::array<std::optional<int>, 64>& channels) : channels_(channels) {}

  /// The message of an epoch.
  std::string Write(const ObservationEpoch& epoch);

 private:
  std::uint16_t LockOf(std::int64_t time_ns, SatelliteId satellite, const SignalObservation& signal);

  std::array<std::optional<int>, 64> channels_;
  struct Lock {
    std::int64_t since_ns = 0;
    std::uint64_t last_epoch = 0;  ///< with a phase
  };
  std::uint64_t epochs_ = 0;
  std::map<std::pair<SatelliteId, int>, Lock> locks_;  ///< by satellite and sigId
};

/// MON-VER with the name of a receiver.
std::string VersionMessage(const std::string& model, const std::string& firmware);

}  // namespace orsolva_host::ubx

#endif  // ORSOLVA_FORMATS_UBX_UBX_WRITER_H
