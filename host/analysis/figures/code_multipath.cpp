#include "host/analysis/figures/code_multipath.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "host/analysis/figures/result_rows.h"
#include "host/analysis/geometry/constants.h"
#include "host/observation/carriers.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kSigmaOfMedian = 1.4826;  // of normal values over the median of their sizes
constexpr double kRootOfTwo = 1.4142135623730951;
constexpr double kRootOfSix = 2.449489742783178;

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
    const auto spread = sum.cycles.Deviation(MultipathSums::kLeastValues);
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
  if (noise.Count() >= kLeastValues) {
    const auto median = noise.Quantile(0.5);
    if (median) figures.code_noise_m = kSigmaOfMedian * *median;
  }
  if (partners_.empty()) return figures;
  figures.moving_m = moving.Rms(kLeastValues);
  figures.whole_arc_m = arcs.Deviation(kLeastValues);
  if (moving.Values() > 0) figures.values = moving.Values();
  figures.by_elevation = moving.Bins(kLeastValues);
  const auto most =
      std::max_element(partners_.begin(), partners_.end(),
                       [](const ByPartner& a, const ByPartner& b) { return a.values < b.values; });
  figures.partner = NameOf(most->partner);
  return figures;
}

void CodeMultipath::AddStep(const StepOutcome& outcome) {
  const SatelliteTrack& track = *outcome.track;
  Satellite& satellite = satellites_[track.satellite];
  if (outcome.begins_arc) {
    for (Signal& signal : satellite.signals) End(signal);
    const StepState& first = track.At(track.first);
    const double elevation = ElevationDegrees(first);
    const Place at{track, track.first, first.time_ns, elevation, IsUp(elevation, cutoff_deg_)};
    for (std::size_t j = 0; j < track.signals.size() && j < kMostSignals; ++j) AddPhase(at, j, satellite);
  }
  for (std::size_t j = 0; j < track.signals.size() && j < kMostSignals; ++j) {
    Signal& signal = StateOf(satellite.signals, track.signals[j].code, j);
    if (!signal.run.open) continue;
    const SignalTrack* partner = PartnerOf(track, signal.run);
    const bool partner_breaks = partner != nullptr && outcome.signals[signal.run.partner_place].Breaks();
    if (outcome.signals[j].Breaks() || partner_breaks) End(signal);
  }
  const Place at{track, outcome.step, outcome.state->time_ns, outcome.elevation_deg, outcome.up};
  for (std::size_t j = 0; j < track.signals.size() && j < kMostSignals; ++j) AddPhase(at, j, satellite);
}

/// The partner of a run, wherever it is in the track now; null where it is not.
const SignalTrack* CodeMultipath::PartnerOf(const SatelliteTrack& track, Run& run) {
  if (run.lone) return nullptr;
  if (run.partner_place >= track.signals.size() || track.signals[run.partner_place].code != run.partner) {
    const auto found = std::find_if(track.signals.begin(), track.signals.end(),
                                    [&](const SignalTrack& s) { return s.code == run.partner; });
    if (found == track.signals.end()) return nullptr;
    run.partner_place = static_cast<std::size_t>(found - track.signals.begin());
  }
  return &track.signals[run.partner_place];
}

void CodeMultipath::AddPhase(const Place& at, std::size_t place, Satellite& satellite) const {
  const SignalTrack& s = at.track.signals[place];
  if (!HasValue(s, at.epoch)) return;
  Signal& signal = StateOf(satellite.signals, s.code, place);
  Run& run = signal.run;
  if (run.open && SecondsBetween(at.time_ns, run.last_ns) > kLongestGap_s) End(signal);
  if (run.open && (run.lone || (run.rank > 0 && !run.moving.Full()))) {
    const auto better = FindPartner(at.track, place, at.epoch);
    if (better && (run.lone || better->rank < run.rank)) End(signal);
  }
  if (!run.open) Begin(at, place, run);
  Continue(at, place, satellite, signal);
}

