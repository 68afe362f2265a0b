#include "host/analysis/figures/code_multipath.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "host/analysis/figures/result_rows.h"
#include "host/analysis/figures/system_order.h"
#include "host/analysis/geometry/constants.h"
#include "host/analysis/numeric/robust.h"
#include "host/observation/carriers.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kOverRootOfTwo = 0.7071067811865476;
constexpr double kOverRootOfSix = 0.4082482904638631;
constexpr std::int64_t kLongestHole_ns = static_cast<std::int64_t>(kLongestGap_s * 1e9);

using SumsBySignal = std::map<std::pair<char, std::string>, MultipathSums>;

struct WideLaneSum {
  PooledScatter cycles;
  double squares_m2 = 0;
};

void FillInWideLanes(const SumsBySignal& signals, AnalysisResult& result) {
  std::map<std::tuple<char, std::string, std::string>, WideLaneSum> pairs;
  for (const auto& [key, sums] : signals) {
    const auto& [system, code] = key;
    for (const MultipathSums::ByPartner& with : sums.Partners()) {
      const std::string partner = NameOf(with.partner);
      const bool higher = CarrierFrequency(system, code[0], 0) > CarrierFrequency(system, partner[0], 0);
      WideLaneSum& sum = pairs[{system, higher ? code : partner, higher ? partner : code}];
      sum.cycles.Add(with.wide_lane);
      sum.squares_m2 += with.wide_lane_squares;
    }
  }
  for (const auto& [key, sum] : pairs) {
    const auto& [system, first, second] = key;
    const auto spread = sum.cycles.Deviation(MultipathSums::kMinValues);
    if (!spread) continue;
    WideLaneFigures row;
    row.system = system;
    row.first = {first[0], first[1]};
    row.second = {second[0], second[1]};
    row.spread_cycles = spread;
    row.spread_m = std::sqrt(sum.squares_m2 / static_cast<double>(sum.cycles.freedom));
    row.values = static_cast<Count>(sum.cycles.values);
    result.wide_lanes.push_back(row);
  }
  std::stable_sort(result.wide_lanes.begin(), result.wide_lanes.end(),
                   [](const WideLaneFigures& a, const WideLaneFigures& b) {
                     return SystemPlace(a.system) < SystemPlace(b.system);
                   });
}

bool HasValue(const SignalTrack& s, std::int64_t epoch) {
  return s.IsReal(epoch) && !s.unstable && std::isfinite(s.code_m[RingSlot(epoch)]);
}

}  // namespace

void MultipathSums::Add(const MultipathSums& other) {
  moving.Add(other.moving);
  arcs.Add(other.arcs);
  noise.Add(other.noise);
  for (const ByPartner& more : other.partners_) {
    ByPartner& own = With(more.partner);
    own.values += more.values;
    own.wide_lane.Add(more.wide_lane);
    own.wide_lane_squares += more.wide_lane_squares;
  }
}

MultipathSums::ByPartner& MultipathSums::With(SignalCode partner) {
  for (ByPartner& known : partners_) {
    if (known.partner == partner) return known;
  }
  partners_.emplace_back();
  partners_.back().partner = partner;
  return partners_.back();
}

MultipathFigures MultipathSums::Figures() const {
  MultipathFigures figures;
  if (noise.Count() >= kMinValues) {
    const auto median = noise.Quantile(0.5);
    if (median) figures.code_noise_m = kSigmaOfMedian * *median;
  }
  if (partners_.empty()) return figures;
  figures.moving_m = moving.Rms(kMinValues);
  figures.whole_arc_m = arcs.Deviation(kMinValues);
  if (moving.Values() > 0) figures.values = moving.Values();
  figures.by_elevation = moving.Bins(kMinValues);
  const auto most =
      std::max_element(partners_.begin(), partners_.end(),
                       [](const ByPartner& a, const ByPartner& b) { return a.values < b.values; });
  figures.partner = NameOf(most->partner);
  return figures;
}

void CodeMultipath::SetInterval(double interval_s) {
  longest_step_ns_ = static_cast<std::int64_t>(kGapFactor * interval_s * 1e9);
}

