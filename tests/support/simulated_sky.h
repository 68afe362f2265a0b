// A small sky for tests: nominal constellations with broadcast records, and observations of one station that
// agree with them. Same options, same bits.
#ifndef ORSOLVA_TESTS_SUPPORT_SIMULATED_SKY_H
#define ORSOLVA_TESTS_SUPPORT_SIMULATED_SKY_H

#include <cstdint>
#include <vector>

#include "interface/records.h"
#include "tests/support/navigation_set.h"

namespace orsolva_test {

struct SkyOptions {
  double Station[3] = {3582105.291, 532589.7313, 5232754.8054};  ///< ECEF, m
  std::int64_t Start = 1593000000;                               ///< s since 1970, GPS time
  double Interval = 30.0;                                        ///< s
  int Epochs = 120;
  std::uint32_t Seed = 1;
  double CodeNoise = 0.3;      ///< m, one sigma
  double PhaseNoise = 0.002;   ///< m, one sigma
  double MissingShare = 0.0;   ///< share of the signals left out at random
  double LowestElevation = 0;  ///< rad, satellites below are not observed
};

struct SimulatedSky {
  SkyOptions Options;
  NavigationSet Navigation;
  std::vector<ObsEpoch_QC_gbt> Epochs;

  explicit SimulatedSky(const SkyOptions& options);

  /// A configuration with every system and the true station position.
  config_qct Config() const;
};

/// A configuration with everything on and no position.
config_qct OpenConfig();

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_SIMULATED_SKY_H
