// The order of deciding: candidates, which of neighbouring ones first, and what is kept of a decided step.
#include "host/analysis/slips/decision.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"
#include "host/analysis/slips/evidence.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kMaxTries = 4;
constexpr double kClearlyMore = 1.0;  // nats by which a neighbour's repair must gain more
constexpr double kBudgetPerStep = 0.05;
constexpr double kLargestBudget = 100;
constexpr double kHopelessMargin = 1;  // nats, of kSureGapMargin; the rest is what priors and noise may add
constexpr double kMinBudget = -100;    // below, breaks are not searched either
constexpr double kCarriedPart = 0.25;  // of the variance of the fitted rates that a hole adds per step
constexpr double kMinCarried_m2 = 1e-7;
constexpr double kFreeRange_m = 0.02;  // priors of the rates that carry a phase over a step
constexpr double kFreeIonosphere_m = 0.2;

/// Any of the flags of the tested signals at an epoch.
bool AnyFlag(const SatelliteTrack& track, const StepTest& test, std::int64_t i,
             std::uint32_t SignalTrack::*flags) {
  for (int j = 0; j < test.count; ++j) {
    if (track.signals[test.signal[static_cast<std::size_t>(j)]].*flags & RingBit(i)) return true;
  }
  return false;
}

double ScreenOf(int signals) { return kScreenChi2 + 2 * (signals - 1); }

}  // namespace

bool Decision::IsCandidate(const SatelliteTrack& track, std::int64_t step, const StepTest& test,
                           double chi2) const {
  if (chi2 > ScreenOf(test.count)) return true;
  return chi2 > kScreenChi2Flagged && AnyFlag(track, test, step, &SignalTrack::lost_lock);
}

bool Decision::IsWeak(const SatelliteTrack& track, const StepTest& test) const {
  std::array<double, kMaxSignals> cycle;
  int bands = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(test.count); ++i) {
    cycle[i] = track.signals[test.signal[i]].wavelength_m;
    bands += i == 0 || cycle[i] != cycle[i - 1];
  }
  const double least = IsStormySky() ? kMinStormGain : kMinGain;
  const double gain = 0.5 * Chi2(test, cycle);  // in the mean, with the deviation sqrt(2 gain)
  return gain - std::sqrt(2 * gain) < kSlipPrior + kFurtherBandPrior * (bands - 1) + least;
}

void Decision::DecideNext(SatelliteTrack& track) {
  const std::int64_t step = track.decide;
  StepState& state = track.At(step);
  const SettledScales settled = SettleScales(track, step, around_);
  track.budget = std::min(track.budget + kBudgetPerStep, kLargestBudget);
  for (int tries = 0; tries < kMaxTries && !state.broken && !state.settled; ++tries) {
    MakeTest(track, step, interval_s_, scratch_);
    if (scratch_.count == 0) break;
    const double chi2 = Chi2(scratch_);
    if (tries == 0) {
      state.chi2 = chi2;
      state.weak = IsWeak(track, scratch_);
    }
    const bool hole = state.gap || scratch_.returning != 0;
    if (!hole && !IsCandidate(track, step, scratch_, chi2)) break;
    if (tries == 0 && !state.gap) RefreshScales(track, step, settled, around_);
    if (state.gap && IsHopeless(track, scratch_)) {
      GiveUp(track, step, chi2, "one cycle would be lost in what the hole leaves open");
      break;
    }
    if (track.budget < (hole ? 1 : kMinBudget)) {
      if (hole || chi2 > kFitChi2)
        GiveUp(track, step, chi2, "not searched: too many holes and breaks of this satellite");
      break;
    }
    track.budget -= 1;
    if (state.gap) RefreshScales(track, step, settled, around_);
    const std::int64_t target = RankMostTelling(track, step);
    if (!Explain() || state.gap) break;  // no rate leads over a hole: nothing changes those around
    FitRates(track, target);
    RefreshScales(track, step, around_);
    if (hole) {  // a hole is closed once
      if (target != step) CloseBesideRepair(track, step);
      break;
    }
  }
  Carry(track, step);
  Readmit(track, step);
  ++track.decide;
}

