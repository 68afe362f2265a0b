// Ranks the explanations of a step: slip vectors and no slip.
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/analysis/slips/decision.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::size_t kTriedInFull = 5;
constexpr double kNone_cycles = 0.01;
constexpr double kMostEqual_cycles = 2;
constexpr double kFar_nats = 1e300;
constexpr double kRounding_nats = 1e-3;  // far more than rounding of phases makes of the totals compared

bool IsCheaper(const Explanation& a, const Explanation& b) { return a.total < b.total; }

/// Whether the same number of cycles on every signal leads from one slip vector to the other.
bool DifferEqually(const Cycles& a, const Cycles& b, int count) {
  for (std::size_t i = 1; i < static_cast<std::size_t>(count); ++i) {
    if (std::fabs(a[i] - b[i] - (a[0] - b[0])) > kNone_cycles) return false;
  }
  return true;
}

/// The N least of some values.
template <int N>
class LeastValues {
 public:
  LeastValues() { values_.fill(std::numeric_limits<double>::infinity()); }
  void Add(double value) {
    for (double& kept : values_) {
      if (value < kept) std::swap(value, kept);
    }
  }
  double Greatest() const { return values_.back(); }

 private:
  std::array<double, N> values_;  ///< ascending
};

/// Epochs of a track from one on, kept while a repair is tried.
class SavedEpochs {
 public:
  SavedEpochs(SatelliteTrack& track, std::int64_t from, const StepTest& test)
      : track_(track), from_(from), test_(test) {
    const StepState& step = track.At(from);
    range_rate_ = step.range_rate;
    ionosphere_rate_ = step.ionosphere_rate;
    Each([](double& kept, double& live) { kept = live; });
    for (int j = 0; j < test.count; ++j) repaired_[Place(j)] = Signal(j).repaired_m;
  }
  ~SavedEpochs() {
    Each([](double& kept, double& live) { live = kept; });
    for (int j = 0; j < test_.count; ++j) Signal(j).repaired_m = repaired_[Place(j)];
    track_.At(from_).range_rate = range_rate_;
    track_.At(from_).ionosphere_rate = ionosphere_rate_;
  }
  SavedEpochs(const SavedEpochs&) = delete;
  SavedEpochs& operator=(const SavedEpochs&) = delete;

 private:
  static std::size_t Place(int j) { return static_cast<std::size_t>(j); }
  SignalTrack& Signal(int j) { return track_.signals[test_.signal[Place(j)]]; }

  template <typename Action>
  void Each(Action action) {
    for (int j = 0; j < test_.count; ++j) {
      for (std::int64_t i = from_; i < track_.next; ++i) {
        action(phases_[Place(j)][static_cast<std::size_t>(i - from_)], Signal(j).phase_m[RingSlot(i)]);
      }
    }
  }

  SatelliteTrack& track_;
  std::int64_t from_;
  const StepTest& test_;
  double range_rate_;
  double ionosphere_rate_;
  std::array<double, kMaxSignals> repaired_;
  std::array<std::array<double, kLead + 2>, kMaxSignals> phases_;
};

}  // namespace

/// The central view, and those by one neighbour alone where the prediction leans on both: one of them may
/// have slipped.
void Decision::MakeViews() {
  const SatelliteTrack& track = *case_.track;
  const StepState& s = track.At(case_.step);
  case_.views.assign(1, case_.test.r);
  const double before = track.IonosphereRate(case_.step - 1), after = track.IonosphereRate(case_.step + 1);
  if (case_.gap || !std::isfinite(before) || !std::isfinite(after)) return;
  if (!s.ionosphere_by_neighbours && s.modelled) return;
  const double mean_v = MeanOfNeighbours(before, after);
  const double mean_u = MeanOfNeighbours(track.RangeRate(case_.step - 1), track.RangeRate(case_.step + 1));
  const bool range_too = s.HasGeometry() && s.range_by_neighbours;
  for (const std::int64_t j : {case_.step - 1, case_.step + 1}) {
    std::array<double, kMaxSignals> r = case_.test.r;
    const double dv = (track.IonosphereRate(j) - mean_v) * s.dt_s;
    const double du = range_too ? (track.RangeRate(j) - mean_u) * s.dt_s : 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i)
      r[i] += case_.test.mu[i] * dv - du;
    case_.views.push_back(r);
  }
}

