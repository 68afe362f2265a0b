#include <fmt/format.h>

#include <algorithm>

#include "results/result_model.h"
#include "tests/truth/counted_run.h"
#include "tests/truth/faulty_scenarios.h"
#include "tests/truth/proof.h"

namespace orsolva_test {
namespace {

bool SameMean(const RecountedMean& mean, std::uint64_t count, double value) {
  return mean.count == count && (count == 0 || mean.Mean() == value);
}

void CheckSnrRecord(const RecountedCode& code, const code_qc_entry& entry, const std::string& name,
                    Proof& proof) {
  proof.Check(SameMean(code.above, entry.snr_count, entry.snr), name + ": mean above the cut-off");
  proof.Check(SameMean(code.above30, entry.snr_count_above30, entry.snr_above30), name + ": mean above 30");
  proof.Check(SameMean(code.below30, entry.snr_count_below30, entry.snr_below30), name + ": mean below 30");
}

/// The figures of a code in the result model: taken from the first combination that holds the code.
const orsolva::QcSnrResult* ModelFigures(const Figures& figures, int system, int prn, int code) {
  const orsolva::QcSysAllResult& slot = figures.result.All[SlotOf(system)];
  for (const orsolva::QcResultCore& core : slot.PerSat[prn - 1]) {
    for (const orsolva::QcSnrResult& snr : core.Snr) {
      if (snr.Code == code) return &snr;
    }
  }
  return nullptr;
}

void CheckSnrModel(const RecountedCode& code, const orsolva::QcSnrResult& model, const std::string& name,
                   Proof& proof) {
  proof.Check(SameMean(code.all, model.AboveMaskCount + model.BelowMaskCount, model.Mean), name + ": mean");
  proof.Check(SameMean(code.above, model.AboveMaskCount, model.AboveMaskMean), name + ": model above");
  proof.Check(SameMean(code.below, model.BelowMaskCount, model.BelowMaskMean), name + ": model below");
  proof.Check(SameMean(code.above30, model.Above30Count, model.Above30Mean), name + ": model above 30");
  proof.Check(SameMean(code.below30, model.Below30Count, model.Below30Mean), name + ": model below 30");
  proof.Check(model.StdDev == code.Spread(),
              fmt::format("{}: spread {} not {}", name, model.StdDev, code.Spread()));
}

struct SnrTally {
  std::size_t codes = 0, models = 0;
  std::uint64_t values = 0, below = 0, above30 = 0;
  double widest = 0;
};

void CheckSnr(const CountedRun& run, SnrTally& tally, Proof& proof) {
  const std::unique_ptr<Figures> figures = FiguresOf(run.process);
  for (const auto& [id, s] : run.recount.satellites) {
    for (const auto& [number, code] : s.codes) {
      const std::string name = fmt::format("{} {}", NameOf(id.first, id.second), CodeName(id.first, number));
      const code_qc_entry* entry = run.EntryOf(id.first, id.second, number);
      if (entry != nullptr) {
        ++tally.codes;
        CheckSnrRecord(code, *entry, name, proof);
      }
      const orsolva::QcSnrResult* model = ModelFigures(*figures, id.first, id.second, number);
      if (model != nullptr) {
        ++tally.models;
        CheckSnrModel(code, *model, name, proof);
        tally.widest = std::max(tally.widest, model->StdDev);
      }
      tally.values += code.all.count;
      tally.below += code.below.count;
      tally.above30 += code.above30.count;
    }
  }
}

}  // namespace

void ProveSnr(bool long_form, Proof& proof) {
  proof.injected = "SNR by elevation with noise and drops of 12 dB, rounded to 0.001 dB-Hz; outages as above";
  proof.must_say =
      "per satellite and code: count and mean of all values, above and below the cut-off, above and not "
      "above "
      "30 degrees, and the standard deviation of the values in quarter decibels about the unrounded mean";
  proof.tolerance = "none: the same bits";
  proof.reason =
      "a mean is the sum in time order divided by the count; the recount adds in the same order, so not even "
      "rounding differs. Elevations come from the simulator's own orbits";
  ProofTable table{"Sums over all satellites and codes.",
                   {"interval, s", "satellite codes in the record", "in the model", "values",
                    "below the cut-off", "above 30 degrees", "largest standard deviation, dB"},
                   {},
                   1};
  for (const FaultyScenario& faulty : FaultyScenarios(long_form)) {
    if (faulty.repeated) continue;
    const CountedRun run(faulty.scenario);
    SnrTally tally;
    CheckSnr(run, tally, proof);
    proof.Check(tally.models > 40 && tally.below > 0 && tally.above30 > 0, "the run shows too little");
    table.rows.push_back({Number(faulty.scenario.interval_s, 1), std::to_string(tally.codes),
                          std::to_string(tally.models), std::to_string(tally.values),
                          std::to_string(tally.below), std::to_string(tally.above30),
                          Number(tally.widest, 3)});
  }
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
