// What a step can show besides a slip of continuous tracking: holes, satellite clocks, patches of ionosphere,
// outliers, breaks of unknown size, and signals that slip all the time.
#include <algorithm>
#include <cmath>
#include <string>

#include "host/analysis/slips/decision.h"
#include "host/analysis/slips/evidence.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kOutlierGain = 40;  // chi2 that leaving an epoch out must gain
constexpr double kIntegerExplainsMost =
    0.35;                             // part of chi2 that a whole number may leave to be taken nevertheless
constexpr double kSameMetres = 0.05;  // relative
constexpr double kOutlierPrior = 12;  // nats
constexpr double kNoOutlier_cycles = 0.1;  // nearer to its neighbours, or to whole cycles from them
constexpr double kClearlyBetter = 2;       // nats
constexpr double kForbidsClock = 16;       // misfit of the wide lane, which no clock moves
constexpr double kNotMuchDearer = 4;       // nats
constexpr double kSurelyNoRange_m = 1;     // by which no range leaves a cubic within a step
constexpr double kPlainHalfScales = 5;     // of the range
constexpr double kAlone = 99;              // nats, margin of an explanation without a rival
constexpr int kUnstableSteps = 5;          // broken steps among kUnstableWindow and those to come
constexpr int kUnstableWindow = 12;
constexpr int kSteadySteps = 20;
constexpr double kSlopeVariance =
    0.02;  // m^2, of the ionosphere's change that is looked for among the other signals

struct NoSlip {
  EventKind kind;
  double range_m2;
  double ionosphere_m2;
  double prior;
  bool needs_two_bands;
};

bool IsSameOnAll(const Cycles& cycles, int count) {
  return std::all_of(cycles.begin(), cycles.begin() + count, [&](double z) { return z == cycles[0]; });
}

bool IsHalf(double cycles) { return cycles != std::nearbyint(cycles); }

bool IsHalfOnAll(const Explanation& e, int count) {
  return e.any && IsSameOnAll(e.cycles, count) && IsHalf(e.cycles[0]);
}

bool HasTwoBands(const std::array<char, kMaxSignals>& band, int count) {
  return std::any_of(band.begin(), band.begin() + count, [&](char b) { return b != band[0]; });
}

}  // namespace

/// Whether a slip on every band rests on the smoothness of the range alone.
bool Decision::IsBlind() const {
  const StepState& step = case_.track->At(case_.step);
  return !step.HasGeometry() && !case_.gap && step.dt_s >= kQuietInterval_s;
}

/// What a slip of every signal costs more where the range is predicted from the steps around.
double Decision::BlindSlipPrior() const {
  return HasTwoBands(case_.band, case_.test.count) ? kBlindSlipPrior : kBlindOneBandPrior;
}

/// Whether half a cycle of every signal is far more than the range of the satellite is wrong by, and its
/// clock not one that jumps.
bool Decision::IsPlainHalf() const {
  const SatelliteTrack& track = *case_.track;
  const double half_m = 0.5 * track.signals[case_.test.signal[0]].wavelength_m;
  return IsSteadyClock(track.satellite.system) &&
         half_m > kPlainHalfScales * track.At(case_.step).range_scale_m;
}

