// Observation messages to signals in metres, cycles, Hz and dB-Hz.
#ifndef ORSOLVA_FORMATS_RTCM_SIGNAL_DECODER_H
#define ORSOLVA_FORMATS_RTCM_SIGNAL_DECODER_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>

#include "host/formats/rtcm/legacy.h"
#include "host/formats/rtcm/msm.h"
#include "host/formats/rtcm/received_signal.h"

namespace orsolva_host::rtcm {

/// Keeps what messages say of others: the channels of GLONASS, and whole ranges, to which the ranges modulo a
/// millisecond of MSM1 to 3, 1001, 1003, 1009 and 1011 are completed. These are absent for a satellite
/// without a whole range in the 100 s before (a range changes by less than 1.2 km/s, so by less than 0.4 ms).
class SignalDecoder {
 public:
  /// @param channel  -7 to 13; others are ignored
  void TakeChannel(int glonass_number, int channel);
  std::optional<int> ChannelOf(int glonass_number) const;

  /// Appends the signals of a message to the part, whose time must be set.
  void Decode(const MsmMessage& message, EpochPart& part);
  void Decode(const LegacyMessage& message, EpochPart& part);

  const FieldCounts& Counts() const { return counts_; }

 private:
  struct WholeRange {
    std::int64_t time_ns = 0;
    double range_m = 0;
  };

  void AddCells(const MsmMessage& message, std::size_t satellite, EpochPart& part, std::size_t& next);
  std::optional<std::int64_t> RoughRange(const MsmMessage& message, const MsmSatellite& satellite,
                                         SatelliteId id, std::int64_t time_ns);
  ReceivedSignal SignalOf(const MsmMessage& message, const MsmCell& cell, SatelliteId id, SignalCode code,
                          std::optional<std::int64_t> rough);
  void AddLegacy(int message, const std::array<std::int64_t, legacy::kSatelliteTerms>& values,
                 EpochPart& part);
  std::optional<double> Completed(SatelliteId id, double part_m, double modulus_m, std::int64_t time_ns);
  void Keep(SatelliteId id, double range_m, std::int64_t time_ns) { ranges_[id] = {time_ns, range_m}; }
  double CarrierOf(SatelliteId id, SignalCode code) const;

  std::array<std::optional<int>, 64> channels_;
  std::map<SatelliteId, WholeRange> ranges_;
  FieldCounts counts_;
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_SIGNAL_DECODER_H