void CodeMultipath::AddStep(const StepOutcome& outcome) {
  const SatelliteTrack& track = *outcome.track;
  Satellite& satellite = satellites_[track.satellite];
  if (outcome.rearranged) {
    Arrange(satellite.signals, outcome);
    if (keeps_blocks_) {
      for (Signal& signal : satellite.signals) signal.blocks.Keep();
    }
    FindPartners(track, satellite);
  }
  if (outcome.begins_arc) {
    for (Signal& signal : satellite.signals) End(signal);
    const StepState& first = track.At(track.first);
    const double elevation = ElevationDegrees(first);
    AddPhases({outcome, track.first, first.time_ns, elevation, IsUp(elevation, cutoff_deg_)}, satellite);
  }
  if (outcome.Breaks() != 0) EndBroken(outcome, satellite);
  AddPhases({outcome, outcome.step, outcome.state->time_ns, outcome.elevation_deg, outcome.up}, satellite);
}

/// Ends runs whose own or partner's phase does not go on.
void CodeMultipath::EndBroken(const StepOutcome& outcome, Satellite& satellite) {
  const std::size_t tracked = std::min<std::size_t>(outcome.track->signals.size(), kMaxSignals);
  for (std::size_t j = 0; j < tracked; ++j) {
    Signal& signal = satellite.signals[outcome.number[j]];
    const Run& run = signal.run;
    if (!run.open) continue;
    if (Has(outcome.Breaks(), j) || (!run.lone && Has(outcome.Breaks(), run.partner_place))) End(signal);
  }
}

/// Where the partners of open runs are now. A track that has lost one begins an arc, which ends every run.
void CodeMultipath::FindPartners(const SatelliteTrack& track, Satellite& satellite) {
  for (Signal& signal : satellite.signals) {
    for (std::size_t j = 0; j < track.signals.size() && j < kMaxSignals; ++j) {
      if (track.signals[j].code == signal.run.partner) signal.run.partner_place = j;
    }
  }
}

void CodeMultipath::AddPhases(const Place& at, Satellite& satellite) const {
  const std::size_t tracked = std::min<std::size_t>(at.outcome.track->signals.size(), kMaxSignals);
  for (std::size_t j = 0; j < tracked; ++j) {
    if (HasValue(at.Signal(j), at.epoch)) AddPhase(at, j, satellite);
  }
}

/// Adds the value of a signal, where its partner has a phase.
void CodeMultipath::AddPhase(const Place& at, std::size_t place, Satellite& satellite) const {
  const SignalTrack& s = at.Signal(place);
  Signal& signal = satellite.signals[at.outcome.number[place]];
  Run& run = signal.run;
  if (run.open && at.time_ns - run.last_ns > kLongestHole_ns) End(signal);
  if (run.open && (run.lone || (run.rank > 0 && !signal.moving.Full()))) {
    const auto better = FindPartner(*at.outcome.track, place, at.epoch);
    if (better && (run.lone || better->rank < run.rank)) End(signal);
  }
  if (!run.open) Begin(at, place, run);
  double value = s.code_m[RingSlot(at.epoch)] - s.X(at.epoch);
  if (!run.lone) {
    const SignalTrack& p = at.Signal(run.partner_place);
    if (p.unstable || !p.IsReal(at.epoch)) return;
    value -= run.coefficient * (s.X(at.epoch) - p.X(at.epoch));
  }
  if (std::isnan(run.last_m)) run.origin_m = value;
  value -= run.origin_m;
  AddNoise(at, value, signal);
  run.last_ns = at.time_ns;
  run.last_m = value;
  if (run.lone) return;
  signal.moving.Add(at.time_ns, value, at.elevation_deg, at.up, signal.sums.moving, signal.blocks);
  if (!at.up) return;
  run.arc.Add(value);
  if (CountsWideLane(at, place, satellite)) AddWideLane(at, place, run);
}

