#include "host/formats/ubx/frame.h"

#include "host/formats/streams/little_endian.h"

namespace orsolva_host::ubx {
namespace {

constexpr char kSync1 = static_cast<char>(0xB5);
constexpr char kSync2 = 0x62;
constexpr std::size_t kSyncBytes = 2;
constexpr std::size_t kHeadBytes = 4;  // class, ID and length
constexpr std::size_t kChecksumBytes = 2;

/// CK_A in the low byte, CK_B in the high one.
std::uint32_t Extended(std::uint32_t sum, char c) {
  const std::uint32_t a = (sum + static_cast<unsigned char>(c)) & 0xFF;
  return (((sum >> 8) + a) & 0xFF) << 8 | a;
}

void Sum(std::string_view bytes, std::vector<std::uint32_t>& sums) {
  std::uint32_t sum = sums.back();
  for (const char c : bytes) sums.push_back(sum = Extended(sum, c));
}

/// CK_B of a part includes CK_A of everything before the part once per byte.
std::uint32_t SumOfPart(std::uint32_t before, std::uint32_t until, std::size_t bytes) {
  const std::uint32_t a = until - before;
  const std::uint32_t b = (until >> 8) - (before >> 8) - static_cast<std::uint32_t>(bytes) * before;
  return (b & 0xFF) << 8 | (a & 0xFF);
}

FrameCandidate Measure(std::string_view rest) {
  using Kind = FrameCandidate::Kind;
  if (rest.size() > 1 && rest[1] != kSync2) return {};
  FrameCandidate found;
  found.kind = Kind::kIncomplete;
  if (rest.size() < kSyncBytes + kHeadBytes) return found;
  const std::size_t length = FieldAt<std::uint16_t>(rest, kSyncBytes + 2);
  if (length > kMaxPayloadBytes) return {};
  found.checked_begin = kSyncBytes;
  found.checked_end = kSyncBytes + kHeadBytes + length;
  found.size = found.checked_end + kChecksumBytes;
  if (rest.size() < found.size) return found;
  found.kind = Kind::kMeasured;
  found.message = rest.substr(kSyncBytes, kHeadBytes + length);
  found.check_sum = FieldAt<std::uint16_t>(rest, found.checked_end);
  return found;
}

}  // namespace

const FrameForm kFrameForm = {kSync1, Measure, Sum, SumOfPart};

std::uint16_t Checksum(std::string_view bytes) {
  std::uint32_t sum = 0;
  for (const char c : bytes) sum = Extended(sum, c);
  return static_cast<std::uint16_t>(sum);
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
