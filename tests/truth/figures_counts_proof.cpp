#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "host/simulator/portable_math.h"
#include "host/simulator/scenario_json.h"
#include "tests/truth/analyzed_run.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::kNanosecondsPerSecond;
using orsolva_host::ObservationEpoch;
using orsolva_host::SatelliteId;
using orsolva_host::SatelliteObservation;
using orsolva_host::Scenario;
using orsolva_host::SignalObservation;
using orsolva_host::Simulation;
using orsolva_host::analysis::Count;
using orsolva_host::analysis::DataGap;
using orsolva_host::analysis::SignalFigures;

/// The analysis evaluates elevations without the signal's travel and from a cubic over half an hour.
constexpr double kElevationDoubt_deg = 0.005;

/// An independent count of the epochs delivered.
struct Recount {
  struct Satellite {
    Count observed = 0;
    Count doubtful_horizon = 0, doubtful_cutoff = 0;  ///< epochs so near the limit that either is right
  };
  std::map<std::string, Count> codes;  ///< by system and signal
  std::map<SatelliteId, Satellite> satellites;
  std::set<std::int64_t> present, usable;  ///< nominal numbers
  std::int64_t first_ns = 0, last_ns = 0;
  std::int64_t interval_ns = 0;

  void Take(const Simulation& simulation, const ObservationEpoch& epoch);
  std::vector<DataGap> Gaps() const;
  Count Expected() const { return static_cast<Count>((last_ns - first_ns) / interval_ns) + 1; }
};

void Recount::Take(const Simulation& simulation, const ObservationEpoch& epoch) {
  if (interval_ns == 0) first_ns = epoch.time_ns;
  interval_ns = std::llround(simulation.Settings().interval_s * 1e9);
  last_ns = epoch.time_ns;
  const std::int64_t number = (epoch.time_ns - first_ns) / interval_ns;
  int with_two_bands = 0;
  for (const SatelliteObservation& s : epoch.satellites) {
    std::set<char> bands;
    for (std::size_t i = 0; i < s.signal_count; ++i) {
      const SignalObservation& o = epoch.signals[s.first_signal + i];
      ++codes[s.id.system + NameOf(o.code)];
      bands.insert(o.code.band);
    }
    ++satellites[s.id].observed;
    with_two_bands += bands.size() > 1;
  }
  if (!epoch.satellites.empty()) present.insert(number);
  if (with_two_bands >= 4) usable.insert(number);
  for (const orsolva_host::SatelliteMoment& m : simulation.Moments()) {
    const double elevation_deg = m.elevation_rad / orsolva_host::kRadian;
    Satellite& satellite = satellites[{m.system, static_cast<std::uint8_t>(m.number)}];
    satellite.doubtful_horizon += elevation_deg < kElevationDoubt_deg;
    satellite.doubtful_cutoff +=
        std::fabs(elevation_deg - simulation.Settings().truth_cutoff_deg) < kElevationDoubt_deg;
  }
}

std::vector<DataGap> Recount::Gaps() const {
  std::vector<DataGap> gaps;
  const auto at = [this](std::int64_t number) { return first_ns + number * interval_ns; };
  std::int64_t before = 0;
  bool any = false;
  for (const std::int64_t number : present) {
    const std::int64_t lost = number - before - (any ? 1 : 0);
    if (lost > 0) gaps.push_back({at(before), at(number), static_cast<Count>(lost)});
    before = number;
    any = true;
  }
  return gaps;
}

Scenario Interrupted(double interval_s, bool long_form) {
  Scenario scenario;
  ReadScenario(
      R"({"seed": 7201, "receiver": {"start_up_s": 120, "acquisition_s": 60, "signal_delay_s": {"G5Q": 90}},
    "faults": [{"kind": "missing_epoch", "at_s": 1800, "duration_s": 330},
      {"kind": "missing_epoch", "at_s": 2400, "duration_s": 1},
      {"kind": "outage", "at_s": 3600, "duration_s": 240}, {"kind": "power_failure", "at_s": 4200, "duration_s": 300},
      {"kind": "outage", "duration_s": 120, "random": 30}, {"kind": "outage", "satellite": "E", "at_s": 5000,
       "duration_s": 200}]})",
      scenario);
  scenario.interval_s = interval_s;
  scenario.hours = interval_s < 30 ? 2 : long_form ? 72 : 24;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  return scenario;
}

bool SameGaps(const std::vector<DataGap>& a, const std::vector<DataGap>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const DataGap& x, const DataGap& y) {
    return x.last_before_ns == y.last_before_ns && x.first_after_ns == y.first_after_ns &&
           x.missing_epochs == y.missing_epochs;
  });
}

void CheckSpan(const AnalyzedRun& run, const Recount& recount, Proof& proof) {
  const auto& span = run.result.span;
  proof.Check(span.interval_s * 1e9 == static_cast<double>(recount.interval_ns), "interval");
  proof.Check(span.first_ns == recount.first_ns && span.last_ns == recount.last_ns, "first or last epoch");
  proof.Check(span.expected_epochs == recount.Expected(), "expected epochs");
  proof.Check(span.present_epochs == recount.present.size(), "present epochs");
  proof.Check(span.usable_epochs == recount.usable.size(), "usable epochs");
  proof.Check(span.lost_epochs == recount.Expected() - recount.present.size(), "lost epochs");
  proof.Check(SameGaps(span.gaps, recount.Gaps()), "gaps");
  for (const SignalFigures& signal : run.result.signals) {
    const std::string name = signal.system + NameOf(signal.code);
    const Count truth = recount.codes.at(name);
    proof.Check(signal.codes == truth && signal.phases == truth && signal.strengths == truth,
                name + ": values");
  }
}