/// A hole of some signals next to a repair that gained more, looked at by itself: what the signals that
/// stayed clearly say of those that return. Half a cycle, or a slip of those that stayed, would rest on the
/// repair too: such a hole is reported as open.
void Decision::CloseBesideRepair(SatelliteTrack& track, std::int64_t step) {
  track.budget -= 1;
  Rank(track, step);
  if (case_.test.returning == 0) return;
  const Explanation& best = case_.ranked.front();
  if (!IsSureHole() || !OnlyReturningSlip(best.cycles)) {
    return AddEvent(HoleKind(), nullptr, case_.none.total - best.total, Margin(), false);
  }
  if (!CloseGap()) return;
  FitRates(track, step);
  RefreshScales(track, step, around_);
}

/// Whether a slip vector has whole cycles and leaves alone the signals that stayed, of which there are some.
bool Decision::OnlyReturningSlip(const Cycles& cycles) const {
  bool any_stayed = false;
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    if (cycles[i] != std::nearbyint(cycles[i])) return false;
    if ((case_.test.returning >> i & 1) != 0) continue;
    any_stayed = true;
    if (cycles[i] != 0) return false;
  }
  return any_stayed;
}

/// Whether a slip of one cycle on all signals, which no wide lane shows, is so small against what a hole of
/// the satellite leaves open that no search can be sure.
bool Decision::IsHopeless(const SatelliteTrack& track, const StepTest& test) {
  std::array<double, kMaxSignals> cycle;
  for (std::size_t i = 0; i < static_cast<std::size_t>(test.count); ++i)
    cycle[i] = track.signals[test.signal[i]].wavelength_m;
  return 0.5 * Chi2(test, cycle) < kHopelessMargin;
}

/// A step for which no search is left: a hole stays open, and what fits nothing is a break.
/// @param chi2  of the step
void Decision::GiveUp(SatelliteTrack& track, std::int64_t step, double chi2, const char* why) {
  const bool hole = track.At(step).gap || scratch_.returning != 0;
  case_.track = &track;
  case_.step = step;
  case_.test = scratch_;
  case_.gap = track.At(step).gap;
  case_.lost_lock = AnyFlag(track, scratch_, step, &SignalTrack::lost_lock);
  case_.chi2 = chi2;
  AddEventWithoutEvidence(hole ? HoleKind() : EventKind::kJump, nullptr, 0, 0, false);
  track.events.back().second.evidence = why;
  if (hole) return LeaveUnresolved(track, step);
  track.At(step).broken = true;
}

/// Of the step and the two after it the one whose repair gains most: the neighbours of a slip can show more
/// than itself. It is the case at hand afterwards, ranked.
std::int64_t Decision::RankMostTelling(SatelliteTrack& track, std::int64_t step) {
  Rank(track, step);
  if (track.At(step).gap) return step;
  double gain = GainOfRepair() + kClearlyMore;
  for (const std::int64_t near : {step + 1, step + 2}) {
    if (near >= track.next || track.At(near).gap || track.At(near).broken || track.At(near).settled) continue;
    MakeTest(track, near, interval_s_, scratch_);
    if (scratch_.count == 0 || !(Chi2(scratch_) > ScreenOf(scratch_.count))) continue;
    std::swap(case_, other_case_);
    Rank(track, near);
    const double other = GainOfRepair();
    if (other > gain) {
      gain = other;
    } else {
      std::swap(case_, other_case_);
    }
  }
  return case_.step;
}

void Decision::Rank(SatelliteTrack& track, std::int64_t step) {
  MakeCase(track, step);
  RankExplanations();
}

double Decision::GainOfRepair() const {
  const Explanation& best = case_.ranked.front();
  if (!best.any) return 0;
  return (case_.none.total - best.total) * (FitOf(best.cycles) < kFitChi2 ? 1.0 : 0.02);
}

/// @return whether something was repaired or settled, so that the step must be looked at again
bool Decision::Explain() {
  if (case_.gap || case_.test.returning != 0) return CloseGap();
  if (TakeOutlier(case_.step) || TakeOutlier(case_.step + 1)) return true;
  if (case_.step > case_.track->decide && TakeOutlier(case_.step - 1)) return true;
  if (IsNoSlip()) return false;
  const Explanation& best = case_.ranked.front();
  if (!best.any) return FitOf(case_.none.cycles) > 1.5 * kFitChi2 && TakeOther(nullptr);
  if (FitOf(best.cycles) > kFitChi2 && TakeOther(&best)) return true;
  return case_.none.total - best.total >= LeastGain() && TakeSlip();
}

