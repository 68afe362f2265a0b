#include "host/rinex/navigation_reader.h"

#include <utility>

#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kFirstValueColumn = 23;
constexpr std::size_t kValueColumn = 4;
constexpr std::size_t kValueWidth = 19;
constexpr int kOrbitLines = 7;
constexpr int kGlonassLines = 3;
constexpr double kLastKnownVersion3 = 3.05;
constexpr double kLastKnownVersion4 = 4.02;

std::string_view Label(std::string_view line) { return Trimmed(Field(line, 60, 20)); }

bool IsTakenMessage(std::string_view message) {
  return message == "LNAV" || message == "FDMA" || message == "INAV" || message == "FNAV" ||
         message == "D1" || message == "D2";
}

/// Lines that a usable record has after its epoch line. The last orbit line holds only the time of
/// transmission and spare values, so a record without it is whole.
int LinesNeeded(char letter) { return letter == 'R' ? kGlonassLines : kOrbitLines - 1; }

}  // namespace

void NavigationReader::Read(const std::string& path) { Read(OpenBytes(path, diagnostics_), path); }

void NavigationReader::Read(std::unique_ptr<ByteSource> source, const std::string& name) {
  name_ = name;
  open_ = skipped_ = false;
  message_.clear();
  LineReader lines(std::move(source));
  ReadHeader(lines);
  ReadRecords(lines);
}

NavigationSet NavigationReader::Take() const {
  NavigationSet set = set_;
  set.galileo = PreferInav(galileo_);
  return set;
}

void NavigationReader::ReadHeader(LineReader& lines) {
  std::string_view line;
  const bool any = lines.Next(line);
  if (!any || Label(line) != "RINEX VERSION / TYPE" ||
      ParseDecimal(Field(line, 0, 9), version_) != FieldState::kNumber) {
    throw FileError(name_, lines.Line(), any ? Quoted(std::string(line)) : "an empty file",
                    "a line RINEX VERSION / TYPE", "Name a RINEX navigation file.");
  }
  if (Field(line, 20, 1) != "N" && version_ >= 3) {
    throw FileError(name_, lines.Line(), "file type " + Quoted(std::string(Trimmed(Field(line, 20, 20)))),
                    "navigation data", "Name the observation file first, then the navigation files.");
  }
  if (!(version_ >= 3 && version_ < 5)) {
    throw FileError(name_, lines.Line(), "RINEX version " + Quoted(std::string(Trimmed(Field(line, 0, 9)))),
                    "version 3 or 4", "Convert the file to RINEX 3.");
  }
  if ((version_ > kLastKnownVersion3 + 0.001 && version_ < 4) || version_ > kLastKnownVersion4 + 0.001) {
    Notice(lines.Line(), "the version is later than those known; read as the last known", true);
  }
  while (lines.Next(line)) {
    if (Label(line) == "END OF HEADER") return;
  }
  throw FileError(name_, lines.Line(), "no END OF HEADER", "it before the first record",
                  "The file is cut off or damaged; fetch it again.");
}

void NavigationReader::ReadRecords(LineReader& lines) {
  std::string_view line;
  while (lines.Next(line)) {
    const long number = lines.Line();
    if (Trimmed(line).empty()) continue;
    if (line[0] == ' ') {
      if (open_) {
        AddLine(line, number);
      } else if (!skipped_) {
        Notice(number, "lines that belong to no record are passed over", false);
      }
      continue;
    }
    FinishRecord();
    if (line[0] == '>') {
      skipped_ = !TakeMessageLine(line, number);
    } else if (!skipped_ || version_ < 4) {
      open_ = BeginRecord(line, number);
      skipped_ = !open_;
    }
  }
  FinishRecord();
}

/// "> EPH G02 LNAV". @return whether the record that follows is taken
bool NavigationReader::TakeMessageLine(std::string_view line, long number) {
  const std::string_view kind = Trimmed(Field(line, 2, 3));
  message_ = Trimmed(Field(line, 10, 4));
  if (kind == "EPH" && IsTakenMessage(message_)) return true;
  Notice(number, "records " + Quoted(std::string(kind) + " " + message_) + " are not used", true);
  return false;
}

bool NavigationReader::BeginRecord(std::string_view line, long number) {
  record_ = {};
  record_.line = number;
  bad_ = false;
  CivilTime civil;
  if (!ParseSatellite(Field(line, 0, 3), record_.letter, record_.number) ||
      !ParseCivil(Field(line, 4, 4), Field(line, 9, 2), Field(line, 12, 2), Field(line, 15, 2),
                  Field(line, 18, 2), Field(line, 21, 2), civil)) {
    Notice(number, "a record whose first line cannot be read is passed over", false);
    return false;
  }
  record_.time = ToTime(civil);
  const int slot = SystemSlot(record_.letter);
  if (slot < 0) {
    Notice(number, std::string("records of system ") + record_.letter + " are not used", true);
    return false;
  }
  if (record_.number > kSystemTable[slot].satellites) {
    Notice(number, "satellite " + SatelliteName(record_.letter, record_.number) + " is not judged", true);
    return false;
  }
  for (std::size_t i = 0; i < 3; ++i) {
    record_.v[i] = Number(Field(line, kFirstValueColumn + kValueWidth * i, kValueWidth), number);
  }
  return true;
}

void NavigationReader::AddLine(std::string_view line, long number) {
  const std::size_t first = 3 + 4 * static_cast<std::size_t>(record_.lines);
  if (first + 4 > NavigationRecord::kMostValues) return;
  for (std::size_t i = 0; i < 4; ++i) {
    record_.v[first + i] = Number(Field(line, kValueColumn + kValueWidth * i, kValueWidth), number);
  }
  ++record_.lines;
}

double NavigationReader::Number(std::string_view field, long number) {
  double value = 0;
  if (ParseDecimal(field, value) == FieldState::kBad) {
    bad_ = true;
    Notice(number, "a record with a value that is no number is passed over", false);
  }
  return value;
}

void NavigationReader::FinishRecord() {
  if (!open_) return;
  open_ = false;
  if (bad_) return;
  if (record_.lines < LinesNeeded(record_.letter)) {
    Notice(record_.line, "a record with too few lines is passed over", false);
  } else if (!IsNew()) {
    Notice(record_.line, "records that stand twice are taken once", true);
  } else if (!Convert()) {
    Notice(record_.line, "a record with a whole number out of range is passed over", false);
  }
}

bool NavigationReader::IsNew() {
  std::vector<NavigationRecord>& known = met_[{record_.letter, record_.number, record_.time.time}];
  for (const NavigationRecord& other : known) {
    if (other.v == record_.v) return false;
  }
  known.push_back(record_);
  return true;
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
