// Positions of random sites at random hours, with and without a faulty satellite.
#ifndef ORSOLVA_TESTS_TRUTH_POSITION_TRIAL_H
#define ORSOLVA_TESTS_TRUTH_POSITION_TRIAL_H

#include <array>
#include <string>
#include <vector>

#include "host/simulator/scenario.h"
#include "orsolva/records.h"

namespace orsolva_test {

inline constexpr int kPositionEpochs = 5;

enum class PositionSky {
  kExact,  ///< no noise; the ionosphere is the one that the library takes off
  kReal,   ///< the full error model, with an ionosphere that is not the library's
};

struct PositionOutcome {
  bool solved = false;
  double error_m = 0;
  bool exclusion_tried = false;
  int exclusions = 0;
  std::string excluded;  ///< of the last epoch that had an exclusion; empty without one
  std::string faulty;    ///< the satellite with the fault
};

/// A site uniformly on the Earth up to 3 km high, at a whole second of a week. The same index gives the same.
orsolva_host::Scenario RandomSite(int index, PositionSky sky);

/// Positions the site through the exported functions, from a batch of five epochs.
/// @param fault_m  how much all pseudoranges of one satellite are too long; 0: none
PositionOutcome PositionSite(const orsolva_host::Scenario& scenario, PositionSky sky, double fault_m);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_POSITION_TRIAL_H
