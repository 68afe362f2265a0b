#include <fmt/format.h>

#include <cmath>
#include <set>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "tests/truth/counted_run.h"
#include "tests/truth/faulty_scenarios.h"
#include "tests/truth/proof.h"
#include "tests/truth/repooled.h"

namespace orsolva_test {
namespace {

using orsolva::QcResultCore;
using orsolva::QcSysAllResult;

constexpr int kBdsSlot = 2, kNewBdsSlot = 5;
constexpr int kFirstNewBds = 18, kFirstGeostationary = 59;

/// Several codes per band, so that systems have 1 to 10 combinations (GPS would have 12).
orsolva_host::Scenario ManyCodes(int epochs) {
  orsolva_host::Scenario scenario = Troubled(30, epochs, 21);
  scenario.signals = {{"G", {"1C", "1W", "2W", "2L", "5Q", "5X", "5I"}},
                      {"R", {"1C", "1P", "2C", "2P"}},
                      {"E", {"1C", "1X", "5Q", "6C"}},
                      {"J", {"1C", "1L", "2L", "5Q"}}};
  return scenario;
}

/// The combinations used for a satellite with several bands.
const orsolva::QcCodeCombination& CombinationsOf(const orsolva::QcResult& result, int slot, int prn) {
  if (slot != kBdsSlot || prn < kFirstNewBds) return result.All[slot].Combinations;
  const QcSysAllResult& newer = result.All[kNewBdsSlot];
  return prn >= kFirstGeostationary ? newer.AltCombinations : newer.Combinations;
}

/// Of several codes those of the third band on do not count for GPS and QZSS.
std::vector<int> CountedCodes(int system, const gnssqctoolkit::IList& list) {
  std::vector<int> codes;
  for (const std::int32_t code : list) {
    const char band = orsolva_host::SignalName(system, code)[0];
    const bool dropped = (LetterOf(system) == 'G' || LetterOf(system) == 'J') && band >= '5';
    if (!dropped || list.Count() == 1) codes.push_back(code);
  }
  return codes;
}

int BandsOf(int system, const RecountedSatellite& satellite) {
  std::set<char> bands;
  for (const auto& [code, figures] : satellite.codes) {
    if (figures.observed > 0) bands.insert(orsolva_host::SignalName(system, code)[0]);
  }
  return static_cast<int>(bands.size());
}

std::uint64_t DistinctTimes(const QcResultCore& core, bool slips, int slots) {
  std::set<std::pair<std::int64_t, double>> times;
  for (int b = 0; b < slots; ++b) {
    const orsolva::TimeList* list = slips ? core.Mp[b].SlipTimes : core.Mp[b].JumpTimes;
    for (int i = 0; list != nullptr && i < list->Size(); ++i) {
      times.insert({list->Get(i).time, list->Get(i).sec});
    }
  }
  return times.size();
}

struct ResultTally {
  std::size_t combinations = 0, satellites = 0, systems = 0, codes = 0;
};

/// Observed epochs of every combination, and the events of all bands in distinct epochs.
void CheckSatellites(const CountedRun& run, const Figures& figures, ResultTally& tally, Proof& proof) {
  for (const auto& [id, satellite] : run.recount.satellites) {
    const auto [system, prn] = id;
    if (BandsOf(system, satellite) < 2) continue;
    ++tally.satellites;
    const orsolva::QcCodeCombination& lists = CombinationsOf(figures.result, SlotOf(system), prn);
    for (int k = 0; k < lists.Count; ++k) {
      const QcResultCore& core = figures.result.All[SlotOf(system)].PerSat[prn - 1][k];
      const std::string name = fmt::format("{}, combination {}", NameOf(system, prn), k + 1);
      ++tally.combinations;
      proof.Check(core.ObservedEpochs == satellite.ObservedTogether(CountedCodes(system, lists.Lists[k])),
                  name + ": observed epochs");
      proof.Check(core.ExpectedEpochs == satellite.expected, name + ": expected epochs");
      proof.Check(core.SlipEpochs == DistinctTimes(core, true, 6), name + ": slip epochs");
      const int slots = LetterOf(system) == 'G' ? 3 : 2;
      const bool one = lists.Lists[k].Count() == 1;
      proof.Check(core.JumpEpochs == DistinctTimes(core, one, one ? 6 : slots), name + ": jump epochs");
    }
  }
}

Repooled PoolOf(const QcSysAllResult& slot, int combination) {
  Repooled pool;
  for (const auto& satellite : slot.PerSat) {
    if (satellite[combination].System != 0) pool.AddSatellite(satellite, combination);
  }
  return pool;
}

/// The first combination with the largest completeness.
int BestOf(const QcSysAllResult& slot) {
  int best = 0;
  for (int k = 1; k < slot.Combinations.Count; ++k) {
    if (PoolOf(slot, k).Completeness() > PoolOf(slot, best).Completeness()) best = k;
  }
  return best;
}

/// A satellite with nothing on the best combination is shown with its own best.
int ShownOf(const QcResultCore* combinations, int best) {
  if (combinations[best].Completeness >= 1e-16) return best;
  int own = 0;
  for (int k = 1; k < orsolva::kMaxCombinations; ++k) {
    if (combinations[k].Completeness > combinations[own].Completeness) own = k;
  }
  return own;
}

void CheckSystem(const Figures& figures, const result_qct& record, int s, int best, Proof& proof) {
  const QcSysAllResult& slot = figures.result.All[s];
  for (int k = 0; k < slot.Combinations.Count; ++k) {
    PoolOf(slot, k).Compare(slot.PerComb[k], fmt::format("slot {}, combination {}", s, k + 1), proof);
  }
  PoolOf(slot, best).CompareRecord(record.sys[s], true, fmt::format("slot {}", s), proof);
  for (int prn = 1; prn <= orsolva::kPrnsPerSlot; ++prn) {
    const QcResultCore* combinations = slot.PerSat[prn - 1];
    const QcResultCore& shown = combinations[ShownOf(combinations, best)];
    Repooled alone;
    alone.AddSystem(shown);
    for (std::size_t b = 0; b < alone.bands.size(); ++b) alone.bands[b].iod = shown.Mp[b].IodRms;
    alone.CompareRecord(record.sat[s][prn - 1], true, fmt::format("slot {}, number {}", s, prn), proof);
  }
}

void AbsorbEntry(const code_qc_entry& entry, code_qc_entry& sum, WeightedSum& multipath, WeightedSum& snr) {
  if (entry.observed_epochs > 0) {
    sum.expected_epochs += entry.expected_epochs;
    sum.observed_epochs += entry.observed_epochs;
  }
  sum.slip_count += entry.slip_count;
  sum.iod_slip_count += entry.iod_slip_count;
  multipath.Add(entry.mp_rms * entry.mp_rms, entry.mp_count);
  snr.Add(entry.snr, entry.snr_count);
}

/// The system rows of the per-code record from its satellite rows.
void CheckCodes(const total_code_qc_result& record, ResultTally& tally, Proof& proof) {
  for (int s = 0; s < 5; ++s) {
    for (int k = 0; k < record.sys[s].count; ++k) {
      const code_qc_entry& entry = record.sys[s].entries[k];
      const std::string name = "all satellites, " + CodeName(1 << s, entry.code);
      code_qc_entry sum = {};
      WeightedSum multipath, snr;
      for (int prn = 1; prn <= 64; ++prn) {
        const code_qc_entry* one = FindEntry(record, 1 << s, prn, entry.code);
        if (one != nullptr) AbsorbEntry(*one, sum, multipath, snr);
      }
      ++tally.codes;
      proof.Check(entry.expected_epochs == sum.expected_epochs, name + ": expected epochs");
      proof.Check(entry.observed_epochs == sum.observed_epochs, name + ": observed epochs");
      proof.Check(entry.slip_count == sum.slip_count && entry.iod_slip_count == sum.iod_slip_count,
                  name + ": events");
      proof.Check(entry.mp_count == multipath.count && Close(entry.mp_rms, std::sqrt(multipath.Mean())),
                  name + ": multipath");
      proof.Check(entry.snr_count == snr.count && Close(entry.snr, snr.Mean()), name + ": SNR");
    }
  }
}

void Describe(Proof& proof) {
  proof.injected =
      "a sky with faults (outages, slow starts, missing epochs) and one to three codes per band, so that a "
      "system has up to ten combinations of codes; once with all systems and once with two of them in the "
      "combined result";
  proof.must_say =
      "per satellite and combination the epochs in which all its codes were observed, counted independently "
      "from the delivered epochs, and the distinct epochs of its slips and jumps; per combination, per "
      "system, combined and per code the plain sums over the satellites, with the combination of the highest "
      "completeness chosen";
  proof.tolerance = "none for counts, completeness and choice; 1e-12 of a value for means and RMS";
  proof.reason =
      "counts are integers; means are sums over some ten thousand values whose order may differ, each "
      "addition rounding at 1.1e-16";
}

}  // namespace

void ProveResults(bool long_form, Proof& proof) {
  Describe(proof);
  ProofTable table{"Recomputed figures.",
                   {"combined systems", "satellites", "satellite combinations", "systems", "system codes"},
                   {},
                   1};
  for (const int mask : {31, 9}) {
    const CountedRun run(ManyCodes(long_form ? 2880 : 480), static_cast<unsigned>(mask));
    const std::unique_ptr<Figures> figures = FiguresOf(run.process);
    const result_qct& record = *run.results->Whole;
    ResultTally tally;
    CheckSatellites(run, *figures, tally, proof);
    Repooled total;
    for (int s = 0; s < 5; ++s) {
      const int best = BestOf(figures->result.All[s]);
      CheckSystem(*figures, record, s, best, proof);
      if ((mask >> s & 1) == 0) continue;
      total.AddSystem(figures->result.All[s].PerComb[best]);
      ++tally.systems;
    }
    total.CompareRecord(record.total, false, "combined", proof);
    CheckCodes(*run.results->Codes, tally, proof);
    proof.Check(tally.satellites > 40 && tally.combinations > 200, "the run shows too little");
    table.rows.push_back({mask == 31 ? "all" : "GPS and Galileo", std::to_string(tally.satellites),
                          std::to_string(tally.combinations), std::to_string(tally.systems),
                          std::to_string(tally.codes)});
  }
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
