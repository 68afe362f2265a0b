// Epochs as MSM4 to MSM7, for streams of known content. What a reader gets back differs from the epochs by
// the steps of the fields, and phases by whole cycles (see below): the twin of a stream in another format is
// best written from what a Decoder returns.
#ifndef ORSOLVA_FORMATS_RTCM_RTCM_WRITER_H
#define ORSOLVA_FORMATS_RTCM_RTCM_WRITER_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/formats/rtcm/msm.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::rtcm {

/// GLONASS channels by satellite number.
using ChannelTable = std::array<std::optional<int>, 64>;

/// Keeps what one epoch of a receiver leaves to the next: lock times and whole cycles of phases.
///
/// Phases are sent near the ranges: whole cycles are added where a signal begins, and kept, so that slips
/// keep their size. When ionosphere drives a phase out of its field, 1500 cycles are taken from it. When that
/// does not help, as after a jump of the receiver clock in the codes alone, or when the phase does not fit
/// after a loss of lock, the cycles are chosen again, with a lock time of 0.
///
/// Left out, because the messages cannot hold them: satellites without a pseudorange, signals and satellites
/// that MSM has no place for, ranges of 255 ms and more, and phases of GLONASS without a channel.
class MsmWriter {
 public:
  /// @param kind  4 to 7: MSM4, ... @param station  DF003
  MsmWriter(int kind, int station) : kind_(kind), station_(station) {}

  /// The messages of an epoch, by system in the order G R E S J C I, all but the last with the bit that more
  /// follow. Systems with more than 64 satellites by signals take several messages.
  std::vector<std::string> Write(const ObservationEpoch& epoch, const ChannelTable& channels = {});

 private:
  struct Track {
    std::int64_t locked_since_ns = 0;
    std::int64_t cycles = 0;  ///< added to the phase
    std::int64_t rolled = 0;  ///< and since the lock began
  };
  struct Candidate {
    const SatelliteObservation* satellite = nullptr;
    int place = 0;
  };

  std::vector<MsmMessage> SystemMessages(char system, const ObservationEpoch& epoch,
                                         const ChannelTable& channels);
  void AddSatellite(const ObservationEpoch& epoch, const Candidate& candidate, const ChannelTable& channels,
                    MsmMessage& message);
  MsmCell CellOf(const ObservationEpoch& epoch, SatelliteId id, const SignalObservation& signal,
                 std::int64_t rough, double carrier_hz, std::int32_t rough_rate);
  void FillPhase(const ObservationEpoch& epoch, SatelliteId id, const SignalObservation& signal,
                 double rough_ms, double carrier_hz, MsmCell& cell);

  int kind_;
  int station_;
  std::map<std::pair<SatelliteId, int>, Track> tracks_;  ///< by satellite and place of the signal
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_RTCM_WRITER_H
