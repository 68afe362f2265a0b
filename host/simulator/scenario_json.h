// Reads a scenario from JSON. docs/user/simulator.md lists the keys.
#ifndef ORSOLVA_SIMULATOR_SCENARIO_JSON_H
#define ORSOLVA_SIMULATOR_SCENARIO_JSON_H

#include <string>
#include <vector>

#include "host/simulator/scenario.h"

namespace orsolva_host {

/// Changes the settings named in the text; the others remain as in `scenario`. Faults are added.
/// @throws ScenarioError naming the key, its value and what is allowed
void ReadScenario(const std::string& text, Scenario& scenario);

/// Reads and checks. @throws ScenarioError beginning with the path, also when the file cannot be read
void ReadScenarioFile(const std::string& path, Scenario& scenario);

/// "2020-06-25" or "2020-06-25 06:30:00", GPS time. @return an empty text, or an error message
std::string ParseStart(const std::string& text, Time_gbt& start);

/// Parses a target such as "G04" or "G".
/// @return an empty text, or an error message
std::string ParseTarget(const std::string& text, FaultTarget& target);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SCENARIO_JSON_H
