// Readers of JSON objects whose every key is known. Errors name the key, its value and what is allowed.
#ifndef ORSOLVA_SIMULATOR_JSON_MEMBERS_H
#define ORSOLVA_SIMULATOR_JSON_MEMBERS_H

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "host/simulator/scenario.h"

namespace orsolva_host {

/// @throws ScenarioError
[[noreturn]] void Wrong(const std::string& key, const nlohmann::json& value, const std::string& expected);

/// The members of an object, each with the handler of its value. A key without a handler is an error.
class Members {
 public:
  using Taker = std::function<void(const std::string& key, const nlohmann::json& value)>;

  Members& On(const std::string& key, Taker take);
  Members& On(const std::string& key, double& target);
  Members& On(const std::string& key, bool& target);
  Members& On(const std::string& key, std::string& target);
  Members& On(const std::string& key, ByElevation& target);

  /// @throws ScenarioError
  void Read(const std::string& where, const nlohmann::json& object) const;

 private:
  const Taker& Find(const std::string& full, const std::string& key) const;

  std::vector<std::pair<std::string, Taker>> takers_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_JSON_MEMBERS_H
