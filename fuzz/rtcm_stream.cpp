// Any bytes as a recording of an RTCM 3 stream. The first byte chooses: even, the rest is the recording; odd,
// it is messages, each behind two bytes of length, that get their frames here, since bytes by chance have no
// right CRC.
#include <cmath>
#include <cstdint>
#include <string>

#include "fuzz/recorded_epochs.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/rtcm/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace rtcm = orsolva_host::rtcm;
using orsolva_fuzz::Require;

void CheckSignals(const orsolva_host::ObservationEpoch& epoch) {
  orsolva_fuzz::CheckEpoch(epoch);
  for (const auto& signal : epoch.signals) {
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
    rtcm::Reader reader(
        orsolva_fuzz::BytesOf((data[0] & 1) != 0 ? orsolva_fuzz::Framed(rest, 3, rtcm::FrameOf)
                                                 : std::string(rest)),
        "fuzzed", notices, options);
    orsolva_host::ObservationEpoch epoch;
    std::size_t epochs = 0;
    for (; reader.Next(epoch); ++epochs) CheckSignals(epoch);
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
