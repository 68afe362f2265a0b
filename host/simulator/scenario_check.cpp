// Limits of a scenario. Every error names the key as in a scenario file, what was found and what is expected.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "host/observation/carriers.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/simulator/constellation.h"
#include "host/simulator/scenario.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

constexpr double kRinexVersion = 3.05;
constexpr std::int64_t kEarliest = 1136246400;  // 2006-01-03, in the first week of BDS time
constexpr std::int64_t kLatest = 4070908800;    // 2099-01-01

void InRange(const std::string& key, double value, double low, double high) {
  if (!(value >= low && value <= high)) {
    throw ScenarioError(fmt::format("{}: found {:g}, expected {:g} to {:g}", key, value, low, high));
  }
}

void WholeMultiple(const std::string& key, double value, double step) {
  const double count = value / step;
  if (std::fabs(count - std::round(count)) > 1e-9 * std::fabs(count)) {
    throw ScenarioError(
        fmt::format("{}: found {:g}, expected an integer multiple of {:g}", key, value, step));
  }
}

void CheckName(const std::string& station) {
  const auto good = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); };
  if (station.size() != 9 || !std::all_of(station.begin(), station.end(), good)) {
    throw ScenarioError(
        fmt::format("station: found \"{}\", expected nine capital letters and digits", station));
  }
}

void CheckSystems(const std::string& systems) {
  bool good = !systems.empty();
  for (std::size_t i = 0; i < systems.size(); ++i) {
    good = good && SystemSlot(systems[i]) >= 0 && systems.find(systems[i]) == i;
  }
  if (!good) {
    throw ScenarioError(
        fmt::format("systems: found \"{}\", expected letters from GREJC, each once", systems));
  }
}

void CheckSpan(const Scenario& scenario) {
  InRange("interval_s", scenario.interval_s, 0.1, 60);
  WholeMultiple("interval_s", scenario.interval_s, 0.001);
  InRange("hours", scenario.hours, 1.0 / 3600, 24 * 31);
  const bool in_time = scenario.start.time >= kEarliest && scenario.start.time <= kLatest;
  if (!in_time || scenario.start.sec != 0) {
    throw ScenarioError(
        fmt::format("start: found {} s since 1970, expected whole seconds from 2006-01-03 to 2099-01-01",
                    static_cast<double>(scenario.start.time) + scenario.start.sec));
  }
}

void CheckReceiver(const ReceiverModel& receiver) {
  const std::array<double, 3>& p = receiver.position_m;
  InRange("receiver.position_m (distance from the Earth's centre)",
          std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]), 6.3e6, 6.5e6);
  InRange("receiver.cutoff_deg", receiver.cutoff_deg, 0, 90);
  InRange("receiver.clock_bias_s", receiver.clock_bias_s, -0.1, 0.1);
  InRange("receiver.clock_drift", receiver.clock_drift, -1e-4, 1e-4);
  InRange("receiver.start_up_s", receiver.start_up_s, 0, 86400);
  InRange("receiver.acquisition_s", receiver.acquisition_s, 0, 86400);
  InRange("receiver.reacquisition_s", receiver.reacquisition_s, 0, 86400);
  InRange("receiver.clock_walk", receiver.clock_walk, 0, 1e-3);
  InRange("receiver.clock_steering_s", receiver.clock_steering_s, 0, 1e6);
  InRange("receiver.half_cycle_s", receiver.half_cycle_s, 0, 86400);
  InRange("receiver.lock_flags.at_slip", receiver.lock_flags.at_slip, 0, 1);
  InRange("receiver.lock_flags.at_acquisition", receiver.lock_flags.at_acquisition, 0, 1);
  InRange("receiver.lock_flags.without_slip", receiver.lock_flags.without_slip, 0, 1);
  for (const auto& [signal, delay] : receiver.signal_delay_s) {
    const std::string key = "receiver.signal_delay_s." + signal;
    InRange(key, delay, 0, 86400);
    const int slot = signal.size() == 3 ? SystemSlot(signal[0]) : -1;
    if (slot < 0 || SignalNumber(kSystemTable[slot].code, signal.substr(1), kRinexVersion) == 0) {
      throw ScenarioError(key +
                          ": found an unknown signal, expected a system letter and a signal such as G5Q");
    }
  }
}

