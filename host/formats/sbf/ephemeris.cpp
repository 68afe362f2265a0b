#include "host/formats/sbf/ephemeris.h"

#include <cmath>
#include <span>
#include <utility>

#include "host/formats/sbf/frame.h"
#include "host/formats/sbf/signals.h"
#include "host/formats/streams/little_endian.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::sbf {
namespace {

constexpr double kPi = 3.1415926535898;
constexpr double kDoNotUse = -2e10;
constexpr std::int64_t kGpsBegins_s = 315964800;  // 1980-01-06
constexpr std::int64_t kWeek_s = 604800;
constexpr std::int64_t kBdsBehindGps_s = 14;
constexpr int kBdsWeekOffset = 1356;
constexpr std::size_t kSatellite = 14;

enum class Form : std::uint8_t { kByte, kWord, kLong, kFloat, kDouble };

/// A field, its place in the record (NavigationRecord::v) and what makes it the record's unit.
struct FieldRow {
  std::size_t place;
  Form form;
  std::size_t value;
  double scale = 1;
  bool may_lack = false;  ///< do-not-use stands for 0
};

// Places in v: the reference time of the clock is kept apart until the record has its time.
constexpr std::size_t kClockTime = 29;
constexpr std::size_t kToe = 11;

constexpr FieldRow kGps[] = {
    {19, Form::kByte, 23},         {20, Form::kByte, 24},        {18, Form::kByte, 20},
    {22, Form::kWord, 26},         {24, Form::kByte, 3},         {28, Form::kFloat, 25, 1, true},
    {32, Form::kLong, kClockTime}, {36, Form::kFloat, 2},        {40, Form::kFloat, 1},
    {44, Form::kFloat, 0},         {48, Form::kFloat, 4},        {52, Form::kFloat, 5, kPi},
    {56, Form::kDouble, 6, kPi},   {64, Form::kFloat, 7},        {68, Form::kDouble, 8},
    {76, Form::kFloat, 9},         {80, Form::kDouble, 10},      {88, Form::kLong, kToe},
    {92, Form::kFloat, 12},        {96, Form::kDouble, 13, kPi}, {104, Form::kFloat, 14},
    {108, Form::kDouble, 15, kPi}, {116, Form::kFloat, 16},      {120, Form::kDouble, 17, kPi},
    {128, Form::kFloat, 18, kPi},  {132, Form::kFloat, 19, kPi},
};
constexpr std::size_t kGpsBytes = 140;

constexpr FieldRow kBds[] = {
    {18, Form::kByte, 23},         {19, Form::kByte, 24},           {20, Form::kByte, 28},
    {21, Form::kByte, 3},          {24, Form::kFloat, 25, 1, true}, {28, Form::kFloat, 26, 1, true},
    {32, Form::kLong, kClockTime}, {36, Form::kFloat, 2},           {40, Form::kFloat, 1},
    {44, Form::kFloat, 0},         {48, Form::kFloat, 4},           {52, Form::kFloat, 5, kPi},
    {56, Form::kDouble, 6, kPi},   {64, Form::kFloat, 7},           {68, Form::kDouble, 8},
    {76, Form::kFloat, 9},         {80, Form::kDouble, 10},         {88, Form::kLong, kToe},
    {92, Form::kFloat, 12},        {96, Form::kDouble, 13, kPi},    {104, Form::kFloat, 14},
    {108, Form::kDouble, 15, kPi}, {116, Form::kFloat, 16},         {120, Form::kDouble, 17, kPi},
    {128, Form::kFloat, 18, kPi},  {132, Form::kFloat, 19, kPi},
};
constexpr std::size_t kBdsBytes = 140;

constexpr FieldRow kGal[] = {
    {16, Form::kDouble, 10},
    {24, Form::kDouble, 6, kPi},
    {32, Form::kDouble, 8},
    {40, Form::kDouble, 15, kPi},
    {48, Form::kDouble, 17, kPi},
    {56, Form::kDouble, 13, kPi},
    {64, Form::kFloat, 18, kPi},
    {68, Form::kFloat, 19, kPi},
    {72, Form::kFloat, 5, kPi},
    {76, Form::kFloat, 7},
    {80, Form::kFloat, 9},
    {84, Form::kFloat, 16},
    {88, Form::kFloat, 4},
    {92, Form::kFloat, 12},
    {96, Form::kFloat, 14},
    {100, Form::kLong, kToe},
    {104, Form::kLong, kClockTime},
    {108, Form::kFloat, 2},
    {112, Form::kFloat, 1},
    {116, Form::kDouble, 0},
    {128, Form::kWord, 3},
    {136, Form::kFloat, 25, 1, true},
    {140, Form::kFloat, 26, 1, true},
};
constexpr std::size_t kGalBytes = 149;
constexpr std::size_t kGalSource = 15;
constexpr std::size_t kGalHealth = 130;
constexpr std::size_t kSisaE5a = 133;
constexpr std::size_t kSisaE5b = 134;
constexpr int kInav = 2, kFnav = 16;
// Data sources in RINEX 3.05, table A8.
constexpr int kFnavSources = 2 | 256;
constexpr int kInavSources = 1 | 4 | 512;

constexpr FieldRow kGlo[] = {
    {16, Form::kDouble, 3}, {24, Form::kDouble, 7}, {32, Form::kDouble, 11},   {40, Form::kFloat, 4},
    {44, Form::kFloat, 8},  {48, Form::kFloat, 12}, {52, Form::kFloat, 5},     {56, Form::kFloat, 9},
    {60, Form::kFloat, 13}, {64, Form::kFloat, 1},  {68, Form::kFloat, 0, -1}, {76, Form::kLong, kClockTime},
};
constexpr std::size_t kGloBytes = 96;
constexpr std::size_t kFrequencyNumber = 15;
constexpr int kFrequencyOffset = 8;
constexpr std::size_t kGloHealth = 85;     // B
constexpr std::size_t kGloUnhealthy = 90;  // l
constexpr unsigned kUnhealthyB = 4;

struct SystemRow {
  int number;
  char letter;
  std::span<const FieldRow> fields;
  std::size_t bytes;
};

const SystemRow kSystems[] = {{kGpsNav, 'G', kGps, kGpsBytes},
                              {kQzsNav, 'J', kGps, kGpsBytes},
                              {kBdsNav, 'C', kBds, kBdsBytes},
                              {kGalNav, 'E', kGal, kGalBytes},
                              {kGloNav, 'R', kGlo, kGloBytes}};

double ValueAt(std::string_view block, const FieldRow& row) {
  switch (row.form) {
    case Form::kByte:
      return FieldAt<std::uint8_t>(block, row.place);
    case Form::kWord:
      return FieldAt<std::uint16_t>(block, row.place);
    case Form::kLong:
      return FieldAt<std::uint32_t>(block, row.place);
    case Form::kFloat:
      return static_cast<double>(FieldAt<float>(block, row.place));
    case Form::kDouble:
      return FieldAt<double>(block, row.place);
  }
  return 0;
}

bool ReadFields(std::string_view block, std::span<const FieldRow> rows, NavigationRecord& record) {
  for (const FieldRow& row : rows) {
    double value = ValueAt(block, row);
    if (value == kDoNotUse && row.may_lack) value = 0;
    if (value == kDoNotUse || !std::isfinite(value)) return false;
    record.v[row.value] = value * row.scale;
  }
  return true;
}

/// The time nearest to another with a second of the week.
std::int64_t Nearest(std::int64_t near_s, std::int64_t second_of_week) {
  const std::int64_t in_week = kGpsBegins_s + second_of_week;
  return in_week +
         static_cast<std::int64_t>(std::floor(static_cast<double>(near_s - in_week) / kWeek_s + 0.5)) *
             kWeek_s;
}

bool SetTimes(std::int64_t now_s, NavigationRecord& record) {
  const bool bds = record.letter == 'C';
  const std::int64_t near_s = now_s - (bds ? kBdsBehindGps_s : 0);
  const double clock_s = std::exchange(record.v[kClockTime], 0.0);
  if (clock_s >= kWeek_s) return false;
  record.time = {Nearest(near_s, static_cast<std::int64_t>(clock_s)), 0};
  if (record.letter == 'R') return true;
  if (record.v[kToe] >= kWeek_s) return false;
  const std::int64_t toe_s = Nearest(near_s, static_cast<std::int64_t>(record.v[kToe]));
  record.v[21] = static_cast<double>((toe_s - kGpsBegins_s) / kWeek_s - (bds ? kBdsWeekOffset : 0));
  return true;
}

/// Bits of RINEX 3.05, table A8, from those of the block: validity, data status and health of E1B, E5b and
/// E5a.
int GalileoHealth(unsigned health) {
  const auto signal = [health](int shift) {
    const unsigned bits = health >> shift;
    return (bits & 1) == 0 ? 0U : (bits >> 1 & 1) | (bits >> 2 & 3) << 1;
  };
  return static_cast<int>(signal(0) | signal(8) << 3 | signal(4) << 6);
}

bool FillGalileo(std::string_view block, NavigationRecord& record) {
  const int source = FieldAt<std::uint8_t>(block, kGalSource);
  if (source != kInav && source != kFnav) return false;
  record.v[20] = source == kInav ? kInavSources : kFnavSources;
  record.v[23] = FieldAt<std::uint8_t>(block, source == kInav ? kSisaE5b : kSisaE5a);
  record.v[24] = GalileoHealth(FieldAt<std::uint16_t>(block, kGalHealth));
  return true;
}

void FillGlonass(std::string_view block, NavigationRecord& record) {
  const bool unhealthy = (FieldAt<std::uint8_t>(block, kGloHealth) & kUnhealthyB) != 0 ||
                         FieldAt<std::uint8_t>(block, kGloUnhealthy) == 1;
  record.v[6] = unhealthy ? 1 : 0;
  record.v[10] = FieldAt<std::uint8_t>(block, kFrequencyNumber) - kFrequencyOffset;
}

template <class Field>
void Put(Field value, std::size_t place, std::string& block) {
  std::string bytes;
  AppendField(value, bytes);
  block.replace(place, bytes.size(), bytes);
}

void PutValue(double value, const FieldRow& row, std::string& block) {
  switch (row.form) {
    case Form::kByte:
      return Put(static_cast<std::uint8_t>(value), row.place, block);
    case Form::kWord:
      return Put(static_cast<std::uint16_t>(value), row.place, block);
    case Form::kLong:
      return Put(static_cast<std::uint32_t>(value), row.place, block);
    case Form::kFloat:
      return Put(static_cast<float>(value), row.place, block);
    case Form::kDouble:
      return Put(value, row.place, block);
  }
}

/// The inverse of FillGalileo, of an index of accuracy for both signals.
void PutGalileo(const NavigationRecord& record, std::string& block) {
  const bool fnav = (static_cast<int>(record.v[20]) & kFnavSources & ~kInavSources) != 0;
  Put(static_cast<std::uint8_t>(fnav ? kFnav : kInav), kGalSource, block);
  Put(static_cast<std::uint8_t>(record.v[23]), fnav ? kSisaE5a : kSisaE5b, block);
  const auto health = static_cast<unsigned>(record.v[24]);
  const auto signal = [health](int shift) {
    const unsigned bits = health >> shift;
    return 1U | (bits & 1) << 1 | (bits >> 1 & 3) << 2;
  };
  Put(static_cast<std::uint16_t>(signal(0) | signal(6) << 4 | signal(3) << 8), kGalHealth, block);
}

void PutGlonass(const NavigationRecord& record, std::string& block) {
  Put(static_cast<std::uint8_t>(record.v[6] != 0 ? 1 : 0), kGloUnhealthy, block);
  Put(static_cast<std::uint8_t>(record.v[10] + kFrequencyOffset), kFrequencyNumber, block);
}

}  // namespace

