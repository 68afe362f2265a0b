#include <fmt/format.h>

#include <cmath>
#include <set>

#include "host/rinex/signal_codes.h"
#include "tests/truth/faulty_scenarios.h"
#include "tests/truth/observed_run.h"
#include "tests/truth/proof.h"

namespace orsolva_test {
namespace {

using orsolva::PairEpochDetail;
using orsolva::RestartReason;
using orsolva_host::FaultKind;
using orsolva_host::Scenario;

constexpr double kMargin_m = 0.05;  // well above the rounding of the observations

/// Threshold of a band by its RINEX digit, m.
double ThresholdOf(char system, char band) {
  if (system == 'G' || system == 'J') return band == '2' ? 5.75 : 5.5;
  if (system == 'R') return band == '2' ? 6.25 : 5.6;
  return 5.4;
}

const std::map<std::string, std::vector<std::string>> kSignals = {
    {"G", {"1C", "2W", "5Q"}},       {"R", {"1C", "2C"}},        {"E", {"1C", "5Q", "7Q", "8Q", "6C"}},
    {"J", {"1C", "2L", "5Q", "6L"}}, {"C2", {"2I", "7I", "6I"}}, {"C3", {"2I", "6I", "1P", "5P", "7D"}}};

/// A step J of a code comes out as the residual J (1 - 1/N), less the mean of the residuals J (1 - 1/N)^2.
struct Steps {
  explicit Steps(int window) : share((1 - 1.0 / window) * (1 - 1.0 / window)) {}
  double Below(double threshold) const { return (threshold - kMargin_m) / share; }
  double Above(double threshold) const { return (threshold + kMargin_m) / share; }
  double share;
};

/// Three steps of every code: one below the threshold, one above it, and one above it back down.
struct JumpPlan {
  explicit JumpPlan(double interval_s)
      : window(MeanWindowOf(interval_s)), below(3 * window), above(6 * window), back(9 * window) {}
  int window;
  std::int64_t below, above, back;
};

void AddSteps(char system, const std::string& name, const JumpPlan& plan, Scenario& scenario) {
  const Steps steps(plan.window);
  const double threshold = ThresholdOf(system, name[0]);
  const auto add = [&](std::int64_t epoch, double size) {
    scenario.faults.push_back(MakeFault(
        FaultKind::kCodeJump, static_cast<double>(epoch) * scenario.interval_s, 0, size, {system, 0, name}));
  };
  add(plan.below, steps.Below(threshold));
  add(plan.above, steps.Above(threshold));
  add(plan.back, -steps.Above(threshold));
}

Scenario JumpScenario(double interval_s, const JumpPlan& plan) {
  Scenario scenario;
  scenario.interval_s = interval_s;
  scenario.hours = 12 * plan.window * interval_s / 3600;
  scenario.receiver.position_m = kEasternSite;
  scenario.receiver.cutoff_deg = kTruthCutoff_deg + 2;
  scenario.signals = kSignals;
  Silence(scenario.errors);
  std::set<std::string> done;
  for (const auto& [group, names] : kSignals) {
    for (const std::string& name : names) {
      if (done.insert(group.substr(0, 1) + name).second) AddSteps(group[0], name, plan, scenario);
    }
  }
  return scenario;
}

/// What happened to one pair.
struct PairHistory {
  std::int64_t first = -1, values = 0;
  int at_below = 0, at_above = 0, elsewhere = 0;
  bool always_counting = true;
};

void AddEpoch(const PairEpochDetail& detail, std::int64_t epoch, const JumpPlan& plan, PairHistory& pair) {
  if (!detail.has_multipath) return;
  if (pair.first < 0) pair.first = epoch;
  ++pair.values;
  pair.always_counting = pair.always_counting && detail.counting;
  if (detail.restart == RestartReason::kNone || detail.restart == RestartReason::kFirstValue) return;
  const bool jump = detail.restart == RestartReason::kJump;
  if (jump && epoch == plan.below) {
    ++pair.at_below;
  } else if (jump && (epoch == plan.above || epoch == plan.back)) {
    ++pair.at_above;
  } else {
    ++pair.elsewhere;
  }
}

struct BandJumps {
  std::size_t pairs = 0;
  int below = 0, above = 0, elsewhere = 0;
  double threshold = 0;
};

void AddPair(const PairKey& key, const PairHistory& pair, const ObservedRun& run, BandJumps& band,
             Proof& proof) {
  const auto [system, prn, code, partner] = key;
  const std::string name = fmt::format("{} {}", NameOf(system, prn), CodeName(system, code));
  ++band.pairs;
  band.below += pair.at_below;
  band.above += pair.at_above;
  band.elsewhere += pair.elsewhere;
  proof.Check(pair.at_below == 0, name + ": restart below the threshold");
  proof.Check(pair.at_above == 2, name + ": no restart above the threshold");
  proof.Check(pair.elsewhere == 0, name + ": restart without a step");
  const code_qc_entry* entry = run.EntryOf(system, prn, code);
  if (entry != nullptr) proof.Check(entry->slip_count == 2, name + ": jumps in the record");
}

void AddRows(double interval_s, ProofTable& table, Proof& proof) {
  const JumpPlan plan(interval_s);
  const Scenario scenario = JumpScenario(interval_s, plan);
  std::map<PairKey, PairHistory> pairs;
  const ObservedRun run(scenario, [&](const PairEpochDetail& detail) {
    AddEpoch(detail, EpochNumber(scenario, detail.time), plan, pairs[KeyOf(detail)]);
  });
  proof.Check(run.Good(), "a batch was refused");
  std::map<std::string, BandJumps> bands;
  for (const auto& [key, pair] : pairs) {
    const auto [system, prn, code, partner] = key;
    const bool steady = pair.first >= 0 && pair.first <= plan.below - plan.window && pair.always_counting &&
                        pair.values == 12 * plan.window - pair.first;
    if (!steady) continue;
    BandJumps& band = bands[BandLabel(system, code)];
    band.threshold = ThresholdOf(LetterOf(system), orsolva_host::SignalName(system, code)[0]);
    AddPair(key, pair, run, band, proof);
  }
  proof.Check(bands.size() == 19, fmt::format("{} bands are seen", bands.size()));
  const Steps steps(plan.window);
  for (const auto& [name, band] : bands) {
    table.rows.push_back({Number(interval_s, 0), name, Number(band.threshold, 2), std::to_string(plan.window),
                          std::to_string(band.pairs), Number(steps.Below(band.threshold), 3),
                          std::to_string(band.below), Number(steps.Above(band.threshold), 3),
                          std::to_string(band.above), std::to_string(band.elsewhere)});
  }
}

}  // namespace

void ProveMultipathJumps(bool, Proof& proof) {
  proof.injected =
      "on every signal a code step just below the threshold of its band, later one just above it, later the "
      "same step back; no noise";
  proof.must_say =
      "no restart at the first step, a restart at the second and the third, none elsewhere; two jumps in the "
      "per-code record. A step J appears as the residual J (1 - 1/N), and minus the mean of the residuals as "
      "J (1 - 1/N)^2: the steps are (threshold -/+ 0.05 m) / (1 - 1/N)^2";
  proof.tolerance = "none: every pair of every satellite that is tracked throughout";
  proof.reason = "the margin of 0.05 m to the threshold is well above the rounding of the observations";
  ProofTable table{"Code steps and restarts of the averaging.",
                   {"interval, s", "band", "threshold, m", "window", "pairs", "step below, m", "restarts",
                    "steps above, m", "restarts", "restarts elsewhere"},
                   {},
                   2};
  for (const double interval_s : {1.0, 15.0, 30.0}) AddRows(interval_s, table, proof);
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