/// Metres that are the same on all signals, or in the ratio of the ionosphere: they compete with the whole
/// numbers.
bool Decision::IsNoSlip() {
  const StepState& step = case_.track->At(case_.step);
  const double root_of_interval = std::sqrt(interval_s_ / kUsualInterval_s);
  const double root = std::min(1.0, root_of_interval);
  const double clock_m = std::min(kSatelliteClock_m * root, 6 * step.range_scale_m);
  const double ionosphere_m = std::min(kIonosphere_m * root, 8 * step.ionosphere_scale_m);
  const bool quiet =
      interval_s_ < kQuietInterval_s || step.ionosphere_scale_m < kQuietIonosphere_m * root_of_interval;
  const double ionosphere_prior = quiet ? kQuietIonospherePrior : kIonospherePrior;
  const bool two_bands = HasTwoBands(case_.band, case_.test.count);
  // What only the steps around predict may bend at the ends of a pass as if it were a clock's.
  const bool steady = IsSteadyClock(case_.track->satellite.system) && !(IsBlind() && two_bands);
  const double usual_clock_prior = steady ? kSteadyClockPrior : kSatelliteClockPrior;
  const double clock_prior = usual_clock_prior + (IsBlind() && !two_bands ? BlindSlipPrior() : 0);
  const NoSlip kinds[] = {
      {EventKind::kSatelliteClock, clock_m * clock_m, 0, clock_prior, false},
      {EventKind::kSatelliteClock, kLargeClock_m * kLargeClock_m, 0, kLargeClockPrior, true},
      {EventKind::kIonosphere, 0, ionosphere_m * ionosphere_m, ionosphere_prior, true},
  };
  const Explanation& best = case_.ranked.front();
  const double fit = FitOf(best.cycles);
  const double misfit = WideLaneMisfit(case_.wide_lanes, case_.none.cycles);
  const double best_misfit = WideLaneMisfit(case_.wide_lanes, best.cycles);
  double clock_chi2 = 0;
  for (const NoSlip& kind : kinds) {
    // Within a second or so no clock moves by a wavelength, but a slip on every band can look like it.
    if (kind.prior == kLargeClockPrior && interval_s_ < kQuietInterval_s) continue;
    if (kind.prior == kLargeClockPrior && misfit > best_misfit + kForbidsClock) continue;
    if (kind.needs_two_bands && !two_bands) continue;
    const double chi2 = Chi2(case_.test, case_.test.r, kind.range_m2, kind.ionosphere_m2);
    if (kind.prior == clock_prior) clock_chi2 = chi2;
    const double total = 0.5 * (case_.none.window_chi2 - (case_.chi2 - chi2) + misfit) + kind.prior;
    const bool cheapest = total < best.total;
    const bool fits_better = best.any && total < best.total + kNotMuchDearer &&
                             0.5 * (chi2 + misfit) + kind.prior + kClearlyBetter <
                                 0.5 * (fit + best_misfit) + PriorOf(best.cycles);
    if (chi2 >= kFitChi2 || !(cheapest || fits_better)) continue;
    case_.track->At(case_.step).settled = true;
    // In a storm the clock or the ionosphere may as well be an equal slip on all bands.
    if (case_.chi2 >= kReportedChi2)
      AddEvent(kind.kind, nullptr, 0.5 * (case_.chi2 - chi2), 0, !IsStormySky());
    return true;
  }
  if (IsHalfOnAll(best, case_.test.count) && !IsPlainHalf() && clock_chi2 < kFitChi2 &&
      interval_s_ >= kQuietInterval_s) {
    case_.track->At(case_.step).settled = true;
    if (case_.chi2 >= kReportedChi2) {
      AddEvent(EventKind::kSatelliteClock, nullptr, 0.5 * (case_.chi2 - clock_chi2), 0, false);
    }
    return true;
  }
  return false;
}

/// Whether the ionosphere of all satellites together is not quiet.
bool Decision::IsStormySky() const {
  return interval_s_ >= kQuietInterval_s &&
         around_.ionosphere_m > kQuietIonosphere_m * std::sqrt(interval_s_ / kUsualInterval_s);
}

/// Whether an equal slip on all bands rests on a few centimetres: where neighbours predict the ionosphere
/// better than the median, or for a satellite of one band where that of the others is not quiet.
bool Decision::IsStormy() const {
  if (!HasTwoBands(case_.band, case_.test.count)) return IsStormySky();
  return interval_s_ >= kQuietInterval_s && case_.track->At(case_.step).ionosphere_by_neighbours;
}

/// What the best slip must gain over "no slip".
double Decision::LeastGain() const {
  const bool hidden =
      IsStormy() && IsStormySky() && IsSameOnAll(case_.ranked.front().cycles, case_.test.count);
  return hidden ? kMinStormGain : kMinGain;
}

/// Of a slip what it says of the signals that have not been broken in the steps before: the others, as a
/// signal that slips all the time, are no witnesses. Of all where fewer than two bands would be left.
Decision::SteadySlip Decision::SteadyPart(const Cycles& cycles) const {
  SteadySlip steady, all;
  std::array<char, kMaxSignals> band = {};
  std::uint32_t before = 0;
  const std::int64_t first = std::max(case_.track->first + 1, case_.step - kUnstableWindow);
  for (std::int64_t i = first; i < case_.step; ++i) before |= RingBit(i);
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    const SignalTrack& s = case_.track->signals[case_.test.signal[i]];
    const double metres = std::fabs(cycles[i]) * s.wavelength_m;
    all.Add(cycles[i], metres);
    if ((s.broken & before) != 0) continue;
    band[static_cast<std::size_t>(steady.count)] = case_.band[i];
    steady.Add(cycles[i], metres);
  }
  return HasTwoBands(band, steady.count) ? steady : all;
}

