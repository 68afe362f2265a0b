// Slips of named kinds at random epochs of every satellite of a scenario.
#ifndef ORSOLVA_TESTS_TRUTH_SLIP_PATTERN_H
#define ORSOLVA_TESTS_TRUTH_SLIP_PATTERN_H

#include <map>
#include <string>
#include <vector>

#include "host/simulator/scenario.h"
#include "tests/truth/analyzed_run.h"

namespace orsolva_test {

/// The kinds, in the order of a table.
const std::vector<std::string>& SlipPatternKinds();

struct SlipPattern {
  orsolva_host::Scenario scenario;       ///< the given one with the slips
  std::map<SlipKey, std::string> kinds;  ///< of the slips, whether they show or not
};

/// Adds a slip of a random kind to every satellite on average every `spacing` epochs, at least 12 apart.
SlipPattern WithSlipPattern(orsolva_host::Scenario scenario, int spacing);

/// Leaves the signals of the first bands of each satellite, one for each band.
void KeepBands(orsolva_host::Scenario& scenario, std::size_t bands);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_SLIP_PATTERN_H
