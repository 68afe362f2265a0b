// Arcs and interruptions of the analysis against what was tracked.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/simulator/portable_math.h"
#include "host/simulator/scenario_json.h"
#include "tests/truth/analyzed_run.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::ObservationEpoch;
using orsolva_host::SatelliteId;
using orsolva_host::SatelliteObservation;
using orsolva_host::Scenario;
using orsolva_host::Simulation;
using orsolva_host::analysis::Count;
using orsolva_host::analysis::SignalFigures;

constexpr std::int64_t kLongestHole_ns = 600'000'000'000;
/// The elevation of the analysis is off by up to 0.005 degrees: arcs begin and end an epoch or two off.
constexpr double kAtCutoff_s = 2;

struct Tracked {
  Count arcs = 0, by_signal = 0, by_satellite = 0, by_receiver = 0, continuous = 0, broken = 0;
  std::vector<double> lengths_s;

  void Add(const Tracked& other) {
    arcs += other.arcs, by_signal += other.by_signal, by_satellite += other.by_satellite;
    by_receiver += other.by_receiver, continuous += other.continuous, broken += other.broken;
    lengths_s.insert(lengths_s.end(), other.lengths_s.begin(), other.lengths_s.end());
  }
  double Median() const {
    std::vector<double> sorted = lengths_s;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t half = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[half] : (sorted[half - 1] + sorted[half]) / 2;
  }
  double Longest() const { return *std::max_element(lengths_s.begin(), lengths_s.end()); }
};

/// Every phase from the cut-off up, as delivered.
class Record {
 public:
  void Take(const Simulation& simulation, const ObservationEpoch& epoch) {
    std::map<SatelliteId, double> elevations;
    for (const orsolva_host::SatelliteMoment& m : simulation.Moments())
      elevations[{m.system, static_cast<std::uint8_t>(m.number)}] = m.elevation_rad / orsolva_host::kRadian;
    if (epoch.events & orsolva_host::kPowerFailure) restarts_.push_back(epoch.time_ns);
    delivered_.push_back(epoch.time_ns);
    for (const SatelliteObservation& s : epoch.satellites) {
      with_phase_[s.id].insert(epoch.time_ns);
      observed_deg_.push_back(elevations[s.id]);
      for (std::size_t i = 0; i < s.signal_count; ++i) {
        const orsolva_host::SignalObservation& o = epoch.signals[s.first_signal + i];
        strengths_[s.id.system + NameOf(o.code)].push_back(static_cast<double>(o.snr_dbhz));
      }
      if (elevations[s.id] < simulation.Settings().truth_cutoff_deg) continue;
      for (std::size_t i = 0; i < s.signal_count; ++i)
        times_[{s.id, NameOf(epoch.signals[s.first_signal + i].code)}].push_back(epoch.time_ns);
    }
  }

  /// @param slips  of whole cycles, by time and satellite
  Tracked Of(SatelliteId satellite, const std::string& signal,
             const std::map<SlipKey, SlipSet>& slips) const {
    Tracked tracked;
    const auto found = times_.find({satellite, signal});
    if (found == times_.end()) return tracked;
    const std::vector<std::int64_t>& times = found->second;
    std::size_t first = 0;
    for (std::size_t i = 1; i <= times.size(); ++i) {
      const bool ends = i == times.size() || times[i] - times[i - 1] > kLongestHole_ns;
      const bool hole = !ends && !AreNext(times[i - 1], times[i]);
      const bool broken = !ends && (IsBroken(times[i - 1], times[i]) ||
                                    Slipped(slips, satellite, signal, times[i - 1], times[i]));
      if (hole) AddHole(satellite, times[i - 1], broken, tracked);
      if (!ends && !broken) continue;
      if (i - first > 1) {
        ++tracked.arcs;
        tracked.lengths_s.push_back(static_cast<double>(times[i - 1] - times[first]) * 1e-9);
      }
      first = i;
    }
    return tracked;
  }

  const std::map<std::pair<SatelliteId, std::string>, std::vector<std::int64_t>>& Times() const {
    return times_;
  }

  /// The least value with at least a twentieth at or below it.
  double WeakStrength(const std::string& signal) const { return LeastWith(0.05, strengths_.at(signal)); }
  double LowestElevation() const { return LeastWith(0.01, observed_deg_); }