struct Shift {
  Count expected = 0, observed = 0, most = 0;  ///< largest difference of a signal of a satellite, epochs
};

/// @param doubtful  epochs near the limit
void CheckCompleteness(const orsolva_host::analysis::CompletenessFigures& figures, Count expected,
                       Count observed, Count doubtful, const std::string& name, Shift& shift, Proof& proof) {
  const auto difference = [](Count a, Count b) { return a > b ? a - b : b - a; };
  // A satellite that never comes that high has no figure.
  proof.Check((figures.expected && figures.observed && figures.ratio) || expected <= doubtful,
              name + ": absent");
  if (!figures.expected || !figures.observed) return;
  proof.Check(!figures.ratio || *figures.ratio == static_cast<double>(*figures.observed) /
                                                      static_cast<double>(*figures.expected),
              name + ": ratio");
  const Count off =
      std::max(difference(*figures.expected, expected), difference(*figures.observed, observed));
  proof.Check(off <= doubtful,
              fmt::format("{}: {} of {} instead of {} of {}, {} doubtful", name, *figures.observed,
                          *figures.expected, observed, expected, doubtful));
  shift.expected += *figures.expected;
  shift.observed += *figures.observed;
  shift.most = std::max(shift.most, off);
}

void CheckSatellites(const AnalyzedRun& run, const Recount& recount, Shift& horizon, Shift& cutoff,
                     Proof& proof) {
  for (const orsolva_host::SatelliteTruth& s : run.truth.satellites) {
    const SatelliteId id = {s.system, static_cast<std::uint8_t>(s.number)};
    const auto counted = recount.satellites.find(id);
    if (counted == recount.satellites.end() || counted->second.observed == 0) continue;
    for (const orsolva_host::SignalTruth& t : s.signals) {
      if (t.tracked == 0) continue;
      const std::string name = NameOf(id) + " " + t.name;
      const auto row =
          std::find_if(run.result.satellite_signals.begin(), run.result.satellite_signals.end(),
                       [&](const SignalFigures& f) { return f.satellite == id && NameOf(f.code) == t.name; });
      proof.Check(row != run.result.satellite_signals.end(), name + ": no row");
      if (row == run.result.satellite_signals.end()) continue;
      // Below the horizon the doubtful epochs are as many, and a crossing between two epochs adds one.
      CheckCompleteness(row->horizon, s.visible, t.tracked, 2 * counted->second.doubtful_horizon + 2,
                        name + " from the horizon", horizon, proof);
      CheckCompleteness(row->cutoff, s.above_cutoff, t.above_cutoff, counted->second.doubtful_cutoff,
                        name + " from the cut-off", cutoff, proof);
    }
  }
}

}  // namespace

void ProveCountedEpochs(bool long_form, Proof& proof) {
  proof.figures = {"data_interval_s",
                   "nominal_epochs",
                   "present_epochs",
                   "usable_epochs",
                   "missing_epochs",
                   "data_gaps",
                   "horizon_expected_epochs",
                   "horizon_observed_epochs",
                   "horizon_completeness_ratio",
                   "cutoff_expected_epochs",
                   "cutoff_observed_epochs",
                   "cutoff_completeness_ratio",
                   "code_values",
                   "phase_values",
                   "strength_values"};
  proof.injected =
      "a receiver that starts late and lists satellites a minute after they rise, G5Q later still; missing "
      "epochs, "
      "an outage of the whole receiver with empty epochs, a power failure, outages of 30 random signals and "
      "of all "
      "Galileo";
  proof.must_say =
      "epochs expected, present, usable and lost, every gap with its ends, values per signal; per satellite "
      "and "
      "signal the epochs expected and observed from the horizon and from the cut-off of 10 degrees";
  proof.tolerance =
      "none (equality); for completeness the epochs in which the satellite is within 0.005 degrees of the "
      "limit";
  proof.reason =
      "counts are integers. The analysis takes elevations without the signal's travel and from a cubic over "
      "half an "
      "hour, good to 0.002 degrees; nearer to the limit either answer is right";
  ProofTable table{
      "Sums over all signals of all satellites.",
      {"interval, s", "expected epochs", "present", "usable", "lost", "gaps", "horizon: expected", "observed",
       "cut-off: expected", "observed", "largest difference of a signal, epochs"},
      {},
      1};
  for (const double interval_s : {30.0, 1.0}) {
    Recount recount;
    const AnalyzedRun run =
        Analyze(Interrupted(interval_s, long_form), {},
                [&](const Simulation& s, const ObservationEpoch& e) { recount.Take(s, e); });
    CheckSpan(run, recount, proof);
    Shift horizon, cutoff;
    CheckSatellites(run, recount, horizon, cutoff, proof);
    proof.Check(run.result.span.gaps.size() >= 5, "too few gaps");
    table.rows.push_back(
        {Number(interval_s, 0), std::to_string(recount.Expected()), std::to_string(recount.present.size()),
         std::to_string(recount.usable.size()), std::to_string(recount.Expected() - recount.present.size()),
         std::to_string(run.result.span.gaps.size()), std::to_string(horizon.expected),
         std::to_string(horizon.observed), std::to_string(cutoff.expected), std::to_string(cutoff.observed),
         std::to_string(std::max(horizon.most, cutoff.most))});
  }
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
