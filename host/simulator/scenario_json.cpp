#include "host/simulator/scenario_json.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <nlohmann/json.hpp>
#include <set>

#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/text_file.h"
#include "host/simulator/fault_kinds.h"
#include "host/simulator/json_members.h"

namespace orsolva_host {
namespace {

using Json = nlohmann::json;

void ReadPosition(const std::string& key, const Json& value, std::array<double, 3>& position) {
  bool good = value.is_array() && value.size() == 3;
  for (std::size_t i = 0; good && i < 3; ++i) {
    good = value[i].is_number();
    if (good) position[i] = value[i].get<double>();
  }
  if (!good) Wrong(key, value, "three numbers, ECEF in metres");
}

void ReadFlags(const std::string& key, const Json& value, LockFlags& flags) {
  Members()
      .On("at_slip", flags.at_slip)
      .On("at_acquisition", flags.at_acquisition)
      .On("without_slip", flags.without_slip)
      .Read(key, value);
}

void ReadPath(const std::string& key, const Json& value, AntennaPath& path) {
  Members()
      .On("kind",
          [&path](const std::string& k, const Json& v) {
            if (v != "static" && v != "line" && v != "circle") Wrong(k, v, "static, line or circle");
            path.kind = v == "line" ? PathKind::kLine : v == "circle" ? PathKind::kCircle : PathKind::kStatic;
          })
      .On("speed_m_s", path.speed_m_s)
      .On("heading_deg", path.heading_deg)
      .On("radius_m", path.radius_m)
      .On("from_s", path.from_s)
      .On("to_s", path.to_s)
      .Read(key, value);
}

void ReadThermalNoise(const std::string& key, const Json& value, ErrorModel& errors) {
  ThermalNoise& noise = errors.thermal_noise.emplace();
  Members()
      .On("dll_bandwidth_hz", noise.dll_bandwidth_hz)
      .On("pll_bandwidth_hz", noise.pll_bandwidth_hz)
      .On("integration_s", noise.integration_s)
      .On("correlator_spacing_chips", noise.correlator_spacing_chips)
      .Read(key, value);
}

void ReadPoints(const std::string& key, const Json& value, std::vector<ElevationPoint>& points) {
  const char* const expected = "a list of pairs of degrees and metres, such as [[5, 0.6], [90, 0.1]]";
  if (!value.is_array()) Wrong(key, value, expected);
  points.clear();
  for (const Json& pair : value) {
    if (!pair.is_array() || pair.size() != 2 || !pair[0].is_number() || !pair[1].is_number()) {
      Wrong(key, value, expected);
    }
    points.push_back({pair[0].get<double>(), pair[1].get<double>()});
  }
}

void ReadReceiver(const std::string& key, const Json& value, ReceiverModel& r) {
  Members()
      .On("position_m", [&r](const std::string& k, const Json& v) { ReadPosition(k, v, r.position_m); })
      .On("cutoff_deg", r.cutoff_deg)
      .On("clock_bias_s", r.clock_bias_s)
      .On("clock_drift", r.clock_drift)
      .On("millisecond_jumps", r.millisecond_jumps)
      .On("start_up_s", r.start_up_s)
      .On("acquisition_s", r.acquisition_s)
      .On("reacquisition_s", r.reacquisition_s)
      .On("clock_walk", r.clock_walk)
      .On("clock_steering_s", r.clock_steering_s)
      .On("half_cycle_s", r.half_cycle_s)
      .On("lock_flags", [&r](const std::string& k, const Json& v) { ReadFlags(k, v, r.lock_flags); })
      .On("path", [&r](const std::string& k, const Json& v) { ReadPath(k, v, r.path); })
      .On("signal_delay_s",
          [&r](const std::string& k, const Json& v) {
            if (!v.is_object()) Wrong(k, v, "an object such as {\"G5Q\": 60}");
            for (const auto& [signal, delay] : v.items()) {
              if (!delay.is_number()) Wrong(k + "." + signal, delay, "a number of seconds");
              r.signal_delay_s[signal] = delay.get<double>();
            }
          })
      .Read(key, value);
}

void ReadErrors(const std::string& key, const Json& value, ErrorModel& e) {
  Members()
      .On("code_noise_m", e.code_noise_m)
      .On("multipath_m", e.multipath_m)
      .On("multipath_period_s", e.multipath_period_s)
      .On("multipath_by_elevation",
          [&e](const std::string& k, const Json& v) { ReadPoints(k, v, e.multipath_by_elevation); })
      .On("reflector_height_m", e.reflector_height_m)
      .On("thermal_noise", [&e](const std::string& k, const Json& v) { ReadThermalNoise(k, v, e); })
      .On("doppler_noise_hz", e.doppler_noise_hz)
      .On("phase_noise_m", e.phase_noise_m)
      .On("snr_zenith_dbhz", e.snr_zenith_dbhz)
      .On("snr_horizon_dbhz", e.snr_horizon_dbhz)
      .On("snr_noise_db", e.snr_noise_db)
      .On("troposphere", e.troposphere)
      .On("ionosphere", e.ionosphere)
      .On("vertical_tec_night", e.vertical_tec_night)
      .On("vertical_tec_day", e.vertical_tec_day)
      .Read(key, value);
}

void ReadCadence(const std::string& key, const Json& value, Cadence& c) {
  Members()
      .On("gps_s", c.gps_s)
      .On("glonass_s", c.glonass_s)
      .On("bds_s", c.bds_s)
      .On("galileo_s", c.galileo_s)
      .On("qzss_s", c.qzss_s)
      .Read(key, value);
}

void ReadSignals(const std::string& key, const Json& value, Scenario& scenario) {
  if (!value.is_object()) Wrong(key, value, "an object such as {\"G\": [\"1C\", \"2W\"]}");
  for (const auto& [group, names] : value.items()) {
    bool good = names.is_array();
    std::vector<std::string> list;
    for (const Json& name : names) {
      good = good && name.is_string();
      if (good) list.push_back(name.get<std::string>());
    }
    if (!good) Wrong(key + "." + group, names, "a list such as [\"1C\", \"2W\"]");
    scenario.signals[group] = list;
  }
}

FaultKind KindOf(const std::string& key, const Json& value) {
  const FaultRow* row = value.is_string() ? FindFault(value.get<std::string>()) : nullptr;
  if (row == nullptr) Wrong(key, value, fmt::format("one of {}", fmt::join(FaultNames(), ", ")));
  return row->kind;
}

int ReadCount(const std::string& key, const Json& value) {
  constexpr std::uint64_t kMost = 10000;
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() > kMost) {
    Wrong(key, value, "an integer from 0 to 10000");
  }
  return value.get<int>();
}

Fault ReadFault(const std::string& key, const Json& value) {
  Fault fault;
  std::string signal;
  bool has_kind = false;
  bool has_size = false;
  Members()
      .On("kind",
          [&](const std::string& k, const Json& v) {
            fault.kind = KindOf(k, v);
            has_kind = true;
          })
      .On("satellite",
          [&](const std::string& k, const Json& v) {
            const std::string wrong =
                v.is_string() ? ParseTarget(v.get<std::string>(), fault.target) : "no text";
            if (!wrong.empty()) Wrong(k, v, "a satellite such as \"G04\" or a system such as \"G\"");
          })
      .On("signal", signal)
      .On("at_s", fault.at_s)
      .On("duration_s", fault.duration_s)
      .On("size",
          [&](const std::string& k, const Json& v) {
            if (!v.is_number()) Wrong(k, v, "a number");
            fault.size = v.get<double>();
            has_size = true;
          })
      .On("period_s", fault.period_s)
      .On("random", [&](const std::string& k, const Json& v) { fault.random = ReadCount(k, v); })
      .On("random_above_deg", fault.random_above_deg)
      .Read(key, value);
  if (!has_kind) {
    throw ScenarioError(
        fmt::format("{}.kind: found none, expected one of {}", key, fmt::join(FaultNames(), ", ")));
  }
  if (!has_size && RowOf(fault.kind).unit != nullptr) {
    throw ScenarioError(
        fmt::format("{}.size: found none, expected a number of {}", key, RowOf(fault.kind).unit));
  }
  fault.target.signal = signal;
  return fault;
}

void ReadFaults(const std::string& key, const Json& value, Scenario& scenario) {
  if (!value.is_array()) Wrong(key, value, "a list of objects");
  for (std::size_t i = 0; i < value.size(); ++i) {
    scenario.faults.push_back(ReadFault(fmt::format("{}[{}]", key, i), value[i]));
  }
}

/// Comments are accepted; duplicate keys in an object are not, nor is deep nesting, which error messages
/// about a value would follow down the stack.
Json ParseOnceEach(const std::string& text) {
  constexpr int kDeepest = 16;
  std::vector<std::set<std::string>> keys;
  const auto look = [&keys](int depth, Json::parse_event_t event, const Json& value) {
    if (depth > kDeepest) throw ScenarioError("scenario: found more than 16 levels, expected at most 4");
    if (event == Json::parse_event_t::object_start) keys.emplace_back();
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key && !keys.back().insert(value.get<std::string>()).second) {
      throw ScenarioError(value.get<std::string>() + ": found a duplicate key, expected it once per object");
    }
    return true;
  };
  try {
    return Json::parse(text, look, true, true);
  } catch (const Json::exception& error) {  // also a number beyond the range of a double
    const std::string what = error.what();
    throw ScenarioError("found invalid JSON: " + what.substr(what.find("] ") + 2));
  }
}

}  // namespace

