#include "host/cli/live_config.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <utility>

#include "host/cli/config_file.h"
#include "host/judging/run_error.h"
#include "host/rinex/text_file.h"

namespace orsolva_host::live {
namespace {

/// Takes the value of a key. @return what is wrong with it, or an empty text
using TakeValue = std::function<std::string(const toml::node&)>;
using Keys = std::map<std::string, TakeValue>;

TakeValue Text(std::string& target) {
  return [&target](const toml::node& node) -> std::string {
    const auto text = node.value_exact<std::string>();
    if (!text) return "expected a text in quotation marks";
    target = *text;
    return {};
  };
}

TakeValue Positive(double& target) {
  return [&target](const toml::node& node) -> std::string {
    const auto number = node.value<double>();
    if (!number || !(*number >= 0)) return "expected a number that is not negative";
    target = *number;
    return {};
  };
}

TakeValue Texts(std::vector<std::string>& target) {
  return [&target](const toml::node& node) -> std::string {
    const toml::array* const list = node.as_array();
    if (list == nullptr) return "expected a list of texts";
    target.clear();
    for (const toml::node& item : *list) {
      if (!item.is_string()) return "expected a list of texts";
      target.push_back(*item.value<std::string>());
    }
    return {};
  };
}

TakeValue Place(std::optional<std::array<double, 3>>& target) {
  return [&target](const toml::node& node) -> std::string {
    const toml::array* const list = node.as_array();
    if (list == nullptr || list->size() != 3) return "expected [x, y, z] in metres";
    std::array<double, 3> xyz_m = {};
    for (std::size_t i = 0; i < 3; ++i) {
      const auto number = list->get(i)->value<double>();
      if (!number) return "expected [x, y, z] in metres";
      xyz_m[i] = *number;
    }
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
  return {{"gap_s", Positive(limits.gap_s)},
          {"gap_intervals", Positive(limits.gap_intervals)},
          {"latency_warning_s", Positive(limits.latency_warning_s)},
          {"latency_bad_s", Positive(limits.latency_bad_s)},
          {"burst_ratio", Positive(limits.burst_ratio)},
          {"snr_drop_db", Positive(limits.snr_drop_db)},
          {"snr_drop_s", Positive(limits.snr_drop_s)},
          {"completeness", Positive(limits.completeness)},
          {"multipath_m", Positive(limits.multipath_m)},
          {"few_ratio", Positive(limits.few_ratio)},
          {"ephemeris_age_s", Positive(limits.ephemeris_age_s)},
          {"glonass_ephemeris_age_s", Positive(limits.glonass_ephemeris_age_s)},
          {"moved_m", Positive(limits.moved_m)},
          {"crc_ratio", Positive(limits.crc_ratio)},
          {"required_messages", Texts(limits.required_messages)}};
}

/// The profile comes before the limits, whatever their order in the file.
StationSettings StationOf(const std::string& path, const toml::table& table, StationSettings station) {
  std::string profile, password_file, password_env;
  const toml::table* limits = nullptr;
  const Keys keys = {{"name", Text(station.name)},
                     {"source", Text(station.source)},
                     {"nav", Text(station.navigation)},
                     {"user", Text(station.user)},
                     {"password_file", Text(password_file)},
                     {"password_env", Text(password_env)},
                     {"certificates", Text(station.certificates)},
                     {"position", Place(station.position_m)},
                     {"elevation", Positive(station.elevation_cutoff_deg)},
                     {"speed", Positive(station.speed)},
                     {"profile", Text(profile)},
                     {"limits", [&limits](const toml::node& node) -> std::string {
                        limits = node.as_table();
                        return limits == nullptr ? "expected a table" : "";
                      }}};
  TakeTable(path, table, keys);
  if (!profile.empty()) {
    const LimitsProfile* const found = FindLimits(profile);
    if (found == nullptr) Refuse(path, *table.get("profile"), "there is no profile '" + profile + "'");
    station.limits = found->limits;
  }
  if (limits != nullptr) TakeTable(path, *limits, KeysOf(station.limits));
  if (!password_file.empty()) station.password = SecretFromFile(password_file);
  if (!password_env.empty()) {
    station.password = EnvironmentText(password_env);
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

void AddStations(const std::string& path, const StationSettings& defaults, ServiceSettings& service) {
  toml::table table;
  try {
    table = toml::parse_file(path);
  } catch (const toml::parse_error& error) {
    throw ConfigError(fmt::format("{}:{}: {}", path, error.source().begin.line, error.description()));
  }
  ServiceSettings given;
  StationSettings common = defaults;
  const Keys keys = {{"listen", Text(given.listen)},
                     {"events", Text(given.events)},
                     {"on_alarm", Text(given.on_alarm)},
                     {"state", Text(common.state_folder)},
                     {"reports", Text(common.reports_folder)},
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
  if (const toml::array* const stations = table["station"].as_array()) {
    for (const toml::node& station : *stations) {
      service.stations.push_back(StationOf(path, *station.as_table(), common));
    }
  }
}

}  // namespace orsolva_host::live
