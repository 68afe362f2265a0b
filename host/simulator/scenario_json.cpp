#include "host/simulator/scenario_json.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/text_file.h"
#include "host/simulator/active_faults.h"

namespace orsolva_host {
namespace {

using Json = nlohmann::json;

constexpr FaultKind kFaultKinds[] = {
    FaultKind::kSlip,         FaultKind::kCodeJump,  FaultKind::kOutage,    FaultKind::kSnrDrop,
    FaultKind::kMissingEpoch, FaultKind::kDuplicate, FaultKind::kLateTag,   FaultKind::kLateDelivery,
    FaultKind::kIonoStorm,    FaultKind::kUnhealthy, FaultKind::kClockJump, FaultKind::kHeaderOffset,
};

[[noreturn]] void Wrong(const std::string& key, const Json& value, const std::string& expected) {
  throw ScenarioError(fmt::format("{}: found {}, expected {}", key, value.dump(), expected));
}

/// The members of an object, each with the handler of its value. A key without a handler is an error.
class Members {
 public:
  using Taker = std::function<void(const std::string& key, const Json& value)>;

  Members& On(const std::string& key, Taker take) {
    takers_.emplace_back(key, std::move(take));
    return *this;
  }
  Members& On(const std::string& key, double& target) {
    return On(key, [&target](const std::string& name, const Json& value) {
      if (!value.is_number()) Wrong(name, value, "a number");
      target = value.get<double>();
    });
  }
  Members& On(const std::string& key, bool& target) {
    return On(key, [&target](const std::string& name, const Json& value) {
      if (!value.is_boolean()) Wrong(name, value, "true or false");
      target = value.get<bool>();
    });
  }
  Members& On(const std::string& key, std::string& target) {
    return On(key, [&target](const std::string& name, const Json& value) {
      if (!value.is_string()) Wrong(name, value, "a text");
      target = value.get<std::string>();
    });
  }
  Members& On(const std::string& key, ByElevation& target) {
    return On(key, [&target](const std::string& name, const Json& value) {
      Members().On("zenith", target.zenith).On("horizon", target.horizon).Read(name, value);
    });
  }

  void Read(const std::string& where, const Json& object) const {
    if (!object.is_object()) Wrong(where.empty() ? "scenario" : where, object, "an object {...}");
    for (const auto& [key, value] : object.items()) {
      const std::string full = where.empty() ? key : where + "." + key;
      Find(full, key)(full, value);
    }
  }

 private:
  const Taker& Find(const std::string& full, const std::string& key) const {
    std::vector<std::string> known;
    for (const auto& [name, take] : takers_) {
      if (name == key) return take;
      known.push_back(name);
    }
    throw ScenarioError(
        fmt::format("{}: found an unknown key, expected one of {}", full, fmt::join(known, ", ")));
  }

  std::vector<std::pair<std::string, Taker>> takers_;
};

void ReadPosition(const std::string& key, const Json& value, std::array<double, 3>& position) {
  bool good = value.is_array() && value.size() == 3;
  for (std::size_t i = 0; good && i < 3; ++i) {
    good = value[i].is_number();
    if (good) position[i] = value[i].get<double>();
  }
  if (!good) Wrong(key, value, "three numbers, ECEF in metres");
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
  for (const FaultKind kind : kFaultKinds) {
    if (value == FaultName(kind)) return kind;
  }
  Wrong(key, value, fmt::format("one of {}", fmt::join(FaultNames(), ", ")));
}

int ReadCount(const std::string& key, const Json& value) {
  constexpr std::uint64_t kMost = 10000;
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() > kMost) {
    Wrong(key, value, "an integer from 0 to 10000");
  }
  return value.get<int>();
}

/// Unit of the size of a fault; nullptr when the fault needs none.
const char* SizeUnit(FaultKind kind) {
  switch (kind) {
    case FaultKind::kSlip:
      return "cycles";
    case FaultKind::kCodeJump:
    case FaultKind::kHeaderOffset:
      return "metres";
    case FaultKind::kSnrDrop:
      return "dB";
    case FaultKind::kLateTag:
      return "seconds";
    case FaultKind::kIonoStorm:
      return "TECU";
    case FaultKind::kClockJump:
      return "milliseconds";
    default:
      return nullptr;
  }
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
  if (!has_size && SizeUnit(fault.kind) != nullptr) {
    throw ScenarioError(
        fmt::format("{}.size: found none, expected a number of {}", key, SizeUnit(fault.kind)));
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

std::vector<std::string> FaultNames() {
  std::vector<std::string> names;
  for (const FaultKind kind : kFaultKinds) names.emplace_back(FaultName(kind));
  return names;
}

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
