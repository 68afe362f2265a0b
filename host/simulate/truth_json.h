// truth.json: what is true of a simulated span.
#ifndef ORSOLVA_SIMULATE_TRUTH_JSON_H
#define ORSOLVA_SIMULATE_TRUTH_JSON_H

#include <string>

#include "host/simulate/scenario.h"
#include "host/simulate/truth.h"

namespace orsolva_host {

std::string TruthJson(const Scenario& scenario, const Truth& truth);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATE_TRUTH_JSON_H
