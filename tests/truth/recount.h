// Counts independently, from the delivered epochs, what a run must report for completeness and SNR.
#ifndef ORSOLVA_TESTS_TRUTH_RECOUNT_H
#define ORSOLVA_TESTS_TRUTH_RECOUNT_H

#include <cstdint>
#include <map>
#include <vector>

#include "tests/truth/simulated_run.h"

namespace orsolva_test {

struct RecountedMean {
  std::uint64_t count = 0;
  double sum = 0;
  void Add(double value) {
    sum += value;
    ++count;
  }
  double Mean() const { return count ? sum / static_cast<double>(count) : 0.0; }
};

struct RecountedCode {
  std::uint64_t observed = 0;  ///< above the cut-off, with range, phase and SNR
  RecountedMean all, above, below, above30, below30;
  std::vector<int> quarters;  ///< SNR in quarter dB, reduced to eight bits
  double Spread() const;
};

struct RecountedSatellite {
  std::uint64_t expected = 0, listed = 0, crossings = 0;
  std::int64_t last = -1;  ///< nominal number of the last epoch with the satellite
  bool above_last = false;
  std::map<int, RecountedCode> codes;
  /// Epochs above the cut-off by the codes that were observed in them, ascending.
  std::map<std::vector<int>, std::uint64_t> together;
  /// Epochs above the cut-off in which all of some codes were observed.
  std::uint64_t ObservedTogether(std::vector<int> wanted) const;
};

class Recount {
 public:
  Recount(const orsolva_host::Simulation& simulation, double cutoff_deg);
  void Add(const ObsEpoch_QC_gbt& epoch);

  std::map<std::pair<int, int>, RecountedSatellite> satellites;  ///< by system code and number
  std::int64_t accepted = 0, first = -1, last = -1;              ///< first and last as nominal numbers

 private:
  void AddSatellite(const Satellite_gbt& satellite, std::int64_t number);

  ElevationRule elevations_;
  Time_gbt start_;
  double interval_s_, cutoff_rad_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_RECOUNT_H
