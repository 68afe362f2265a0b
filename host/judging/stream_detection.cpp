#include "host/judging/stream_detection.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <string_view>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/ephemeris_fields.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/sbf/frame.h"
#include "host/formats/ubx/frame.h"
#include "host/formats/ubx/messages.h"
#include "host/rinex/header_labels.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kLine = 256;  // longer than any first line of a RINEX file
constexpr std::size_t kStart = 64 * 1024;

/// In the order of what makes a recording one of its format.
enum class Content : std::uint8_t { kNone, kOther, kEphemeris, kObservations };

Content RtcmContent(std::string_view message) {
  rtcm::BitReader bits(message);
  const auto type = static_cast<int>(bits.Unsigned(12));
  if (rtcm::HoldsObservations(type)) return Content::kObservations;
  return rtcm::EphemerisRows(type).empty() ? Content::kOther : Content::kEphemeris;
}

Content SbfContent(std::string_view block) {
  const int number = sbf::NumberOf(block);
  if (number == sbf::kMeasEpoch) return Content::kObservations;
  return sbf::HoldsEphemeris(number) ? Content::kEphemeris : Content::kOther;
}

Content UbxContent(std::string_view message) {
  return ubx::TypeOf(message) == ubx::kRawMeasurements ? Content::kObservations : Content::kOther;
}

struct FormatRow {
  StreamFormat format;
  const FrameForm* form;
  Content (*content)(std::string_view message);
};

const FormatRow kFormats[] = {{StreamFormat::kRtcm, &rtcm::kFrameForm, RtcmContent},
                              {StreamFormat::kSbf, &sbf::kFrameForm, SbfContent},
                              {StreamFormat::kUbx, &ubx::kFrameForm, UbxContent}};

bool BeginsAsRinex(std::string_view text) {
  const std::string_view label = HeaderLabel(text.substr(0, text.find_first_of("\r\n")));
  return label == "RINEX VERSION / TYPE" || label == "CRINEX VERS   / TYPE";
}

Content ContentOf(std::string_view bytes, const FormatRow& row) {
  FrameFinder frames(*row.form);
  frames.Append(bytes);
  frames.Finish();
  Content best = Content::kNone;
  while (const auto message = frames.Next()) {
    best = std::max(best, row.content(*message));
    if (best == Content::kObservations) break;
  }
  return best;
}

}  // namespace

std::optional<DetectedStream> DetectStream(std::unique_ptr<ByteSource>& source) {
  if (BeginsAsRinex(Peek(source, kLine))) return std::nullopt;
  const std::string start = Peek(source, kStart);
  Content best = Content::kNone;
  std::optional<DetectedStream> detected;
  for (const FormatRow& row : kFormats) {
    const Content content = ContentOf(start, row);
    if (content <= best) continue;
    best = content;
    detected = {row.format, content == Content::kEphemeris};
    if (best == Content::kObservations) break;
  }
  return detected;
}

std::optional<DetectedStream> DetectStream(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return std::nullopt;
  try {
    Diagnostics unused;
    std::unique_ptr<ByteSource> source = OpenBytes(path, unused);
    return DetectStream(source);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace orsolva_host
