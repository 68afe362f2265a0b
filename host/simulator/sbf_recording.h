// Writes a simulated span as a recording of a Septentrio receiver.
#ifndef ORSOLVA_SIMULATOR_SBF_RECORDING_H
#define ORSOLVA_SIMULATOR_SBF_RECORDING_H

#include <memory>
#include <string_view>
#include <vector>

#include "host/formats/sbf/decoder.h"
#include "host/formats/sbf/sbf_writer.h"
#include "host/observation/broadcast_records.h"
#include "host/output/byte_sink.h"
#include "host/rinex/navigation_records.h"
#include "host/simulator/recording_writer.h"
#include "host/simulator/scenario.h"

namespace orsolva_host {

/// Epochs as MeasEpoch behind one ReceiverSetup; the ephemerides of the span come before the first epochs,
/// some before each, at their times of reference. Values lie on the grid of the blocks, and phases differ
/// from those simulated by whole cycles (sbf_writer.h). Signals that SBF has no number for are left out, and
/// epochs have no power failures.
class SbfRecording : public RecordingWriter {
 public:
  /// @param records  ephemerides of the whole span
  SbfRecording(std::unique_ptr<ByteSink> sink, const Scenario& scenario, const BroadcastRecords& records);

  void Write(const ObservationEpoch& epoch) override;
  void Close() override;
  bool Next(ObservationEpoch& epoch) override { return decoder_.Next(epoch); }

 private:
  void Send(std::string_view block);
  void SendEphemerides(std::size_t count);

  std::unique_ptr<ByteSink> sink_;
  std::vector<NavigationRecord> ephemerides_;
  std::size_t sent_ = 0;
  sbf::MeasEpochWriter epochs_;
  sbf::Decoder decoder_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SBF_RECORDING_H
