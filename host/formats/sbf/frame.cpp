#include "host/formats/sbf/frame.h"

#include <array>

#include "host/formats/streams/little_endian.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::sbf {
namespace {

constexpr char kSync1 = '$';
constexpr char kSync2 = '@';
constexpr std::size_t kChecked = 4;  // where the checked bytes begin
constexpr std::size_t kId = 4;
constexpr std::size_t kLength = 6;
constexpr std::size_t kTimeOfWeek = 8;
constexpr std::size_t kWeek = 12;
constexpr int kNumberMask = 0x1FFF;

constexpr std::int64_t kGpsBegins_s = 315964800;  // 1980-01-06
constexpr std::int64_t kWeek_ms = 604800000;
constexpr std::int64_t kMillisecond_ns = kNanosecondsPerSecond / 1000;
constexpr int kFirstWeek = 1356;  // 2006-01-01
constexpr int kLastWeek = 6260;   // to the end of 2099; nanoseconds reach to 2262

constexpr std::array<std::uint16_t, 256> CrcTable() {
  std::array<std::uint16_t, 256> table = {};
  for (unsigned byte = 0; byte < 256; ++byte) {
    unsigned crc = byte << 8;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 0x8000) != 0 ? crc << 1 ^ 0x1021 : crc << 1;
    table[byte] = static_cast<std::uint16_t>(crc & 0xFFFF);
  }
  return table;
}

constexpr std::array<std::uint16_t, 256> kCrcTable = CrcTable();

FrameCandidate Examine(std::string_view rest) {
  using Kind = FrameCandidate::Kind;
  if (rest.size() > 1 && rest[1] != kSync2) return {};
  if (rest.size() < kHeadBytes) return {Kind::kIncomplete, 0, {}};
  const std::size_t length = FieldAt<std::uint16_t>(rest, kLength);
  if (length < kTimedHeadBytes || length % 4 != 0 || length > kMaxBlockBytes) return {};
  if (rest.size() < length) return {Kind::kIncomplete, 0, {}};
  const std::string_view block = rest.substr(0, length);
  if (CrcCcitt(block.substr(kChecked)) != FieldAt<std::uint16_t>(block, 2)) return {Kind::kWrongCrc, 0, {}};
  return {Kind::kFrame, length, block};
}

}  // namespace

const FrameForm kFrameForm = {kSync1, Examine};

bool HoldsEphemeris(int number) {
  return number == kGpsNav || number == kGloNav || number == kGalNav || number == kBdsNav ||
         number == kQzsNav;
}

bool IsDecoded(int number) {
  return number == kMeasEpoch || number == kReceiverSetup || HoldsEphemeris(number);
}

std::uint16_t CrcCcitt(std::string_view bytes) {
  unsigned crc = 0;
  for (const char c : bytes) {
    crc = (crc << 8 & 0xFFFF) ^ kCrcTable[(crc >> 8 ^ static_cast<unsigned char>(c)) & 0xFF];
  }
  return static_cast<std::uint16_t>(crc);
}

int NumberOf(std::string_view block) { return FieldAt<std::uint16_t>(block, kId) & kNumberMask; }

std::optional<std::int64_t> TimeOf(std::string_view block) {
  const std::int64_t milliseconds = FieldAt<std::uint32_t>(block, kTimeOfWeek);
  const int week = FieldAt<std::uint16_t>(block, kWeek);
  if (milliseconds >= kWeek_ms || week < kFirstWeek || week > kLastWeek) return std::nullopt;
  return kGpsBegins_s * kNanosecondsPerSecond + (week * kWeek_ms + milliseconds) * kMillisecond_ns;
}

std::string BlockOf(int number, std::string_view body) {
  const std::size_t padded = (body.size() + 3) / 4 * 4;
  std::string checked;
  AppendField(static_cast<std::uint16_t>(number), checked);
  AppendField(static_cast<std::uint16_t>(kHeadBytes + padded), checked);
  checked.append(body);
  checked.append(padded - body.size(), '\0');
  std::string block = {kSync1, kSync2};
  AppendField(CrcCcitt(checked), block);
  return block + checked;
}

std::string TimeFields(std::int64_t time_ns) {
  const std::int64_t milliseconds = (time_ns - kGpsBegins_s * kNanosecondsPerSecond) / kMillisecond_ns;
  std::string fields;
  AppendField(static_cast<std::uint32_t>(milliseconds % kWeek_ms), fields);
  AppendField(static_cast<std::uint16_t>(milliseconds / kWeek_ms), fields);
  return fields;
}

}  // namespace orsolva_host::sbf
