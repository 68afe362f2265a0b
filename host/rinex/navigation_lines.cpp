// RINEX 2.11, tables A4 and A11; RINEX 3.05, tables A6 to A14.
#include "host/rinex/navigation_lines.h"

#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kLabelColumn = 60;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return c >= 'A' && c <= 'Z'; }

/// The date and time that begin at a column, the year in two digits.
bool ParseShortTime(std::string_view line, std::size_t column, Time_gbt& time) {
  std::int64_t year = 0;
  CivilTime civil;
  if (ParseInteger(Field(line, column, 2), year) != FieldState::kNumber || year < 0 ||
      !ParseCivil("2000", Field(line, column + 3, 2), Field(line, column + 6, 2), Field(line, column + 9, 2),
                  Field(line, column + 12, 2), Field(line, column + 14, 5), civil)) {
    return false;
  }
  civil.year = static_cast<int>(year) + (year >= 80 ? 1900 : 2000);
  time = ToTime(civil);
  return true;
}

bool HasLongYear(std::string_view line) {
  const std::string_view year = Field(line, 4, 4);
  return year.size() == 4 && IsDigit(year[0]) && IsDigit(year[1]) && IsDigit(year[2]) && IsDigit(year[3]);
}

}  // namespace

bool BeginsRecord(std::string_view line) {
  return !line.empty() && (line[0] != ' ' || (line.size() > 1 && line[1] != ' '));
}

bool HasHeaderLabel(std::string_view line) {
  return line.size() > kLabelColumn + 4 && (IsLetter(line[kLabelColumn]) || line[kLabelColumn] == '#') &&
         !IsDigit(line[kLabelColumn + 1]) && line[kLabelColumn + 1] != '+' && line[kLabelColumn + 1] != '-';
}

bool ParseRecordLine(std::string_view line, NavigationRecord& record, NavigationColumns& columns) {
  CivilTime civil;
  columns = {};
  if (!ParseSatellite(Field(line, 0, 3), record.letter, record.number) ||
      !ParseCivil(Field(line, 4, 4), Field(line, 9, 2), Field(line, 12, 2), Field(line, 15, 2),
                  Field(line, 18, 2), Field(line, 21, 2), civil)) {
    return false;
  }
  record.time = ToTime(civil);
  return true;
}

bool ParseRecordLine2(std::string_view line, char letter, NavigationRecord& record,
                      NavigationColumns& columns) {
  if (!line.empty() && IsLetter(line[0])) {
    if (HasLongYear(line)) return ParseRecordLine(line, record, columns);
    columns = {23, 4};
    return ParseSatellite(Field(line, 0, 3), record.letter, record.number) &&
           ParseShortTime(line, 4, record.time);
  }
  columns = {22, 3};
  std::int64_t number = 0;
  if (ParseInteger(Field(line, 0, 2), number) != FieldState::kNumber || number < 1) return false;
  record.letter = letter;
  record.number = static_cast<int>(number);
  return ParseShortTime(line, 3, record.time);
}

}  // namespace orsolva_host
