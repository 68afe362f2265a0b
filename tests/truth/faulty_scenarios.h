// Scenarios with late rise, outages, gaps and drops at several intervals.
#ifndef ORSOLVA_TESTS_TRUTH_FAULTY_SCENARIOS_H
#define ORSOLVA_TESTS_TRUTH_FAULTY_SCENARIOS_H

#include <vector>

#include "host/simulator/scenario.h"

namespace orsolva_test {

struct FaultyScenario {
  orsolva_host::Scenario scenario;
  bool repeated = false;  ///< epochs are delivered twice
};

/// A fault at a time; a target with system 0 and satellite 0 is everything.
orsolva_host::Fault MakeFault(orsolva_host::FaultKind kind, double at_s, double duration_s, double size,
                              const orsolva_host::FaultTarget& target = {});

/// One scenario of a length in epochs.
orsolva_host::Scenario Troubled(double interval_s, int epochs, std::uint64_t seed);

std::vector<FaultyScenario> FaultyScenarios(bool long_form);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_FAULTY_SCENARIOS_H