void CodeMultipath::Begin(const Place& at, std::size_t place, Run& run) {
  const SignalTrack& s = at.track.signals[place];
  run = Run();
  run.open = true;
  run.last_ns = at.time_ns;
  const auto partner = FindPartner(at.track, place, at.epoch);
  run.lone = !partner;
  if (run.lone) return;
  const SignalTrack& p = at.track.signals[partner->place];
  run.partner = p.code;
  run.partner_place = partner->place;
  run.rank = partner->rank;
  run.coefficient = PartnerCoefficient(s.mu, p.mu);
  run.wide_lane_m = kLightSpeed_m_s / std::fabs(s.frequency_hz - p.frequency_hz);
}

/// The value of an epoch, where the partner has one.
void CodeMultipath::Continue(const Place& at, std::size_t place, const Satellite& satellite,
                             Signal& signal) const {
  const SignalTrack& s = at.track.signals[place];
  Run& run = signal.run;
  double value = s.code_m[RingSlot(at.epoch)] - s.X(at.epoch);
  if (!run.lone) {
    const SignalTrack* p = PartnerOf(at.track, run);
    if (p == nullptr || p->unstable || !p->IsReal(at.epoch)) return;
    value -= run.coefficient * (s.X(at.epoch) - p->X(at.epoch));
  }
  if (std::isnan(run.last_m)) run.origin_m = value;
  value -= run.origin_m;
  AddNoise(at, value, signal);
  run.last_ns = at.time_ns;
  run.last_m = value;
  if (run.lone) return;
  run.moving.Add(at.time_ns, value, at.elevation_deg, cutoff_deg_, signal.sums.moving);
  if (!at.up) return;
  run.arc.Add(value);
  const SignalTrack& p = at.track.signals[run.partner_place];
  if (s.frequency_hz > p.frequency_hz || !IsCounted(p, s.code, satellite)) AddWideLane(at, place, run);
}

/// Whether the higher of two signals, which comes first in an epoch, counts their wide lane already.
bool CodeMultipath::IsCounted(const SignalTrack& higher, SignalCode lower, const Satellite& satellite) {
  return std::any_of(satellite.signals.begin(), satellite.signals.end(), [&](const Signal& other) {
    return other.code == higher.code && other.run.open && !other.run.lone && other.run.partner == lower;
  });
}

/// Before the value is remembered as the last one.
void CodeMultipath::AddNoise(const Place& at, double value, Signal& signal) const {
  Run& run = signal.run;
  const bool next = SecondsBetween(at.time_ns, run.last_ns) <= kGapFactor * interval_s_;
  const double change = next ? value - run.last_m : kAbsent;
  const double bend = change - run.last_change_m;
  run.last_change_m = change;
  if (!at.up) return;
  const double noise = run.lone ? std::fabs(bend) / kRootOfSix : std::fabs(change) / kRootOfTwo;
  if (std::isfinite(noise)) signal.sums.noise.Add(noise);
}

void CodeMultipath::AddWideLane(const Place& at, std::size_t place, Run& run) {
  const SignalTrack& s = at.track.signals[place];
  const SignalTrack& p = at.track.signals[run.partner_place];
  const std::size_t slot = RingSlot(at.epoch);
  const double phase = (s.frequency_hz * s.phase_m[slot] - p.frequency_hz * p.phase_m[slot]) /
                       (s.frequency_hz - p.frequency_hz);
  const double code =
      (s.frequency_hz * s.code_m[slot] + p.frequency_hz * p.code_m[slot]) / (s.frequency_hz + p.frequency_hz);
  const double cycles = (phase - code) / run.wide_lane_m;
  if (std::isnan(cycles)) return;
  if (run.wide_lane.count == 0) run.wide_lane_origin = cycles;
  run.wide_lane.Add(cycles - run.wide_lane_origin);
}

void CodeMultipath::End(Signal& signal) const {
  Run& run = signal.run;
  const bool open = run.open && !run.lone;
  run.open = false;
  if (!open) return;
  if (!run.moving.End(cutoff_deg_, signal.sums.moving)) return;
  signal.sums.arcs.Add(run.arc);
  MultipathSums::ByPartner& with = signal.sums.With(run.partner);
  with.values += run.arc.count;
  with.wide_lane.Add(run.wide_lane);
  if (run.wide_lane.count > 1)
    with.wide_lane_squares += run.wide_lane.squares * run.wide_lane_m * run.wide_lane_m;
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