 private:
  static double LeastWith(double part, std::vector<double> values) {
    const auto place = static_cast<std::ptrdiff_t>(std::ceil(part * static_cast<double>(values.size()))) - 1;
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return values[static_cast<std::size_t>(place)];
  }
  bool AreNext(std::int64_t a, std::int64_t b) const { return b - a == delivered_[1] - delivered_[0]; }
  /// Acquired again: away in an epoch that was delivered, or after a power failure.
  bool IsBroken(std::int64_t a, std::int64_t b) const {
    const auto between = std::upper_bound(delivered_.begin(), delivered_.end(), a);
    return *between < b || std::find(restarts_.begin(), restarts_.end(), b) != restarts_.end();
  }
  static bool Slipped(const std::map<SlipKey, SlipSet>& slips, SatelliteId satellite,
                      const std::string& signal, std::int64_t a, std::int64_t b) {
    return std::any_of(slips.begin(), slips.end(), [&](const auto& slip) {
      const auto& [time_ns, id] = slip.first;
      return id == satellite && time_ns > a && time_ns <= b && slip.second.sizes.count(signal) > 0;
    });
  }
  void AddHole(SatelliteId satellite, std::int64_t last_ns, bool broken, Tracked& tracked) const {
    const std::int64_t next_ns = last_ns + delivered_[1] - delivered_[0];
    const auto has = [&](const auto& entry) { return entry.second.count(next_ns) > 0; };
    if (std::none_of(with_phase_.begin(), with_phase_.end(), has)) {
      ++tracked.by_receiver;
    } else {
      ++(with_phase_.at(satellite).count(next_ns) > 0 ? tracked.by_signal : tracked.by_satellite);
    }
    ++(broken ? tracked.broken : tracked.continuous);
  }

  std::map<std::pair<SatelliteId, std::string>, std::vector<std::int64_t>> times_;
  std::map<SatelliteId, std::set<std::int64_t>> with_phase_;
  std::map<std::string, std::vector<double>> strengths_;
  std::vector<double> observed_deg_;
  std::vector<std::int64_t> delivered_, restarts_;
};

Scenario Troubled(bool long_form) {
  Scenario scenario;
  ReadScenario(
      R"({"seed": 7401, "faults": [
      {"kind": "missing_epoch", "at_s": 700, "duration_s": 5}, {"kind": "missing_epoch", "at_s": 1500, "duration_s": 9},
      {"kind": "power_failure", "at_s": 2400, "duration_s": 20},
      {"kind": "outage", "satellite": "G", "at_s": 1000, "duration_s": 7},
      {"kind": "outage", "at_s": 3000, "duration_s": 12},
      {"kind": "outage", "satellite": "E", "at_s": 1900, "duration_s": 700},
      {"kind": "outage", "duration_s": 6, "random": 40}, {"kind": "slip", "size": 3, "random": 60}]})",
      scenario);
  scenario.interval_s = 1;
  scenario.hours = long_form ? 6 : 1;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  return scenario;
}

void CheckArcs(const SignalFigures& row, const Tracked& truth, const std::string& name, Proof& proof) {
  proof.Check(row.arcs.arcs == truth.arcs, name + ": arcs");
  if (truth.arcs == 0 || !row.arcs.median_s || !row.arcs.longest_s) return;
  proof.Check(std::fabs(*row.arcs.longest_s - truth.Longest()) <= kAtCutoff_s, name + ": longest arc");
  proof.Check(std::fabs(*row.arcs.median_s - truth.Median()) <= 0.01 * truth.Median() + kAtCutoff_s,
              fmt::format("{}: median arc {} instead of {} s", name, *row.arcs.median_s, truth.Median()));
}

/// @return the interruptions of the row that were left unresolved
Count CheckInterruptions(const SignalFigures& row, const Tracked& truth, const std::string& name,
                         Proof& proof) {
  const auto& found = row.interruptions;
  proof.Check(found.by_signal == truth.by_signal, name + ": interruptions by the signal");
  proof.Check(found.by_satellite == truth.by_satellite, name + ": by the satellite");
  proof.Check(found.by_receiver == truth.by_receiver, name + ": by the receiver");
  proof.Check(found.continuous == truth.continuous, name + ": continuous");
  const Count unresolved = found.unresolved.value_or(0);
  proof.Check(found.slipped.value_or(0) + unresolved == truth.broken, name + ": slipped or unresolved");
  return unresolved;
}

