#include "host/simulator/scenario.h"

#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

constexpr int kFirstNewBdsGeostationary = 59;

// The library keeps no completeness and SNR for Galileo bands 7 and 8, so the default leaves them out.
const std::map<std::string, std::vector<std::string>> kDefaultSignals = {
    {"G", {"1C", "2W", "2L", "5Q"}}, {"R", {"1C", "2C"}},        {"E", {"1C", "5Q", "6C"}},
    {"J", {"1C", "2L", "5Q"}},       {"C2", {"2I", "7I", "6I"}}, {"C3", {"2I", "6I", "1P", "5P", "7D"}},
    {"C3G", {"2I", "6I"}},
};

std::string GroupOf(char system, int satellite) {
  if (system != 'C') return std::string(1, system);
  if (satellite < ORSOLVA_FIRST_BDS3) return "C2";
  return satellite < kFirstNewBdsGeostationary ? "C3" : "C3G";
}

}  // namespace

std::vector<std::string> SignalGroups() {
  std::vector<std::string> groups;
  for (const auto& [group, names] : kDefaultSignals) groups.push_back(group);
  return groups;
}

const std::vector<std::string>& SignalsOf(const Scenario& scenario, char system, int satellite) {
  const std::string group = GroupOf(system, satellite);
  const auto chosen = scenario.signals.find(group);
  return chosen == scenario.signals.end() ? kDefaultSignals.at(group) : chosen->second;
}

}  // namespace orsolva_host
