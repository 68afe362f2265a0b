// A small sky for tests: nominal constellations with broadcast records, and observations of one station that
// agree with them. Same options, same bits.
//
// Why this sky besides sky.h and exact_sky.h: laws of whole runs, mutated records, digests and
// benchmarks want five systems with noise and gaps through the exported functions. It stays apart from
// host/simulator, which is under test itself and whose output may change, while golden digests rest on every
// bit of this one.
#ifndef ORSOLVA_TESTS_SUPPORT_SIMULATED_SKY_H
#define ORSOLVA_TESTS_SUPPORT_SIMULATED_SKY_H

#include <cstdint>
#include <memory>
#include <vector>

#include "orsolva/records.h"
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
  int MostSatellites = 80;     ///< observed in one epoch, in the order GPS, GLONASS, BDS, Galileo, QZSS
};

struct SimulatedSky {
  SkyOptions Options;
  NavigationSet Navigation;
  std::vector<ObsEpoch_QC_gbt> Epochs;

  explicit SimulatedSky(const SkyOptions& options);

  /// A configuration with every system and the true station position.
  config_qct Config() const;
};

/// The same sky epoch by epoch, for runs too long to keep: Next() gives the epochs of SimulatedSky in order.
class SkyStream {
 public:
  explicit SkyStream(const SkyOptions& options);
  ~SkyStream();

  const NavigationSet& Navigation() const { return navigation_; }
  ObsEpoch_QC_gbt Next();

 private:
  class Observer;
  SkyOptions options_;
  NavigationSet navigation_;
  std::unique_ptr<Observer> observer_;
  std::int64_t next_ = 0;
};

/// A configuration with everything on and no position.
config_qct OpenConfig();
/// The same with the position and the interval of a sky.
config_qct ConfigOf(const SkyOptions& options);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_SIMULATED_SKY_H
