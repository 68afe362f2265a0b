#include "tests/truth/counted_run.h"

namespace orsolva_test {

CountedRun::CountedRun(const orsolva_host::Scenario& scenario, unsigned combined)
    : simulation(scenario), recount(simulation, kTruthCutoff_deg) {
  config_qct config = TruthConfig(scenario);
  for (unsigned s = 0; s < 5; ++s) config.combination_system[s] = (combined >> s & 1U) != 0 ? 1 : 0;
  good = Initialise(process, simulation, config);
  std::vector<ObsEpoch_QC_gbt> batch;
  std::size_t most = 173;
  while (good && simulation.NextBatch(batch, most) > 0) {
    for (const ObsEpoch_QC_gbt& epoch : batch) recount.Add(epoch);
    good = process.Feed(batch) == GNSSQC_OK;
    most = 100 + (most * 7) % 331;
    ++batches;
  }
  results = std::make_unique<Results>(process);
}

const code_qc_entry* CountedRun::EntryOf(int system, int prn, int code) const {
  return FindEntry(*results->Codes, system, prn, code);
}

bool CountedRun::HasRepeatedEpochs() const {
  return simulation.TruthSoFar().delivered_epochs > static_cast<std::uint64_t>(recount.accepted);
}

}  // namespace orsolva_test
