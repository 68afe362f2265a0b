// The rules of the two slip tests, implemented independently, and a checker that holds every pair and epoch
// of a run against them.
//
// The geometry-free test looks at the step of L2 lambda2 - L1 lambda1. The phase-minus-geometry test looks at
// the change of L lambda - range + c dt, less the median change of the epoch.
#ifndef ORSOLVA_TESTS_TRUTH_SLIP_RULES_H
#define ORSOLVA_TESTS_TRUTH_SLIP_RULES_H

#include <vector>

#include "tests/truth/observed_run.h"
#include "tests/truth/proof.h"

namespace orsolva_test {

/// Carrier frequencies of a pair in the order of the geometry-free test: the first band's code comes first.
struct PairFrequencies {
  double first_hz = 0, second_hz = 0;
  bool code_is_first = false;
};
PairFrequencies FrequenciesOf(const PairKey& key, int glonass_channel);

/// Largest step without a slip, m: 400 cm a minute on the second band, but at least 0.026 m.
double GeometryFreeLimit(const PairFrequencies& pair, double interval_s);
/// Largest excess without a slip, m, for a gap up to 60 s.
double GeometryLimit(double gap_s);

/// Collects the notifications of an epoch and checks them when the next one begins.
class ByEpoch {
 public:
  using Use = std::function<void(const std::vector<orsolva::PairEpochDetail>&)>;
  explicit ByEpoch(Use use) : use_(std::move(use)) {}
  void Add(const orsolva::PairEpochDetail& detail);
  /// Hands the last epoch on.
  void Finish();

 private:
  Use use_;
  std::vector<orsolva::PairEpochDetail> epoch_;
};

/// Holds the outcome of both tests against the rules.
class SlipRuleChecker {
 public:
  SlipRuleChecker(const orsolva_host::Scenario& scenario, Proof& proof);
  void CheckEpoch(const std::vector<orsolva::PairEpochDetail>& epoch);

 private:
  struct PairRule {
    PairFrequencies frequencies;
    Time_gbt last{};
  };
  PairRule& RuleOf(const orsolva::PairEpochDetail& detail);
  void CheckGeometryFree(const orsolva::PairEpochDetail& detail);
  void CheckGeometry(const orsolva::PairEpochDetail& detail, double median);
  void Hold(bool holds, const orsolva::PairEpochDetail& detail, const char* what);

  double interval_s_;
  orsolva_host::Sky sky_;
  ElevationRule satellites_;
  Proof* proof_;
  std::map<PairKey, PairRule> rules_;
  std::vector<double> changes_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_SLIP_RULES_H
