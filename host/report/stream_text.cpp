#include "host/report/stream_text.h"

#include <fmt/format.h>

namespace orsolva_host {
namespace {

/// "1077"; class and ID of UBX as its documents write them, "02-15".
std::string NameOf(const StreamMessages& row, const StreamFacts& stream) {
  if (stream.format != "u-blox UBX") return fmt::format("{}", row.type);
  return fmt::format("{:02X}-{:02X}", row.type >> 8, row.type & 0xFF);
}

}  // namespace

std::string StreamText(const StreamFacts& stream) {
  std::string text = fmt::format("{}, {} frames", stream.format, stream.frames);
  if (stream.crc_errors > 0) text += fmt::format(", {} with a wrong CRC", stream.crc_errors);
  if (stream.skipped_bytes > 0) text += fmt::format(", {} bytes outside frames", stream.skipped_bytes);
  return text;
}

std::string MessagesText(const StreamFacts& stream) {
  std::string text;
  for (const StreamMessages& row : stream.messages) {
    text += fmt::format("{}{}={}", text.empty() ? "" : " ", NameOf(row, stream), row.messages);
    if (row.damaged > 0) text += fmt::format(" ({} damaged)", row.damaged);
    if (!row.decoded) text += " (not decoded)";
  }
  return text;
}

std::string StepsText(const StreamFacts& stream) {
  if (stream.coarse_systems.empty()) return {};
  std::string systems;
  for (const char letter : stream.coarse_systems) {
    systems += (systems.empty() ? "" : ", ") + std::string(1, letter);
  }
  return fmt::format("of {} in MSM4 or MSM5: code {:g} mm, phase {:g} mm, SNR {:g} dB-Hz", systems,
                     kCoarseSteps.pseudorange_m * 1000, kCoarseSteps.phase_m * 1000, kCoarseSteps.snr_dbhz);
}

}  // namespace orsolva_host
