#include "host/simulate/scenario.h"

#include <fmt/format.h>

#include <cmath>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/simulate/carriers.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kMostSignals = 8;
constexpr int kFirstNewBds = 18;
constexpr int kFirstNewBdsGeostationary = 59;
constexpr std::int64_t kEarliest = 1136246400;  // 2006-01-03
constexpr std::int64_t kLatest = 4070908800;    // 2099-01-01

// The library keeps no completeness and SNR for Galileo bands 7 and 8, so the default leaves them out.
const std::map<std::string, std::vector<std::string>> kDefaultSignals = {
    {"G", {"1C", "2W", "2L", "5Q"}}, {"R", {"1C", "2C"}},        {"E", {"1C", "5Q", "6C"}},
    {"J", {"1C", "2L", "5Q"}},       {"C2", {"2I", "7I", "6I"}}, {"C3", {"2I", "6I", "1P", "5P", "7D"}},
    {"C3G", {"2I", "6I"}},
};

std::string GroupOf(char system, int satellite) {
  if (system != 'C') return std::string(1, system);
  if (satellite < kFirstNewBds) return "C2";
  return satellite < kFirstNewBdsGeostationary ? "C3" : "C3G";
}

void InRange(const char* key, double value, double low, double high) {
  if (!(value >= low && value <= high)) {
    throw ScenarioError(
        fmt::format("{}: {:g} is out of range; allowed are {:g} to {:g}", key, value, low, high));
  }
}

void CheckSignals(const Scenario& scenario) {
  for (const auto& [group, names] : scenario.signals) {
    if (kDefaultSignals.count(group) == 0) {
      throw ScenarioError(
          fmt::format("signals: '{}' is no group; allowed are G, R, E, J, C2, C3, C3G", group));
    }
    if (names.size() > kMostSignals) {
      throw ScenarioError(fmt::format("signals.{}: {} signals; allowed are at most 8", group, names.size()));
    }
    const int code = kSystemTable[SystemSlot(group[0])].code;
    for (const std::string& name : names) {
      const bool known = SignalNumber(code, name, 3.05) != 0 && CarrierFrequency(group[0], name[0], 0) > 0;
      if (!known) {
        throw ScenarioError(fmt::format(
            "signals.{}: '{}' is no signal of the system; allowed are RINEX 3.05 observation codes "
            "without the first letter, such as '{}'",
            group, name, kDefaultSignals.at(group).front()));
      }
    }
  }
}

void CheckSystems(const std::string& systems) {
  bool good = !systems.empty();
  for (std::size_t i = 0; i < systems.size(); ++i) {
    good = good && SystemSlot(systems[i]) >= 0 && systems.find(systems[i]) == i;
  }
  if (!good) {
    throw ScenarioError(fmt::format(
        "systems: '{}' is no list of systems; allowed are letters out of GREJC, each once", systems));
  }
}

void CheckCadence(const Cadence& cadence) {
  InRange("cadence.gps_s", cadence.gps_s, 3600, 7200);
  InRange("cadence.bds_s", cadence.bds_s, 3600, 7200);
  InRange("cadence.qzss_s", cadence.qzss_s, 3600, 7200);
  InRange("cadence.galileo_s", cadence.galileo_s, 600, 3600);
  InRange("cadence.glonass_s", cadence.glonass_s, 1800, 1800);
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
}

void CheckErrors(const ErrorModel& errors) {
  InRange("errors.multipath_period_s", errors.multipath_period_s, 1, 1e6);
  InRange("errors.snr_zenith_dbhz", errors.snr_zenith_dbhz, 1, 99);
  InRange("errors.snr_horizon_dbhz", errors.snr_horizon_dbhz, 1, 99);
  InRange("errors.vertical_tec_night", errors.vertical_tec_night, 0, 1000);
  InRange("errors.vertical_tec_day", errors.vertical_tec_day, 0, 1000);
}

void CheckFault(const Fault& fault) {
  InRange("faults.at_s", fault.at_s, 0, 1e8);
  InRange("faults.duration_s", fault.duration_s, 0, 1e8);
  InRange("faults.period_s", fault.period_s, 1, 1e6);
  InRange("faults.random", fault.random, 0, 1e6);
  InRange("faults.size", fault.size, -1e9, 1e9);
  if (fault.kind == FaultKind::kUnhealthy && fault.target.system == 0) {
    throw ScenarioError("faults.satellite: an unhealthy satellite must be named, such as \"G04\"");
  }
}

}  // namespace

void CheckScenario(const Scenario& scenario) {
  CheckSystems(scenario.systems);
  InRange("interval_s", scenario.interval_s, 0.1, 60);
  InRange("hours", scenario.hours, 1.0 / 3600, 24 * 31);
  InRange("start (seconds since 1970)", static_cast<double>(scenario.start.time), kEarliest, kLatest);
  if (scenario.start.sec != 0) throw ScenarioError("start: allowed are whole seconds");
  if (std::fabs(std::round(scenario.interval_s * 1e7) - scenario.interval_s * 1e7) > 1e-3) {
    throw ScenarioError("interval_s: allowed are whole multiples of 0.0000001 s");
  }
  InRange("truth_cutoff_deg", scenario.truth_cutoff_deg, 0, 90);
  CheckReceiver(scenario.receiver);
  CheckErrors(scenario.errors);
  CheckCadence(scenario.cadence);
  CheckSignals(scenario);
  for (const Fault& fault : scenario.faults) CheckFault(fault);
}

const std::vector<std::string>& SignalsOf(const Scenario& scenario, char system, int satellite) {
  const std::string group = GroupOf(system, satellite);
  const auto chosen = scenario.signals.find(group);
  return chosen == scenario.signals.end() ? kDefaultSignals.at(group) : chosen->second;
}

}  // namespace orsolva_host
