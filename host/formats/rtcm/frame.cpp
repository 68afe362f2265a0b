#include "host/formats/rtcm/frame.h"

#include <array>

namespace orsolva_host::rtcm {
namespace {

constexpr unsigned char kPreamble = 0xD3;
constexpr std::uint32_t kPolynomial = 0x1864CFB;

constexpr std::array<std::uint32_t, 256> CrcTable() {
  std::array<std::uint32_t, 256> table = {};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t crc = byte << 16;
    for (int bit = 0; bit < 8; ++bit) {
      crc <<= 1;
      if ((crc & 0x1000000) != 0) crc ^= kPolynomial;
    }
    table[byte] = crc;
  }
  return table;
}

constexpr std::array<std::uint32_t, 256> kCrcTable = CrcTable();

unsigned ByteAt(std::string_view bytes, std::size_t place) {
  return static_cast<unsigned char>(bytes[place]);
}

std::size_t LengthOf(std::string_view frame) { return (ByteAt(frame, 1) & 3) << 8 | ByteAt(frame, 2); }

FrameCandidate Examine(std::string_view rest) {
  using Kind = FrameCandidate::Kind;
  if (rest.size() > 1 && (ByteAt(rest, 1) & 0xFC) != 0) return {};
  if (rest.size() < kFrameHeadBytes) return {Kind::kIncomplete, 0, {}};
  const std::size_t checked = kFrameHeadBytes + LengthOf(rest);
  if (rest.size() < checked + kFrameCrcBytes) return {Kind::kIncomplete, 0, {}};
  std::uint32_t crc = 0;
  for (std::size_t i = 0; i < kFrameCrcBytes; ++i) crc = crc << 8 | ByteAt(rest, checked + i);
  if (Crc24q(rest.substr(0, checked)) != crc) return {Kind::kWrongCrc, 0, {}};
  return {Kind::kFrame, checked + kFrameCrcBytes, rest.substr(kFrameHeadBytes, LengthOf(rest))};
}

}  // namespace

const FrameForm kFrameForm = {static_cast<char>(kPreamble), Examine};

std::uint32_t Crc24q(std::string_view bytes) {
  std::uint32_t crc = 0;
  for (const char c : bytes) {
    crc = (crc << 8 & 0xFFFFFF) ^ kCrcTable[(crc >> 16 ^ static_cast<unsigned char>(c)) & 0xFF];
  }
  return crc;
}

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