std::optional<NavigationRecord> ReadEphemeris(std::string_view block) {
  const int number = NumberOf(block);
  for (const SystemRow& row : kSystems) {
    if (row.number != number || block.size() < row.bytes) continue;
    const std::optional<std::int64_t> time_ns = TimeOf(block);
    const std::optional<SatelliteId> satellite = SatelliteOf(FieldAt<std::uint8_t>(block, kSatellite));
    if (!time_ns || !satellite || satellite->system != row.letter) return std::nullopt;
    NavigationRecord record;
    record.letter = row.letter;
    record.number = satellite->number;
    if (!ReadFields(block, row.fields, record) || !SetTimes(*time_ns / kNanosecondsPerSecond, record)) {
      return std::nullopt;
    }
    if (row.letter == 'E' && !FillGalileo(block, record)) return std::nullopt;
    if (row.letter == 'R') FillGlonass(block, record);
    return record;
  }
  return std::nullopt;
}

std::string WriteEphemeris(const NavigationRecord& record, std::int64_t time_ns) {
  std::string block(kHeadBytes, '\0');
  block += TimeFields(time_ns);
  for (const SystemRow& row : kSystems) {
    if (row.letter != record.letter) continue;
    block.resize(row.bytes, '\0');
    Put(static_cast<std::uint8_t>(SvidOf({record.letter, static_cast<std::uint8_t>(record.number)})),
        kSatellite, block);
    NavigationRecord values = record;
    values.v[kClockTime] = static_cast<double>((record.time.time - kGpsBegins_s) % kWeek_s);
    for (const FieldRow& field : row.fields) PutValue(values.v[field.value] / field.scale, field, block);
    if (row.letter == 'E') PutGalileo(record, block);
    if (row.letter == 'R') PutGlonass(record, block);
    return BlockOf(row.number, block.substr(kHeadBytes));
  }
  return {};
}

}  // namespace orsolva_host::sbf
