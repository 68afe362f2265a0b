#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "host/rinex/satellite_names.h"
#include "tests/truth/counted_run.h"
#include "tests/truth/faulty_scenarios.h"
#include "tests/truth/proof.h"

namespace orsolva_test {
namespace {

using orsolva_host::SatelliteTruth;

const SatelliteTruth* TruthOf(const orsolva_host::Truth& truth, int system, int prn) {
  for (const SatelliteTruth& s : truth.satellites) {
    if (s.system == LetterOf(system) && s.number == prn) return &s;
  }
  return nullptr;
}

std::uint64_t AboveCutoff(const SatelliteTruth& satellite, int code) {
  for (const orsolva_host::SignalTruth& signal : satellite.signals) {
    if (signal.number == code) return signal.above_cutoff;
  }
  return 0;
}

void CheckRunLevel(const CountedRun& run, Proof& proof) {
  const result_qct& whole = *run.results->Whole;
  const Recount& r = run.recount;
  const double interval = run.simulation.Settings().interval_s;
  const std::int64_t nominal = r.last - r.first + 1;
  const double hours = static_cast<double>(std::llround((r.last - r.first) * interval * 1000)) / 1000 / 3600;
  proof.Check(run.good, "a batch was refused");
  proof.Check(whole.lost_epochs == nominal - r.accepted,
              fmt::format("lost {} not {}", whole.lost_epochs, nominal - r.accepted));
  proof.Check(whole.duration == hours, fmt::format("duration {} not {}", whole.duration, hours));
}

struct CompletenessTally {
  std::size_t codes = 0;
  std::uint64_t expected = 0, observed = 0, late = 0, shift = 0;
};

// The library looks at a satellite one nominal travel time of 1.0007 s before the epoch, the true signal left
// 0.06 to 0.14 s before it: each crossing of the cut-off comes up to 0.95 s late.
void CompareWithTruth(const CountedRun& run, const RecountedSatellite& s, std::pair<int, int> id, int code,
                      std::uint64_t observed, CompletenessTally& tally, Proof& proof) {
  if (run.HasRepeatedEpochs()) return;  // the truth counts them twice
  const SatelliteTruth& truth = *TruthOf(run.simulation.TruthSoFar(), id.first, id.second);
  const std::uint64_t true_count = AboveCutoff(truth, code);
  const std::uint64_t shift = observed > true_count ? observed - true_count : true_count - observed;
  const double allowed =
      static_cast<double>(s.crossings) * std::ceil(0.95 / run.simulation.Settings().interval_s);
  proof.Check(static_cast<double>(shift) <= allowed,
              fmt::format("{}{:02} code {}: observed {}, true {}", truth.system, truth.number, code, observed,
                          true_count));
  proof.Check(static_cast<double>(s.expected) <= static_cast<double>(truth.above_cutoff) + allowed,
              fmt::format("{}{:02}: more expected than visible", truth.system, truth.number));
  tally.shift = std::max(tally.shift, shift);
}

void CheckSatellites(const CountedRun& run, CompletenessTally& tally, Proof& proof) {
  for (const auto& [id, s] : run.recount.satellites) {
    for (const auto& [number, code] : s.codes) {
      const code_qc_entry* entry = run.EntryOf(id.first, id.second, number);
      const std::string name = fmt::format("{} {}", NameOf(id.first, id.second), CodeName(id.first, number));
      if (entry == nullptr) {
        proof.Check(code.observed == 0, name + " has no entry");
        continue;
      }
      ++tally.codes;
      tally.expected += entry->expected_epochs;
      tally.observed += entry->observed_epochs;
      proof.Check(entry->expected_epochs == s.expected,
                  fmt::format("{}: expected {} not {}", name, entry->expected_epochs, s.expected));
      proof.Check(entry->observed_epochs == code.observed,
                  fmt::format("{}: observed {} not {}", name, entry->observed_epochs, code.observed));
      const double ratio =
          s.expected ? static_cast<double>(code.observed) / static_cast<double>(s.expected) : 0.0;
      proof.Check(entry->completeness == ratio, name + ": completeness is not observed / expected");
      CompareWithTruth(run, s, id, number, code.observed, tally, proof);
    }
  }
}

void Describe(Proof& proof) {
  proof.injected =
      "a receiver that starts three epochs late, lists satellites 60 epochs after they rise above 5 degrees "
      "and up to 40 s after an outage, GPS 5Q nine epochs after the others; outages of the whole receiver "
      "(across the boundary of two batches), of 25 random signals, of all QZSS to the end, of four random "
      "signals to the end; missing epochs; in one run duplicate and late epochs; batches of 100 to 430 "
      "epochs";
  proof.must_say =
      "per satellite and code the expected and observed epochs of an independent count, from the delivered "
      "epochs and the simulator's own orbits; for the run the lost epochs and the duration";
  proof.tolerance =
      "none (equality) against the recount; against the simulator's count of tracked epochs above the "
      "cut-off one epoch per crossing at 1 s and more, ten at 0.1 s";
  proof.reason =
      "counts are integers. The library evaluates elevations at a nominal travel time of 1.0007 s before the "
      "epoch, while the true signal left up to 0.95 s later: each crossing of the cut-off may be late by "
      "that much. Epochs are expected from the first to the last one that lists the satellite: signals not "
      "yet acquired after rising, or lost before setting, are not counted as missing";
}

}  // namespace

void ProveCompleteness(bool long_form, Proof& proof) {
  Describe(proof);
  ProofTable table{"Sums over all satellites and codes.",
                   {"interval, s", "duplicate epochs", "epochs", "batches", "lost epochs", "satellite codes",
                    "expected", "observed", "largest shift against truth, epochs"},
                   {},
                   2};
  for (const FaultyScenario& faulty : FaultyScenarios(long_form)) {
    const CountedRun run(faulty.scenario);
    CheckRunLevel(run, proof);
    CompletenessTally tally;
    CheckSatellites(run, tally, proof);
    proof.Check(tally.codes > 50 && run.results->Whole->lost_epochs > 0, "the run shows too little");
    table.rows.push_back({Number(faulty.scenario.interval_s, 1), faulty.repeated ? "yes" : "no",
                          std::to_string(run.recount.accepted), std::to_string(run.batches),
                          std::to_string(run.results->Whole->lost_epochs), std::to_string(tally.codes),
                          std::to_string(tally.expected), std::to_string(tally.observed),
                          faulty.repeated ? "-" : std::to_string(tally.shift)});
  }
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
