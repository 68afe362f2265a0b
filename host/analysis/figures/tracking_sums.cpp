#include "host/analysis/figures/tracking_sums.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "host/analysis/figures/result_rows.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kDecisionDelay = 2 * kLead;  // epochs for which an outage is kept beyond the longest hole

bool HasPhase(const ObservationEpoch& epoch) {
  return std::any_of(epoch.signals.begin(), epoch.signals.end(),
                     [](const SignalObservation& o) { return std::isfinite(o.phase_cycles); });
}

InterruptionCounts::End EndOf(const StepOutcome& outcome, std::size_t place) {
  if (Has(outcome.continuous, place)) return InterruptionCounts::End::kContinuous;
  return Has(outcome.repaired, place) ? InterruptionCounts::End::kSlipped
                                      : InterruptionCounts::End::kUnresolved;
}

InterruptionFigures FiguresOf(const InterruptionCounts& counts) {
  InterruptionFigures figures;
  if (counts.phases == 0) return figures;
  figures.by_signal = counts.by_signal;
  figures.by_satellite = counts.by_satellite;
  figures.by_receiver = counts.by_receiver;
  figures.continuous = counts.continuous;
  figures.slipped = counts.slipped;
  figures.unresolved = counts.unresolved;
  return figures;
}

/// Arcs and interruptions of several satellites or signals.
struct Pool {
  ArcLengths arcs;
  std::array<InterruptionCounts, 2> interruptions;

  void Add(const ArcLengths& more, const std::array<InterruptionCounts, 2>& counts) {
    arcs.Add(more);
    for (std::size_t up = 0; up < 2; ++up) interruptions[up].Add(counts[up]);
  }
};

template <typename Row>
void Fill(Row& row, const ArcLengths& arcs, const std::array<InterruptionCounts, 2>& interruptions) {
  if (interruptions[1].phases > 0) row.arcs = arcs.Figures();
  row.interruptions = FiguresOf(interruptions[1]);
  row.interruptions_below_cutoff = FiguresOf(interruptions[0]);
}

}  // namespace

void InterruptionCounts::Add(Cause cause, End end) {
  by_signal += cause == Cause::kSignal;
  by_satellite += cause == Cause::kSatellite;
  by_receiver += cause == Cause::kReceiver;
  continuous += end == End::kContinuous;
  slipped += end == End::kSlipped;
  unresolved += end == End::kUnresolved;
}

void InterruptionCounts::Add(const InterruptionCounts& other) {
  by_signal += other.by_signal;
  by_satellite += other.by_satellite;
  by_receiver += other.by_receiver;
  continuous += other.continuous;
  slipped += other.slipped;
  unresolved += other.unresolved;
  phases += other.phases;
}

void TrackingSums::Arcs::Add(bool up, bool goes_on, std::int64_t time_ns) {
  if (!up || !goes_on) End();
  if (!up) return;
  if (!open) first_ns = time_ns;
  open = true;
  last_ns = time_ns;
}

void TrackingSums::Arcs::End() {
  if (open) lengths.Add(SecondsBetween(last_ns, first_ns));
  open = false;
}

ArcLengths TrackingSums::Arcs::WithOpen() const {
  ArcLengths all = lengths;
  if (open) all.Add(SecondsBetween(last_ns, first_ns));
  return all;
}

void TrackingSums::AddEpoch(const ObservationEpoch& epoch, std::int64_t number) {
  power_failed_ = power_failed_ || (epoch.events & kPowerFailure) != 0;
  if (!HasPhase(epoch)) return;
  const bool away = SecondsBetween(epoch.time_ns, last_ns_) > kGapFactor * interval_s_;
  if (last_number_ >= 0 && (away || power_failed_)) outages_.push_back({last_number_, last_ns_});
  const double kept_s = kLongestGap_s + kDecisionDelay * interval_s_;
  while (!outages_.empty() && SecondsBetween(epoch.time_ns, outages_.front().last_ns) > kept_s)
    outages_.pop_front();
  power_failed_ = false;
  last_number_ = number;
  last_ns_ = epoch.time_ns;
}

/// Of a hole of the whole satellite that ends with the step.
TrackingSums::Cause TrackingSums::CauseOfGap(const StepOutcome& outcome) const {
  const std::int64_t last = outcome.track->At(outcome.step - 1).epoch;
  const auto found =
      std::lower_bound(outages_.begin(), outages_.end(), last,
                       [](const Outage& o, std::int64_t number) { return o.last_number < number; });
  return found != outages_.end() && found->last_number == last ? Cause::kReceiver : Cause::kSatellite;
}

/// The first epoch of an arc of the satellite, which no step leads to.
void TrackingSums::BeginSatellite(const StepOutcome& outcome, Satellite& satellite) const {
  const SatelliteTrack& track = *outcome.track;
  const StepState& first = track.At(track.first);
  const bool up = IsUp(ElevationDegrees(first), cutoff_deg_);
  for (Signal& signal : satellite.signals) {
    signal.arcs.End();
    signal.away = Cause::kNone;
    signal.observed = false;
  }
  bool any = false;
  for (std::size_t j = 0; j < track.signals.size() && j < kMaxSignals; ++j) {
    if (!track.signals[j].IsReal(track.first) || track.signals[j].unstable) continue;
    Signal& signal = satellite.signals[outcome.number[j]];
    signal.arcs.Add(up, false, first.time_ns);
    ++signal.interruptions[up].phases;
    signal.observed = any = true;
    signal.last_ns = first.time_ns;
  }
  satellite.arcs.Add(up && any, false, first.time_ns);
}

