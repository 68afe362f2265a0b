// The configuration of a run, with defaults, in the types of C++17.
#ifndef ORSOLVA_INTERFACE_CONFIG_HPP
#define ORSOLVA_INTERFACE_CONFIG_HPP

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

#include "records.h"
#include "signals.h"
#include "status.hpp"

namespace orsolva {

/// A satellite by its system and its number within it, 1 to 64.
struct SatelliteNumber {
  System system = System::kGps;
  int number = 0;
};

/// A band by its system and its slot, 1 to 6 (docs/host/signals.md).
struct Band {
  System system = System::kGps;
  int slot = 0;
};

/// Configuration of a run. The defaults judge everything and compute the station's position.
struct Config {
  std::vector<System> systems{std::begin(kAllSystems), std::end(kAllSystems)};
  /// Systems that enter the combined result. One that is not in `systems` has no effect.
  std::vector<System> combined_systems{std::begin(kAllSystems), std::end(kAllSystems)};
  double elevation_cutoff_deg = 10.0;  ///< [0, 90); 0 counts as 0.0001 rad
  double interval_s = 1.0;             ///< of the epochs, above 0; the library does not estimate it
  std::optional<std::array<double, 3>> position_m;  ///< ECEF; without it the library computes one
  std::vector<SatelliteNumber> excluded_satellites;
  /// Frequencies left out of the figures of all their signals.
  std::vector<Band> excluded_bands;
  /// Whether bands without observed codes are left out; the first batch decides.
  bool detect_bands = true;

  /// Turns the configuration into the record of the library.
  /// @return kBadConfig, with `record` unchanged, for a value out of its range
  Status ToRecord(config_qct& record) const;
};

// What follows is not for hosts to read.

namespace config_internal {

inline bool SetFlags(const std::vector<System>& systems, std::uint8_t (&flags)[ORSOLVA_SYSTEMS]) {
  for (const System system : systems) {
    const int slot = SlotOf(system);
    if (slot < 0) return false;
    flags[slot] = 1;
  }
  return true;
}

template <std::size_t N>
inline void SetAll(std::int32_t (&rows)[ORSOLVA_SYSTEM_SLOTS][N]) {
  for (auto& row : rows) std::fill(std::begin(row), std::end(row), 1);
}

/// Clears one flag of a system's row; false for an unknown system or a place outside 1 to N.
template <std::size_t N>
inline bool Clear(std::int32_t (&rows)[ORSOLVA_SYSTEM_SLOTS][N], System system, int place) {
  const int slot = SlotOf(system);
  if (slot < 0 || place < 1 || place > static_cast<int>(N)) return false;
  rows[slot][place - 1] = 0;
  return true;
}

/// Refuses numbers that no run can have.
inline Status CheckNumbers(const Config& config) {
  if (!(config.elevation_cutoff_deg >= 0.0 && config.elevation_cutoff_deg < 90.0)) {
    return {StatusCode::kBadConfig, "the elevation cut-off is outside 0 to 90 degrees"};
  }
  if (!(config.interval_s > 0.0 && std::isfinite(config.interval_s))) {
    return {StatusCode::kBadConfig, "the interval is not above 0 s"};
  }
  const auto finite = [](double value) { return std::isfinite(value); };
  if (config.position_m && !std::all_of(config.position_m->begin(), config.position_m->end(), finite)) {
    return {StatusCode::kBadConfig, "the position is not finite"};
  }
  return {};
}

/// Everything on but what the configuration leaves out.
inline Status SetSelections(const Config& config, config_qct& record) {
  if (!SetFlags(config.systems, record.enable_system) ||
      !SetFlags(config.combined_systems, record.combination_system)) {
    return {StatusCode::kBadConfig, "a system of the configuration is unknown"};
  }
  SetAll(record.include_satellite);
  SetAll(record.satellite_freq);
  for (const SatelliteNumber& out : config.excluded_satellites) {
    if (Clear(record.include_satellite, out.system, out.number)) continue;
    return {StatusCode::kBadConfig, "an excluded satellite is unknown"};
  }
  for (const Band& out : config.excluded_bands) {
    if (Clear(record.satellite_freq, out.system, out.slot)) continue;
    return {StatusCode::kBadConfig, "an excluded band is unknown"};
  }
  return {};
}

}  // namespace config_internal

inline Status Config::ToRecord(config_qct& record) const {
  const Status numbers = config_internal::CheckNumbers(*this);
  if (!numbers) return numbers;
  config_qct built = {};
  const Status selections = config_internal::SetSelections(*this, built);
  if (!selections) return selections;
  if (position_m) {
    built.enable_position = 1;
    std::copy(position_m->begin(), position_m->end(), built.position);
  }
  built.elevation = elevation_cutoff_deg;
  built.interval = interval_s;
  built.auto_detect_freq = detect_bands ? 1 : 0;
  record = built;
  return {};
}

}  // namespace orsolva

#endif  // ORSOLVA_INTERFACE_CONFIG_HPP
