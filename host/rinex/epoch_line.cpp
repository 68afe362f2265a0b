#include "host/rinex/epoch_line.h"

#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"

namespace orsolva_host {
namespace {

bool IsBlank(std::string_view text) { return Trimmed(text).empty(); }

/// Blanks where the format has them, and a point in the seconds. Lines of values fail here at once.
bool HasFormOfVersion2(std::string_view line) {
  if (line.size() < 29) return false;
  for (const std::size_t column : {0U, 3U, 6U, 9U, 12U, 26U, 27U}) {
    if (line[column] != ' ') return false;
  }
  return line[18] == '.' || IsBlank(line.substr(0, 26));
}

}  // namespace

double ParseClockOffset(std::string_view field) {
  double offset_s = 0;
  if (field.empty() || ParseDecimal(field, offset_s) != FieldState::kNumber)
    return EpochLine().clock_offset_s;
  return offset_s;
}

bool ParseEpochLine(std::string_view line, EpochLine& epoch) {
  if (line.empty() || line[0] != '>') return false;
  std::int64_t flag = 0;
  std::int64_t count = 0;
  if (ParseInteger(Field(line, 31, 1), flag) == FieldState::kBad || flag < 0 || flag > 6) return false;
  if (ParseInteger(Field(line, 32, 3), count) == FieldState::kBad || count < 0) return false;
  epoch.flag = static_cast<int>(flag);
  epoch.count = static_cast<int>(count);
  CivilTime civil;
  epoch.time_given = ParseCivil(Field(line, 2, 4), Field(line, 7, 2), Field(line, 10, 2), Field(line, 13, 2),
                                Field(line, 16, 2), Field(line, 18, 11), civil);
  if (epoch.time_given) epoch.time = ToTime(civil);
  return epoch.time_given || epoch.flag > 1;
}

bool ParseEpochLine2(std::string_view line, EpochLine& epoch) {
  if (!HasFormOfVersion2(line)) return false;
  std::int64_t flag = 0;
  std::int64_t count = 0;
  const bool flagged = ParseInteger(Field(line, 28, 1), flag) != FieldState::kBad && flag >= 0 && flag <= 6;
  const bool counted = ParseInteger(Field(line, 29, 3), count) != FieldState::kBad && count >= 0;
  if (!flagged || !counted) return false;
  epoch.flag = static_cast<int>(flag);
  epoch.count = static_cast<int>(count);
  std::int64_t year = 0;
  CivilTime civil;
  epoch.time_given = ParseInteger(Field(line, 1, 2), year) == FieldState::kNumber && year >= 0 &&
                     ParseCivil("2000", Field(line, 4, 2), Field(line, 7, 2), Field(line, 10, 2),
                                Field(line, 13, 2), Field(line, 15, 11), civil);
  civil.year = static_cast<int>(year) + (year >= 80 ? 1900 : 2000);
  if (epoch.time_given) epoch.time = ToTime(civil);
  return epoch.time_given || (epoch.flag > 1 && IsBlank(line.substr(0, 26)));
}

}  // namespace orsolva_host
