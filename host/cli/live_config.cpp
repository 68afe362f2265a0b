#include "host/cli/live_config.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "host/cli/argument_texts.h"
#include "host/cli/config_file.h"
#include "host/judging/run_error.h"
#include "host/live/alarms/message_watch.h"
#include "host/live/sources/source_spec.h"
#include "host/live/station_name.h"
#include "host/report/toml_keys.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/text_file.h"

namespace orsolva_host::live {
namespace {

/// Takes the value of a key. @return what is wrong with it, or an empty text
using TakeValue = std::function<std::string(const toml::node&)>;
using Keys = std::map<std::string, TakeValue>;

/// As it is shown in a message.
std::string Shown(const toml::node& node) {
  if (const auto text = node.value_exact<std::string>()) return "\"" + *text + "\"";
  if (const auto whole = node.value_exact<std::int64_t>()) return fmt::format("{}", *whole);
  if (const auto number = node.value_exact<double>()) return fmt::format("{}", *number);
  if (const auto truth = node.value_exact<bool>()) return *truth ? "true" : "false";
  return node.is_array() ? "a list" : node.is_table() ? "a table" : "a date or time";
}

std::string FoundInsteadOf(const toml::node& node, const std::string& expected) {
  return fmt::format("found {}, expected {}", Shown(node), expected);
}

TakeValue Text(std::string& target) {
  return [&target](const toml::node& node) -> std::string {
    const auto text = node.value_exact<std::string>();
    if (!text) return FoundInsteadOf(node, "a text in quotation marks");
    target = *text;
    return {};
  };
}

/// What is no source is not shown: it may hold a password.
TakeValue Source(std::string& target) {
  return [&target](const toml::node& node) -> std::string {
    const std::string wrong = Text(target)(node);
    SourceSpec unused;
    return wrong.empty() ? ParseSource(target, unused) : wrong;
  };
}

TakeValue Name(std::string& target) {
  return [&target](const toml::node& node) -> std::string {
    const std::string wrong = Text(target)(node);
    return wrong.empty() ? WrongWithName(target) : wrong;
  };
}

/// A number from least to most, ends included.
TakeValue InRange(double& target, double least, double most, const std::string& unit) {
  return [&target, least, most, unit](const toml::node& node) -> std::string {
    const auto number = node.is_number() ? node.value<double>() : std::nullopt;
    if (!number || !(*number >= least && *number <= most))
      return FoundInsteadOf(node, fmt::format("a number from {:.10g} to {:.10g}{}", least, most,
                                              unit.empty() ? "" : " " + unit));
    target = *number;
    return {};
  };
}

TakeValue Messages(std::vector<std::string>& target) {
  return [&target](const toml::node& node) -> std::string {
    const std::string expected = "a list of message types from 1 to 4095, such as \"1074|1077\"";
    const toml::array* const list = node.as_array();
    if (list == nullptr) return FoundInsteadOf(node, expected);
    target.clear();
    for (const toml::node& item : *list) {
      const auto entry = item.value_exact<std::string>();
      if (!entry || TypesOf(*entry).empty()) return FoundInsteadOf(item, expected);
      target.push_back(*entry);
    }
    return {};
  };
}

TakeValue Place(std::optional<std::array<double, 3>>& target) {
  return [&target](const toml::node& node) -> std::string {
    const toml::array* const list = node.as_array();
    if (list == nullptr || list->size() != 3) return FoundInsteadOf(node, "[x, y, z] in metres");
    std::array<double, 3> xyz_m = {};
    for (std::size_t i = 0; i < 3; ++i) {
      const toml::node& item = *list->get(i);
      if (!item.is_number()) return FoundInsteadOf(item, "a number of metres");
      xyz_m[i] = item.value<double>().value_or(NAN);
    }
    if (!IsNearSurface(xyz_m))
      return fmt::format(
          "found [{}, {}, {}], expected Earth-centred x, y, z in metres near the Earth's surface", xyz_m[0],
          xyz_m[1], xyz_m[2]);
    target = xyz_m;
    return {};
  };
}

[[noreturn]] void Refuse(const std::string& path, const toml::node& node, const std::string& what) {
  throw ConfigError(fmt::format("{}:{}: {}", path, node.source().begin.line, what));
}

void TakeTable(const std::string& path, const toml::table& table, const Keys& keys) {
  for (const auto& [key, node] : table) {
    const auto place = keys.find(std::string(key.str()));
    if (place == keys.end()) Refuse(path, node, fmt::format("'{}' is not a key here", key.str()));
    const std::string wrong = place->second(node);
    if (!wrong.empty()) Refuse(path, node, fmt::format("{}: {}", key.str(), wrong));
  }
}

Keys KeysOf(Limits& limits) {
  Keys keys = {{"required_messages", Messages(limits.required_messages)}};
  for (const LimitField& field : LimitFields())
    keys[field.key] = InRange(limits.*field.value, field.least, field.most, field.unit);
  return keys;
}

/// The profile comes before the limits, whatever their order in the file.
StationSettings StationOf(const std::string& path, const toml::table& table, StationSettings station) {
  std::string profile, password_file, password_env;
  const toml::table* limits = nullptr;
  const Keys keys = {
      {"name", Name(station.name)},
      {"source", Source(station.source)},
      {"nav", Source(station.navigation)},
      {"user", Text(station.user)},
      {"password_file", Text(password_file)},
      {"password_env", Text(password_env)},
      {"certificates", Text(station.certificates)},
      {"position", Place(station.position_m)},
      {"elevation", InRange(station.elevation_cutoff_deg, 0, StationSettings::kHighestCutoff_deg, "degrees")},
      {"speed", InRange(station.speed, 0, StationSettings::kFastest, "")},
      {"profile", Text(profile)},
      {"limits", [&limits](const toml::node& node) -> std::string {
         limits = node.as_table();
         return limits == nullptr ? FoundInsteadOf(node, "a table") : "";
       }}};
  TakeTable(path, table, keys);
  if (!profile.empty()) {
    const LimitsProfile* const found = FindLimits(profile);
    if (found == nullptr) Refuse(path, *table.get("profile"), "there is no profile '" + profile + "'");
    station.limits = found->limits;
  }
  if (limits != nullptr) {
    TakeTable(path, *limits, KeysOf(station.limits));
    const std::string wrong = WrongWithLimits(station.limits);
    if (!wrong.empty()) Refuse(path, *limits, wrong);
  }
  if (!password_file.empty() && !password_env.empty())
    Refuse(path, *table.get("password_env"), "there is a password_file too, expected one of both");
  if (!password_file.empty()) station.password = SecretFromFile(password_file);
  if (!password_env.empty()) {
    station.password = EnvironmentText(password_env);
    if (station.password.empty())
      Refuse(path, *table.get("password_env"), "the environment has no variable " + password_env);
    station.password_variable = password_env;
  }
  if (station.source.empty()) Refuse(path, table, "a station needs a source");
  return station;
}

}  // namespace

std::string EnvironmentText(const std::string& name) {
  const char* const text = std::getenv(name.c_str());
  return text == nullptr ? "" : text;
}

std::string SecretFromFile(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  if (!std::getline(file, line)) throw RunError(path + ": the file of the password cannot be read.");
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
  return line;
}

namespace {

toml::table TableOf(const std::string& path) {
  std::string text;
  try {
    text = TextOfFile(path, kLargestSettings_bytes);
  } catch (const FileError& error) {
    throw ConfigError(error.what());
  }
  if (const std::size_t line = LineOfDeepKey(text); line > 0)
    throw ConfigError(fmt::format("{}:{}: a key of more than {} parts", path, line, kMaxKeyParts));
  try {
    return toml::parse(text, path);
  } catch (const toml::parse_error& error) {
    throw ConfigError(fmt::format("{}:{}: {}", path, error.source().begin.line, error.description()));
  }
}

}  // namespace

void AddStations(const std::string& path, const StationSettings& defaults, ServiceSettings& service) {
  const toml::table table = TableOf(path);
  ServiceSettings given;
  StationSettings common = defaults;
  std::string state_folder, reports_folder;
  const Keys keys = {{"listen", Text(given.listen)},
                     {"events", Text(given.events)},
                     {"on_alarm", Text(given.on_alarm)},
                     {"state", Text(state_folder)},
                     {"reports", Text(reports_folder)},
                     {"station", [](const toml::node& node) -> std::string {
                        return node.is_array_of_tables() ? "" : "stations are written as [[station]]";
                      }}};
  TakeTable(path, table, keys);
  const auto unless_set = [](const std::string& value, std::string& target) {
    if (target.empty()) target = value;
  };
  unless_set(given.listen, service.listen);
  unless_set(given.events, service.events);
  unless_set(given.on_alarm, service.on_alarm);
  unless_set(state_folder, common.state_folder);
  unless_set(reports_folder, common.reports_folder);
  if (const toml::array* const stations = table["station"].as_array()) {
    for (const toml::node& station : *stations) {
      service.stations.push_back(StationOf(path, *station.as_table(), common));
    }
  }
}

}  // namespace orsolva_host::live
