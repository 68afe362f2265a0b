// Slips of one size on every signal at known epochs, and how many of them each test finds.
#ifndef ORSOLVA_TESTS_TRUTH_SLIP_TRIAL_H
#define ORSOLVA_TESTS_TRUTH_SLIP_TRIAL_H

#include <array>
#include <string>

#include "tests/truth/slip_rules.h"

namespace orsolva_test {

inline constexpr std::array<double, 6> kSlipSizes = {0.5, 1, 2, 5, 10, 100};

/// Of one band and size.
struct Detection {
  int slips = 0;
  int pairs = 0, geometry_free = 0;  ///< pairs that measure the code, and those whose test reports
  int geometry = 0;                  ///< pairs that count a slip
  double geometry_free_limit_m = 0;
};

/// Of one band, by size.
using Detections = std::array<Detection, kSlipSizes.size()>;

/// A span without faults, quiet or with a storm whose swings change the slant content by up to 0.2 TECU a
/// second (3 cm of GPS L1 a second), however short the span is.
orsolva_host::Scenario SlipScenario(double interval_s, int epochs, bool stormy);

/// Runs a scenario once without slips and once for each size, and holds each slip against the run without it.
std::map<std::string, Detections> RunSlipTrial(const orsolva_host::Scenario& scenario, Proof& proof);

/// False alarms of a run without any slip, in satellite-epochs of a band.
struct FalseAlarms {
  std::uint64_t epochs = 0, geometry_free = 0, geometry = 0, new_record = 0;
  void Add(const FalseAlarms& other);
  double Per10000(std::uint64_t alarms) const {
    return epochs ? 10000.0 * static_cast<double>(alarms) / static_cast<double>(epochs) : 0.0;
  }
};

std::map<std::string, FalseAlarms> RunWithoutSlips(const orsolva_host::Scenario& scenario, Proof& proof);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_SLIP_TRIAL_H