double Decision::PriorOf(const Cycles& cycles) const {
  double logarithms = 0;
  int halves = 0, groups = 0;
  const int count = case_.test.count;
  for (int i = 0; i < count; ++i) {
    const auto place = static_cast<std::size_t>(i);
    const double size = std::fabs(cycles[place]);
    if (size < kNone_cycles) continue;
    if (size > 1) logarithms += std::log(size);
    bool new_group = true, new_size = true;  // a further value within a band counts as a further band
    for (std::size_t j = 0; j < place; ++j) {
      if (case_.band[j] == case_.band[place] && cycles[j] == cycles[place]) new_group = false;
      if (std::fabs(cycles[j]) == size) new_size = false;
    }
    groups += new_group;
    if (new_size && std::fabs(size - std::floor(size) - 0.5) < kNone_cycles) ++halves;
  }
  if (groups == 0) return 0;
  return case_.slip_prior + kFurtherBandPrior * (groups - 1) + kHalfCyclePrior * halves +
         kSizePrior * logarithms / count;
}

/// Least chi2 of the step alone after the repair, over all views.
double Decision::FitOf(const Cycles& cycles) const {
  double least = 1e300;
  for (const auto& view : case_.views) {
    std::array<double, kMaxSignals> r;
    for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
      r[i] = view[i] - case_.track->signals[case_.test.signal[i]].wavelength_m * cycles[i];
    }
    least = std::min(least, Chi2(case_.test, r));
  }
  return least;
}

/// @param enough  above which the sum is of no interest and need not be finished
double Decision::WindowChi2(const SatelliteTrack& track, std::int64_t first, std::int64_t last,
                            double enough) {
  double sum = 0;
  last = std::min(last, track.next - 1);
  for (std::int64_t i = std::max(first, track.first + 1); i <= last && sum <= enough; ++i) {
    if (track.At(i).broken) continue;
    MakeTest(track, i, interval_s_, scratch_);
    sum += Chi2(scratch_);
  }
  return sum;
}

double Decision::RepairedWindow(const Cycles& cycles, double enough) {
  SatelliteTrack& track = *case_.track;
  if (case_.gap) {
    SignalMetres metres = {};
    for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
      const std::size_t signal = case_.test.signal[i];
      metres[signal] = track.signals[signal].wavelength_m * cycles[i];
    }
    return hole_window_.Chi2Without(track, metres, enough);
  }
  const SavedEpochs saved(track, case_.step, case_.test);
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    if (cycles[i] == 0) continue;
    const std::size_t signal = case_.test.signal[i];
    Repair(track, case_.step, signal, track.signals[signal].wavelength_m * cycles[i]);
  }
  FitRates(track, case_.step);
  return WindowChi2(track, case_.step - 2, case_.step + 2, enough);
}

/// Candidates of every view, cheapest by the step alone first.
void Decision::RankSlips() {
  const SatelliteTrack& track = *case_.track;
  bool half_flag = false;
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    const std::uint32_t flags = track.signals[case_.test.signal[i]].half_cycle;
    half_flag = half_flag || (flags & (RingBit(case_.step) | RingBit(case_.step - 1))) != 0;
  }
  candidates_.Clear();
  for (const auto& view : case_.views) {
    search_.Offer(track, case_.test, view, case_.wide_lanes, half_flag || !case_.gap, candidates_);
  }
  no_slip_ = candidates_.Add(Cycles{}, case_.test.count);
  costs_.clear();
  LeastValues<kTriedInFull> least;
  for (const SlipCandidate& candidate : candidates_.List()) {
    std::array<double, kMaxSignals> r;
    for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
      r[i] = case_.test.r[i] - track.signals[case_.test.signal[i]].wavelength_m * candidate.cycles[i];
    }
    // Without its prior, which is not negative, a candidate may already cost too much to be tried.
    double cost = Chi2(case_.test, r) + WideLaneMisfit(case_.wide_lanes, candidate.cycles);
    if (cost < least.Greatest()) cost += 2 * PriorOf(candidate.cycles);
    least.Add(cost);
    costs_.push_back(cost);
  }
}