/// Whether every signal slips where nothing predicts the range, so that slips are known by their differences
/// alone, or only the steps around do, which a low satellite or an old clock leaves by decimetres.
bool Decision::RestsOnRangeAlone(const SteadySlip& slip) const {
  return slip.least_m > 0 && (case_.test.free_range || (IsBlind() && slip.least_m < kSurelyNoRange_m));
}

bool Decision::IsSureSlip(const Explanation& best) const {
  if (!(Margin() > (IsStormySky() ? kSureStormMargin : kSureMargin) && FitOf(best.cycles) < kFitChi2))
    return false;
  const SteadySlip steady = SteadyPart(best.cycles);
  const bool same = steady.cycles[0] != 0 && IsSameOnAll(steady.cycles, steady.count);
  return !(same && (IsStormy() || IsHalf(steady.cycles[0]))) && !RestsOnRangeAlone(steady);
}

bool Decision::TakeSlip() {
  const Explanation& best = case_.ranked.front();
  if (TakeUnstable(best.cycles)) return true;
  const double margin = Margin();
  const bool sure = IsSureSlip(best);
  bool half = false;
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    if (best.cycles[i] == 0) continue;
    half = half || best.cycles[i] != std::nearbyint(best.cycles[i]);
  }
  MarkBroken(best.cycles);
  AddEvent(half ? EventKind::kHalfCycle : EventKind::kSlip, &best.cycles, case_.none.total - best.total,
           margin, sure);
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    const std::size_t signal = case_.test.signal[i];
    if (best.cycles[i] == 0) continue;
    Repair(*case_.track, case_.step, signal, case_.track->signals[signal].wavelength_m * best.cycles[i]);
  }
  return true;
}

/// Whether a signal differs by more than half a cycle from what the satellite's other signals make of the
/// time since it was there last.
bool Decision::IsOff(const SatelliteTrack& track, std::size_t signal, std::int64_t i) {
  const SignalTrack& s = track.signals[signal];
  if (!s.IsReal(i)) return false;
  std::int64_t from = i - 1;
  while (from > track.first && from > i - kUnstableWindow && !s.IsReal(from)) --from;
  if (!s.IsReal(from)) return false;
  double n = 0, m = 0, m2 = 1 / kSlopeVariance, y = 0, my = 0;
  for (const SignalTrack& other : track.signals) {
    if (&other == &s || other.unstable || !other.IsReal(i) || !other.IsReal(from)) continue;
    const double dx = other.X(i) - other.X(from);
    n += 1, m += other.mu, m2 += other.mu * other.mu, y += dx, my += other.mu * dx;
  }
  const double determinant = n * m2 - m * m;
  if (n < 2 || !(determinant > 1e-3)) return false;
  const double range = (m2 * y - m * my) / determinant;
  const double slope = (n * my - m * y) / determinant;
  const double off = std::fabs(s.X(i) - s.X(from) - range - s.mu * slope);
  return off > 0.5 * s.wavelength_m + 5 * PhaseNoise(track.At(i));
}

/// Steps near this one in which a signal is broken, this one included.
int Decision::BrokenSteps(std::size_t signal) const {
  const SatelliteTrack& track = *case_.track;
  int broken = 1;
  for (std::int64_t i = std::max(track.first + 1, case_.step - kUnstableWindow); i < case_.step; ++i) {
    broken += (track.signals[signal].broken & RingBit(i)) != 0;
  }
  for (std::int64_t i = case_.step + 1; i < track.next; ++i) broken += IsOff(track, signal, i);
  return broken;
}

/// A signal that slips in a quarter of the steps against the others is left out and named.
bool Decision::TakeUnstable(const Cycles& cycles) {
  SatelliteTrack& track = *case_.track;
  Cycles bad = {};
  bool any = false;
  bool others = false;
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    const bool unstable = cycles[i] != 0 && BrokenSteps(case_.test.signal[i]) >= kUnstableSteps;
    bad[i] = unstable ? 1 : 0;
    any = any || unstable;
    others = others || !unstable;
  }
  if (!any || !others) return false;
  AddEvent(EventKind::kUnstableSignal, &bad, 0, 0, true);
  Event& event = track.events.back().second;
  event.sizes.clear();
  event.evidence = "slips against the other signals in at least " + std::to_string(kUnstableSteps) +
                   " of the steps around";
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    if (bad[i] == 0) continue;
    track.signals[case_.test.signal[i]].unstable = true;
    track.signals[case_.test.signal[i]].steady_steps = 0;
    track.distrusted.push_back(track.signals[case_.test.signal[i]].code);
  }
  for (std::int64_t i = case_.step; i < track.next; ++i) FitRates(track, i);
  return true;
}

