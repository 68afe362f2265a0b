#include "host/rinex/file_names.h"

#include <algorithm>

#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return upper;
}

bool ParseDigits(std::string_view text, int& number) {
  number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
    number = number * 10 + (c - '0');
  }
  return !text.empty();
}

bool DayOf(int year, int day_of_year, std::int64_t& day) {
  if (day_of_year < 1 || day_of_year > 366) return false;
  day = DaysFromCivil(year, 1, 1) + day_of_year - 1;
  return true;
}

FileKind KindOfLetter(char type) {
  if (type == 'O' || type == 'D') return FileKind::kObservation;
  const bool navigation = std::string_view("NGPLFCQJ").find(type) != std::string_view::npos;
  return navigation ? FileKind::kNavigation : FileKind::kOther;
}

/// "SSSSDDDF.YYT", or with the minutes of a file of less than an hour "SSSSDDDFMM.YYT".
std::optional<RinexName> ParseShortName(std::string_view name) {
  const std::size_t point = name.find('.');
  if ((point != 8 && point != 10) || name.size() != point + 4) return std::nullopt;
  int day_of_year = 0;
  int year = 0;
  if (!ParseDigits(name.substr(4, 3), day_of_year) || !ParseDigits(name.substr(point + 1, 2), year)) {
    return std::nullopt;
  }
  RinexName parsed;
  parsed.station = name.substr(0, 4);
  parsed.kind = KindOfLetter(name[point + 3]);
  if (!DayOf(year + (year >= 80 ? 1900 : 2000), day_of_year, parsed.day)) return std::nullopt;
  return parsed;
}

FileKind KindOfTypeCode(std::string_view code) {
  if (code.size() != 2) return FileKind::kOther;
  if (code[1] == 'O') return FileKind::kObservation;
  const bool judged = std::string_view("MGRECJ").find(code[0]) != std::string_view::npos;
  return code[1] == 'N' && judged ? FileKind::kNavigation : FileKind::kOther;
}

std::optional<RinexName> ParseLongName(std::string_view name) {
  const std::size_t point = name.rfind('.');
  if (point == std::string_view::npos || point < 30) return std::nullopt;
  const std::string_view ending = name.substr(point);
  if ((ending != ".RNX" && ending != ".CRX") || name[9] != '_' || name[11] != '_' || name[23] != '_') {
    return std::nullopt;
  }
  int year = 0;
  int day_of_year = 0;
  if (!ParseDigits(name.substr(12, 4), year) || !ParseDigits(name.substr(16, 3), day_of_year)) {
    return std::nullopt;
  }
  RinexName parsed;
  parsed.station = name.substr(0, 9);
  const std::string_view stem = name.substr(0, point);
  parsed.kind = KindOfTypeCode(stem.substr(stem.rfind('_') + 1));
  if (!DayOf(year, day_of_year, parsed.day)) return std::nullopt;
  return parsed;
}

}  // namespace

std::string_view WithoutCompressionSuffix(std::string_view name) {
  for (const std::string_view ending : {".GZ", ".Z", ".BZ2", ".XZ", ".ZIP", ".ZST"}) {
    if (name.size() > ending.size() && UpperCase(name.substr(name.size() - ending.size())) == ending) {
      return name.substr(0, name.size() - ending.size());
    }
  }
  return name;
}

std::optional<RinexName> ParseRinexName(std::string_view name) {
  const std::string upper = UpperCase(name);
  const std::string_view plain = WithoutCompressionSuffix(upper);
  std::optional<RinexName> parsed = ParseLongName(plain);
  if (!parsed) parsed = ParseShortName(plain);
  if (parsed) parsed->whole = plain;
  return parsed;
}

}  // namespace orsolva_host
