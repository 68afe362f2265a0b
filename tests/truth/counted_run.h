// A simulated run through the exported functions, together with its recount.
#ifndef ORSOLVA_TESTS_TRUTH_COUNTED_RUN_H
#define ORSOLVA_TESTS_TRUTH_COUNTED_RUN_H

#include <memory>

#include "tests/truth/recount.h"
#include "tests/truth/simulated_run.h"

namespace orsolva_test {

/// The batches have changing lengths, so that their borders fall into outages and gaps.
struct CountedRun {
  /// @param combined  systems of the combined result, bit s for slot s
  explicit CountedRun(const orsolva_host::Scenario& scenario, unsigned combined = 31);

  /// The figures of a code of a satellite in the per-code record; null when it has none.
  const code_qc_entry* EntryOf(int system, int prn, int code) const;
  bool HasRepeatedEpochs() const;

  orsolva_host::Simulation simulation;
  Recount recount;
  Process process;
  std::unique_ptr<Results> results;
  bool good = true;  ///< every batch was taken
  int batches = 0;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_COUNTED_RUN_H
