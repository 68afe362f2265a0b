#include "python/src/settings.h"

#include <fmt/format.h>
#include <nanobind/stl/array.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/judging/selection_texts.h"
#include "host/rinex/satellite_names.h"
#include "python/src/errors.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

double InRange(const char* name, double value, double low, double high) {
  if (value >= low && value <= high) return value;
  throw ArgumentError(fmt::format("{}: found {:g}, expected {:g} to {:g}", name, value, low, high));
}

std::string Systems(const std::string& letters) {
  for (std::size_t i = 0; i < letters.size(); ++i) {
    const bool known = kAllSystems.find(letters[i]) != std::string_view::npos;
    if (known && letters.find(letters[i]) == i) continue;
    throw ArgumentError(
        fmt::format("systems: found '{}', expected letters of {}, each once", letters, kAllSystems));
  }
  if (letters.empty()) throw ArgumentError("systems: found none, expected at least one letter");
  return letters;
}

ExcludedSatellite Excluded(const std::string& name) {
  char letter = 0;
  int number = 0;
  const int slot = name.size() <= 3 && ParseSatellite(name, letter, number) ? SystemSlot(letter) : -1;
  if (slot >= 0 && number >= 1 && number <= kSystemTable[slot].satellites) return {slot, number};
  throw ArgumentError(fmt::format("exclude: found '{}', expected a satellite such as 'G04'", name));
}

PositionChoice Position(const nb::handle& value) {
  PositionChoice choice;
  if (nb::isinstance<nb::str>(value)) {
    const auto text = nb::cast<std::string>(value);
    if (text != "spp" && text != "header") {
      throw ArgumentError(
          fmt::format("position: found '{}', expected 'spp', 'header' or (x, y, z) in metres", text));
    }
    choice.source = text == "spp" ? PositionSource::kComputed : PositionSource::kHeader;
    return choice;
  }
  choice.source = PositionSource::kOption;
  choice.xyz_m = nb::cast<std::array<double, 3>>(value);
  const auto& [x, y, z] = choice.xyz_m;
  constexpr double kLowest_m = 6e6;
  constexpr double kHighest_m = 1e7;
  const double radius_m = std::sqrt(x * x + y * y + z * z);
  if (radius_m > kLowest_m && radius_m < kHighest_m) return choice;
  throw ArgumentError(
      fmt::format("position: found {:g} m from the centre of the Earth, expected Earth-centred x, y, z in "
                  "metres near its surface",
                  radius_m));
}

InputLimits Limits(std::int64_t bytes) {
  if (bytes < 1) throw ArgumentError(fmt::format("max_size: found {}, expected a number of bytes", bytes));
  InputLimits limits;
  limits.max_decompressed_bytes = static_cast<std::uint64_t>(bytes);
  // The other limit grows along: 8 GiB are worth a million records.
  limits.max_records = std::max<std::size_t>(limits.max_records, limits.max_decompressed_bytes >> 13);
  return limits;
}

/// @param wrong  what a parser says of a text; empty when it takes it
void Require(const char* name, const std::string& wrong) {
  if (!wrong.empty()) throw ArgumentError(fmt::format("{}: {}", name, wrong));
}

std::optional<TimeLimit> Time(const char* name, const nb::handle& value) {
  if (nb::isinstance<nb::int_>(value)) return TimeLimit{nb::cast<std::int64_t>(value), false};
  std::optional<TimeLimit> limit;
  Require(name, ParseTimeLimit(nb::cast<std::string>(value), limit));
  if (!limit) throw ArgumentError(fmt::format("{}: found no time", name));
  return limit;
}

ChosenSignals Signals(const std::string& text) {
  ChosenSignals signals;
  if (text.empty()) throw ArgumentError("signals: found none, expected names such as '1C' or 'G1C'");
  Require("signals", ParseSignals(text, signals));
  return signals;
}

double Window(const std::string& text) {
  double window_s = 0;
  Require("window", ParseWindow(text, window_s));
  return window_s;
}

