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

}  // namespace

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

void FrameScanner::Append(std::string_view bytes) {
  buffer_.erase(0, begin_);
  begin_ = 0;
  buffer_.append(bytes);
}

FrameScanner::Candidate FrameScanner::Examine(std::string_view rest) const {
  if (ByteAt(rest, 0) != kPreamble) return Candidate::kNone;
  if (rest.size() > 1 && (ByteAt(rest, 1) & 0xFC) != 0) return Candidate::kNone;
  if (rest.size() < kFrameHeadBytes) return Candidate::kIncomplete;
  const std::size_t checked = kFrameHeadBytes + LengthOf(rest);
  if (rest.size() < checked + kFrameCrcBytes) return Candidate::kIncomplete;
  std::uint32_t crc = 0;
  for (std::size_t i = 0; i < kFrameCrcBytes; ++i) crc = crc << 8 | ByteAt(rest, checked + i);
  return Crc24q(rest.substr(0, checked)) == crc ? Candidate::kFrame : Candidate::kWrongCrc;
}

void FrameScanner::Skip(std::size_t bytes) {
  begin_ += bytes;
  counts_.skipped_bytes += bytes;
  expected_ = false;
}

std::optional<std::string_view> FrameScanner::Next() {
  while (begin_ < buffer_.size()) {
    const std::string_view rest = std::string_view(buffer_).substr(begin_);
    switch (Examine(rest)) {
      case Candidate::kFrame: {
        const std::string_view message = rest.substr(kFrameHeadBytes, LengthOf(rest));
        const std::size_t size = kFrameHeadBytes + message.size() + kFrameCrcBytes;
        begin_ += size;
        ++counts_.frames;
        counts_.frame_bytes += size;
        expected_ = true;
        return message;
      }
      case Candidate::kIncomplete:
        if (!finished_) return std::nullopt;
        if (expected_) ++counts_.cut_frames;
        Skip(1);
        break;
      case Candidate::kWrongCrc:
        if (expected_) ++counts_.crc_errors;
        Skip(1);
        break;
      case Candidate::kNone: {
        const std::size_t next = rest.find(static_cast<char>(kPreamble), 1);
        Skip(next == std::string_view::npos ? rest.size() : next);
        break;
      }
    }
  }
  return std::nullopt;
}

}  // namespace orsolva_host::rtcm
