#include "host/analysis/figures/step_outcome.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

/// What the events of a step say together.
struct StepEvents {
  bool any = false;
  bool sized = false;
  bool sure = true;
  bool closes_hole = false;     ///< some event says how tracking went on after a hole
  std::uint32_t left_open = 0;  ///< signals whose hole could not be closed, bits by place
  std::uint32_t jumped = 0;
  std::array<double, kMostSignals> cycles;  ///< valid when sized
};

std::size_t PlaceOf(const SatelliteTrack& track, SignalCode code) {
  const auto found = std::find_if(track.signals.begin(), track.signals.end(),
                                  [&](const SignalTrack& s) { return s.code == code; });
  return static_cast<std::size_t>(found - track.signals.begin());
}

std::uint32_t BitsOf(const SatelliteTrack& track, const Event& event) {
  std::uint32_t bits = 0;
  for (const SignalCode code : event.signals) {
    const std::size_t place = PlaceOf(track, code);
    if (place < kMostSignals) bits |= std::uint32_t{1} << place;
  }
  return bits;
}

void AddSizes(const SatelliteTrack& track, const Event& event, StepEvents& events) {
  if (!events.sized) events.cycles.fill(0);
  events.sized = true;
  events.sure = events.sure && event.sure;
  for (std::size_t k = 0; k < event.sizes.size(); ++k) {
    const std::size_t place = PlaceOf(track, event.signals[k]);
    if (place < kMostSignals) events.cycles[place] += event.sizes[k];
  }
}

void Apply(const SatelliteTrack& track, const Event& event, StepEvents& events) {
  events.any = true;
  switch (event.kind) {
    case EventKind::kGapUnresolved:
    case EventKind::kSignalGapUnresolved:
      events.left_open |= BitsOf(track, event);
      break;
    case EventKind::kJump:
      events.jumped |= BitsOf(track, event);
      break;
    case EventKind::kGapContinuous:
    case EventKind::kSignalGapContinuous:
      events.closes_hole = true;
      break;
    case EventKind::kGapSlip:
    case EventKind::kSignalGapSlip:
      events.closes_hole = true;
      AddSizes(track, event, events);
      break;
    case EventKind::kSlip:
    case EventKind::kHalfCycle:
      AddSizes(track, event, events);
      break;
    default:
      break;
  }
}

SignalOutcome OutcomeOf(const SatelliteTrack& track, std::size_t place, std::int64_t i,
                        const StepEvents& events) {
  const SignalTrack& s = track.signals[place];
  const StepState& state = track.At(i);
  SignalOutcome outcome;
  if (!s.IsReal(i)) return outcome;
  const std::uint32_t bit = std::uint32_t{1} << place;
  const bool known = s.IsKnown(i - 1);
  outcome.flagged = (s.lost_lock & RingBit(i)) != 0;
  outcome.returns = known && (!s.IsReal(i - 1) || state.gap);
  const bool open = (events.left_open & bit) != 0 || (outcome.returns && !events.closes_hole);
  if (s.unstable) {
    outcome.continuity = Continuity::kUnstable;
  } else if (!known) {
    outcome.continuity = Continuity::kBegins;
  } else if (state.broken || open || (events.jumped & bit) != 0) {
    outcome.continuity = Continuity::kBroken;
  } else if (events.sized && events.cycles[place] != 0) {
    outcome.continuity = events.sure ? Continuity::kRepaired : Continuity::kBroken;
  } else {
    outcome.continuity = Continuity::kContinuous;
  }
  outcome.tested = known && !s.unstable && !open && std::isfinite(state.chi2);
  return outcome;
}

}  // namespace

double ElevationDegrees(const StepState& step) { return step.elevation_rad * 180 / kPi; }

void ReadOutcome(const SatelliteTrack& track, std::int64_t step, double cutoff_deg, StepOutcome& outcome) {
  const StepState& state = track.At(step);
  outcome.track = &track;
  outcome.step = step;
  outcome.state = &state;
  outcome.begins_arc = step == track.first + 1;
  outcome.elevation_deg = ElevationDegrees(state);
  outcome.up = IsUp(outcome.elevation_deg, cutoff_deg);
  StepEvents events;
  for (const auto& [of_step, event] : track.events) {
    if (of_step == step) Apply(track, event, events);
  }
  int tested = 0;
  for (std::size_t j = 0; j < track.signals.size() && j < kMostSignals; ++j) {
    outcome.signals[j] = OutcomeOf(track, j, step, events);
    tested += outcome.signals[j].tested;
  }
  // A single phase whose range nothing predicts agrees with anything.
  const bool blind = tested == 1 && !state.HasGeometry() && std::isnan(state.common_m);
  for (std::size_t j = 0; blind && j < track.signals.size() && j < kMostSignals; ++j)
    outcome.signals[j].tested = false;
  outcome.tested = tested > 0 && !blind;
}

}  // namespace orsolva_host::analysis
