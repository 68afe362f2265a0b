#include "host/formats/rtcm/msm.h"

#include <bit>

namespace orsolva_host::rtcm {
namespace {

using namespace msm;

constexpr FieldKind kU = FieldKind::kUnsigned;
constexpr FieldKind kS = FieldKind::kSigned;
constexpr int kMaxCells = 64;
constexpr int kSignalBits = 32;
constexpr int kSatelliteBits = 64;

struct SystemRow {
  char system;
  int base;  ///< type of MSM0, so to speak
};

constexpr SystemRow kSystems[] = {{'G', 1070}, {'R', 1080}, {'E', 1090}, {'S', 1100},
                                  {'J', 1110}, {'C', 1120}, {'I', 1130}};

// clang-format off
#define ORSOLVA_MSM_HEADER(...)            \
    {kMessage,             2, 12, kU, 1},  \
    {kStation,             3, 12, kU, 1},  \
    __VA_ARGS__,                           \
    {kMore,              393,  1, kU, 1},  \
    {kIssue,             409,  3, kU, 1},  \
    {kReserved,            1,  7, kU, 1},  \
    {kClockSteering,     411,  2, kU, 1},  \
    {kExternalClock,     412,  2, kU, 1},  \
    {kSmoothing,         417,  1, kU, 1},  \
    {kSmoothingInterval, 418,  3, kU, 1},  \
    {kSatellites,        394, 64, kU, 1},  \
    {kSignals,           395, 32, kU, 1}

constexpr FieldRow kHeaderGps[] = {ORSOLVA_MSM_HEADER({kTime, 4, 30, kU, 1})};  // SBAS alike
constexpr FieldRow kHeaderGlonass[] = {
    ORSOLVA_MSM_HEADER({kDayOfWeek, 416, 3, kU, 1}, {kTime, 34, 27, kU, 1})};
constexpr FieldRow kHeaderGalileo[] = {ORSOLVA_MSM_HEADER({kTime, 248, 30, kU, 1})};
constexpr FieldRow kHeaderQzss[] = {ORSOLVA_MSM_HEADER({kTime, 428, 30, kU, 1})};
constexpr FieldRow kHeaderBds[] = {ORSOLVA_MSM_HEADER({kTime, 427, 30, kU, 1})};
constexpr FieldRow kHeaderNavic[] = {ORSOLVA_MSM_HEADER({kTime, 546, 30, kU, 1})};
#undef ORSOLVA_MSM_HEADER

constexpr unsigned Kinds(int a, int b) {  // from a to b
  unsigned kinds = 0;
  for (int kind = a; kind <= b; ++kind) kinds |= 1u << kind;
  return kinds;
}
constexpr std::int32_t kNone = MsmColumn<MsmCell>::kNoInvalid;

// The standard's satellite data: DF397 and the rates are left out of the kinds without them. DF419 is
// GLONASS; other systems have four reserved bits there.
constexpr MsmColumn<MsmSatellite> kSatelliteColumns[] = {
    {&MsmSatellite::rough_ms,   Kinds(4, 7),               397,  8, kU, 1,           255},
    {&MsmSatellite::extended,   Kinds(5, 5) | Kinds(7, 7), 419,  4, kU, 1,           kNone},
    {&MsmSatellite::rough_part, Kinds(1, 7),               398, 10, kU, Power2(-10), kNone},
    {&MsmSatellite::rough_rate, Kinds(5, 5) | Kinds(7, 7), 399, 14, kS, 1,           -8192},
};

constexpr MsmColumn<MsmCell> kCellColumns[] = {
    {&MsmCell::range,      Kinds(1, 1) | Kinds(3, 5), 400, 15, kS, Power2(-24), -16384},
    {&MsmCell::range,      Kinds(6, 7),               405, 20, kS, Power2(-29), -524288},
    {&MsmCell::phase,      Kinds(2, 5),               401, 22, kS, Power2(-29), -2097152},
    {&MsmCell::phase,      Kinds(6, 7),               406, 24, kS, Power2(-31), -8388608},
    {&MsmCell::lock,       Kinds(2, 5),               402,  4, kU, 1,           kNone},
    {&MsmCell::lock,       Kinds(6, 7),               407, 10, kU, 1,           kNone},
    {&MsmCell::half_cycle, Kinds(2, 7),               420,  1, kU, 1,           kNone},
    {&MsmCell::strength,   Kinds(4, 5),               403,  6, kU, 1,           0},
    {&MsmCell::strength,   Kinds(6, 7),               408, 10, kU, Power2(-4),  0},
    {&MsmCell::rate,       Kinds(5, 5) | Kinds(7, 7), 404, 15, kS, 1e-4,        -16384},
};
// clang-format on

template <class Row>
void ReadColumns(BitReader& bits, int kind, std::span<const MsmColumn<Row>> columns, std::vector<Row>& rows) {
  for (const MsmColumn<Row>& column : columns) {
    if (!column.In(kind)) continue;
    for (Row& row : rows) {
      row.*column.member = static_cast<std::int32_t>(ReadField(bits, column.bits, column.field_kind));
    }
  }
}

template <class Row>
void WriteColumns(BitWriter& bits, int kind, std::span<const MsmColumn<Row>> columns,
                  const std::vector<Row>& rows) {
  for (const MsmColumn<Row>& column : columns) {
    if (!column.In(kind)) continue;
    for (const Row& row : rows) WriteField(bits, row.*column.member, column.bits, column.field_kind);
  }
}

/// The rows that the masks describe, without their values.
void LayOut(MsmMessage& m) {
  const auto satellites = static_cast<std::uint64_t>(m.header[kSatellites]);
  const auto signals = static_cast<std::uint32_t>(m.header[kSignals]);
  int left = std::popcount(satellites) * std::popcount(signals);
  m.satellites.reserve(static_cast<std::size_t>(std::popcount(satellites)));
  m.cells.reserve(static_cast<std::size_t>(std::popcount(m.cell_mask)));
  for (int number = 1; number <= kSatelliteBits; ++number) {
    if ((satellites >> (kSatelliteBits - number) & 1) == 0) continue;
    for (int signal = 1; signal <= kSignalBits; ++signal) {
      if ((signals >> (kSignalBits - signal) & 1) == 0) continue;
      --left;
      if ((m.cell_mask >> left & 1) == 0) continue;
      MsmCell cell;
      cell.satellite = static_cast<int>(m.satellites.size());
      cell.signal = signal;
      m.cells.push_back(cell);
    }
    MsmSatellite satellite;
    satellite.number = number;
    m.satellites.push_back(satellite);
  }
}

/// @param bits  at the beginning of the message; behind the header on return
std::optional<MsmMessage> HeaderFrom(std::string_view message, BitReader& bits) {
  BitReader number(message);
  const std::optional<MsmType> type = MsmTypeOf(static_cast<int>(number.Unsigned(12)));
  if (!type) return std::nullopt;
  MsmMessage m;
  m.type = *type;
  ReadFields(bits, MsmHeaderRows(type->system), m.header);
  if (bits.Overrun()) return std::nullopt;
  return m;
}

}  // namespace

std::optional<MsmType> MsmTypeOf(int message) {
  for (const SystemRow& row : kSystems) {
    const int kind = message - row.base;
    if (kind >= 1 && kind <= 7) return MsmType{row.system, kind};
  }
  return std::nullopt;
}

int MessageOf(MsmType type) {
  for (const SystemRow& row : kSystems) {
    if (row.system == type.system) return row.base + type.kind;
  }
  return 0;
}

std::span<const FieldRow> MsmHeaderRows(char system) {
  switch (system) {
    case 'R':
      return kHeaderGlonass;
    case 'E':
      return kHeaderGalileo;
    case 'J':
      return kHeaderQzss;
    case 'C':
      return kHeaderBds;
    case 'I':
      return kHeaderNavic;
    default:
      return kHeaderGps;
  }
}

std::span<const MsmColumn<MsmSatellite>> MsmSatelliteColumns() { return kSatelliteColumns; }
std::span<const MsmColumn<MsmCell>> MsmCellColumns() { return kCellColumns; }

std::optional<MsmMessage> ReadMsmHeader(std::string_view message) {
  BitReader bits(message);
  return HeaderFrom(message, bits);
}

std::optional<MsmMessage> ReadMsm(std::string_view message) {
  BitReader bits(message);
  std::optional<MsmMessage> read = HeaderFrom(message, bits);
  if (!read) return std::nullopt;
  MsmMessage& m = *read;
  const int cells = std::popcount(static_cast<std::uint64_t>(m.header[kSatellites])) *
                    std::popcount(static_cast<std::uint64_t>(m.header[kSignals]));
  if (cells > kMaxCells) return std::nullopt;
  m.cell_mask = bits.Unsigned(cells);
  LayOut(m);
  ReadColumns(bits, m.type.kind, MsmSatelliteColumns(), m.satellites);
  ReadColumns(bits, m.type.kind, MsmCellColumns(), m.cells);
  if (bits.Overrun()) return std::nullopt;
  return read;
}

std::string WriteMsm(const MsmMessage& message) {
  std::array<std::int64_t, kHeaderTerms> header = message.header;
  std::uint64_t satellites = 0;
  std::uint64_t signals = 0;
  for (const MsmSatellite& row : message.satellites) {
    satellites |= std::uint64_t{1} << (kSatelliteBits - row.number);
  }
  for (const MsmCell& cell : message.cells) signals |= std::uint64_t{1} << (kSignalBits - cell.signal);
  header[kMessage] = MessageOf(message.type);
  header[kSatellites] = static_cast<std::int64_t>(satellites);
  header[kSignals] = static_cast<std::int64_t>(signals);

  BitWriter bits;
  WriteFields(bits, MsmHeaderRows(message.type.system), header);
  std::size_t next = 0;
  for (std::size_t row = 0; row < message.satellites.size(); ++row) {
    for (int signal = 1; signal <= kSignalBits; ++signal) {
      if ((signals >> (kSignalBits - signal) & 1) == 0) continue;
      const bool present = next < message.cells.size() && message.cells[next].signal == signal &&
                           message.cells[next].satellite == static_cast<int>(row);
      bits.Unsigned(present ? 1 : 0, 1);
      if (present) ++next;
    }
  }
  WriteColumns(bits, message.type.kind, MsmSatelliteColumns(), message.satellites);
  WriteColumns(bits, message.type.kind, MsmCellColumns(), message.cells);
  return bits.Bytes();
}

}  // namespace orsolva_host::rtcm
