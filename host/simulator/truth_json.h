// Writes truth.json, the truth of a simulated span.
#ifndef ORSOLVA_SIMULATOR_TRUTH_JSON_H
#define ORSOLVA_SIMULATOR_TRUTH_JSON_H

#include <string>

#include "host/simulator/scenario.h"
#include "host/simulator/truth.h"

namespace orsolva_host {

std::string TruthJson(const Scenario& scenario, const Truth& truth);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_TRUTH_JSON_H