/// A line is straight in the horizontal plane of its beginning, so it must not be long.
void CheckPath(const Scenario& scenario) {
  const AntennaPath& path = scenario.receiver.path;
  InRange("receiver.path.speed_m_s", path.speed_m_s, 0, 1000);
  InRange("receiver.path.heading_deg", path.heading_deg, -360, 360);
  InRange("receiver.path.radius_m", path.radius_m, 1, 1e5);
  InRange("receiver.path.from_s", path.from_s, 0, 1e9);
  InRange("receiver.path.to_s", path.to_s, path.from_s, 1e9);
  if (path.kind != PathKind::kLine) return;
  const double until_s = std::min(path.to_s, scenario.hours * 3600);
  InRange("receiver.path (length of the line, m)", path.speed_m_s * std::max(0.0, until_s - path.from_s), 0,
          1e5);
}

void CheckByElevation(const std::string& key, const ByElevation& figure, double high) {
  InRange(key + ".zenith", figure.zenith, 0, high);
  InRange(key + ".horizon", figure.horizon, 0, high);
}

void CheckThermalNoise(const ThermalNoise& noise) {
  InRange("errors.thermal_noise.dll_bandwidth_hz", noise.dll_bandwidth_hz, 1e-4, 100);
  InRange("errors.thermal_noise.pll_bandwidth_hz", noise.pll_bandwidth_hz, 1e-2, 1000);
  InRange("errors.thermal_noise.integration_s", noise.integration_s, 1e-4, 10);
  InRange("errors.thermal_noise.correlator_spacing_chips", noise.correlator_spacing_chips, 1e-3, 1);
}

void CheckErrors(const ErrorModel& errors) {
  CheckByElevation("errors.code_noise_m", errors.code_noise_m, 1000);
  CheckByElevation("errors.multipath_m", errors.multipath_m, 1000);
  CheckByElevation("errors.phase_noise_m", errors.phase_noise_m, 1);
  for (std::size_t i = 0; i < errors.multipath_by_elevation.size(); ++i) {
    const ElevationPoint& point = errors.multipath_by_elevation[i];
    const double least = i == 0 ? 0 : errors.multipath_by_elevation[i - 1].elevation_deg + 0.01;
    InRange("errors.multipath_by_elevation (degrees, ascending)", point.elevation_deg, least, 90);
    InRange("errors.multipath_by_elevation (metres)", point.value, 0, 1000);
  }
  InRange("errors.reflector_height_m", errors.reflector_height_m, 0, 1000);
  InRange("errors.doppler_noise_hz", errors.doppler_noise_hz, 0, 1000);
  if (errors.thermal_noise) CheckThermalNoise(*errors.thermal_noise);
  InRange("errors.multipath_period_s", errors.multipath_period_s, 1, 1e6);
  InRange("errors.snr_zenith_dbhz", errors.snr_zenith_dbhz, 1, 99);
  InRange("errors.snr_horizon_dbhz", errors.snr_horizon_dbhz, 1, 99);
  InRange("errors.snr_noise_db", errors.snr_noise_db, 0, 20);
  InRange("errors.vertical_tec_night", errors.vertical_tec_night, 0, 1000);
  InRange("errors.vertical_tec_day", errors.vertical_tec_day, 0, 1000);
}

void CheckCadence(const Cadence& cadence) {
  InRange("cadence.gps_s", cadence.gps_s, 3600, 7200);
  InRange("cadence.bds_s", cadence.bds_s, 3600, 7200);
  InRange("cadence.qzss_s", cadence.qzss_s, 3600, 7200);
  for (const double hours : {cadence.gps_s, cadence.bds_s, cadence.qzss_s}) {
    WholeMultiple("cadence (GPS, BDS, QZSS)", hours, 3600);
  }
  InRange("cadence.galileo_s", cadence.galileo_s, 600, 3600);
  WholeMultiple("cadence.galileo_s", cadence.galileo_s, 600);
  InRange("cadence.glonass_s", cadence.glonass_s, 1800, 1800);
}

