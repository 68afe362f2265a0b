#include "host/rinex/observation_header.h"

#include <cmath>

#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"
#include "host/rinex/header_labels.h"
#include "host/rinex/time_scales.h"

namespace orsolva_host {
namespace {

constexpr double kLastKnownVersion2 = 2.12;
constexpr double kLastKnownVersion3 = 3.05;
constexpr double kLastKnownVersion4 = 4.02;
// Far more than any receiver has; keeps a damaged file from growing the lists.
constexpr std::size_t kMaxTypes = 200;
constexpr long kMaxHeaderLines = 100000;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string Text(std::string_view line, std::size_t column, std::size_t width) {
  return Printable(Trimmed(Field(line, column, width)));
}

/// "  2020     6    25     0     0    0.0000000"; absent when it cannot be read.
std::optional<Time_gbt> StatedTime(std::string_view line) {
  CivilTime civil;
  const bool read = ParseCivil(Field(line, 0, 6), Field(line, 6, 6), Field(line, 12, 6), Field(line, 18, 6),
                               Field(line, 24, 6), Field(line, 30, 13), civil);
  if (!read) return std::nullopt;
  return ToTime(civil);
}

bool IsLetter(char c) { return c >= 'A' && c <= 'Z'; }

void AddScaledTypes(std::string_view line, ScaleFactor& scale) {
  for (std::size_t column = 11; column + 3 <= 60; column += 4) {
    const std::string_view type = Trimmed(Field(line, column, 3));
    if (!type.empty() && scale.types.size() < kMaxTypes) scale.types.emplace_back(type);
  }
}

}  // namespace

bool IsInGlonassTime(const ObservationHeader& header) {
  return header.time_system == "GLO" || (header.time_system.empty() && header.system == 'R');
}

std::int64_t SecondsToGpsTime(const ObservationHeader& header) {
  if (header.time_system == "BDT" || (header.time_system.empty() && header.system == 'C'))
    return kBdsTimeBehindGps_s;
  return IsInGlonassTime(header) ? header.leap_seconds.value_or(0) : 0;
}

void HeaderParser::ReadVersion(LineReader& lines) {
  std::string_view line;
  bool blank = false;
  do {
    if (!lines.Next(line)) {
      throw FileError(file_, 0, "an empty file", "a RINEX observation file", "Check how the file was made.");
    }
    if (lines.Line() == 1 && line.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      line.remove_prefix(kByteOrderMark.size());
      Notice(1, "byte order mark before the header skipped");
    }
    blank = Trimmed(line).empty();
    if (blank) Notice(lines.Line(), "blank lines before the header skipped");
  } while (blank && lines.Line() < kMaxHeaderLines);
  std::string form;
  if (HeaderLabel(line) == "CRINEX VERS   / TYPE") {
    header_.crinex = true;
    form = Field(line, 0, 1);
    if (form != "1" && form != "3") {
      throw FileError(file_, lines.Line(), "CRINEX version " + Quoted(Text(line, 0, 20)), "1.0 or 3.0",
                      "Convert the file to plain RINEX first.");
    }
    // The second line names the compressing program.
    if (!lines.Next(line) || !lines.Next(line)) line = {};
  }
  double version = 0;
  if (HeaderLabel(line) != "RINEX VERSION / TYPE" ||
      ParseDecimal(Field(line, 0, 9), version) != FieldState::kNumber) {
    throw FileError(file_, lines.Line(), Quoted(std::string(line)), "a RINEX VERSION / TYPE line",
                    "Name a RINEX observation file first.");
  }
  if (Field(line, 20, 1) != "O") {
    throw FileError(file_, lines.Line(), "file type " + Quoted(Text(line, 20, 20)), "observation data",
                    "Name the observation file first, then the navigation files.");
  }
  CheckVersion(line, version, lines.Line());
  if (!form.empty() && (form == "1") != (version < 3)) {
    Notice(lines.Line(), "CRINEX " + form + " contains RINEX " + Text(line, 0, 9) +
                             "; read according to the RINEX version");
  }
  header_.version = version;
  const std::string_view system = Field(line, 40, 1);
  if (!system.empty() && system[0] != ' ') header_.system = system[0];
}

void HeaderParser::CheckVersion(std::string_view line, double version, long number) {
  if (!(version >= 2 && version < 5)) {
    throw FileError(file_, number, "RINEX version " + Quoted(Text(line, 0, 9)), "version 2, 3 or 4",
                    "Convert the file to RINEX 3.");
  }
  const double last = version < 3   ? kLastKnownVersion2
                      : version < 4 ? kLastKnownVersion3
                                    : kLastKnownVersion4;
  if (version > last + 0.001) {
    Notice(number,
           "version " + Text(line, 0, 9) + " is newer than any supported; read as the latest supported");
  }
}

void HeaderParser::ReadAll(LineReader& lines) {
  ReadVersion(lines);
  std::string_view line;
  while (lines.Next(line)) {
    if (HeaderLabel(line) == "END OF HEADER") return;
    if (lines.Line() > kMaxHeaderLines) break;
    Take(line, lines.Line());
  }
  throw FileError(file_, lines.Line(), "no END OF HEADER", "one before the first epoch",
                  "The file is truncated or damaged; download it again.");
}

void HeaderParser::BeginBlock() {
  types_system_ = 0;
  types2_begun_ = scale_begun_ = false;
}

void HeaderParser::Take(std::string_view line, long number) {
  const std::string_view label = HeaderLabel(line);
  if (label == "SYS / # / OBS TYPES" && header_.version >= 3) {
    TakeTypes(line, number);
  } else if (label == "# / TYPES OF OBSERV" && header_.version < 3) {
    TakeTypes2(line, number);
  } else if (label == "OBS SCALE FACTOR") {
    TakeScaleFactor2(line, number);
  } else if (label == "WAVELENGTH FACT L1/2") {
    TakeWavelengthFactor(line, number);
  } else if (label == "SYS / SCALE FACTOR") {
    TakeScaleFactor(line, number);
  } else if (label == "APPROX POSITION XYZ") {
    TakePosition(line, number);
  } else if (label == "INTERVAL") {
    TakeInterval(line, number);
  } else if (label == "MARKER NAME") {
    header_.marker = Text(line, 0, 60);
  } else if (label == "MARKER NUMBER") {
    header_.marker_number = Text(line, 0, 20);
  } else if (label == "REC # / TYPE / VERS") {
    header_.receiver_number = Text(line, 0, 20);
    header_.receiver = Text(line, 20, 20);
    header_.receiver_firmware = Text(line, 40, 20);
  } else if (label == "ANT # / TYPE") {
    header_.antenna_number = Text(line, 0, 20);
    header_.antenna = Text(line, 20, 20);
  } else if (label == "ANTENNA: DELTA H/E/N") {
    TakeHeight(line);
  } else if (label == "TIME OF FIRST OBS") {
    header_.time_system = Text(line, 48, 3);
    header_.first_epoch = StatedTime(line);
  } else if (label == "TIME OF LAST OBS") {
    header_.last_epoch = StatedTime(line);
  } else if (label == "GLONASS SLOT / FRQ #") {
    TakeChannels(line);
  } else if (label == "LEAP SECONDS") {
    std::int64_t seconds = 0;
    if (ParseInteger(Field(line, 0, 6), seconds) == FieldState::kNumber && std::abs(seconds) < 1000) {
      header_.leap_seconds = static_cast<int>(seconds);
    }
  }
}

void HeaderParser::TakeTypes(std::string_view line, long number) {
  const std::string_view system = Field(line, 0, 1);
  if (!system.empty() && IsLetter(system[0])) {
    types_system_ = system[0];
    header_.types[types_system_ - 'A'].clear();
  } else if (types_system_ == 0) {
    return Notice(number, "observation types without a system ignored");
  }
  std::vector<std::string>& types = header_.types[types_system_ - 'A'];
  for (std::size_t column = 7; column + 3 <= 58 && types.size() < kMaxTypes; column += 4) {
    const std::string_view type = Trimmed(Field(line, column, 3));
    if (!type.empty()) types.emplace_back(type);
  }
}

// RINEX 2 has one list for all systems: a number, then nine types per line in six columns each.
void HeaderParser::TakeTypes2(std::string_view line, long number) {
  std::vector<std::string>& types = header_.types[0];
  std::int64_t count = 0;
  const FieldState counted = ParseInteger(Field(line, 0, 6), count);
  if (counted == FieldState::kNumber) {
    types.clear();
    types2_begun_ = true;
  } else if (!types2_begun_ || counted == FieldState::kBad) {
    return Notice(number, "unreadable observation types ignored");
  }
  for (std::size_t column = 10; column + 2 <= 60 && types.size() < kMaxTypes; column += 6) {
    const std::string_view type = Trimmed(Field(line, column, 2));
    if (!type.empty()) types.emplace_back(type);
  }
  for (std::size_t i = 1; i < header_.types.size(); ++i) header_.types[i] = types;
}

// RINEX 2: a factor, the number of types (0: all) and the types, for all systems.
void HeaderParser::TakeScaleFactor2(std::string_view line, long number) {
  std::int64_t factor = 0;
  if (ParseInteger(Field(line, 0, 6), factor) != FieldState::kNumber || factor < 1) {
    return Notice(number, "unreadable scale factor ignored");
  }
  ScaleFactor scale;
  scale.system = '*';
  scale.factor = static_cast<double>(factor);
  for (std::size_t column = 16; column + 2 <= 60; column += 6) {
    const std::string_view type = Trimmed(Field(line, column, 2));
    if (!type.empty()) scale.types.emplace_back(type);
  }
  if (header_.scale_factors.size() < kMaxTypes) header_.scale_factors.push_back(scale);
}

void HeaderParser::TakeWavelengthFactor(std::string_view line, long number) {
  for (const std::size_t column : {0U, 6U}) {
    std::int64_t factor = 0;
    if (ParseInteger(Field(line, column, 6), factor) == FieldState::kNumber && factor == 2) {
      Notice(number, "half-cycle phases (wavelength factor 2) treated as full-cycle");
    }
  }
}

void HeaderParser::TakeScaleFactor(std::string_view line, long number) {
  ScaleFactor scale;
  const std::string_view system = Field(line, 0, 1);
  std::int64_t factor = 0;
  if (scale_begun_ && system == " " && Trimmed(Field(line, 2, 4)).empty()) {
    return AddScaledTypes(line, header_.scale_factors.back());
  }
  scale_begun_ = false;
  if (system.empty() || !IsLetter(system[0]) ||
      ParseInteger(Field(line, 2, 4), factor) != FieldState::kNumber || factor < 1) {
    return Notice(number, "unreadable scale factor ignored");
  }
  scale.system = system[0];
  scale.factor = static_cast<double>(factor);
  AddScaledTypes(line, scale);
  if (header_.scale_factors.size() == kMaxTypes) return;
  header_.scale_factors.push_back(scale);
  scale_begun_ = true;
}

void HeaderParser::TakePosition(std::string_view line, long number) {
  std::array<double, 3> xyz = {};
  for (std::size_t i = 0; i < 3; ++i) {
    if (ParseDecimal(Field(line, 14 * i, 14), xyz[i]) == FieldState::kBad) {
      return Notice(number, "unreadable approximate position ignored");
    }
  }
  if (xyz[0] != 0 || xyz[1] != 0 || xyz[2] != 0) header_.position = xyz;
}

// Eight satellites per line, "R01  1 " from column 5 on (RINEX 3.05, table A2).
void HeaderParser::TakeChannels(std::string_view line) {
  for (std::size_t column = 4; column + 6 <= 60; column += 7) {
    std::int64_t slot = 0;
    std::int64_t channel = 0;
    const bool known = Field(line, column, 1) == "R" &&
                       ParseInteger(Field(line, column + 1, 2), slot) == FieldState::kNumber && slot > 0 &&
                       ParseInteger(Field(line, column + 4, 2), channel) == FieldState::kNumber;
    if (known && channel >= -7 && channel <= 13) {
      header_.glonass_channels[static_cast<std::size_t>(slot)] = static_cast<int>(channel);
    }
  }
}

void HeaderParser::TakeHeight(std::string_view line) {
  double height = 0;
  if (ParseDecimal(Field(line, 0, 14), height) == FieldState::kNumber) header_.antenna_height_m = height;
}

void HeaderParser::TakeInterval(std::string_view line, long number) {
  double interval = 0;
  if (ParseDecimal(Field(line, 0, 10), interval) == FieldState::kBad || interval < 0) {
    return Notice(number, "unreadable interval ignored");
  }
  if (interval > 0) header_.interval_s = interval;
}

}  // namespace orsolva_host
