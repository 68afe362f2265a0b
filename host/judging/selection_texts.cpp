#include "host/judging/selection_texts.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string_view>

#include "host/judging/settings.h"
#include "host/observation/observation_epoch.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kDay_s = 86400;

bool IsLeapYear(int year) { return DaysFromCivil(year + 1, 1, 1) - DaysFromCivil(year, 1, 1) == 366; }

/// A whole number of so many digits, from low to high; nothing else.
std::optional<int> Digits(std::string_view text, std::size_t count, int low, int high) {
  std::int64_t value = 0;
  const bool digits = text.size() == count && text.find_first_not_of("0123456789") == std::string_view::npos;
  if (!digits || ParseInteger(text, value) != FieldState::kNumber) return std::nullopt;
  if (value < low || value > high) return std::nullopt;
  return static_cast<int>(value);
}

/// Days since 1970-01-01 of "2026-01-31" or "2026-031".
std::optional<std::int64_t> DayOf(std::string_view text) {
  const auto year = Digits(Field(text, 0, 4), 4, 1980, 2199);
  if (!year || Field(text, 4, 1) != "-") return std::nullopt;
  if (text.size() == 8) {
    const auto of_year = Digits(text.substr(5), 3, 1, IsLeapYear(*year) ? 366 : 365);
    if (!of_year) return std::nullopt;
    return DaysFromCivil(*year, 1, 1) + *of_year - 1;
  }
  if (text.size() != 10) return std::nullopt;
  CivilTime civil;
  const bool good = text[7] == '-' && Digits(text.substr(5, 2), 2, 1, 12) &&
                    Digits(text.substr(8, 2), 2, 1, 31) &&
                    ParseCivil(text.substr(0, 4), text.substr(5, 2), text.substr(8, 2), "0", "0", "0", civil);
  const std::int64_t day = good ? DaysFromCivil(civil.year, civil.month, civil.day) : 0;
  // The 31st of a shorter month is no day.
  if (!good || ToCivil({day * kDay_s, 0}).day != civil.day) return std::nullopt;
  return day;
}

/// Nanoseconds of "06:00", "06:00:30" or "06:00:30.5"; 24:00 is the end of the day.
std::optional<std::int64_t> TimeOfDay(std::string_view text) {
  const auto hour = Digits(Field(text, 0, 2), 2, 0, 24);
  const auto minute = Digits(Field(text, 3, 2), 2, 0, 59);
  if (!hour || !minute || text[2] != ':') return std::nullopt;
  double second = 0;
  if (text.size() > 5) {
    const std::string_view rest = text.substr(6);
    const bool good = text[5] == ':' && Digits(rest.substr(0, 2), 2, 0, 59) &&
                      (rest.size() == 2 || (rest[2] == '.' && rest.size() > 3)) &&
                      ParseDecimal(rest, second) == FieldState::kNumber;
    if (!good) return std::nullopt;
  }
  const std::int64_t whole_s = *hour * 3600 + *minute * 60;
  const std::int64_t time_ns = whole_s * kNanosecondsPerSecond + std::llround(second * 1e9);
  if (time_ns > kDay_s * kNanosecondsPerSecond) return std::nullopt;
  return time_ns;
}

/// "1C", or "1" for a band. @return absent when it is neither
std::optional<SignalCode> CodeOf(char system, std::string_view text) {
  if (text.empty() || text.size() > 2 || std::isdigit(static_cast<unsigned char>(text[0])) == 0)
    return std::nullopt;
  SignalCode code{text[0], ' '};
  if (text.size() == 1) return code;
  if (std::isupper(static_cast<unsigned char>(text[1])) == 0) return std::nullopt;
  code.attribute = text[1];
  const bool b1i = system == 'C' && code.band == '1' && (code.attribute == 'I' || code.attribute == 'Q');
  if (b1i) code.band = '2';
  return code;
}

}  // namespace

