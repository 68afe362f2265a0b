// Writes a simulated span as a recording of a u-blox receiver.
#ifndef ORSOLVA_SIMULATOR_UBX_RECORDING_H
#define ORSOLVA_SIMULATOR_UBX_RECORDING_H

#include <memory>
#include <string_view>

#include "host/formats/ubx/decoder.h"
#include "host/formats/ubx/ubx_writer.h"
#include "host/observation/broadcast_records.h"
#include "host/output/byte_sink.h"
#include "host/simulator/recording_writer.h"

namespace orsolva_host {

/// Epochs as RXM-RAWX behind one MON-VER. Values lie on the grid of the messages (ubx_writer.h): pseudoranges
/// and phases are those simulated. Signals that UBX has no number for are left out, and epochs have no power
/// failures.
class UbxRecording : public RecordingWriter {
 public:
  /// @param records  for the channels of GLONASS
  UbxRecording(std::unique_ptr<ByteSink> sink, const BroadcastRecords& records);

  void Write(const ObservationEpoch& epoch) override;
  void Close() override { sink_->Close(); }
  bool Next(ObservationEpoch& epoch) override { return decoder_.Next(epoch); }

 private:
  void Send(std::string_view message);

  std::unique_ptr<ByteSink> sink_;
  ubx::RawxWriter epochs_;
  ubx::Decoder decoder_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_UBX_RECORDING_H
