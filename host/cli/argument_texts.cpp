#include "host/cli/argument_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

#include "host/rinex/decimal.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, ',');) parts.emplace_back(Trimmed(part));
  return parts;
}

}  // namespace

std::string ParseSwitch(const std::string& text, bool& on) {
  for (const char* word : {"true", "on", "yes", "enable", "1"}) {
    if (text == word) return on = true, std::string();
  }
  for (const char* word : {"false", "off", "no", "disable", "0"}) {
    if (text == word) return on = false, std::string();
  }
  return "'" + text + "' is neither true nor false";
}

std::string ParseNumber(const std::string& text, double& number) {
  const bool good = ParseDecimal(text, number) == FieldState::kNumber && std::isfinite(number);
  return good ? std::string() : "'" + text + "' is not a number";
}

std::string ParseNumber(const std::string& text, double low, double high, double& number) {
  double read = 0;
  const bool good = ParseDecimal(text, read) == FieldState::kNumber && read >= low && read <= high;
  if (!good) return fmt::format("'{}' is not a number from {:g} to {:g}", text, low, high);
  number = read;
  return {};
}

std::string ParseWholeNumber(const std::string& text, unsigned high, unsigned& number) {
  std::int64_t read = 0;
  const bool good = ParseInteger(text, read) == FieldState::kNumber && read >= 0 && read <= high;
  if (!good) return fmt::format("'{}' is not a whole number from 0 to {}", text, high);
  number = static_cast<unsigned>(read);
  return {};
}

std::string ParseInterval(const std::string& text, std::optional<double>& interval_s) {
  interval_s.reset();
  if (text == "auto") return {};
  constexpr double kShortest_s = 1e-3;
  constexpr double kLongest_s = 86400;
  double number = 0;
  const std::string wrong = ParseNumber(text, kShortest_s, kLongest_s, number);
  if (wrong.empty()) interval_s = number;
  return wrong;
}

std::string ParseFormats(const std::string& text, std::vector<Format>& formats) {
  formats.clear();
  for (const std::string& name : SplitAtCommas(text)) {
    const OutputFormat* row = FindFormat(name);
    if (row == nullptr) return "'" + name + "' is not a format; choose from " + FormatNames();
    formats.push_back(row->format);
  }
  return formats.empty() ? "no format given; choose from " + FormatNames() : std::string();
}

std::string ParseFigureChoice(const std::string& text, FigureChoice& choice) {
  constexpr std::pair<std::string_view, FigureChoice> kChoices[] = {{"both", FigureChoice::kBoth},
                                                                    {"analysis", FigureChoice::kAnalysis},
                                                                    {"library", FigureChoice::kLibrary}};
  for (const auto& [word, meant] : kChoices) {
    if (text != word) continue;
    choice = meant;
    return {};
  }
  return "'" + text + "' is not a choice of figures: give analysis, library or both";
}

bool IsNearSurface(const std::array<double, 3>& xyz_m) {
  constexpr double kLowest_m = 6e6;
  constexpr double kHighest_m = 1e7;
  const double radius_m = std::hypot(xyz_m[0], xyz_m[1], xyz_m[2]);
  return radius_m > kLowest_m && radius_m < kHighest_m;
}

std::string ParsePosition(const std::string& text, PositionChoice& position) {
  if (text == "spp" || text == "header") {
    position.source = text == "spp" ? PositionSource::kComputed : PositionSource::kHeader;
    return {};
  }
  const std::string wanted = "'" + text + "' is not a position: give X,Y,Z in metres, header or spp";
  const std::vector<std::string> parts = SplitAtCommas(text);
  if (parts.size() != 3) return wanted;
  for (std::size_t i = 0; i < 3; ++i) {
    if (ParseDecimal(parts[i], position.xyz_m[i]) != FieldState::kNumber) return wanted;
  }
  if (!IsNearSurface(position.xyz_m)) {
    return "'" + text + "' is nowhere near the Earth's surface: give Earth-centred X,Y,Z in metres";
  }
  position.source = PositionSource::kOption;
  return {};
}

std::string ParseSystems(const std::string& text, std::string& systems) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (kAllSystems.find(text[i]) == std::string_view::npos || text.find(text[i]) != i) {
      return "'" + text + "' is not a list of systems: give letters from " + std::string(kAllSystems) +
             ", each once";
    }
  }
  if (text.empty()) return "no system given: give letters from " + std::string(kAllSystems);
  systems = text;
  return {};
}

std::string ParseSize(const std::string& text, InputLimits& limits) {
  constexpr std::string_view kUnits = "KMGT";
  const std::size_t unit = text.empty() ? std::string_view::npos : kUnits.find(text.back());
  const bool has_unit = unit != std::string_view::npos;
  const std::size_t shift = has_unit ? 10 * (unit + 1) : 0;
  std::int64_t number = 0;
  const std::string_view digits = std::string_view(text).substr(0, text.size() - (has_unit ? 1 : 0));
  const bool good = ParseInteger(digits, number) == FieldState::kNumber && number > 0 &&
                    number <= std::numeric_limits<std::int64_t>::max() >> shift;
  if (!good) return "'" + text + "' is not a size: give a number of bytes such as 500M or 20G";
  limits.max_decompressed_bytes = static_cast<std::uint64_t>(number) << shift;
  // The other limit grows along: 8 GiB are worth a million records.
  limits.max_records = std::max<std::size_t>(InputLimits().max_records, limits.max_decompressed_bytes >> 13);
  return {};
}

std::string ParseExcluded(const std::string& text, std::vector<ExcludedSatellite>& excluded) {
  excluded.clear();
  for (const std::string& name : SplitAtCommas(text)) {
    char letter = 0;
    int number = 0;
    const bool named = name.size() <= 3 && ParseSatellite(name, letter, number);
    const int slot = named ? SystemSlot(letter) : -1;
    if (slot < 0 || number > kSystemTable[slot].satellites) {
      return "'" + name + "' is not a satellite: give names like G04,R12";
    }
    excluded.push_back({slot, number});
  }
  return excluded.empty() ? "no satellite given: give names like G04,R12" : std::string();
}

std::string ParseNames(const std::string& text, std::vector<std::string>& names) {
  for (std::string& name : SplitAtCommas(text)) names.push_back(std::move(name));
  return {};
}

}  // namespace orsolva_host