void Decision::MakeCase(SatelliteTrack& track, std::int64_t step) {
  case_.track = &track;
  case_.step = step;
  MakeTest(track, step, interval_s_, case_.test);
  case_.gap = track.At(step).gap;
  case_.lost_lock = AnyFlag(track, case_.test, step, &SignalTrack::lost_lock);
  case_.slip_prior = case_.lost_lock ? kFlaggedSlipPrior : kSlipPrior;
  if (case_.gap || case_.test.returning != 0) case_.slip_prior = kGapSlipPrior;
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    case_.band[i] = track.signals[case_.test.signal[i]].code.band;
  }
  case_.wide_lanes = WideLaneJumps(track, step, case_.test, interval_s_);
  case_.chi2 = Chi2(case_.test);
  MakeViews();
}

void Decision::AddEvent(EventKind kind, const Cycles* sizes, double score, double margin, bool sure) {
  AddEventWithoutEvidence(kind, sizes, score, margin, sure);
  Event& event = case_.track->events.back().second;
  if (!event.sizes.empty()) event.evidence = SlippedText(event.signals, event.sizes) + "; ";
  event.evidence +=
      EvidenceText(*case_.track, case_.step, case_.test, case_.wide_lanes, sizes ? *sizes : Cycles{});
}

void Decision::AddEventWithoutEvidence(EventKind kind, const Cycles* sizes, double score, double margin,
                                       bool sure) {
  SatelliteTrack& track = *case_.track;
  const StepState& step = track.At(case_.step);
  Event event;
  event.time_ns = step.time_ns;
  event.satellite = track.satellite;
  event.kind = kind;
  event.elevation_deg = step.elevation_rad * 180 / kPi;
  event.score = score;
  event.margin = margin;
  event.sure = sure;
  event.chi2 = case_.chi2;
  event.loss_of_lock = case_.lost_lock;
  event.gap_s = case_.gap ? step.dt_s : 0;
  const bool holes_only = !sizes && !case_.gap && case_.test.returning != 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    const SignalTrack& s = track.signals[case_.test.signal[i]];
    const bool returns = (case_.test.returning >> i & 1) != 0;
    if (returns && !case_.gap) event.gap_s = std::max(event.gap_s, s.away_s + step.dt_s);
    if (sizes ? (*sizes)[i] == 0 : holes_only && !returns) continue;
    event.signals.push_back(s.code);
    if (sizes) event.sizes.push_back((*sizes)[i]);
  }
  track.events.emplace_back(case_.step, std::move(event));
}

/// Phases of signals that are away go with the satellite's other signals (at most kLongestGap_s).
void Decision::Carry(SatelliteTrack& track, std::int64_t i) const {
  const StepState& step = track.At(i);
  const bool together = std::isfinite(step.range_rate);
  const double noise = PhaseNoise(step);
  double one = 0, mu = 0, mu2 = 0;
  for (const SignalTrack& s : track.signals) {
    if (s.unstable || !s.IsReal(i) || !s.IsReal(i - 1)) continue;
    const double w = 1 / (2 * noise * noise);
    one += w, mu += w * s.mu, mu2 += w * s.mu * s.mu;
  }
  const double a00 = one + (step.HasGeometry() ? 1 / (kFreeRange_m * kFreeRange_m) : 1e-8);
  const double ionosphere_m = step.lone_band ? step.ionosphere_scale_m : kFreeIonosphere_m;
  const double a11 = mu2 + 1 / (ionosphere_m * ionosphere_m);
  const double determinant = a00 * a11 - mu * mu;
  for (SignalTrack& s : track.signals) {
    if (s.IsReal(i)) {
      s.carried_variance_m2 = s.away_s = 0;
      continue;
    }
    s.away_s += step.dt_s;
    if (!together || s.unstable || !s.IsKnown(i - 1) || s.away_s > kLongestGap_s) continue;
    s.phase_m[RingSlot(i)] = s.X(i - 1) + (step.range_rate - s.mu * step.ionosphere_rate) * step.dt_s;
    s.known |= RingBit(i);
    const double variance = (a11 + 2 * s.mu * mu + s.mu * s.mu * a00) / determinant;
    s.carried_variance_m2 += std::max(kCarriedPart * variance, kMinCarried_m2);
  }
}

}  // namespace orsolva_host::analysis