/// An unstable signal comes back once it has gone with the others for kSteadySteps.
void Decision::Readmit(SatelliteTrack& track, std::int64_t step) {
  for (std::size_t i = 0; i < track.signals.size(); ++i) {
    SignalTrack& s = track.signals[i];
    if (!s.unstable || !s.IsReal(step)) continue;
    s.steady_steps = IsOff(track, i, step) ? 0 : s.steady_steps + 1;
    if (s.steady_steps < kSteadySteps) continue;
    s.unstable = false;
    track.distrusted.erase(std::remove(track.distrusted.begin(), track.distrusted.end(), s.code),
                           track.distrusted.end());
  }
}

/// Notes that the signals with cycles are broken in this step.
void Decision::MarkBroken(const Cycles& cycles) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    if (cycles[i] != 0) case_.track->signals[case_.test.signal[i]].broken |= RingBit(case_.step);
  }
}

double Decision::Margin() const {
  return case_.ranked.size() > 1 ? case_.ranked[1].total - case_.ranked.front().total : kAlone;
}

bool Decision::IsSureHole() const {
  return Margin() > kSureGapMargin && FitOf(case_.ranked.front().cycles) < kFitChi2;
}

/// A hole ends: continuous, a slip of known size, or open.
bool Decision::CloseGap() {
  SatelliteTrack& track = *case_.track;
  const Explanation& best = case_.ranked.front();
  const double margin = Margin();
  const bool sure = IsSureHole();
  const double score = case_.none.total - best.total;
  const Cycles broken = sure ? best.cycles : Returning();
  if (!case_.gap && TakeUnstable(broken)) return true;
  if (!case_.gap) MarkBroken(broken);
  if (!sure) {
    AddEvent(HoleKind(), nullptr, score, margin, false);
    LeaveUnresolved(track, case_.step);
    return true;
  }
  if (!best.any) {
    AddEvent(case_.gap ? EventKind::kGapContinuous : EventKind::kSignalGapContinuous, nullptr, score, margin,
             true);
    return false;
  }
  AddEvent(case_.gap ? EventKind::kGapSlip : EventKind::kSignalGapSlip, &best.cycles, score, margin, true);
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    const std::size_t signal = case_.test.signal[i];
    if (best.cycles[i] == 0) continue;
    Repair(track, case_.step, signal, track.signals[signal].wavelength_m * best.cycles[i]);
  }
  return true;
}

EventKind Decision::HoleKind() const {
  return case_.gap ? EventKind::kGapUnresolved : EventKind::kSignalGapUnresolved;
}

/// One for every signal that returns after a hole.
Cycles Decision::Returning() const {
  Cycles cycles = {};
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    cycles[i] = (case_.test.returning >> i & 1) != 0 ? 1 : 0;
  }
  return cycles;
}

/// The satellite, or the signals that return, begin again here.
void Decision::LeaveUnresolved(SatelliteTrack& track, std::int64_t step) {
  if (!track.At(step).gap) MakeTest(track, step, interval_s_, scratch_);
  if (track.At(step).gap || scratch_.returning == 0) {
    track.At(step).broken = true;
    return;
  }
  for (std::size_t i = 0; i < static_cast<std::size_t>(scratch_.count); ++i) {
    if ((scratch_.returning >> i & 1) == 0) continue;
    Repair(track, step, scratch_.signal[i], scratch_.r[i]);
  }
}

/// One epoch off, or a break of no whole size. @param integer  the best slip, where one was found at all
bool Decision::TakeOther(const Explanation* integer) {
  if (TakeOutlier(case_.step) || TakeOutlier(case_.step - 1)) return true;
  if (integer && integer->window_chi2 < kIntegerExplainsMost * case_.none.window_chi2) return false;
  if (integer && TakeUnstable(integer->cycles)) return true;
  AddEvent(EventKind::kJump, nullptr, 0.5 * case_.none.window_chi2, 0, false);
  case_.track->At(case_.step).broken = true;
  return true;
}

/// Phases of an epoch as its neighbours make them: the mean, or where the range is not modelled the cubic
/// through two on both sides.
double Decision::Interpolated(const SatelliteTrack& track, const SignalTrack& s, std::int64_t i) {
  const auto known = [&](std::int64_t k) { return k >= track.first && k < track.next && s.IsKnown(k); };
  if (!known(i - 1) || !known(i + 1)) return kAbsent;
  const double mean = 0.5 * (s.X(i - 1) + s.X(i + 1));
  if (track.At(i).HasGeometry()) return mean;
  return known(i - 2) && known(i + 2) ? (8 * mean - s.X(i - 2) - s.X(i + 2)) / 6 : kAbsent;
}