void CodeMultipath::Begin(const Place& at, std::size_t place, Run& run) {
  const SignalTrack& s = at.Signal(place);
  run = Run();
  run.open = true;
  run.last_ns = at.time_ns;
  const auto partner = FindPartner(*at.outcome.track, place, at.epoch);
  run.lone = !partner;
  if (run.lone) return;
  const SignalTrack& p = at.Signal(partner->place);
  run.partner = p.code;
  run.partner_place = partner->place;
  run.rank = partner->rank;
  run.coefficient = PartnerCoefficient(s.mu, p.mu);
  const double difference = s.frequency_hz - p.frequency_hz, sum = s.frequency_hz + p.frequency_hz;
  run.wide_lane_m = kLightSpeed_m_s / std::fabs(difference);
  run.wide_lane_terms = {s.frequency_hz / difference, -p.frequency_hz / difference, -s.frequency_hz / sum,
                         -p.frequency_hz / sum};
  for (double& term : run.wide_lane_terms) term /= run.wide_lane_m;
}

/// Where two signals are each other's partners their wide lane is counted once, by the higher one, which
/// comes first in an epoch.
bool CodeMultipath::CountsWideLane(const Place& at, std::size_t place, const Satellite& satellite) {
  const SignalTrack& s = at.Signal(place);
  const std::size_t partner = satellite.signals[at.outcome.number[place]].run.partner_place;
  if (s.mu < at.Signal(partner).mu) return true;
  const Run& other = satellite.signals[at.outcome.number[partner]].run;
  return !other.open || other.lone || other.partner != s.code;
}

/// Before the value is remembered as the last one.
void CodeMultipath::AddNoise(const Place& at, double value, Signal& signal) const {
  Run& run = signal.run;
  const bool next = at.time_ns - run.last_ns <= longest_step_ns_;
  const double change = next ? value - run.last_m : kAbsent;
  const double bend = change - run.last_change_m;
  run.last_change_m = change;
  if (!at.up) return;
  const double noise = run.lone ? std::fabs(bend) * kOverRootOfSix : std::fabs(change) * kOverRootOfTwo;
  if (std::isfinite(noise)) signal.sums.noise.Add(noise);
}

void CodeMultipath::AddWideLane(const Place& at, std::size_t place, Run& run) {
  const SignalTrack& s = at.Signal(place);
  const SignalTrack& p = at.Signal(run.partner_place);
  const std::size_t slot = RingSlot(at.epoch);
  const double cycles = run.wide_lane_terms[0] * s.phase_m[slot] + run.wide_lane_terms[1] * p.phase_m[slot] +
                        run.wide_lane_terms[2] * s.code_m[slot] + run.wide_lane_terms[3] * p.code_m[slot];
  if (std::isfinite(cycles)) run.wide_lane.Add(cycles);
}

void CodeMultipath::End(Signal& signal) {
  Run& run = signal.run;
  const bool open = run.open && !run.lone;
  run.open = false;
  if (!open || !signal.moving.End(signal.sums.moving, signal.blocks)) return;
  signal.sums.arcs.Add(run.arc);
  MultipathSums::ByPartner& with = signal.sums.With(run.partner);
  with.values += run.arc.count;
  with.wide_lane.Add(run.wide_lane);
  if (run.wide_lane.count > 1)
    with.wide_lane_squares += run.wide_lane.AboutMean() * run.wide_lane_m * run.wide_lane_m;
}

void CodeMultipath::EndBefore(std::int64_t decided_ns) {
  satellites_.ForEach([&](SatelliteId, Satellite& satellite) {
    for (Signal& signal : satellite.signals) {
      if (signal.run.open && decided_ns - signal.run.last_ns > kLongestHole_ns) End(signal);
    }
  });
}

void CodeMultipath::EndAll() {
  satellites_.ForEach([](SatelliteId, Satellite& satellite) {
    for (Signal& signal : satellite.signals) End(signal);
  });
}

void CodeMultipath::FillIn(AnalysisResult& result) const {
  SumsBySignal systems;
  satellites_.ForEach([&](SatelliteId id, const Satellite& satellite) {
    for (const Signal& live : satellite.signals) {
      Signal signal = live;
      End(signal);
      SatelliteSignalRow(result, id, signal.code).multipath = signal.sums.Figures();
      systems[{id.system, NameOf(signal.code)}].Add(signal.sums);
    }
  });
  for (const auto& [key, sums] : systems)
    SystemSignalRow(result, key.first, {key.second[0], key.second[1]}).multipath = sums.Figures();
  FillInWideLanes(systems, result);
}

}  // namespace orsolva_host::analysis
