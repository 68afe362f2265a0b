#include "host/simulator/ubx_recording.h"

#include <string>
#include <utility>

#include "host/formats/ubx/frame.h"
#include "host/simulator/header_lines.h"
#include "host/simulator/stream_writer.h"

namespace orsolva_host {

UbxRecording::UbxRecording(std::unique_ptr<ByteSink> sink, const BroadcastRecords& records)
    : sink_(std::move(sink)), epochs_(ChannelsOf(records)) {
  Send(ubx::VersionMessage(kSimulatedReceiver, "1.00"));
}

void UbxRecording::Send(std::string_view message) {
  const std::string frame = ubx::FrameOf(message);
  sink_->Write(frame.data(), frame.size());
  decoder_.Take(message);
}

void UbxRecording::Write(const ObservationEpoch& epoch) { Send(epochs_.Write(epoch)); }

}  // namespace orsolva_host
