// Any bytes as a recording of a Septentrio receiver. The first byte chooses: even, the rest is the recording;
// odd, it is blocks without their heads, each behind two bytes of length, that get them here, since bytes by
// chance have no right CRC.
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string>

#include "fuzz/recorded_epochs.h"
#include "host/formats/sbf/frame.h"
#include "host/formats/sbf/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace sbf = orsolva_host::sbf;
using orsolva_fuzz::Require;

/// A block: which of those decoded, or its number in two bytes, and what follows the length.
std::string Frame(std::string_view block) {
  constexpr int kNumbers[] = {sbf::kMeasEpoch, sbf::kGpsNav, sbf::kGloNav,       sbf::kGalNav,
                              sbf::kBdsNav,    sbf::kQzsNav, sbf::kReceiverSetup};
  if (block.size() < 2) return std::string(block);
  const unsigned first = static_cast<unsigned char>(block[0]), second = static_cast<unsigned char>(block[1]);
  const int number = first < std::size(kNumbers) ? kNumbers[first] : static_cast<int>(first << 8);
  return sbf::BlockOf(number | static_cast<int>(second & 7) << 13, block.substr(2));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  orsolva_host::Diagnostics notices;
  try {
    sbf::Reader reader(orsolva_fuzz::BytesOf((data[0] & 1) != 0 ? orsolva_fuzz::Framed(rest, 0x1F, Frame)
                                                                : std::string(rest)),
                       "fuzzed", notices, (data[0] & 2) == 0);
    orsolva_host::ObservationEpoch epoch;
    std::size_t epochs = 0;
    for (; reader.Next(epoch); ++epochs) {
      orsolva_fuzz::CheckEpoch(epoch);
      for (const auto& signal : epoch.signals) {
        Require(!(std::fabs(signal.phase_cycles) > 1e10), "phases fit a file");
        Require(!(signal.snr_dbhz < 0 || signal.snr_dbhz > 74), "strength is within its field");
      }
    }
    std::uint64_t blocks = 0, ephemerides = 0;
    for (const auto& [number, count] : reader.Messages().Counts().types) {
      blocks += count.blocks;
      if (sbf::HoldsEphemeris(number)) ephemerides += count.blocks - count.damaged;
    }
    Require(blocks == reader.Frames().frames && epochs <= blocks, "an epoch takes a block, and that a frame");
    Require(reader.TakeEphemerides().size() <= ephemerides, "an ephemeris takes a block");
    Require(reader.Frames().frame_bytes + reader.Frames().skipped_bytes <= 3 * size + 8,
            "bytes are counted once");
  } catch (const orsolva_host::FileError& error) {
    Require(*error.what() != '\0', "an error says something");
  }
  return 0;
}
