#include "host/formats/rtcm/legacy.h"

namespace orsolva_host::rtcm {
namespace {

using namespace legacy;

constexpr FieldKind kU = FieldKind::kUnsigned;
constexpr FieldKind kS = FieldKind::kSigned;
constexpr double kRangeStep_m = 0.02;
constexpr double kPhaseStep_m = 0.0005;
constexpr double kStrengthStep_dbhz = 0.25;

// clang-format off
constexpr FieldRow kHeaderGps[] = {
    {kMessage,           2, 12, kU, 1},
    {kStation,           3, 12, kU, 1},
    {kTime,              4, 30, kU, 1},
    {kMore,              5,  1, kU, 1},
    {kCount,             6,  5, kU, 1},
    {kSmoothing,         7,  1, kU, 1},
    {kSmoothingInterval, 8,  3, kU, 1},
};
constexpr FieldRow kHeaderGlonass[] = {
    {kMessage,            2, 12, kU, 1},
    {kStation,            3, 12, kU, 1},
    {kTime,              34, 27, kU, 1},
    {kMore,               5,  1, kU, 1},
    {kCount,             35,  5, kU, 1},
    {kSmoothing,         36,  1, kU, 1},
    {kSmoothingInterval, 37,  3, kU, 1},
};

// What 1001 to 1004 have of these, in this order: L1; with whole range and strength; both again with L2.
#define ORSOLVA_GPS_L1                        \
    {kSatellite,  9,  6, kU, 1},              \
    {kCode1,     10,  1, kU, 1},              \
    {kRange1,    11, 24, kU, kRangeStep_m},   \
    {kPhase1,    12, 20, kS, kPhaseStep_m},   \
    {kLock1,     13,  7, kU, 1}
#define ORSOLVA_GPS_L1_WHOLE                  \
    {kAmbiguity, 14,  8, kU, 299792.458},     \
    {kStrength1, 15,  8, kU, kStrengthStep_dbhz}
#define ORSOLVA_GPS_L2                        \
    {kCode2,     16,  2, kU, 1},              \
    {kRange2,    17, 14, kS, kRangeStep_m},   \
    {kPhase2,    18, 20, kS, kPhaseStep_m},   \
    {kLock2,     19,  7, kU, 1}
#define ORSOLVA_GLONASS_L1                    \
    {kSatellite, 38,  6, kU, 1},              \
    {kCode1,     39,  1, kU, 1},              \
    {kChannel,   40,  5, kU, 1},              \
    {kRange1,    41, 25, kU, kRangeStep_m},   \
    {kPhase1,    42, 20, kS, kPhaseStep_m},   \
    {kLock1,     43,  7, kU, 1}
#define ORSOLVA_GLONASS_L1_WHOLE              \
    {kAmbiguity, 44,  7, kU, 599584.916},     \
    {kStrength1, 45,  8, kU, kStrengthStep_dbhz}
#define ORSOLVA_GLONASS_L2                    \
    {kCode2,     46,  2, kU, 1},              \
    {kRange2,    47, 14, kS, kRangeStep_m},   \
    {kPhase2,    48, 20, kS, kPhaseStep_m},   \
    {kLock2,     49,  7, kU, 1}

constexpr FieldRow k1001[] = {ORSOLVA_GPS_L1};
constexpr FieldRow k1002[] = {ORSOLVA_GPS_L1, ORSOLVA_GPS_L1_WHOLE};
constexpr FieldRow k1003[] = {ORSOLVA_GPS_L1, ORSOLVA_GPS_L2};
constexpr FieldRow k1004[] = {ORSOLVA_GPS_L1, ORSOLVA_GPS_L1_WHOLE, ORSOLVA_GPS_L2,
    {kStrength2, 20, 8, kU, kStrengthStep_dbhz}};
constexpr FieldRow k1009[] = {ORSOLVA_GLONASS_L1};
constexpr FieldRow k1010[] = {ORSOLVA_GLONASS_L1, ORSOLVA_GLONASS_L1_WHOLE};
constexpr FieldRow k1011[] = {ORSOLVA_GLONASS_L1, ORSOLVA_GLONASS_L2};
constexpr FieldRow k1012[] = {ORSOLVA_GLONASS_L1, ORSOLVA_GLONASS_L1_WHOLE, ORSOLVA_GLONASS_L2,
    {kStrength2, 50, 8, kU, kStrengthStep_dbhz}};
#undef ORSOLVA_GPS_L1
#undef ORSOLVA_GPS_L1_WHOLE
#undef ORSOLVA_GPS_L2
#undef ORSOLVA_GLONASS_L1
#undef ORSOLVA_GLONASS_L1_WHOLE
#undef ORSOLVA_GLONASS_L2
// clang-format on

template <std::size_t n>
constexpr int BitsOf(const FieldRow (&rows)[n]) {
  int bits = 0;
  for (const FieldRow& row : rows) bits += row.bits;
  return bits;
}

// Lengths as the standard's table of messages lists them.
static_assert(BitsOf(kHeaderGps) == 64 && BitsOf(kHeaderGlonass) == 61);
static_assert(BitsOf(k1001) == 58 && BitsOf(k1002) == 74 && BitsOf(k1003) == 101 && BitsOf(k1004) == 125);
static_assert(BitsOf(k1009) == 64 && BitsOf(k1010) == 79 && BitsOf(k1011) == 107 && BitsOf(k1012) == 130);

}  // namespace

std::span<const FieldRow> LegacyHeaderRows(int message) {
  return message >= 1009 ? std::span<const FieldRow>(kHeaderGlonass) : std::span<const FieldRow>(kHeaderGps);
}

std::span<const FieldRow> LegacySatelliteRows(int message) {
  switch (message) {
    case 1001:
      return k1001;
    case 1002:
      return k1002;
    case 1003:
      return k1003;
    case 1004:
      return k1004;
    case 1009:
      return k1009;
    case 1010:
      return k1010;
    case 1011:
      return k1011;
    case 1012:
      return k1012;
    default:
      return {};
  }
}

bool HasAmbiguity(int message) {
  return message == 1002 || message == 1004 || message == 1010 || message == 1012;
}

std::optional<LegacyMessage> ReadLegacy(std::string_view message) {
  BitReader type(message);
  LegacyMessage m;
  m.message = static_cast<int>(type.Unsigned(12));
  const std::span<const FieldRow> rows = LegacySatelliteRows(m.message);
  if (rows.empty()) return std::nullopt;
  BitReader bits(message);
  ReadFields(bits, LegacyHeaderRows(m.message), m.header);
  m.satellites.resize(static_cast<std::size_t>(m.header[kCount]));
  for (auto& satellite : m.satellites) ReadFields(bits, rows, satellite);
  if (bits.Overrun()) return std::nullopt;
  return m;
}

std::string WriteLegacy(const LegacyMessage& message) {
  std::array<std::int64_t, kHeaderTerms> header = message.header;
  header[kMessage] = message.message;
  header[kCount] = static_cast<std::int64_t>(message.satellites.size());
  BitWriter bits;
  WriteFields(bits, LegacyHeaderRows(message.message), header);
  for (const auto& satellite : message.satellites) {
    WriteFields(bits, LegacySatelliteRows(message.message), satellite);
  }
  return bits.Bytes();
}

}  // namespace orsolva_host::rtcm
