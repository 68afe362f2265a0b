#include "host/rinex/navigation_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "host/rinex/broadcast_reader.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"
#include "host/rinex/header_labels.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr int kOrbitLines = 7;
constexpr int kGlonassLines = 3;
constexpr double kLastKnownVersion2 = 2.12;
constexpr double kLastKnownVersion3 = 3.05;
constexpr double kLastKnownVersion4 = 4.02;

constexpr std::int64_t kGpsTimeBegins = 315964800;  // 1980-01-06
constexpr std::int64_t kWeek_s = 604800;
constexpr std::int64_t kWeeksOfTenBits = 1024;
constexpr std::size_t kWeekValue = 21;

/// Of RINEX 4, read as plain data although the library has no use for it.
constexpr std::string_view kForeignMessage = "SBAS";

bool IsTakenMessage(std::string_view message) {
  return message == "LNAV" || message == "FDMA" || message == "INAV" || message == "FNAV" ||
         message == "D1" || message == "D2";
}

/// Lines that a usable record has after its epoch line. The last orbit line contains only the time of
/// transmission and spare values, so a record without it is complete.
int LinesNeeded(char letter) { return IsStateVector(letter) ? kGlonassLines : kOrbitLines - 1; }

/// Whether a line does not end where a value ends. @param first  column of its first value
bool EndsWithinValue(std::string_view line, std::size_t first) {
  while (!line.empty() && line.back() == ' ') line.remove_suffix(1);
  return line.size() > first && (line.size() - first) % kNavigationValueWidth != 0;
}

/// Systems beyond the library's whose records are kept as plain data.
bool HasReader(char letter) { return SystemSlot(letter) >= 0 || letter == 'I' || letter == 'S'; }

}  // namespace

void NavigationReader::Read(const std::string& path) {
  Read(OpenBytes(path, diagnostics_, options_.limits), path);
}

void NavigationReader::Read(std::unique_ptr<ByteSource> source, const std::string& name) {
  name_ = name;
  open_ = skipped_ = false;
  message_.clear();
  LineReader lines(std::move(source));
  ReadHeader(lines);
  ReadRecords(lines);
  files_.push_back(name);
}

NavigationSet NavigationReader::Take() const {
  NavigationSet set = set_;
  set.galileo = PreferInav(galileo_);
  return set;
}

void NavigationReader::ReadHeader(LineReader& lines) {
  std::string_view line;
  if (!lines.Next(line)) {
    throw FileError(name_, 0, "an empty file", "a RINEX VERSION / TYPE line",
                    "Name a RINEX navigation file.");
  }
  CheckVersion(line, lines.Line());
  while (lines.Next(line)) {
    if (HeaderLabel(line) == "END OF HEADER") return;
  }
  throw FileError(name_, lines.Line(), "no END OF HEADER", "one before the first record",
                  "The file is truncated or damaged; download it again.");
}

void NavigationReader::CheckVersion(std::string_view line, long number) {
  if (HeaderLabel(line) != "RINEX VERSION / TYPE" ||
      ParseDecimal(Field(line, 0, 9), version_) != FieldState::kNumber) {
    throw FileError(name_, number, Quoted(std::string(line)), "a RINEX VERSION / TYPE line",
                    "Name a RINEX navigation file.");
  }
  const std::string_view type = Field(line, 20, 1);
  const std::string_view known = version_ < 3 ? "NGHELJC" : "N";
  if (type.empty() || known.find(type[0]) == std::string_view::npos) {
    throw FileError(name_, number, "file type " + Quoted(std::string(Trimmed(Field(line, 20, 20)))),
                    "navigation data", "Name the observation file first, then the navigation files.");
  }
  if (!(version_ >= 2 && version_ < 5)) {
    throw FileError(name_, number, "RINEX version " + Quoted(std::string(Trimmed(Field(line, 0, 9)))),
                    "version 2, 3 or 4", "Convert the file to RINEX 3.");
  }
  const double last = version_ < 3   ? kLastKnownVersion2
                      : version_ < 4 ? kLastKnownVersion3
                                     : kLastKnownVersion4;
  if (version_ > last + 0.001) {
    Notice(number, "the version is newer than any supported; read as the latest supported", true);
  }
  ChooseSystem(line);
}