/// Bins of 0.25 dB that are centred on their multiples; the mask to 0.1 degree.
void CheckWeakest(const AnalyzedRun& run, const Record& record, Proof& proof) {
  constexpr double kHalfBin_db = 0.125 + 1e-9, kMaskTolerance_deg = 0.1;
  ProofTable table{"Weak strengths, and the receiver's mask.", {"of", "true", "found"}, {}, 1};
  for (const SignalFigures& row : run.result.signals) {
    const std::string signal = row.system + NameOf(row.code);
    const double truth = record.WeakStrength(signal);
    const bool near = row.strength.p5_dbhz && std::fabs(*row.strength.p5_dbhz - truth) <= kHalfBin_db;
    proof.Check(near, fmt::format("{}: 5th percentile {} instead of {} dB-Hz", signal,
                                  row.strength.p5_dbhz.value_or(0), truth));
    table.rows.push_back({signal + ", dB-Hz", Number(truth, 2), Number(row.strength.p5_dbhz.value_or(0), 2)});
  }
  const double mask = run.result.mask.lowest_deg.value_or(-1);
  proof.Check(std::fabs(mask - record.LowestElevation()) <= kMaskTolerance_deg, fmt::format("mask {}", mask));
  table.rows.push_back({"mask, degrees", Number(record.LowestElevation(), 2), Number(mask, 1)});
  proof.tables.push_back(table);
}

}  // namespace

void ProveTracking(bool long_form, Proof& proof) {
  proof.figures = {"arcs",
                   "median_arc_s",
                   "longest_arc_s",
                   "interruptions_of_signals",
                   "interruptions_of_satellites",
                   "interruptions_of_receiver",
                   "continuous_interruptions",
                   "slipped_interruptions",
                   "unresolved_interruptions",
                   "strength_p5_dbhz",
                   "receiver_mask_deg"};
  proof.injected =
      "at 1 s: slips of three cycles on random signals, outages of random signals, of all GPS, of all "
      "Galileo "
      "for longer than ten minutes and of the whole receiver, epochs that are missing while tracking goes "
      "on, "
      "a power failure. After an outage signals are acquired again with other cycles";
  proof.must_say =
      "per signal of a satellite the arcs from 10 degrees up with their median and longest length, the "
      "interruptions by signal, satellite and receiver, and which of them are continuous; the 5th percentile "
      "of "
      "the strengths of each signal, and the first one of the elevations observed";
  proof.tolerance =
      "none for counts; 2 s for lengths, and 1 % for the median, which comes from classes of that width; "
      "half a "
      "bin of 0.25 dB; 0.1 degrees";
  proof.reason =
      "counts are integers; an elevation that is off by 0.005 degrees begins an arc an epoch earlier or "
      "later";
  Record record;
  const AnalyzedRun run = Analyze(Troubled(long_form), {},
                                  [&](const Simulation& s, const ObservationEpoch& e) { record.Take(s, e); });
  const std::map<SlipKey, SlipSet> slips = InjectedSlips(run.truth);
  std::map<char, Tracked> systems;
  std::map<char, Count> unresolved;
  for (const SignalFigures& row : run.result.satellite_signals) {
    const std::string signal = NameOf(row.code);
    const std::string name = NameOf(row.satellite) + " " + signal;
    const Tracked truth = record.Of(row.satellite, signal, slips);
    if (record.Times().count({row.satellite, signal}) == 0) {
      proof.Check(!row.arcs.arcs && !row.interruptions.continuous, name + ": figures of nothing");
      continue;
    }
    CheckArcs(row, truth, name, proof);
    unresolved[row.system] += CheckInterruptions(row, truth, name, proof);
    systems[row.system].Add(truth);
  }
  ProofTable table{"Sums over all signals of all satellites.",
                   {"system", "arcs", "median, s", "longest, s", "interruptions by signal", "by satellite",
                    "by receiver", "continuous", "slipped", "unresolved"},
                   {},
                   1};
  for (const auto& [system, all] : systems) {
    table.rows.push_back({std::string(1, system), std::to_string(all.arcs), Number(all.Median(), 0),
                          Number(all.Longest(), 0), std::to_string(all.by_signal),
                          std::to_string(all.by_satellite), std::to_string(all.by_receiver),
                          std::to_string(all.continuous), std::to_string(all.broken - unresolved[system]),
                          std::to_string(unresolved[system])});
  }
  proof.tables.push_back(table);
  CheckWeakest(run, record, proof);
}

}  // namespace orsolva_test
