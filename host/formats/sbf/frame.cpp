#include "host/formats/sbf/frame.h"

#include "host/formats/streams/crc.h"
#include "host/formats/streams/little_endian.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::sbf {
namespace {

constexpr char kSync1 = '$';
constexpr char kSync2 = '@';
constexpr std::size_t kCheckSum = 2;
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

using Crc16 = Crc<16, 0x1021>;

FrameCandidate Measure(std::string_view rest) {
  using Kind = FrameCandidate::Kind;
  if (rest.size() > 1 && rest[1] != kSync2) return {};
  FrameCandidate found;
  found.kind = Kind::kIncomplete;
  if (rest.size() < kHeadBytes) return found;
  found.size = FieldAt<std::uint16_t>(rest, kLength);
  if (found.size < kTimedHeadBytes || found.size % 4 != 0 || found.size > kMaxBlockBytes) return {};
  if (rest.size() < found.size) return found;
  found.kind = Kind::kMeasured;
  found.message = rest.substr(0, found.size);
  found.checked_begin = kChecked;
  found.checked_end = found.size;
  found.check_sum = FieldAt<std::uint16_t>(rest, kCheckSum);
  return found;
}

}  // namespace

const FrameForm kFrameForm = {kSync1, Measure, Crc16::Sum, Crc16::OfPart};

bool HoldsEphemeris(int number) {
  return number == kGpsNav || number == kGloNav || number == kGalNav || number == kBdsNav ||
         number == kQzsNav;
}

bool IsDecoded(int number) {
  return number == kMeasEpoch || number == kReceiverSetup || HoldsEphemeris(number);
}

std::uint16_t CrcCcitt(std::string_view bytes) { return static_cast<std::uint16_t>(Crc16::Of(bytes)); }

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
