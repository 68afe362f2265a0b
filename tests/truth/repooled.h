// Pools the figures of satellites into those of a combination, a system and the whole run, in a few lines of
// plain sums.
#ifndef ORSOLVA_TESTS_TRUTH_REPOOLED_H
#define ORSOLVA_TESTS_TRUTH_REPOOLED_H

#include <array>
#include <cstdint>
#include <string>

#include "results/result_model.h"
#include "tests/truth/proof.h"

namespace orsolva_test {

/// A sum of values with the number of them.
struct WeightedSum {
  double sum = 0;
  std::uint64_t count = 0;
  void Add(double mean, std::uint64_t n) {
    sum += mean * static_cast<double>(n);
    count += n;
  }
  double Mean() const { return count ? sum / static_cast<double>(count) : 0.0; }
};

struct RepooledBand {
  WeightedSum multipath_square, above, below, above30, below30, spread_square;
  std::uint64_t slips = 0, jumps = 0;
  double iod = 0;
};

class Repooled {
 public:
  /// Adds a satellite with one of its combinations.
  /// @param combinations  all ten of it
  void AddSatellite(const orsolva::QcResultCore* combinations, int chosen);
  /// Adds a finished system; the ionospheric figure and the spread are not merged from satellites.
  void AddSystem(const orsolva::QcResultCore& system);

  double Completeness() const;
  /// Holds the figures of a core against these.
  void Compare(const orsolva::QcResultCore& core, const std::string& name, Proof& proof) const;
  /// The same for the record of an export.
  void CompareRecord(const qc_core_summary& record, bool with_iod, const std::string& name,
                     Proof& proof) const;

  std::uint64_t expected = 0, observed = 0, slip_epochs = 0, jump_epochs = 0;
  std::array<RepooledBand, 6> bands;

 private:
  void AddBands(const orsolva::QcResultCore& core);
};

/// Whether two figures differ by no more than the rounding of sums in another order.
bool Close(double a, double b);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_REPOOLED_H
