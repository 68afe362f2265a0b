// The span whose recordings are compared with their RINEX twins.
#ifndef ORSOLVA_TESTS_HOST_JUDGING_FAULTY_HOUR_H
#define ORSOLVA_TESTS_HOST_JUDGING_FAULTY_HOUR_H

#include <string>

#include "host/simulator/scenario_json.h"

namespace orsolva_test {

/// @param more  further members of the scenario, each with a comma behind it
inline orsolva_host::Scenario FaultyHour(const std::string& more = "") {
  orsolva_host::Scenario scenario;
  ReadScenario(R"({"hours": 1, "interval_s": 15, "systems": "GREJC", )" + more + R"("faults": [
    {"kind": "slip", "size": 0.5, "random": 8},
    {"kind": "slip", "size": 1, "random": 8},
    {"kind": "slip", "size": 10, "random": 8},
    {"kind": "code_jump", "size": 20, "random": 3},
    {"kind": "outage", "satellite": "E", "duration_s": 300, "random": 3},
    {"kind": "missing_epoch", "at_s": 1200, "duration_s": 60},
    {"kind": "clock_jump", "size": 1, "at_s": 1800}]})",
               scenario);
  return scenario;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_HOST_JUDGING_FAULTY_HOUR_H
