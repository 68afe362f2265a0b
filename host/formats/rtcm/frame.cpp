#include "host/formats/rtcm/frame.h"

#include "host/formats/streams/crc.h"

namespace orsolva_host::rtcm {
namespace {

constexpr unsigned char kPreamble = 0xD3;
using Crc24 = Crc<24, 0x864CFB>;

unsigned ByteAt(std::string_view bytes, std::size_t place) {
  return static_cast<unsigned char>(bytes[place]);
}

std::size_t LengthOf(std::string_view frame) { return (ByteAt(frame, 1) & 3) << 8 | ByteAt(frame, 2); }

FrameCandidate Measure(std::string_view rest) {
  using Kind = FrameCandidate::Kind;
  if (rest.size() > 1 && (ByteAt(rest, 1) & 0xFC) != 0) return {};
  FrameCandidate found;
  found.kind = Kind::kIncomplete;
  if (rest.size() < kFrameHeadBytes) return found;
  found.checked_end = kFrameHeadBytes + LengthOf(rest);
  found.size = found.checked_end + kFrameCrcBytes;
  if (rest.size() < found.size) return found;
  found.kind = Kind::kMeasured;
  for (std::size_t i = found.checked_end; i < found.size; ++i)
    found.check_sum = found.check_sum << 8 | ByteAt(rest, i);
  found.message = rest.substr(kFrameHeadBytes, LengthOf(rest));
  return found;
}

}  // namespace

const FrameForm kFrameForm = {static_cast<char>(kPreamble), Measure, Crc24::Sum, Crc24::OfPart};

std::uint32_t Crc24q(std::string_view bytes) { return Crc24::Of(bytes); }

std::string FrameOf(std::string_view message) {
  std::string frame;
  frame.reserve(message.size() + kFrameHeadBytes + kFrameCrcBytes);
  frame.push_back(static_cast<char>(kPreamble));
  frame.push_back(static_cast<char>(message.size() >> 8 & 3));
  frame.push_back(static_cast<char>(message.size() & 0xFF));
  frame.append(message);
  const std::uint32_t crc = Crc24q(frame);
  for (const int shift : {16, 8, 0}) frame.push_back(static_cast<char>(crc >> shift & 0xFF));
  return frame;
}

}  // namespace orsolva_host::rtcm
