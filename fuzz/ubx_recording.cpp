// Any bytes as a recording of a u-blox receiver. The first byte chooses: even, the rest is the recording;
// odd, it is messages, each behind two bytes of length, that get their frames here, since bytes by chance
// have no right check sum.
#include <cmath>
#include <cstdint>
#include <string>

#include "fuzz/recorded_epochs.h"
#include "host/formats/ubx/frame.h"
#include "host/formats/ubx/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace ubx = orsolva_host::ubx;
using orsolva_fuzz::Require;

/// A message: class, ID and payload.
std::string Frame(std::string_view message) {
  if (message.size() < 2) return std::string(message);
  const int type = static_cast<unsigned char>(message[0]) << 8 | static_cast<unsigned char>(message[1]);
  return ubx::FrameOf(ubx::MessageOf(type, message.substr(2)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  orsolva_host::Diagnostics notices;
  try {
    ubx::Reader reader(orsolva_fuzz::BytesOf((data[0] & 1) != 0 ? orsolva_fuzz::Framed(rest, 0x1F, Frame)
                                                                : std::string(rest)),
                       "fuzzed", notices, (data[0] & 2) == 0);
    orsolva_host::ObservationEpoch epoch;
    std::size_t epochs = 0;
    for (; reader.Next(epoch); ++epochs) {
      orsolva_fuzz::CheckEpoch(epoch);
      for (const auto& signal : epoch.signals) {
        Require(!(std::fabs(signal.phase_cycles) > 1e10), "phases fit a file");
        Require(!(signal.snr_dbhz < 0 || signal.snr_dbhz > 255), "strength is within its field");
      }
    }
    std::uint64_t messages = 0;
    for (const auto& [type, count] : reader.Messages().Counts().types) messages += count.messages;
    Require(messages == reader.Frames().frames && epochs <= messages,
            "an epoch takes a message, and that a frame");
    Require(reader.Frames().frame_bytes + reader.Frames().skipped_bytes <= 5 * size + 8,
            "bytes are counted once");
  } catch (const orsolva_host::FileError& error) {
    Require(*error.what() != '\0', "an error says something");
  }
  return 0;
}
