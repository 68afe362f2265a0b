#include "host/formats/sbf/measurements.h"

#include "host/formats/sbf/frame.h"
#include "host/formats/streams/little_endian.h"

namespace orsolva_host::sbf {
namespace {

// Places in the block.
constexpr std::size_t kCount = 14;
constexpr std::size_t kFirstLength = 15;
constexpr std::size_t kOtherLength = 16;
constexpr std::size_t kCommonFlags = 17;
constexpr std::size_t kSubBlocks = 20;
constexpr unsigned kE6b = 64;
constexpr unsigned kScrambled = 128;

// Lengths of the known fields of sub-blocks.
constexpr std::size_t kFirstBytes = 20;
constexpr std::size_t kOtherBytes = 12;

constexpr int kExtended = 31;  // the signal number is 32 plus the upper bits of ObsInfo
constexpr unsigned kHalfCycle = 4;
constexpr int kUpperShift = 3;
constexpr std::int32_t kNoDoppler = INT32_MIN;
constexpr int kNoCarrierMsb = -128;
constexpr int kPart = 65536;
constexpr std::int64_t kCodePart = std::int64_t{1} << 32;

unsigned ByteAt(std::string_view bytes, std::size_t place) { return FieldAt<std::uint8_t>(bytes, place); }
int SignedByteAt(std::string_view bytes, std::size_t place) { return FieldAt<std::int8_t>(bytes, place); }
int WordAt(std::string_view bytes, std::size_t place) { return FieldAt<std::uint16_t>(bytes, place); }

int SignalNumber(unsigned type, unsigned info) {
  const int low = static_cast<int>(type & 31);
  return low == kExtended ? 32 + static_cast<int>(info >> kUpperShift) : low;
}

FirstSignal FirstAt(std::string_view b) {
  const unsigned type = ByteAt(b, 1), info = ByteAt(b, 18);
  FirstSignal s;
  s.svid = static_cast<int>(ByteAt(b, 2));
  s.signal = SignalNumber(type, info);
  s.antenna = static_cast<int>(type >> 5);
  s.code_mm = (ByteAt(b, 3) & 15) * kCodePart + FieldAt<std::uint32_t>(b, 4);
  s.doppler = FieldAt<std::int32_t>(b, 8);
  s.has_doppler = s.doppler != kNoDoppler;
  s.carrier_m_cycles = SignedByteAt(b, 14) * kPart + WordAt(b, 12);
  s.has_carrier = s.carrier_m_cycles != kNoCarrierMsb * kPart;
  s.cn0 = static_cast<std::uint8_t>(ByteAt(b, 15));
  s.lock_s = static_cast<std::uint16_t>(WordAt(b, 16));
  s.half_cycle = (info & kHalfCycle) != 0;
  if ((type & 31) != kExtended) s.frequency_number = static_cast<int>(info >> kUpperShift);
  return s;
}

OtherSignal OtherAt(std::string_view b) {
  const unsigned type = ByteAt(b, 0), info = ByteAt(b, 5);
  const int offsets = SignedByteAt(b, 3);
  const int code_msb = (offsets & 7) - ((offsets & 4) != 0 ? 8 : 0);
  const int doppler_msb = offsets >> 3;
  OtherSignal s;
  s.signal = SignalNumber(type, info);
  s.antenna = static_cast<int>(type >> 5);
  s.lock_s = static_cast<std::uint8_t>(ByteAt(b, 1));
  s.cn0 = static_cast<std::uint8_t>(ByteAt(b, 2));
  s.carrier_m_cycles = SignedByteAt(b, 4) * kPart + WordAt(b, 8);
  s.has_carrier = s.carrier_m_cycles != kNoCarrierMsb * kPart;
  s.code_offset_mm = code_msb * kPart + WordAt(b, 6);
  s.has_code = s.code_offset_mm != -4 * kPart;
  s.doppler_offset = doppler_msb * kPart + WordAt(b, 10);
  s.has_doppler = s.doppler_offset != -16 * kPart;
  s.half_cycle = (info & kHalfCycle) != 0;
  return s;
}

/// Type, and the byte of ObsInfo.
struct SignalBytes {
  std::uint8_t type, info;
};

SignalBytes BytesOf(int signal, int antenna, bool half_cycle, int upper) {
  const bool extended = signal >= kExtended;
  const unsigned type =
      static_cast<unsigned>(antenna) << 5 | static_cast<unsigned>(extended ? kExtended : signal);
  const unsigned high = static_cast<unsigned>(extended ? signal - 32 : upper);
  return {static_cast<std::uint8_t>(type),
          static_cast<std::uint8_t>(high << kUpperShift | (half_cycle ? kHalfCycle : 0))};
}

/// Of a value in parts, the lower 16 bits and what is above them.
std::uint16_t Low(int value) { return static_cast<std::uint16_t>(value & 0xFFFF); }
int High(int value) { return value >> 16; }

void AppendFirst(const FirstSignal& s, std::string& body) {
  const SignalBytes bytes = BytesOf(s.signal, s.antenna, s.half_cycle, s.frequency_number);
  const int carrier = s.has_carrier ? s.carrier_m_cycles : kNoCarrierMsb * kPart;
  body.push_back(0);  // channel of the receiver
  AppendField(bytes.type, body);
  AppendField(static_cast<std::uint8_t>(s.svid), body);
  AppendField(static_cast<std::uint8_t>(s.code_mm / kCodePart), body);
  AppendField(static_cast<std::uint32_t>(s.code_mm % kCodePart), body);
  AppendField(s.has_doppler ? s.doppler : kNoDoppler, body);
  AppendField(Low(carrier), body);
  AppendField(static_cast<std::int8_t>(High(carrier)), body);
  AppendField(s.cn0, body);
  AppendField(s.lock_s, body);
  AppendField(bytes.info, body);
  AppendField(static_cast<std::uint8_t>(s.others.size()), body);
}

void AppendOther(const OtherSignal& s, std::string& body) {
  const SignalBytes bytes = BytesOf(s.signal, s.antenna, s.half_cycle, 0);
  const int carrier = s.has_carrier ? s.carrier_m_cycles : kNoCarrierMsb * kPart;
  const int code = s.has_code ? s.code_offset_mm : -4 * kPart;
  const int doppler = s.has_doppler ? s.doppler_offset : -16 * kPart;
  AppendField(bytes.type, body);
  AppendField(s.lock_s, body);
  AppendField(s.cn0, body);
  AppendField(static_cast<std::uint8_t>((High(doppler) << 3 & 0xF8) | (High(code) & 7)), body);
  AppendField(static_cast<std::int8_t>(High(carrier)), body);
  AppendField(bytes.info, body);
  for (const int value : {code, carrier, doppler}) AppendField(Low(value), body);
}

}  // namespace

std::optional<MeasEpoch> ReadMeasEpoch(std::string_view block, std::int64_t time_ns) {
  if (block.size() < kSubBlocks) return std::nullopt;
  const std::size_t first_length = ByteAt(block, kFirstLength), other_length = ByteAt(block, kOtherLength);
  const unsigned count = ByteAt(block, kCount);
  MeasEpoch epoch;
  epoch.time_ns = time_ns;
  epoch.scrambled = (ByteAt(block, kCommonFlags) & kScrambled) != 0;
  epoch.e6b = (ByteAt(block, kCommonFlags) & kE6b) != 0;
  if (count > 0 && first_length < kFirstBytes) return std::nullopt;
  std::string_view rest = block.substr(kSubBlocks);
  for (unsigned i = 0; i < count; ++i) {
    if (rest.size() < first_length) return std::nullopt;
    const std::size_t others = ByteAt(rest, kFirstBytes - 1);
    if (others > 0 && other_length < kOtherBytes) return std::nullopt;
    if (rest.size() < first_length + others * other_length) return std::nullopt;
    FirstSignal& satellite = epoch.satellites.emplace_back(FirstAt(rest));
    rest.remove_prefix(first_length);
    for (std::size_t k = 0; k < others; ++k, rest.remove_prefix(other_length)) {
      satellite.others.push_back(OtherAt(rest));
    }
  }
  return epoch;
}

std::string WriteMeasEpoch(const MeasEpoch& epoch) {
  std::string body = TimeFields(epoch.time_ns);
  AppendField(static_cast<std::uint8_t>(epoch.satellites.size()), body);
  AppendField(static_cast<std::uint8_t>(kFirstBytes), body);
  AppendField(static_cast<std::uint8_t>(kOtherBytes), body);
  AppendField(static_cast<std::uint8_t>((epoch.scrambled ? kScrambled : 0) | (epoch.e6b ? kE6b : 0)), body);
  body.append(2, '\0');  // clock jumps, reserved
  for (const FirstSignal& satellite : epoch.satellites) {
    AppendFirst(satellite, body);
    for (const OtherSignal& other : satellite.others) AppendOther(other, body);
  }
  return BlockOf(kMeasEpoch, body);
}

}  // namespace orsolva_host::sbf