/// By how many cycles the signals of an epoch are off their neighbours, by place in the track.
Cycles Decision::Departures(const SatelliteTrack& track, std::int64_t epoch) {
  Cycles off = {};
  for (std::size_t j = 0; j < std::min<std::size_t>(track.signals.size(), kMaxSignals); ++j) {
    const SignalTrack& s = track.signals[j];
    if (s.unstable || !s.IsReal(epoch) || !s.IsReal(epoch + 1)) continue;
    const double expected = Interpolated(track, s, epoch);
    if (std::isfinite(expected)) off[j] = (s.X(epoch) - expected) / s.wavelength_m;
  }
  return off;
}

/// The same metres on signals of several bands are a clock's.
bool Decision::IsSameMetres(const SatelliteTrack& track, const Cycles& off) {
  double least = 1e300, greatest = -1e300, least_mu = 1e300, greatest_mu = 0;
  for (std::size_t j = 0; j < std::min<std::size_t>(track.signals.size(), kMaxSignals); ++j) {
    if (off[j] == 0) continue;
    const double metres = off[j] * track.signals[j].wavelength_m;
    least = std::min(least, metres), greatest = std::max(greatest, metres);
    least_mu = std::min(least_mu, track.signals[j].mu),
    greatest_mu = std::max(greatest_mu, track.signals[j].mu);
  }
  return greatest_mu > least_mu && greatest - least < kSameMetres * std::fabs(greatest + least);
}

/// Whether all is well once the phases of an epoch are replaced by what their neighbours make of them. Two
/// slips of whole cycles that cancel stay slips, and so does everything that the receiver flags.
bool Decision::TakeOutlier(std::int64_t epoch) {
  SatelliteTrack& track = *case_.track;
  if (epoch <= track.first + 1 || epoch + 1 >= track.next) return false;
  const StepState& to = track.At(epoch);
  const StepState& from = track.At(epoch + 1);
  if (to.gap || from.gap || to.broken || from.broken) return false;
  const Cycles off = Departures(track, epoch);
  bool whole = true, flagged = false;
  for (std::size_t j = 0; j < std::min<std::size_t>(track.signals.size(), kMaxSignals); ++j) {
    whole = whole && std::fabs(off[j] - std::nearbyint(off[j])) < kNoOutlier_cycles;
    flagged = flagged || (track.signals[j].lost_lock & (RingBit(epoch) | RingBit(epoch + 1))) != 0;
  }
  if (whole || flagged || IsSameMetres(track, off)) return false;
  const double before = WindowChi2(track, case_.step - 3, case_.step + 2);
  const auto move = [&](double sign) {
    for (std::size_t j = 0; j < std::min<std::size_t>(track.signals.size(), kMaxSignals); ++j) {
      track.signals[j].phase_m[RingSlot(epoch)] -= sign * off[j] * track.signals[j].wavelength_m;
    }
    FitRates(track, epoch);
    FitRates(track, epoch + 1);
  };
  move(1);
  const double after = WindowChi2(track, case_.step - 3, case_.step + 2);
  // A slip half of which is moved to the epoch after must not pass for an outlier.
  const bool beats_slips = 0.5 * after + kOutlierPrior < case_.ranked.front().total;
  if (!(after < kFitChi2 && before - after > kOutlierGain && beats_slips)) {
    move(-1);
    return false;
  }
  AddOutlier(epoch, off, 0.5 * (before - after));
  return true;
}

void Decision::AddOutlier(std::int64_t epoch, const Cycles& off, double score) {
  SatelliteTrack& track = *case_.track;
  AddEventWithoutEvidence(EventKind::kOutlier, nullptr, score, 0, true);
  auto& [step, event] = track.events.back();
  step = std::max(epoch, track.decide);
  event.time_ns = track.At(epoch).time_ns;
  event.signals.clear();
  for (std::size_t j = 0; j < std::min<std::size_t>(track.signals.size(), kMaxSignals); ++j) {
    if (std::fabs(off[j]) < kNoOutlier_cycles) continue;
    event.signals.push_back(track.signals[j].code);
    event.sizes.push_back(0.01 * std::nearbyint(100 * off[j]));
  }
  event.evidence = SlippedText(event.signals, event.sizes, "off by") + " for one epoch";
}

}  // namespace orsolva_host::analysis
