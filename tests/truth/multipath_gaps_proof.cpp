#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <deque>

#include "tests/truth/faulty_scenarios.h"
#include "tests/truth/observed_run.h"
#include "tests/truth/proof.h"

namespace orsolva_test {
namespace {

using orsolva::PairEpochDetail;
using orsolva::RestartReason;
using orsolva_host::FaultKind;
using orsolva_host::Scenario;

constexpr int kEpochsBefore = 120;
constexpr int kEpochsAfter = 60;
constexpr double kMeanTolerance_m = 1e-6;

struct GapCase {
  double gap_s;
  RestartReason reason;
  const char* must_say;
};

constexpr GapCase kCases[] = {
    {242, RestartReason::kNone, "continues"},
    {242.5, RestartReason::kIonosphereSlip, "restarts by the geometry-free test, counted as a jump"},
    {599.5, RestartReason::kIonosphereSlip, "restarts by the geometry-free test, counted as a jump"},
    {600, RestartReason::kNone, "continues"},
    {600.5, RestartReason::kGap, "restarts silently"},
};

/// The receiver misses epochs but keeps its phases; a gap that is not an integer number of intervals is made
/// by late tags from there on.
Scenario GapScenario(double interval_s, double gap_s) {
  Scenario scenario;
  scenario.interval_s = interval_s;
  const double steps = std::floor(gap_s / interval_s);
  const double last = (kEpochsBefore - 1) * interval_s;
  const double next = last + steps * interval_s;
  const double end = next + kEpochsAfter * interval_s;
  scenario.hours = end / 3600;
  scenario.receiver.position_m = kEasternSite;
  scenario.receiver.cutoff_deg = kTruthCutoff_deg + 2;
  scenario.errors.multipath_m = {};
  scenario.faults.push_back(
      MakeFault(FaultKind::kMissingEpoch, last + interval_s, (steps - 1) * interval_s, 0));
  const double late = gap_s - steps * interval_s;
  if (late > 0) scenario.faults.push_back(MakeFault(FaultKind::kLateTag, next, end - next, late));
  return scenario;
}

/// The averaging of one pair, recomputed from its raw values.
struct PairMean {
  std::deque<double> window;
  Time_gbt last{};
  std::int64_t values = 0;
  int jumps = 0, at_gap = 0, wrong = 0;
  double largest_off_m = 0;
};

double MeanOfAll(const std::deque<double>& values) {
  double sum = 0;
  for (const double value : values) sum += value;
  return sum / static_cast<double>(values.size());
}

void AddEpoch(const PairEpochDetail& detail, const GapCase& gap, int window, PairMean& pair) {
  if (!detail.has_multipath) return;
  const double since = SecondsAfter(pair.last, detail.time);
  const bool at_gap = pair.values > 0 && std::fabs(since - gap.gap_s) < 1e-3;
  const RestartReason due = at_gap ? gap.reason : RestartReason::kNone;
  const RestartReason said =
      detail.restart == RestartReason::kFirstValue ? RestartReason::kNone : detail.restart;
  if (at_gap) ++pair.at_gap;
  if (said != due) ++pair.wrong;
  if (static_cast<int>(pair.window.size()) == window) pair.window.pop_front();
  pair.window.push_back(detail.multipath_m);
  if (due != RestartReason::kNone) pair.window.assign(pair.window.size(), detail.multipath_m);
  if (due == RestartReason::kIonosphereSlip) ++pair.jumps;
  const double residual = detail.multipath_m - MeanOfAll(pair.window);
  pair.largest_off_m = std::max(pair.largest_off_m, std::fabs(residual - detail.residual_m));
  pair.last = detail.time;
  ++pair.values;
}

struct GapFigures {
  std::size_t pairs = 0;
  int wrong = 0;
  double largest_off_m = 0;
};

GapFigures RunGap(double interval_s, const GapCase& gap, Proof& proof) {
  const Scenario scenario = GapScenario(interval_s, gap.gap_s);
  std::map<PairKey, PairMean> pairs;
  const ObservedRun run(scenario, [&](const PairEpochDetail& detail) {
    AddEpoch(detail, gap, MeanWindowOf(interval_s), pairs[KeyOf(detail)]);
  });
  proof.Check(run.Good(), "a batch was refused");
  GapFigures figures;
  for (const auto& [key, pair] : pairs) {
    if (pair.at_gap == 0 || pair.values < kEpochsBefore + kEpochsAfter) continue;
    const auto [system, prn, code, partner] = key;
    const std::string name = fmt::format("{} s, gap {} s, {} {}", interval_s, gap.gap_s, NameOf(system, prn),
                                         CodeName(system, code));
    ++figures.pairs;
    figures.wrong += pair.wrong;
    figures.largest_off_m = std::max(figures.largest_off_m, pair.largest_off_m);
    proof.Check(pair.wrong == 0, name + ": restart");
    proof.Check(pair.largest_off_m <= kMeanTolerance_m, name + ": residual");
    const code_qc_entry* entry = run.EntryOf(system, prn, code);
    if (entry != nullptr) proof.Check(entry->slip_count == pair.jumps, name + ": jumps in the record");
  }
  proof.Check(figures.pairs > 30, "too few pairs");
  return figures;
}

}  // namespace

void ProveMultipathGaps(bool, Proof& proof) {
  proof.injected =
      "epochs missing for the given time while the receiver keeps phase lock, with code noise; gaps that are "
      "not an integer number of intervals are made with late time tags";
  proof.must_say =
      "after a gap of 600 s the mean continues, after one of 600.5 s it restarts without counting a jump; a "
      "gap above 242 s and below 600 s is a slip to the geometry-free test, which restarts the mean and is "
      "counted";
  proof.tolerance = "none for the restarts; 1e-6 m for the residual of every epoch";
  proof.reason =
      "the residual is recomputed from the raw values of the pair, up to 1e6 m with their ambiguities, whose "
      "sums round at 1e-8 m";
  ProofTable table{
      "Gaps.",
      {"interval, s", "gap, s", "expected", "pairs", "wrong", "largest difference of a residual, m"},
      {},
      3};
  for (const double interval_s : {1.0, 15.0, 30.0}) {
    for (const GapCase& gap : kCases) {
      const GapFigures figures = RunGap(interval_s, gap, proof);
      table.rows.push_back({Number(interval_s, 0), Number(gap.gap_s, 1), gap.must_say,
                            std::to_string(figures.pairs), std::to_string(figures.wrong),
                            fmt::format("{:.1e}", figures.largest_off_m)});
    }
  }
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