FigureChoice Choice(const std::string& word) {
  constexpr std::pair<const char*, FigureChoice> kWords[] = {{"both", FigureChoice::kBoth},
                                                             {"analysis", FigureChoice::kAnalysis},
                                                             {"library", FigureChoice::kLibrary}};
  for (const auto& [name, choice] : kWords) {
    if (word == name) return choice;
  }
  throw ArgumentError(fmt::format("figures: found '{}', expected 'both', 'analysis' or 'library'", word));
}

/// Limits by name or file, or from a folder of earlier reports.
void SetProfile(JudgingSettings& settings, const std::string& name) {
  constexpr std::string_view kHistory = "history:";
  if (name.compare(0, kHistory.size(), kHistory) == 0) {
    settings.history = ReadHistory(name.substr(kHistory.size()));
  } else {
    settings.profile = LoadProfile(name);
  }
}

/// @param value  a file, or the text of a report and what to call it
std::vector<EarlierReport> Earlier(const nb::handle& value) {
  if (nb::isinstance<nb::str>(value)) return ReadReports(nb::cast<std::string>(value));
  const auto [text, name] = nb::cast<std::pair<std::string, std::string>>(value);
  return ParseReports(text, name);
}

bool SetSelection(JudgingSettings& settings, std::string_view name, const nb::handle& value) {
  EpochSelection& selection = settings.selection;
  if (name == "start") {
    selection.start = Time("start", value);
  } else if (name == "end") {
    selection.end = Time("end", value);
  } else if (name == "sampling_s") {
    selection.sampling_s = InRange("sampling_s", nb::cast<double>(value), 0.01, 86400);
  } else if (name == "signals") {
    selection.signals = Signals(nb::cast<std::string>(value));
  } else {
    return false;
  }
  return true;
}

void Set(JudgingSettings& settings, std::string_view name, const nb::handle& value) {
  if (name == "elevation_deg") {
    settings.elevation_cutoff_deg = InRange("elevation_deg", nb::cast<double>(value), 0, 90);
  } else if (name == "interval_s") {
    settings.interval_s = InRange("interval_s", nb::cast<double>(value), 1e-3, 86400);
  } else if (name == "position") {
    settings.position = Position(value);
  } else if (name == "systems") {
    settings.systems = Systems(nb::cast<std::string>(value));
  } else if (name == "exclude") {
    for (const auto& satellite : nb::cast<std::vector<std::string>>(value))
      settings.excluded.push_back(Excluded(satellite));
  } else if (name == "profile") {
    SetProfile(settings, nb::cast<std::string>(value));
  } else if (name == "compare") {
    settings.compare_with = Earlier(value);
  } else if (name == "window") {
    settings.window_s = Window(nb::cast<std::string>(value));
  } else if (name == "figures") {
    settings.figures = Choice(nb::cast<std::string>(value));
  } else if (name == "snr_from_strength") {
    settings.snr_from_strength = nb::cast<bool>(value);
  } else if (name == "strict") {
    settings.strict = nb::cast<bool>(value);
  } else if (name == "max_size") {
    settings.limits = Limits(nb::cast<std::int64_t>(value));
  } else if (!SetSelection(settings, name, value)) {
    throw ArgumentError(fmt::format("there is no argument {}", name));
  }
}

void CheckSelection(const JudgingSettings& settings) {
  Require("start and end", Contradiction(settings.selection));
  const std::optional<double>& sampling_s = settings.selection.sampling_s;
  if (!sampling_s || !settings.interval_s || *settings.interval_s >= *sampling_s) return;
  throw ArgumentError(
      "interval_s is shorter than sampling_s: the interval meant is that of the epochs taken; leave it out");
}

}  // namespace

JudgingSettings SettingsFrom(const nb::dict& arguments) {
  JudgingSettings settings;
  for (const auto& [name, value] : arguments) {
    if (!value.is_none()) Set(settings, nb::cast<std::string>(name), value);
  }
  CheckSelection(settings);
  return settings;
}

}  // namespace orsolva_python
