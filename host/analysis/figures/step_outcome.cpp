#include "host/analysis/figures/step_outcome.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

/// What the events of a step say together.
struct StepEvents {
  bool sized = false;
  bool sure = true;
  bool closes_hole = false;  ///< some event says how tracking went on after a hole
  SignalMask left_open = 0;  ///< signals whose hole could not be closed
  SignalMask jumped = 0;
  std::array<double, kMaxSignals> cycles;  ///< valid when sized
};

std::size_t PlaceOf(const SatelliteTrack& track, SignalCode code) {
  const auto found = std::find_if(track.signals.begin(), track.signals.end(),
                                  [&](const SignalTrack& s) { return s.code == code; });
  return static_cast<std::size_t>(found - track.signals.begin());
}

SignalMask MaskOf(const SatelliteTrack& track, const Event& event) {
  SignalMask mask = 0;
  for (const SignalCode code : event.signals) {
    const std::size_t place = PlaceOf(track, code);
    if (place < kMaxSignals) mask |= SignalMask{1} << place;
  }
  return mask;
}

void AddSizes(const SatelliteTrack& track, const Event& event, StepEvents& events) {
  if (!events.sized) events.cycles.fill(0);
  events.sized = true;
  events.sure = events.sure && event.sure;
  for (std::size_t k = 0; k < event.sizes.size(); ++k) {
    const std::size_t place = PlaceOf(track, event.signals[k]);
    if (place < kMaxSignals) events.cycles[place] += event.sizes[k];
  }
}

void Apply(const SatelliteTrack& track, const Event& event, StepEvents& events) {
  switch (event.kind) {
    case EventKind::kGapUnresolved:
    case EventKind::kSignalGapUnresolved:
      events.left_open |= MaskOf(track, event);
      break;
    case EventKind::kJump:
      events.jumped |= MaskOf(track, event);
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

StepEvents EventsOf(const SatelliteTrack& track, std::int64_t step) {
  StepEvents events;
  for (const auto& [of_step, event] : track.events) {
    if (of_step == step) Apply(track, event, events);
  }
  return events;
}

/// Sorts the signals by the bits of the track.
/// @return those that went on from a known phase
SignalMask ReadBits(const SatelliteTrack& track, std::int64_t i, bool gap, StepOutcome& outcome) {
  const std::uint32_t now = RingBit(i), before = RingBit(i - 1);
  SignalMask known = 0;
  for (std::size_t j = 0; j < track.signals.size() && j < kMaxSignals; ++j) {
    const SignalTrack& s = track.signals[j];
    if ((s.real & now) == 0) continue;
    const SignalMask bit = SignalMask{1} << j;
    const bool was_known = (s.known & before) != 0;
    if ((s.lost_lock & now) != 0) outcome.flagged |= bit;
    if (was_known && (gap || (s.real & before) == 0)) outcome.returns |= bit;
    if (s.unstable) {
      outcome.unstable |= bit;
    } else if (!was_known) {
      outcome.begins |= bit;
    } else {
      known |= bit;
    }
  }
  return known;
}

SignalMask SlippedOf(SignalMask known, const StepEvents& events) {
  SignalMask slipped = 0;
  for (SignalMask left = events.sized ? known : 0; left != 0;) {
    const std::size_t place = TakeFirst(left);
    if (events.cycles[place] != 0) slipped |= SignalMask{1} << place;
  }
  return slipped;
}

/// A single phase whose range nothing predicts agrees with anything.
bool IsBlind(SignalMask tested, const StepState& state) {
  return (tested & (tested - 1)) == 0 && !state.HasGeometry() && std::isnan(state.common_m);
}

}  // namespace

double ElevationDegrees(const StepState& step) { return step.elevation_rad * 180 / kPi; }

void OutcomeReader::Numbers::Take(const SatelliteTrack& track) {
  tracked = track.signals.size();
  for (std::size_t j = 0; j < tracked && j < kMaxSignals; ++j) {
    const SignalCode code = track.signals[j].code;
    std::size_t k = 0;
    while (k < codes.size() && codes[k] != code) ++k;
    if (k == codes.size()) codes.push_back(code);
    number[j] = static_cast<std::uint8_t>(k);
  }
}

const StepOutcome& OutcomeReader::Read(const SatelliteTrack& track, std::int64_t step) {
  const StepState& state = track.At(step);
  Numbers& numbers = numbers_[track.satellite];
  StepOutcome& o = outcome_;
  o.begins = o.continuous = o.repaired = o.broken = o.unstable = o.returns = o.tested = o.weak = o.flagged =
      0;
  o.track = &track;
  o.step = step;
  o.state = &state;
  o.elevation_deg = ElevationDegrees(state);
  o.up = IsUp(o.elevation_deg, cutoff_deg_);
  o.begins_arc = step == track.first + 1;
  // A track gets signals within an arc and loses them between arcs.
  o.rearranged = o.begins_arc || numbers.tracked != track.signals.size();
  if (o.rearranged) numbers.Take(track);
  o.number = numbers.number;

  const SignalMask known = ReadBits(track, step, state.gap, o);
  StepEvents events;
  if (!track.events.empty()) events = EventsOf(track, step);
  const SignalMask open = events.left_open | (events.closes_hole ? 0 : o.returns);
  const SignalMask slipped = SlippedOf(known, events);
  o.broken = known & (open | events.jumped | (state.broken ? known : 0) | (events.sure ? 0 : slipped));
  o.repaired = slipped & ~o.broken;
  o.continuous = known & ~(o.broken | o.repaired);
  o.tested = std::isfinite(state.chi2) ? known & ~open : 0;
  if (IsBlind(o.tested, state)) o.tested = 0;
  if (state.weak) o.weak = o.tested;
  o.quiet = o.continuous == o.Present() && o.tested == o.continuous && o.weak == 0 && o.flagged == 0 &&
            o.returns == 0 && !o.begins_arc;
  return outcome_;
}

}  // namespace orsolva_host::analysis