// Navigation files of RINEX 2 are of one system, given by the file type: N GPS, G GLONASS, H geostationary
// (RINEX 2.11, section 8). Programs also write L or E for Galileo, C for BDS and J for QZSS, or N with the
// system's letter in column 41.
void NavigationReader::ChooseSystem(std::string_view line) {
  static constexpr std::string_view kTypes = "NGHLECJ";
  static constexpr std::string_view kSystemsOfTypes = "GRSEECJ";
  system_ = kSystemsOfTypes[std::min(kTypes.find(line[20]), kTypes.size() - 1)];
  const std::string_view system = Field(line, 40, 1);
  if (line[20] == 'N' && !system.empty() && SystemSlot(system[0]) >= 0) system_ = system[0];
}

void NavigationReader::ReadRecords(LineReader& lines) {
  std::string_view line;
  while (lines.Next(line)) {
    const long number = lines.Line();
    if (Trimmed(line).empty()) continue;
    if (HasHeaderLabel(line)) {
      TakeHeaderLine(line, number);
    } else if (!BeginsRecord(line)) {
      if (open_) {
        cut_ = lines.Unterminated() && EndsWithinValue(line, columns_.further_lines);
        AddLine(line, number);
      } else if (!skipped_) {
        Notice(number, "lines that belong to no record skipped", false);
      }
    } else if (FinishRecord(); line[0] == '>') {
      skipped_ = !TakeMessageLine(line, number);
    } else if (!skipped_ || version_ < 4) {
      open_ = BeginRecord(line, number);
      skipped_ = !open_;
    }
  }
  FinishLastRecord();
}

/// A file that is cut off ends within a record. What is lost of its last value would go unnoticed.
void NavigationReader::FinishLastRecord() {
  const bool whole = !open_ || (!cut_ && record_.lines >= LinesNeeded(record_.letter));
  if (whole) return FinishRecord();
  open_ = false;
  diagnostics_.AddIncomplete(name_, record_.line, "the file ends within a record, which is skipped");
}

/// Concatenated files have headers among the records.
void NavigationReader::TakeHeaderLine(std::string_view line, long number) {
  const std::string_view label = HeaderLabel(line);
  if (label == "COMMENT") return Notice(number, "comments among the records skipped", true);
  FinishRecord();
  skipped_ = false;
  if (label != "RINEX VERSION / TYPE") return;
  Notice(number, "second header; its version applies from there on", true);
  CheckVersion(line, number);
}

/// "> EPH G02 LNAV". @return whether the record that follows is used
bool NavigationReader::TakeMessageLine(std::string_view line, long number) {
  const std::string_view kind = Trimmed(Field(line, 2, 3));
  message_ = Trimmed(Field(line, 10, 4));
  if (kind == "EPH" && IsTakenMessage(message_)) return true;
  Notice(number, "records " + Quoted(std::string(kind) + " " + message_) + " are not used by the library",
         true);
  return kind == "EPH" && message_ == kForeignMessage;
}

bool NavigationReader::BeginRecord(std::string_view line, long number) {
  record_ = {};
  record_.line = number;
  bad_ = false;
  const bool known = version_ < 3 ? ParseRecordLine2(line, system_, record_, columns_)
                                  : ParseRecordLine(line, record_, columns_);
  if (!known) {
    Notice(number, "record with an unreadable first line skipped", false);
    return false;
  }
  foreign_ = IsForeign(number);
  if (foreign_ && !HasReader(record_.letter)) return false;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t column = columns_.first_line + kNavigationValueWidth * i;
    record_.v[i] = Number(Field(line, column, kNavigationValueWidth), number);
  }
  return true;
}

/// Whether the record at hand is of no use to the library.
bool NavigationReader::IsForeign(long number) {
  const int slot = SystemSlot(record_.letter);
  if (slot < 0 && message_ == kForeignMessage) return true;  // said by the line before
  if (slot < 0) {
    Notice(number, std::string("records of system ") + record_.letter + " are not used by the library", true);
    return true;
  }
  if (record_.number <= kSystemTable[slot].satellites) return false;
  Notice(number, "satellite " + SatelliteName(record_.letter, record_.number) + "is not supported", true);
  return true;
}

void NavigationReader::AddLine(std::string_view line, long number) {
  const std::size_t first = 3 + 4 * static_cast<std::size_t>(record_.lines);
  if (first + 4 > NavigationRecord::kMaxValues) return;
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t column = columns_.further_lines + kNavigationValueWidth * i;
    record_.v[first + i] = Number(Field(line, column, kNavigationValueWidth), number);
  }
  ++record_.lines;
}

