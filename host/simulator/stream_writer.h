// Writes a simulated span as an RTCM 3 stream.
#ifndef ORSOLVA_SIMULATOR_STREAM_WRITER_H
#define ORSOLVA_SIMULATOR_STREAM_WRITER_H

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/rtcm_writer.h"
#include "host/observation/broadcast_records.h"
#include "host/output/byte_sink.h"
#include "host/simulator/recording_writer.h"

namespace orsolva_host {

/// GLONASS channels by satellite number.
rtcm::ChannelTable ChannelsOf(const BroadcastRecords& records);

/// Epochs as MSM4 or MSM7, and every five minutes the station (1006, 1033) and the ephemerides nearest to the
/// time (1019, 1020, 1042, 1044, 1046).
///
/// An epoch that comes twice is one, epochs have no power failures, values lie on the grid of the messages,
/// and phases differ from those simulated by whole cycles.
class StreamWriter : public RecordingWriter {
 public:
  /// @param kind  4 or 7 @param records  ephemerides of the whole span @param start_ns  of the span, GPS time
  StreamWriter(std::unique_ptr<ByteSink> sink, int kind, BroadcastRecords records,
               const std::array<double, 3>& position_m, std::int64_t start_ns);

  void Write(const ObservationEpoch& epoch) override;
  void Close() override;
  bool Next(ObservationEpoch& epoch) override { return decoder_.Next(epoch); }

 private:
  void Send(std::string_view message);
  void SendStation();
  void SendEphemerides(std::int64_t time_ns);

  std::unique_ptr<ByteSink> sink_;
  rtcm::MsmWriter epochs_;
  rtcm::ChannelTable channels_;
  BroadcastRecords records_;
  std::array<double, 3> position_m_;
  rtcm::Decoder decoder_;
  std::int64_t next_ephemerides_ns_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_STREAM_WRITER_H