std::string ParseTarget(const std::string& text, FaultTarget& target) {
  target = {};
  if (text.size() == 1 && SystemSlot(text[0]) >= 0) {
    target.system = text[0];
    return {};
  }
  if (text.size() <= 3 && ParseSatellite(text, target.system, target.satellite) &&
      SystemSlot(target.system) >= 0) {
    return {};
  }
  return "'" + text + "' is neither a satellite such as G04 nor a system such as G";
}

std::string ParseStart(const std::string& text, Time_gbt& start) {
  CivilTime civil;
  const std::string full = text.size() == 10 ? text + " 00:00:00" : text;
  const std::string_view v = full;
  const bool shaped = full.size() == 19 && full[4] == '-' && full[7] == '-' &&
                      (full[10] == ' ' || full[10] == 'T') && full[13] == ':' && full[16] == ':';
  if (!shaped || !ParseCivil(v.substr(0, 4), v.substr(5, 2), v.substr(8, 2), v.substr(11, 2), v.substr(14, 2),
                             v.substr(17, 2), civil)) {
    return "'" + text + "' is not a time: give YYYY-MM-DD or \"YYYY-MM-DD HH:MM:SS\", GPS time";
  }
  start = ToTime(civil);
  return {};
}

void ReadScenario(const std::string& text, Scenario& s) {
  const Json json = ParseOnceEach(text);
  Members()
      .On("name", s.name)
      .On("station", s.station)
      .On("seed",
          [&s](const std::string& k, const Json& v) {
            if (!v.is_number_unsigned()) Wrong(k, v, "a non-negative integer");
            s.seed = v.get<std::uint64_t>();
          })
      .On("systems", s.systems)
      .On("start",
          [&s](const std::string& k, const Json& v) {
            const std::string wrong = v.is_string() ? ParseStart(v.get<std::string>(), s.start) : "no text";
            if (!wrong.empty()) Wrong(k, v, "YYYY-MM-DD or YYYY-MM-DD HH:MM:SS, GPS time");
          })
      .On("hours", s.hours)
      .On("interval_s", s.interval_s)
      .On("receiver", [&s](const std::string& k, const Json& v) { ReadReceiver(k, v, s.receiver); })
      .On("errors", [&s](const std::string& k, const Json& v) { ReadErrors(k, v, s.errors); })
      .On("observables",
          [&s](const std::string& k, const Json& v) {
            Members().On("doppler", s.observables.doppler).On("strength", s.observables.strength).Read(k, v);
          })
      .On("cadence", [&s](const std::string& k, const Json& v) { ReadCadence(k, v, s.cadence); })
      .On("signals", [&s](const std::string& k, const Json& v) { ReadSignals(k, v, s); })
      .On("faults", [&s](const std::string& k, const Json& v) { ReadFaults(k, v, s); })
      .On("truth_cutoff_deg", s.truth_cutoff_deg)
      .Read("", json);
}

void ReadScenarioFile(const std::string& path, Scenario& scenario) {
  try {
    ReadScenario(TextOfFile(path, kLargestSettings_bytes), scenario);
    CheckScenario(scenario);
  } catch (const FileError& error) {
    throw ScenarioError(error.what());
  } catch (const ScenarioError& error) {
    throw ScenarioError(path + ": " + error.what());
  }
}

}  // namespace orsolva_host
