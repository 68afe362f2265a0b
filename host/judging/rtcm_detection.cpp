#include "host/judging/rtcm_detection.h"

#include <exception>
#include <filesystem>
#include <string_view>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/ephemeris_fields.h"
#include "host/formats/rtcm/frame.h"
#include "host/rinex/header_labels.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kLine = 256;  // longer than any first line of a RINEX file
constexpr std::size_t kStart = 64 * 1024;

bool BeginsAsRinex(std::string_view text) {
  const std::string_view label = HeaderLabel(text.substr(0, text.find_first_of("\r\n")));
  return label == "RINEX VERSION / TYPE" || label == "CRINEX VERS   / TYPE";
}

RtcmContent ContentOf(std::string_view bytes) {
  rtcm::FrameScanner frames;
  frames.Append(bytes);
  frames.Finish();
  bool any = false, ephemerides = false;
  while (const auto message = frames.Next()) {
    any = true;
    rtcm::BitReader bits(*message);
    const auto type = static_cast<int>(bits.Unsigned(12));
    if (rtcm::HoldsObservations(type)) return RtcmContent::kObservations;
    ephemerides = ephemerides || !rtcm::EphemerisRows(type).empty();
  }
  if (!any) return RtcmContent::kNone;
  return ephemerides ? RtcmContent::kNavigation : RtcmContent::kObservations;
}

}  // namespace

RtcmContent RtcmContentOf(std::unique_ptr<ByteSource>& source) {
  if (BeginsAsRinex(Peek(source, kLine))) return RtcmContent::kNone;
  return ContentOf(Peek(source, kStart));
}

RtcmContent RtcmContentOf(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return RtcmContent::kNone;
  try {
    Diagnostics unused;
    std::unique_ptr<ByteSource> source = OpenBytes(path, unused);
    return RtcmContentOf(source);
  } catch (const std::exception&) {
    return RtcmContent::kNone;
  }
}

}  // namespace orsolva_host