/// What a slip vector costs in full. @param enough  of its total, above which less than all will do
Explanation Decision::Weighed(const Cycles& cycles, double enough) {
  Explanation e;
  e.cycles = cycles;
  int slipped = 0;
  for (int j = 0; j < case_.test.count; ++j)
    slipped += std::fabs(cycles[static_cast<std::size_t>(j)]) > kNone_cycles;
  e.any = slipped > 0;
  const double misfit = WideLaneMisfit(case_.wide_lanes, cycles);
  const double prior = PriorOf(cycles);
  e.window_chi2 = RepairedWindow(cycles, 2 * (enough - prior) - misfit);
  e.total = 0.5 * (e.window_chi2 + misfit) + prior;
  if (IsBlind() && slipped == case_.test.count) e.total += BlindSlipPrior();
  return e;
}

/// The cheapest candidates and "no slip", weighed in full as far as they may be the best or next best. In a
/// hole all totals are the candidates' costs plus what the steps around it cost, which no slip in it changes:
/// only those that rounding might bring before the next best are weighed.
void Decision::RankExplanations() {
  RankSlips();
  if (case_.gap) hole_window_.Settle(*case_.track, case_.step, interval_s_);
  case_.ranked.clear();
  bool has_none = false;
  double best = kFar_nats, next = kFar_nats, around = 0;
  for (const std::size_t i : cheapest_.Of(costs_, kTriedInFull)) {
    const bool none = i == no_slip_;
    if (case_.gap && around + 0.5 * costs_[i] > next + kRounding_nats) break;
    case_.ranked.push_back(Weighed(candidates_.List()[i].cycles, none ? kFar_nats : next));
    if (case_.ranked.size() == 1) around = case_.ranked.front().total - 0.5 * costs_[i];
    if (none) case_.none = case_.ranked.back();
    has_none = has_none || none;
    next = std::min(next, std::max(best, case_.ranked.back().total));
    best = std::min(best, case_.ranked.back().total);
  }
  if (!has_none) {
    case_.none = Weighed(candidates_.List()[no_slip_].cycles, kFar_nats);
    case_.ranked.push_back(case_.none);
  }
  std::stable_sort(case_.ranked.begin(), case_.ranked.end(), IsCheaper);
  if (IsStormy() && IsStormySky()) CompareEqualParts();
}

/// In a storm the window hardly separates slips that differ by the same cycles on all signals: those around
/// the best are weighed by the departure of the step instead.
void Decision::CompareEqualParts() {
  SatelliteTrack& track = *case_.track;
  const Explanation best = case_.ranked.front();
  if (!best.any || case_.gap || case_.test.returning != 0 || !track.At(case_.step).HasGeometry()) return;
  if (case_.band[0] == case_.band[static_cast<std::size_t>(case_.test.count - 1)]) return;
  const auto departure = StepDeparture::Settle(track, case_.step);
  if (!departure) return;
  std::vector<Explanation> near;
  for (double equal = -kMostEqual_cycles; equal <= kMostEqual_cycles; equal += 0.5) {
    Explanation e;
    for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
      e.cycles[i] = best.cycles[i] + equal;
      e.any = e.any || std::fabs(e.cycles[i]) > kNone_cycles;
    }
    if (!e.any) continue;
    e.total = 0.5 * RepairedDeparture(*departure, e.cycles) + PriorOf(e.cycles);
    near.push_back(e);
  }
  std::stable_sort(near.begin(), near.end(), IsCheaper);
  near.resize(2);
  const double least = near.front().total;
  for (Explanation& e : near) {
    e.total += best.total - least;
    e.window_chi2 = RepairedWindow(e.cycles, kFar_nats);
  }
  for (const Explanation& e : case_.ranked) {
    if (!e.any || !DifferEqually(e.cycles, best.cycles, case_.test.count)) near.push_back(e);
  }
  std::stable_sort(near.begin(), near.end(), IsCheaper);
  case_.ranked = near;
}

double Decision::RepairedDeparture(const StepDeparture& departure, const Cycles& cycles) {
  SatelliteTrack& track = *case_.track;
  const SavedEpochs saved(track, case_.step, case_.test);
  for (std::size_t i = 0; i < static_cast<std::size_t>(case_.test.count); ++i) {
    const std::size_t signal = case_.test.signal[i];
    Repair(track, case_.step, signal, track.signals[signal].wavelength_m * cycles[i]);
  }
  FitRates(track, case_.step);
  return departure.Chi2(track);
}

}  // namespace orsolva_host::analysis
