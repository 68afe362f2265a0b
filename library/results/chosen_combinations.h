// The codes behind the figures of a run: the combination of every system slot and satellite and of the total.
#ifndef ORSOLVA_RESULTS_CHOSEN_COMBINATIONS_H
#define ORSOLVA_RESULTS_CHOSEN_COMBINATIONS_H

#include "orsolva/run_facts.h"
#include "qc/base/config.h"
#include "results/result_sources.h"
#include "toolkit/satellite.h"

namespace orsolva {

class ChosenCombinations {
 public:
  /// Analyses the run as the whole-run result does and keeps the choices made on the way.
  explicit ChosenCombinations(const ResultSources& sources);
  virtual ~ChosenCombinations() = default;

  ChosenCombination Systems[kSystemSlots];
  ChosenCombination Satellites[gnssqctoolkit::kMaxSatellites];  ///< by satellite number - 1
  ChosenCombination Total;
};

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_CHOSEN_COMBINATIONS_H
