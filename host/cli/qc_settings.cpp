#include "host/cli/qc_settings.h"

#include <fmt/format.h>

#include <cmath>
#include <sstream>

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

std::string ParseNumber(const std::string& text, double low, double high, double& number) {
  const bool good = ParseDecimal(text, number) == FieldState::kNumber && number >= low && number <= high;
  return good ? std::string() : fmt::format("'{}' is no number from {:g} to {:g}", text, low, high);
}

std::string ParsePosition(const std::string& text, PositionChoice& position) {
  if (text == "spp" || text == "header") {
    position.source = text == "spp" ? PositionSource::kComputed : PositionSource::kHeader;
    return {};
  }
  const std::string wanted = "'" + text + "' is no position: give X,Y,Z in metres, header or spp";
  const std::vector<std::string> parts = SplitAtCommas(text);
  if (parts.size() != 3) return wanted;
  double sum = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    if (ParseDecimal(parts[i], position.xyz_m[i]) != FieldState::kNumber) return wanted;
    sum += position.xyz_m[i] * position.xyz_m[i];
  }
  constexpr double kLowest_m = 6e6;
  constexpr double kHighest_m = 1e7;
  const double radius_m = std::sqrt(sum);
  if (!(radius_m > kLowest_m && radius_m < kHighest_m)) {
    return "'" + text + "' lies nowhere near the Earth's surface: give Earth-centred X,Y,Z in metres";
  }
  position.source = PositionSource::kOption;
  return {};
}

std::string ParseSystems(const std::string& text, std::string& systems) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (SystemSlot(text[i]) < 0 || text.find(text[i]) != i) {
      return "'" + text + "' is no list of systems: give letters out of GREJC, each once";
    }
  }
  if (text.empty()) return "no system given: give letters out of GREJC";
  systems = text;
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
      return "'" + name + "' is no satellite: give names like G04,R12";
    }
    excluded.push_back({slot, number});
  }
  return excluded.empty() ? "no satellite given: give names like G04,R12" : std::string();
}

}  // namespace orsolva_host
