#include "host/formats/ubx/frame.h"

#include "host/formats/streams/little_endian.h"

namespace orsolva_host::ubx {
namespace {

constexpr char kSync1 = static_cast<char>(0xB5);
constexpr char kSync2 = 0x62;
constexpr std::size_t kSyncBytes = 2;
constexpr std::size_t kHeadBytes = 4;  // class, ID and length
constexpr std::size_t kChecksumBytes = 2;

FrameCandidate Examine(std::string_view rest) {
  using Kind = FrameCandidate::Kind;
  if (rest.size() > 1 && rest[1] != kSync2) return {};
  if (rest.size() < kSyncBytes + kHeadBytes) return {Kind::kIncomplete, 0, {}};
  const std::size_t length = FieldAt<std::uint16_t>(rest, kSyncBytes + 2);
  if (length > kMaxPayloadBytes) return {};
  const std::size_t checked = kHeadBytes + length;
  const std::size_t size = kSyncBytes + checked + kChecksumBytes;
  if (rest.size() < size) return {Kind::kIncomplete, 0, {}};
  const std::string_view message = rest.substr(kSyncBytes, checked);
  if (Checksum(message) != FieldAt<std::uint16_t>(rest, kSyncBytes + checked))
    return {Kind::kWrongCrc, 0, {}};
  return {Kind::kFrame, size, message};
}

}  // namespace

const FrameForm kFrameForm = {kSync1, Examine};

std::uint16_t Checksum(std::string_view bytes) {
  unsigned a = 0, b = 0;
  for (const char c : bytes) {
    a = (a + static_cast<unsigned char>(c)) & 0xFF;
    b = (b + a) & 0xFF;
  }
  return static_cast<std::uint16_t>(b << 8 | a);
}

int TypeOf(std::string_view message) {
  return FieldAt<std::uint8_t>(message, 0) << 8 | FieldAt<std::uint8_t>(message, 1);
}

std::string_view PayloadOf(std::string_view message) { return message.substr(kHeadBytes); }

std::string MessageOf(int type, std::string_view payload) {
  std::string message = {static_cast<char>(type >> 8), static_cast<char>(type & 0xFF)};
  AppendField(static_cast<std::uint16_t>(payload.size()), message);
  return message.append(payload);
}

std::string FrameOf(std::string_view message) {
  std::string frame = {kSync1, kSync2};
  frame.append(message);
  AppendField(Checksum(message), frame);
  return frame;
}

}  // namespace orsolva_host::ubx