/// Adds the steps of a run, in which every phase went on.
void TrackingSums::Satellite::EndRun() {
  quiet.running = false;
  if (quiet.steps == 0) return;
  for (SignalMask left = quiet.present; left != 0;) {
    Signal& signal = signals[quiet.number[TakeFirst(left)]];
    if (quiet.up) signal.arcs.last_ns = quiet.last_ns;
    signal.interruptions[quiet.up].phases += quiet.steps;
    signal.last_ns = quiet.last_ns;
  }
  if (quiet.up) arcs.last_ns = quiet.last_ns;
  interruptions[quiet.up].phases += quiet.steps;
}

void TrackingSums::AddStep(const StepOutcome& outcome) {
  Satellite& satellite = satellites_[outcome.track->satellite];
  if (satellite.quiet.Extends(outcome)) return;
  satellite.EndRun();
  if (outcome.rearranged) {
    Arrange(satellite.signals, outcome);
    const std::vector<SignalTrack>& tracked = outcome.track->signals;
    for (std::size_t j = 0; j < tracked.size() && j < kMaxSignals; ++j)
      satellite.signals[outcome.number[j]].frequency_hz = tracked[j].frequency_hz;
  }
  if (outcome.begins_arc) BeginSatellite(outcome, satellite);
  const Cause hole = outcome.state->gap ? CauseOfGap(outcome) : Cause::kSignal;
  const auto end = CloseHoles(outcome, hole, satellite);
  if (end) satellite.interruptions[outcome.up].Add(hole, *end);
  NoteAbsent(outcome, hole, satellite);
  AddPhases(outcome, satellite);
  satellite.quiet.Begin(outcome);
}

/// Counts the holes of signals that end with the step. @return the worst end of them; nothing where none
/// ended
std::optional<InterruptionCounts::End> TrackingSums::CloseHoles(const StepOutcome& outcome, Cause hole,
                                                                Satellite& satellite) {
  std::optional<End> worst;
  for (SignalMask left = outcome.Present(); left != 0;) {
    const std::size_t j = TakeFirst(left);
    if (!CloseHole(outcome, j, hole, satellite.signals[outcome.number[j]])) continue;
    const End end = EndOf(outcome, j);
    worst = worst ? std::max(*worst, end) : end;
  }
  return worst;
}

/// @param hole  why signals are away that were there at the satellite's epoch before
/// @return whether an interruption of the signal ended
bool TrackingSums::CloseHole(const StepOutcome& outcome, std::size_t place, Cause hole, Signal& signal) {
  Cause cause = signal.away;
  if (cause == Cause::kNone && outcome.state->gap && signal.observed) cause = hole;
  signal.away = Cause::kNone;
  if (cause == Cause::kNone || Has(outcome.unstable, place)) return false;
  if (SecondsBetween(outcome.state->time_ns, signal.last_ns) > kLongestGap_s) return false;
  signal.interruptions[outcome.up].Add(cause, EndOf(outcome, place));
  return true;
}

void TrackingSums::NoteAbsent(const StepOutcome& outcome, Cause hole, Satellite& satellite) {
  const std::size_t tracked = std::min<std::size_t>(outcome.track->signals.size(), kMaxSignals);
  for (std::size_t j = 0; j < tracked; ++j) {
    Signal& signal = satellite.signals[outcome.number[j]];
    if (!Has(outcome.Present(), j) && signal.observed && signal.away == Cause::kNone) signal.away = hole;
  }
}

void TrackingSums::AddPhases(const StepOutcome& outcome, Satellite& satellite) {
  const std::int64_t time_ns = outcome.state->time_ns;
  for (SignalMask left = outcome.Present(); left != 0;) {
    const std::size_t j = TakeFirst(left);
    Signal& signal = satellite.signals[outcome.number[j]];
    signal.arcs.Add(outcome.up && !Has(outcome.unstable, j), Has(outcome.continuous, j), time_ns);
    ++signal.interruptions[outcome.up].phases;
    signal.observed = true;
    signal.last_ns = time_ns;
  }
  const bool stable = (outcome.Present() & ~outcome.unstable) != 0;
  satellite.arcs.Add(outcome.up && stable, outcome.continuous != 0, time_ns);
  ++satellite.interruptions[outcome.up].phases;
}

void TrackingSums::FillIn(AnalysisResult& result) const {
  std::map<char, Pool> systems;
  std::map<std::pair<char, std::string>, Pool> signals;
  satellites_.ForEach([&](SatelliteId id, const Satellite& live) {
    Satellite satellite = live;
    satellite.EndRun();
    const ArcLengths arcs = satellite.arcs.WithOpen();
    Fill(SatelliteRow(result, id), arcs, satellite.interruptions);
    systems[id.system].Add(arcs, satellite.interruptions);
    for (const Signal& signal : satellite.signals) {
      const ArcLengths own = signal.arcs.WithOpen();
      SignalFigures& row = SatelliteSignalRow(result, id, signal.code);
      Fill(row, own, signal.interruptions);
      // A channel of GLONASS may only be known from the data.
      if (!row.frequency_hz && signal.frequency_hz > 0) row.frequency_hz = signal.frequency_hz;
      signals[{id.system, NameOf(signal.code)}].Add(own, signal.interruptions);
    }
  });
  for (const auto& [system, pool] : systems) Fill(SystemRow(result, system), pool.arcs, pool.interruptions);
  for (const auto& [key, pool] : signals)
    Fill(SystemSignalRow(result, key.first, {key.second[0], key.second[1]}), pool.arcs, pool.interruptions);
}

}  // namespace orsolva_host::analysis