std::string ParseTimeLimit(const std::string& text, std::optional<TimeLimit>& limit) {
  limit.reset();
  if (text.empty()) return {};
  const std::string wanted = "'" + text +
                             "' is not a time: give GPS time such as 2026-01-31T06:00, 2026-031T06:00, or "
                             "06:00 on the day of the first epoch";
  const std::size_t between = text.find_first_of("T ");
  const bool has_day = text.find('-') != std::string::npos;
  const std::string_view whole = text;
  const auto day = DayOf(whole.substr(0, between));
  std::optional<std::int64_t> time_ns = 0;
  if (!has_day) {
    time_ns = TimeOfDay(whole);
  } else if (between != std::string::npos) {
    time_ns = TimeOfDay(whole.substr(between + 1));
  }
  if ((has_day && !day) || !time_ns) return wanted;
  limit = TimeLimit{day.value_or(0) * kDay_s * kNanosecondsPerSecond + *time_ns, !has_day};
  return {};
}

std::string ParseSampling(const std::string& text, std::optional<double>& sampling_s) {
  sampling_s.reset();
  if (text.empty()) return {};
  constexpr double kShortest_s = 0.01;
  constexpr double kLongest_s = 86400;
  double number = 0;
  const bool good =
      ParseDecimal(text, number) == FieldState::kNumber && number >= kShortest_s && number <= kLongest_s;
  if (!good) return "'" + text + "' is not a number of seconds from 0.01 to 86400";
  sampling_s = number;
  return {};
}

std::string ParseSatellites(const std::string& text, std::vector<ChosenSatellite>& satellites) {
  satellites.clear();
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t comma = std::min(text.find(',', begin), text.size());
    const std::string_view part = Trimmed(std::string_view(text).substr(begin, comma - begin));
    begin = comma + 1;
    ChosenSatellite chosen;
    const bool system = part.size() == 1;
    if (system) chosen.system = part[0];
    const bool named = system || (part.size() <= 3 && ParseSatellite(part, chosen.system, chosen.number));
    if (!named || kAllSystems.find(chosen.system) == std::string_view::npos)
      return "'" + text + "' is not a list of satellites: give names such as G05,R12, or letters of systems";
    satellites.push_back(chosen);
  }
  return {};
}

std::string ParseWindow(const std::string& text, double& window_s) {
  window_s = 0;
  if (text.empty()) return {};
  constexpr double kShortest_s = 60, kLongest_s = 366 * 86400.0;
  double unit_s = 1;
  if (text.back() == 'm') unit_s = 60;
  if (text.back() == 'h') unit_s = 3600;
  if (text.back() == 'd') unit_s = 86400;
  const bool has_unit = text.back() == 's' || unit_s > 1;
  double number = 0;
  const std::string_view digits = std::string_view(text).substr(0, text.size() - (has_unit ? 1 : 0));
  const bool good = ParseDecimal(digits, number) == FieldState::kNumber && number * unit_s >= kShortest_s &&
                    number * unit_s <= kLongest_s && std::floor(number * unit_s) == number * unit_s;
  if (!good) return "'" + text + "' is not a length of time such as 15m, 1h or 1d, of a minute or longer";
  window_s = number * unit_s;
  return {};
}

std::string ParseSignals(const std::string& text, ChosenSignals& signals) {
  signals.clear();
  char system = ' ';
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t comma = std::min(text.find(',', begin), text.size());
    std::string_view part = Trimmed(std::string_view(text).substr(begin, comma - begin));
    begin = comma + 1;
    if (part.size() > 1 && part[1] == ':') {
      system = part[0];
      part = Trimmed(part.substr(2));
    }
    const auto code = CodeOf(system, part);
    const bool known = system == ' ' || kAllSystems.find(system) != std::string_view::npos;
    if (!code || !known) {
      return "'" + text +
             "' is not a list of signals: give codes such as G:1C,2W,E:1C,5Q, or bands such as 1,5";
    }
    signals.push_back({system, *code});
  }
  return {};
}

std::string TextOf(const ChosenSignals& signals) {
  std::string text;
  char system = ' ';
  for (const ChosenSignal& choice : signals) {
    if (!text.empty()) text += ',';
    if (choice.system != system) text += std::string(1, choice.system) + ':';
    system = choice.system;
    text += choice.code.band;
    if (choice.code.attribute != ' ') text += choice.code.attribute;
  }
  return text;
}

std::string Contradiction(const EpochSelection& selection) {
  const auto& [start, end, sampling_s, signals] = selection;
  // Of two times of day the later one may lie on the next day.
  if (start && end && !start->of_first_day && !end->of_first_day && end->time_ns <= start->time_ns)
    return "the end of the selection does not lie after its start";
  return {};
}

}  // namespace orsolva_host
