// Frames among bytes that begin like frames, against check sums computed for every candidate.
#include "host/formats/streams/frame_finder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "host/formats/rtcm/frame.h"
#include "host/formats/sbf/frame.h"
#include "host/formats/streams/little_endian.h"
#include "host/formats/ubx/frame.h"

namespace {

using namespace orsolva_host;

struct Format {
  const char* name;
  const FrameForm* form;
  /// The bytes of the frame that begins here, else 0.
  std::size_t (*size)(std::string_view rest);
  std::function<std::string(const std::string& body)> frame_of;
  std::string beginning;  ///< of a frame that claims to be long
};

std::size_t SizeOfRtcm(std::string_view rest) {
  if (rest.size() < 6 || rest[0] != '\xD3' || (rest[1] & 0xFC) != 0) return 0;
  const std::size_t length = static_cast<std::size_t>(rest[1]) << 8 | static_cast<unsigned char>(rest[2]);
  if (rest.size() < length + 6) return 0;
  const std::string frame = rtcm::FrameOf(rest.substr(3, length));
  return rest.substr(0, frame.size()) == frame ? frame.size() : 0;
}

std::size_t SizeOfSbf(std::string_view rest) {
  if (rest.size() < sbf::kHeadBytes || rest.substr(0, 2) != "$@") return 0;
  const std::size_t length = FieldAt<std::uint16_t>(rest, 6);
  if (length < sbf::kTimedHeadBytes || length % 4 != 0 || length > sbf::kMaxBlockBytes) return 0;
  if (rest.size() < length) return 0;
  return sbf::CrcCcitt(rest.substr(4, length - 4)) == FieldAt<std::uint16_t>(rest, 2) ? length : 0;
}

std::size_t SizeOfUbx(std::string_view rest) {
  if (rest.size() < 8 || rest.substr(0, 2) != "\xB5\x62") return 0;
  const std::size_t length = FieldAt<std::uint16_t>(rest, 4);
  if (length > ubx::kMaxPayloadBytes || rest.size() < length + 8) return 0;
  const std::string frame = ubx::FrameOf(rest.substr(2, 4 + length));
  return rest.substr(0, frame.size()) == frame ? frame.size() : 0;
}

const Format kFormats[] = {
    {"rtcm", &rtcm::kFrameForm, SizeOfRtcm, rtcm::FrameOf, std::string("\xD3\x03\xFC", 3)},
    {"sbf", &sbf::kFrameForm, SizeOfSbf,
     [](const std::string& body) { return sbf::BlockOf(sbf::kMeasEpoch, "123456" + body); },
     std::string("$@\0\0\xBB\x0F\x40\x1F", 8)},
    {"ubx", &ubx::kFrameForm, SizeOfUbx,
     [](const std::string& body) { return ubx::FrameOf(ubx::MessageOf(0x0215, body)); },
     std::string("\xB5\x62\x02\x15\x40\x1F", 6)}};

/// Frames, some damaged, between beginnings of long frames that hold what follows.
std::string Recording(const Format& format, std::mt19937& random) {
  const auto upto = [&random](unsigned most) { return random() % (most + 1); };
  std::string bytes;
  for (int part = 0; part < 200; ++part) {
    std::string body(upto(300), '\0');
    for (char& c : body) c = static_cast<char>(random());
    std::string frame = format.frame_of(body);
    if (upto(4) == 0) frame[upto(static_cast<unsigned>(frame.size()) - 1)] ^= 0x10;
    bytes += frame;
    for (unsigned i = upto(3); i > 0; --i) bytes += format.beginning;
    bytes += std::string(upto(2), format.beginning[0]);
  }
  return bytes;
}

std::vector<std::size_t> SizesByTrial(const Format& format, std::string_view bytes) {
  std::vector<std::size_t> sizes;
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t size = format.size(bytes.substr(i));
    if (size > 0) sizes.push_back(size);
    i += std::max<std::size_t>(size, 1);
  }
  return sizes;
}

TEST(FrameFinder, FindsWhatATrialOfEveryByteFinds) {
  std::mt19937 random(5);
  for (const Format& format : kFormats) {
    const std::string bytes = Recording(format, random);
    FrameFinder finder(*format.form);
    std::vector<std::size_t> sizes;
    const auto take = [&finder, &sizes] {
      for (std::uint64_t before = finder.Counts().frame_bytes; finder.Next();) {
        sizes.push_back(static_cast<std::size_t>(finder.Counts().frame_bytes - before));
        before = finder.Counts().frame_bytes;
      }
    };
    for (std::size_t i = 0; i < bytes.size();) {
      const std::size_t piece = 1 + random() % 2000;
      finder.Append(std::string_view(bytes).substr(i, piece));
      take();
      i += piece;
    }
    finder.Finish();
    take();
    EXPECT_EQ(sizes, SizesByTrial(format, bytes)) << format.name;
    EXPECT_GT(sizes.size(), 100U) << format.name;
    EXPECT_EQ(finder.Counts().frame_bytes + finder.Counts().skipped_bytes, bytes.size()) << format.name;
  }
}

}  // namespace
