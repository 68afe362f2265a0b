#include "host/rinex/station_statements.h"

#include <cmath>
#include <filesystem>

#include "host/observation/observation_epoch.h"
#include "host/rinex/decimal.h"
#include "host/rinex/file_names.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kMinute_s = 60, kHour_s = 3600, kDay_s = 86400;
constexpr double kQuarterHour_s = 900;

/// Seconds of "01D", "15M", "30S"; absent for "00U" and what is no such text. @param units  those allowed
std::optional<double> Duration(std::string_view text, std::string_view units) {
  std::int64_t count = 0;
  if (text.size() != 3 || ParseInteger(text.substr(0, 2), count) != FieldState::kNumber || count < 1)
    return std::nullopt;
  if (units.find(text[2]) == std::string_view::npos) return std::nullopt;
  const auto number = static_cast<double>(count);
  switch (text[2]) {
    case 'C':
      return 1 / (100 * number);
    case 'Z':
      return 1 / number;
    case 'S':
      return number;
    case 'M':
      return number * kMinute_s;
    case 'H':
      return number * kHour_s;
    case 'D':
      return number * kDay_s;
    default:
      return std::nullopt;
  }
}

/// Of two digits; -1 for anything else.
std::int64_t TwoDigits(std::string_view text) {
  std::int64_t value = 0;
  return ParseInteger(text, value) == FieldState::kNumber && value >= 0 ? value : -1;
}

/// "XXXXMRCCC_S_YYYYDDDHHMM_PER_FRQ_MO.RNX"
void TakeLongName(std::string_view name, std::int64_t day, FileNameStatement& statement) {
  const std::int64_t hour = TwoDigits(name.substr(19, 2)), minute = TwoDigits(name.substr(21, 2));
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59) return;
  statement.begin_ns = (day * kDay_s + hour * kHour_s + minute * kMinute_s) * kNanosecondsPerSecond;
  statement.period_s = Duration(Field(name, 24, 3), "MHD");
  statement.interval_s = Duration(Field(name, 28, 3), "CZSMHD");
}

/// "SSSSDDDF.YYO" or "SSSSDDDFMM.YYO"
void TakeShortName(std::string_view name, std::int64_t day, FileNameStatement& statement) {
  const char session = name[7];
  std::int64_t begin_s = day * kDay_s;
  if (session == '0') statement.period_s = kDay_s;
  if (session >= 'A' && session <= 'X') {
    begin_s += (session - 'A') * kHour_s;
    statement.period_s = kHour_s;
    if (name[8] != '.') {
      const std::int64_t minute = TwoDigits(name.substr(8, 2));
      if (minute < 0 || minute > 59) return;
      begin_s += minute * kMinute_s;
      statement.period_s = kQuarterHour_s;
    }
  }
  statement.begin_ns = begin_s * kNanosecondsPerSecond;
}

/// @param time  in the calendar of the file
std::optional<std::int64_t> GpsTime(const std::optional<Time_gbt>& time, std::int64_t shift_s) {
  if (!time) return std::nullopt;
  return (time->time + shift_s) * kNanosecondsPerSecond + std::llround(time->sec * 1e9);
}

}  // namespace

FileNameStatement StatementOfName(std::string_view name) {
  FileNameStatement statement;
  const std::optional<RinexName> parsed = ParseRinexName(name);
  if (!parsed || parsed->kind != FileKind::kObservation) return statement;
  statement.station = parsed->station;
  if (parsed->station.size() > 4) {
    TakeLongName(parsed->whole, parsed->day, statement);
  } else {
    TakeShortName(parsed->whole, parsed->day, statement);
  }
  return statement;
}

StationDescription DescriptionOf(const ObservationHeader& header, const std::string& path) {
  StationDescription description;
  const std::int64_t shift_s = SecondsToGpsTime(header);
  description.marker = header.marker;
  description.interval_s = header.interval_s;
  description.first_ns = GpsTime(header.first_epoch, shift_s);
  description.last_ns = GpsTime(header.last_epoch, shift_s);
  description.position_m = header.position;
  description.glonass_channels = header.glonass_channels;
  description.name = StatementOfName(std::filesystem::path(path).filename().string());
  return description;
}

}  // namespace orsolva_host