void CheckGroup(const std::string& group, const std::vector<std::string>& names) {
  const std::vector<std::string> groups = SignalGroups();
  const std::string key = "signals." + group;
  if (std::find(groups.begin(), groups.end(), group) == groups.end()) {
    throw ScenarioError(
        fmt::format("{}: found an unknown group, expected one of {}", key, fmt::join(groups, ", ")));
  }
  if (names.size() > ORSOLVA_MAX_SIGNALS) {
    throw ScenarioError(fmt::format("{}: found {} signals, expected at most 8", key, names.size()));
  }
  for (auto name = names.begin(); name != names.end(); ++name) {
    const int code = kSystemTable[SystemSlot(group[0])].code;
    const bool known =
        SignalNumber(code, *name, kRinexVersion) != 0 && CarrierFrequency(group[0], (*name)[0], 0) > 0;
    if (!known || std::find(names.begin(), name, *name) != name) {
      throw ScenarioError(
          fmt::format("{}: found \"{}\", expected RINEX 3.05 observation codes of the system without their "
                      "first letter, each once",
                      key, *name));
    }
  }
}

/// Whether a fault's target exists when every system is enabled.
bool Flies(const Scenario& scenario, const FaultTarget& target) {
  for (const NominalOrbit& orbit : NominalConstellation("GREJC")) {
    if (target.system != 0 && target.system != orbit.system) continue;
    if (target.satellite != 0 && target.satellite != orbit.number) continue;
    if (target.signal.empty()) return true;
    const std::vector<std::string>& signals = SignalsOf(scenario, orbit.system, orbit.number);
    if (std::find(signals.begin(), signals.end(), target.signal) != signals.end()) return true;
  }
  return false;
}

void CheckTarget(const Scenario& scenario, const std::string& key, const Fault& fault) {
  if (fault.kind == FaultKind::kUnhealthy && fault.target.system == 0) {
    throw ScenarioError(key + "satellite: found none, expected the unhealthy satellite, such as \"G04\"");
  }
  FaultTarget satellite = fault.target;
  satellite.signal.clear();
  if (!Flies(scenario, satellite)) {
    throw ScenarioError(fmt::format("{}satellite: found {}, expected a satellite of the constellation", key,
                                    SatelliteName(satellite.system, satellite.satellite)));
  }
  if (!Flies(scenario, fault.target)) {
    throw ScenarioError(fmt::format("{}signal: found \"{}\", expected a signal that the satellites have", key,
                                    fault.target.signal));
  }
}

void CheckFault(const Scenario& scenario, std::size_t place) {
  const Fault& fault = scenario.faults[place];
  const std::string key = fmt::format("faults[{}].", place);
  InRange(key + "at_s", fault.at_s, 0, 1e8);
  InRange(key + "duration_s", fault.duration_s, 0, 1e8);
  InRange(key + "period_s", fault.period_s, 1, 1e6);
  InRange(key + "random", fault.random, 0, 10000);
  InRange(key + "random_above_deg", fault.random_above_deg, 0, 90);
  if (fault.kind == FaultKind::kLateTag) {
    InRange(key + "size", fault.size, 0, 60);
  } else if (fault.kind == FaultKind::kUnhealthy) {
    InRange(key + "size", fault.size, 0, 511);
  } else if (fault.kind == FaultKind::kScintillation) {
    InRange(key + "size", fault.size, 0, 10);
  } else if (fault.kind == FaultKind::kTecRate) {
    InRange(key + "size", fault.size, 0, 1000);
  } else {
    InRange(key + "size", fault.size, -1e6, 1e6);
  }
  CheckTarget(scenario, key, fault);
}

}  // namespace

void CheckScenario(const Scenario& scenario) {
  CheckName(scenario.station);
  CheckSystems(scenario.systems);
  CheckSpan(scenario);
  InRange("truth_cutoff_deg", scenario.truth_cutoff_deg, 0, 90);
  CheckReceiver(scenario.receiver);
  CheckPath(scenario);
  CheckErrors(scenario.errors);
  CheckCadence(scenario.cadence);
  for (const auto& [group, names] : scenario.signals) CheckGroup(group, names);
  for (std::size_t i = 0; i < scenario.faults.size(); ++i) CheckFault(scenario, i);
}

}  // namespace orsolva_host