double NavigationReader::Number(std::string_view field, long number) {
  double value = 0;
  if (ParseDecimal(field, value) == FieldState::kBad) {
    bad_ = true;
    if (!foreign_) Notice(number, "record with a value that is not a number skipped", false);
  }
  return value;
}

void NavigationReader::FinishRecord() {
  if (!open_) return;
  open_ = false;
  if (bad_) return;
  if (record_.lines < LinesNeeded(record_.letter)) {
    if (!foreign_) Notice(record_.line, "record with too few lines skipped", false);
    return;
  }
  RepairWeek();
  CheckCount();
  if (!seen_.insert(record_).second) {
    Notice(record_.line, "duplicate records; each is used once", true);
  } else if (AddBroadcast(record_, message_, broadcast_); !foreign_ && !Convert()) {
    Notice(record_.line, "record with an integer out of range skipped", false);
  }
}

/// The week is broadcast in ten bits, and some programs write it as it is, or count Galileo weeks from their
/// own origin.
void NavigationReader::RepairWeek() {
  if (record_.letter != 'G' && record_.letter != 'J' && record_.letter != 'E') return;
  double& week = record_.v[kWeekValue];
  if (!(std::fabs(week) < 1e6)) return;
  const std::int64_t of_clock = (record_.time.time - kGpsTimeBegins) / kWeek_s;
  const std::int64_t behind = of_clock - static_cast<std::int64_t>(week);
  const std::int64_t turns = (behind + kWeeksOfTenBits / 2) / kWeeksOfTenBits;
  if (turns < 1 || std::abs(behind - turns * kWeeksOfTenBits) > 1) return;
  week += static_cast<double>(turns * kWeeksOfTenBits);
  Notice(record_.line, "week numbers corrected for rollover", true);
}

void NavigationReader::CheckCount() const {
  if (seen_.size() < options_.limits.max_records) return;
  throw FileError(name_, record_.line, "more than " + std::to_string(seen_.size()) + " different records",
                  "fewer", "Name the files of the day alone, or raise the limit with --max-size.");
}

std::size_t NavigationReader::SameSatellite::operator()(const NavigationRecord& record) const {
  std::uint64_t hash = static_cast<std::uint64_t>(record.time.time) * 100 +
                       static_cast<std::uint64_t>(record.number) +
                       (static_cast<std::uint64_t>(record.letter) << 56);
  for (const double value : record.v) {
    std::uint64_t bits = 0;
    const double positive_zero = value + 0.0;
    std::memcpy(&bits, &positive_zero, sizeof bits);
    hash = (hash ^ bits) * 0x9E3779B97F4A7C15ULL;
    hash ^= hash >> 32;
  }
  return static_cast<std::size_t>(hash);
}

bool NavigationReader::SameValues::operator()(const NavigationRecord& a, const NavigationRecord& b) const {
  return a.letter == b.letter && a.number == b.number && a.time.time == b.time.time && a.v == b.v;
}

template <typename Eph>
static bool Append(bool usable, const Eph& eph, std::vector<Eph>& list) {
  if (usable) list.push_back(eph);
  return usable;
}

bool NavigationReader::Convert() {
  GpsEph_gbt gps;
  GloEph_gbt glonass;
  BdsEph_gbt bds;
  switch (record_.letter) {
    case 'G':
      return Append(ToGps(record_, gps), gps, set_.gps);
    case 'J':
      return Append(ToGps(record_, gps), gps, set_.qzss);
    case 'R':
      return Append(ToGlonass(record_, glonass), glonass, set_.glonass);
    case 'C':
      return Append(ToBds(record_, bds), bds, set_.bds);
    default:
      return AddGalileo();
  }
}

bool NavigationReader::AddGalileo() {
  GalileoRecord record;
  if (!ToGalileo(record_, record.eph, record.data_sources)) return false;
  // A RINEX 4 file names the message itself.
  if (record.data_sources == 0 && message_ == "INAV") record.data_sources = 1;
  if (record.data_sources == 0 && message_ == "FNAV") record.data_sources = 2;
  galileo_.push_back(record);
  return true;
}

}  // namespace orsolva_host
