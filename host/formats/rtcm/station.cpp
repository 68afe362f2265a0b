#include "host/formats/rtcm/station.h"

#include <algorithm>
#include <cmath>

namespace orsolva_host::rtcm {
namespace {

using namespace position;

constexpr FieldKind kU = FieldKind::kUnsigned;
constexpr FieldKind kS = FieldKind::kSigned;
constexpr double kPositionStep_m = 0.0001;
constexpr double kPositionSteps = 10000;  // of a metre
constexpr double kBiasStep_m = 0.02;
constexpr std::int64_t kInvalidBias = -32768;
constexpr std::size_t kLongestText = 31;  // DF029, DF032, DF227, DF229, DF231

// clang-format off
constexpr FieldRow kPosition[] = {
    {kMessage,        2, 12, kU, 1},
    {kStation,        3, 12, kU, 1},
    {kItrfYear,      21,  6, kU, 1},
    {kGps,           22,  1, kU, 1},
    {kGlonass,       23,  1, kU, 1},
    {kGalileo,       24,  1, kU, 1},
    {kVirtual,      141,  1, kU, 1},
    {kX,             25, 38, kS, kPositionStep_m},
    {kOscillator,   142,  1, kU, 1},
    {kReserved,       1,  1, kU, 1},
    {kY,             26, 38, kS, kPositionStep_m},
    {kQuarterCycle, 364,  2, kU, 1},
    {kZ,             27, 38, kS, kPositionStep_m},
    {kHeight,        28, 16, kU, kPositionStep_m},
};
// clang-format on

/// A length of 8 bits and so many characters (DF029 and DF030, and their likes).
std::string ReadCounted(BitReader& bits) {
  std::string text;
  for (std::uint64_t left = bits.Unsigned(8); left > 0 && !bits.Overrun(); --left) {
    text.push_back(static_cast<char>(bits.Unsigned(8)));
  }
  const std::size_t end = text.find_last_not_of(std::string_view(" \0", 2));
  return text.substr(0, end == std::string::npos ? 0 : end + 1);
}

void WriteCounted(BitWriter& bits, const std::string& text) {
  const std::size_t size = std::min(text.size(), kLongestText);
  bits.Unsigned(size, 8);
  for (const char c : text.substr(0, size)) bits.Unsigned(static_cast<unsigned char>(c), 8);
}

bool TakePosition(BitReader& bits, int message, StationDescription& station) {
  std::array<std::int64_t, kPositionTerms> v = {};
  ReadFields(bits, PositionRows(message), v);
  if (bits.Overrun()) return false;
  station.id = static_cast<int>(v[position::kStation]);
  station.itrf_year = static_cast<int>(v[kItrfYear]);
  station.virtual_station = v[kVirtual] != 0;
  station.position_m.reset();
  if (v[kX] != 0 || v[kY] != 0 || v[kZ] != 0) {
    // Divided, as a decimal of a header is read.
    station.position_m = {static_cast<double>(v[kX]) / kPositionSteps,
                          static_cast<double>(v[kY]) / kPositionSteps,
                          static_cast<double>(v[kZ]) / kPositionSteps};
  }
  if (message == 1006) station.antenna_height_m = static_cast<double>(v[kHeight]) * kPositionStep_m;
  return true;
}

/// 1007: antenna; 1008: and its serial number; 1033: and the receiver.
bool TakeEquipment(BitReader& bits, int message, StationDescription& station) {
  StationDescription found = station;
  bits.Unsigned(12);
  found.id = static_cast<int>(bits.Unsigned(12));
  found.antenna = ReadCounted(bits);
  found.antenna_setup = static_cast<int>(bits.Unsigned(8));
  if (message != 1007) found.antenna_serial = ReadCounted(bits);
  if (message == 1033) {
    found.receiver = ReadCounted(bits);
    found.firmware = ReadCounted(bits);
    found.receiver_serial = ReadCounted(bits);
  }
  if (bits.Overrun()) return false;
  station = found;
  return true;
}

bool TakeBiases(BitReader& bits, StationDescription& station) {
  GlonassBiases biases;
  bits.Unsigned(12);
  const auto id = static_cast<int>(bits.Unsigned(12));
  biases.aligned = bits.Unsigned(1) != 0;
  bits.Unsigned(3);
  const std::uint64_t mask = bits.Unsigned(4);
  std::optional<double>* const places[] = {&biases.l1_ca, &biases.l1_p, &biases.l2_ca, &biases.l2_p};
  for (int i = 0; i < 4; ++i) {
    if ((mask >> (3 - i) & 1) == 0) continue;
    const std::int64_t value = bits.Signed(16);
    if (value != kInvalidBias) *places[i] = static_cast<double>(value) * kBiasStep_m;
  }
  if (bits.Overrun()) return false;
  station.id = id;
  station.glonass_biases = biases;
  return true;
}

}  // namespace

std::span<const FieldRow> PositionRows(int message) {
  const std::span<const FieldRow> rows = kPosition;
  if (message == 1006) return rows;
  return message == 1005 ? rows.first(rows.size() - 1) : std::span<const FieldRow>();
}

bool TakeStation(std::string_view message, StationDescription& station) {
  BitReader type(message);
  const auto number = static_cast<int>(type.Unsigned(12));
  BitReader bits(message);
  switch (number) {
    case 1005:
    case 1006:
      return TakePosition(bits, number, station);
    case 1007:
    case 1008:
    case 1033:
      return TakeEquipment(bits, number, station);
    case 1230:
      return TakeBiases(bits, station);
    default:
      return false;
  }
}

std::string WritePosition(const StationDescription& station) {
  std::array<std::int64_t, kPositionTerms> v = {};
  const auto steps = [](double metres) { return std::llround(metres / kPositionStep_m); };
  v[position::kMessage] = 1006;
  v[position::kStation] = station.id.value_or(0);
  v[kItrfYear] = station.itrf_year.value_or(0);
  v[kGps] = v[kGlonass] = v[kGalileo] = 1;
  v[kVirtual] = station.virtual_station ? 1 : 0;
  v[kOscillator] = 1;
  v[kX] = steps((*station.position_m)[0]);
  v[kY] = steps((*station.position_m)[1]);
  v[kZ] = steps((*station.position_m)[2]);
  v[kHeight] = steps(station.antenna_height_m.value_or(0));
  BitWriter bits;
  WriteFields(bits, PositionRows(1006), v);
  return bits.Bytes();
}

std::string WriteEquipment(const StationDescription& station) {
  BitWriter bits;
  bits.Unsigned(1033, 12);
  bits.Unsigned(static_cast<std::uint64_t>(station.id.value_or(0)), 12);
  WriteCounted(bits, station.antenna);
  bits.Unsigned(static_cast<std::uint64_t>(station.antenna_setup.value_or(0)), 8);
  WriteCounted(bits, station.antenna_serial);
  WriteCounted(bits, station.receiver);
  WriteCounted(bits, station.firmware);
  WriteCounted(bits, station.receiver_serial);
  return bits.Bytes();
}

std::optional<TextMessage> ReadText(std::string_view message) {
  BitReader bits(message);
  if (bits.Unsigned(12) != 1029) return std::nullopt;
  bits.Unsigned(12);
  TextMessage text;
  text.modified_julian_day = static_cast<int>(bits.Unsigned(16));                     // DF051
  text.second_of_day = static_cast<std::int64_t>(bits.Unsigned(17));                  // DF052
  bits.Unsigned(7);                                                                   // DF138, characters
  for (std::uint64_t left = bits.Unsigned(8); left > 0 && !bits.Overrun(); --left) {  // DF139, bytes
    text.text.push_back(static_cast<char>(bits.Unsigned(8)));
  }
  if (bits.Overrun()) return std::nullopt;
  return text;
}

std::optional<SystemParameters> ReadSystemParameters(std::string_view message) {
  constexpr std::uint64_t kNotGiven = 255;
  BitReader bits(message);
  if (bits.Unsigned(12) != 1013) return std::nullopt;
  bits.Unsigned(12);
  SystemParameters parameters;
  parameters.modified_julian_day = static_cast<int>(bits.Unsigned(16));     // DF051
  parameters.second_of_day = static_cast<std::int64_t>(bits.Unsigned(17));  // DF052
  bits.Unsigned(5);                                                         // DF053, number of announcements
  const std::uint64_t leap = bits.Unsigned(8);                              // DF054
  if (bits.Overrun()) return std::nullopt;
  if (leap != kNotGiven) parameters.leap_seconds = static_cast<int>(leap);
  return parameters;
}

}  // namespace orsolva_host::rtcm
