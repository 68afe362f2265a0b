// A simulated run through the exported functions with an observer of its details.
#ifndef ORSOLVA_TESTS_TRUTH_OBSERVED_RUN_H
#define ORSOLVA_TESTS_TRUTH_OBSERVED_RUN_H

#include <array>
#include <functional>
#include <memory>
#include <tuple>

#include "tests/truth/simulated_run.h"

namespace orsolva_test {

/// A place in Western Australia that sees satellites of all five systems, ECEF, m.
inline constexpr std::array<double, 3> kEasternSite = {-2366800.0, 4873400.0, -3355500.0};

/// System code, number, code, partner code.
using PairKey = std::tuple<int, int, int, int>;
PairKey KeyOf(const orsolva::PairEpochDetail& detail);

using PairListener = std::function<void(const orsolva::PairEpochDetail&)>;

/// Feeds a whole scenario in one go and notifies the listener of every pair and epoch.
class ObservedRun {
 public:
  ObservedRun(const orsolva_host::Scenario& scenario, const PairListener& listener);

  const orsolva_host::Simulation& simulation() const { return simulation_; }
  const Results& Figures() const { return *results_; }
  bool Good() const { return good_; }
  /// Figures of a code of a satellite in the per-code record; null when it has none.
  const code_qc_entry* EntryOf(int system, int prn, int code) const;

 private:
  orsolva_host::Simulation simulation_;
  Process process_;
  std::unique_ptr<Results> results_;
  bool good_ = false;
};

/// Number of the epoch of a time on the grid of a scenario, nearest.
std::int64_t EpochNumber(const orsolva_host::Scenario& scenario, const Time_gbt& time);

/// Every error off; the atmosphere stays.
void Silence(orsolva_host::ErrorModel& errors);

/// Coefficients of the multipath combination of a code, from the frequencies of both bands: Estey and
/// Meertens 1999, eq. 4 and 5, solved for the code of band a.
struct MultipathWeights {
  double of_code_phase = 0, of_partner_phase = 0;
};
MultipathWeights WeightsOf(double f_code_hz, double f_partner_hz);

/// Epochs of the moving mean at an interval: 5 minutes, but 10 at least and 50 at most; 50 up to 5 s.
int MeanWindowOf(double interval_s);

/// Sum of the expected squares of the first n residuals of noise with standard deviation 1: the k-th value
/// less the mean of the last min(k, window) has the variance 1 - 1/min(k, window).
double SquaresLessMovingMean(std::uint64_t n, int window);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_OBSERVED_RUN_H
