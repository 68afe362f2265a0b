#include "host/simulator/json_members.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orsolva_host {

using Json = nlohmann::json;

void Wrong(const std::string& key, const Json& value, const std::string& expected) {
  throw ScenarioError(fmt::format("{}: found {}, expected {}", key, value.dump(), expected));
}

Members& Members::On(const std::string& key, Taker take) {
  takers_.emplace_back(key, std::move(take));
  return *this;
}

Members& Members::On(const std::string& key, double& target) {
  return On(key, [&target](const std::string& name, const Json& value) {
    if (!value.is_number()) Wrong(name, value, "a number");
    target = value.get<double>();
  });
}

Members& Members::On(const std::string& key, bool& target) {
  return On(key, [&target](const std::string& name, const Json& value) {
    if (!value.is_boolean()) Wrong(name, value, "true or false");
    target = value.get<bool>();
  });
}

Members& Members::On(const std::string& key, std::string& target) {
  return On(key, [&target](const std::string& name, const Json& value) {
    if (!value.is_string()) Wrong(name, value, "a text");
    target = value.get<std::string>();
  });
}

Members& Members::On(const std::string& key, ByElevation& target) {
  return On(key, [&target](const std::string& name, const Json& value) {
    Members().On("zenith", target.zenith).On("horizon", target.horizon).Read(name, value);
  });
}

void Members::Read(const std::string& where, const Json& object) const {
  if (!object.is_object()) Wrong(where.empty() ? "scenario" : where, object, "an object {...}");
  for (const auto& [key, value] : object.items()) {
    const std::string full = where.empty() ? key : where + "." + key;
    Find(full, key)(full, value);
  }
}

const Members::Taker& Members::Find(const std::string& full, const std::string& key) const {
  std::vector<std::string> known;
  for (const auto& [name, take] : takers_) {
    if (name == key) return take;
    known.push_back(name);
  }
  throw ScenarioError(
      fmt::format("{}: found an unknown key, expected one of {}", full, fmt::join(known, ", ")));
}

}  // namespace orsolva_host
