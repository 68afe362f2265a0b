// Any bytes as a recording of an RTCM 3 stream. The first byte chooses: even, the rest is the recording; odd,
// it is messages, each behind two bytes of length, that get their frames here, since bytes by chance have no
// right CRC.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz/require.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/rtcm/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace rtcm = orsolva_host::rtcm;
using orsolva_fuzz::Require;

class Bytes : public orsolva_host::ByteSource {
 public:
  explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}
  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = std::min(size, bytes_.size() - at_);
    std::memcpy(out, bytes_.data() + at_, count);
    at_ += count;
    return count;
  }

 private:
  std::string bytes_;
  std::size_t at_ = 0;
};

std::string Framed(std::string_view messages) {
  std::string stream;
  while (messages.size() >= 2) {
    const std::size_t length =
        (static_cast<unsigned char>(messages[0]) & 3u) << 8 | static_cast<unsigned char>(messages[1]);
    const std::string_view message = messages.substr(2, length);
    stream += rtcm::FrameOf(message);
    messages.remove_prefix(2 + message.size());
  }
  return stream;
}

void CheckEpoch(const orsolva_host::ObservationEpoch& epoch) {
  std::size_t next = 0;
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) {
    const auto& satellite = epoch.satellites[i];
    Require(satellite.first_signal == next && satellite.signal_count > 0, "signals follow one another");
    Require(i == 0 || epoch.satellites[i - 1].id < satellite.id, "satellites are in order, each once");
    next += satellite.signal_count;
  }
  Require(next == epoch.signals.size(), "every signal has a satellite");
  for (const auto& signal : epoch.signals) {
    Require(!(std::fabs(signal.pseudorange_m) > 1e8), "ranges are those of satellites");
    Require(!(std::fabs(signal.phase_cycles) > 1e9), "phases are those of satellites");
    Require(!(signal.snr_dbhz < 0 || signal.snr_dbhz > 64), "strength is within its field");
  }
}

void CheckRecords(const orsolva_host::BroadcastRecords& records) {
  for (const auto& record : records.kepler) {
    Require(std::fabs(record.toe_s - record.toc_s) <= 604800, "reference times are of a week");
    Require(record.satellite.number >= 1 && record.satellite.number <= 63, "numbers fit the tables");
  }
  for (const auto& record : records.state_vectors) Require(std::isfinite(record.toe_s), "a time is a number");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  orsolva_host::Diagnostics notices;
  rtcm::ReaderOptions options;
  if ((data[0] & 2) != 0) options.near_ns = 1531612209 * orsolva_host::kNanosecondsPerSecond;
  if ((data[0] & 4) != 0) options.epoch_end = rtcm::EpochEnd::kLastMessage;
  try {
    rtcm::Reader reader(std::make_unique<Bytes>((data[0] & 1) != 0 ? Framed(rest) : std::string(rest)),
                        "fuzzed", notices, options);
    orsolva_host::ObservationEpoch epoch;
    std::size_t epochs = 0;
    for (; reader.Next(epoch); ++epochs) CheckEpoch(epoch);
    CheckRecords(reader.TakeBroadcast());
    std::uint64_t messages = 0;
    for (const auto& [type, count] : reader.Messages().Counts().types) messages += count.messages;
    Require(messages <= reader.Frames().frames && epochs <= messages,
            "an epoch takes a message, and that a frame");
    Require(reader.Frames().frame_bytes + reader.Frames().skipped_bytes <= 4 * size + 6,
            "bytes are counted once");
  } catch (const orsolva_host::FileError& error) {
    Require(*error.what() != '\0', "an error says something");
  }
  return 0;
}
