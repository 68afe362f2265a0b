#include "host/analysis/slips/scales.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/numeric/robust.h"
#include "host/analysis/slips/prediction.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kMinErrors = 6;
constexpr std::int64_t kSettledSteps = 3;      // that one settlement serves
constexpr double kSigmaOfFourFifths = 0.7803;  // of normal errors over the 80th percentile of their sizes
constexpr std::int64_t kServedToo = 2;         // after a candidate
constexpr double kFewErrorsFactor = 1.5;
constexpr double kUsualIonosphere_m = 0.02;  // at 30 s
constexpr double kNeighboursMustBeBetter = 0.8;
constexpr double kFar_m = 1e300;
constexpr double kPartOfNoise = 0.5;  // of the errors' variance that phase noise explains

/// Of the two predictors: sizes of an error, or scales.
struct OfBoth {
  double by_median;
  double by_neighbours;
};

/// Sizes of a step's prediction errors, m: by the median settled for it, and by its neighbours.
OfBoth RangeErrors(const SatelliteTrack& track, std::int64_t i) {
  const StepState& s = track.At(i);
  if (!s.HasGeometry()) {
    const UnmodelledRange range = RangeFromNeighbours(track, i);
    const double error = std::fabs((s.range_rate - range.rate) * s.dt_s - range.common_m);
    return {error, error};
  }
  const double median = std::isfinite(s.range_median) ? s.range_median : 0;
  const double mean = MeanOfNeighbours(track.RangeRate(i - 1), track.RangeRate(i + 1));
  return {std::fabs((s.range_rate - median) * s.dt_s),
          std::fabs((s.range_rate - (std::isfinite(mean) ? mean : median)) * s.dt_s)};
}

OfBoth IonosphereErrors(const SatelliteTrack& track, std::int64_t i) {
  const StepState& s = track.At(i);
  const double mean = MeanOfNeighbours(track.IonosphereRate(i - 1), track.IonosphereRate(i + 1));
  return {std::fabs((s.ionosphere_rate - s.ionosphere_median) * s.dt_s),
          std::fabs((s.ionosphere_rate - mean) * s.dt_s)};
}

/// @param enough  above which a scale is of no interest and need not be exact
double RobustScale(const SortedList<kTrail - 2>& past, const SortedList<kLead>& near, double enough) {
  if (past.Count() + near.Count() < kMinErrors) return kAbsent;
  const double by_half = kSigmaOfMedian * MergedQuantile(past, near, 0.5);
  if (by_half > enough) return by_half;
  return std::max(by_half, kSigmaOfFourFifths * MergedQuantile(past, near, 0.8));
}

/// Past errors together with those near the step that still change: of k - 2 and of the steps to come.
/// The scale of the neighbours need not be exact above that of the median.
template <typename Errors>
OfBoth ScalesOf(const SatelliteTrack& track, std::int64_t step, const ErrorWindows& windows,
                Errors errors_of) {
  SortedList<kLead> by_median, by_neighbours;
  for (const std::int64_t i : {step - 2, step + 2, step + 3, step + 4}) {
    if (i <= track.first || !track.Has(i) || track.At(i).lone_band) continue;
    const OfBoth errors = errors_of(track, i);
    by_median.Insert(errors.by_median);
    by_neighbours.Insert(errors.by_neighbours);
  }
  const double scale = RobustScale(windows.by_median.Sorted(), by_median, kFar_m);
  return {scale, RobustScale(windows.by_neighbours.Sorted(), by_neighbours, scale)};
}

double UsualRangeScale(char system) {
  switch (system) {
    case 'E':
      return 0.010;
    case 'C':
      return 0.012;
    case 'R':
      return 0.030;
    default:
      return 0.020;
  }
}

double Square(double x) { return x * x; }

/// What phase noise adds to the variances of the fitted rates.
struct NoiseShare {
  double range_m2 = 0;
  double ionosphere_m2 = 0;
  bool one_band = true;
};

NoiseShare NoiseOf(const SatelliteTrack& track, std::int64_t i) {
  double least = 1e9, greatest = 0;
  for (const SignalTrack& s : track.signals) {
    if (s.unstable || !s.IsReal(i)) continue;
    least = std::min(least, s.mu);
    greatest = std::max(greatest, s.mu);
  }
  NoiseShare share;
  share.one_band = greatest - least < 1e-6;
  if (share.one_band) return share;
  const StepState& step = track.At(i);
  const double noise_m2 = Square(PhaseNoise(step));
  const double spread2 = Square(greatest - least);
  const double gain = step.ionosphere_by_neighbours ? kGainOfNeighbours : kGainOfMedian;
  share.ionosphere_m2 = kPartOfNoise * noise_m2 * gain / std::max(spread2 / 2, 0.1);
  share.range_m2 = kPartOfNoise * 2 * noise_m2 * (Square(greatest) + Square(least)) / spread2;
  return share;
}

void SetRangeScale(StepState& step, double scale, const NoiseShare& noise, double root) {
  double variance = Square(scale);
  if (step.modelled) variance = std::max(variance - noise.range_m2, 0.0);
  variance += Square(kRangeFloor_m / step.sin_elevation * root);
  if (!step.modelled) {
    // A cycle on the only band is little more than what an old clock wanders: no doubt beyond its scale.
    const bool alone = noise.one_band && step.dt_s >= kQuietInterval_s;
    const double factor = alone ? 1.0 : kWithoutModelFactor;
    variance = Square(factor) * variance + Square(kWithoutModelFloor_m * root);
  }
  variance += Square(step.shift_doubt_m);
  if (!step.gap) variance += Square(kTroposphereDoubt * step.troposphere_change_m);
  step.range_scale_m = std::sqrt(variance);
}

void SetIonosphereScale(StepState& step, double scale, const NoiseShare& noise, double root) {
  const double variance = std::max(Square(scale) - noise.ionosphere_m2, 0.0) +
                          Square(kIonosphereFloor_m / step.sin_elevation * root);
  step.ionosphere_scale_m = noise.one_band && !step.lone_band ? kIonosphereFloor_m : std::sqrt(variance);
}

/// Steps of one band: what the ionosphere does is in the range, or taken from two-band steps ever longer ago.
void WidenOneBand(const SatelliteTrack& track, std::int64_t i, StepState& step, const Surroundings& around) {
  const double sky = std::isfinite(around.ionosphere_m) ? around.ionosphere_m : 0;
  if (step.lone_band) {
    const auto age = static_cast<double>(std::max<std::int64_t>(i - track.two_band_step, 0));
    step.ionosphere_scale_m = std::max(step.ionosphere_scale_m, sky) * std::sqrt(1 + age);
  } else {
    const double mu = track.signals.empty() ? 1 : track.signals.back().mu;
    step.range_scale_m = std::max(step.range_scale_m, mu * sky);
  }
}

void SettleMedians(SatelliteTrack& track, std::int64_t step) {
  SortedList<kLead + 1> range, ionosphere;
  for (std::int64_t i = step; i < std::min(track.next, step + kLead + 1); ++i) {
    const StepState& s = track.At(i);
    if (s.lone_band) continue;
    if (s.HasGeometry()) range.Insert(s.range_rate);
    ionosphere.Insert(s.ionosphere_rate);
  }
  const double range_median = MergedMedian(track.range_rates.Sorted(), range);
  const double ionosphere_median = MergedMedian(track.ionosphere_rates.Sorted(), ionosphere);
  for (std::int64_t i = step; i < track.next; ++i) {
    track.At(i).range_median = range_median;
    track.At(i).ionosphere_median = ionosphere_median;
  }
}

/// Scales of the step, also given to some after it, which have their own elevation and kind.
/// @param first, last  steps that get them
void SettleFrom(SatelliteTrack& track, std::int64_t step, std::int64_t first, std::int64_t last,
                const SettledScales& scales, const Surroundings& around) {
  const double root = std::sqrt(around.interval_s / kUsualInterval_s);
  const StepState& own = track.At(step);
  for (std::int64_t i = first; i < std::min(track.next, last + 1); ++i) {
    StepState& s = track.At(i);
    s.range_by_neighbours = own.range_by_neighbours;
    s.ionosphere_by_neighbours = own.ionosphere_by_neighbours;
    const NoiseShare noise = NoiseOf(track, i);
    SetRangeScale(s, scales.range_m, noise, root);
    SetIonosphereScale(s, scales.ionosphere_m, noise, root);
    if (noise.one_band) WidenOneBand(track, i, s, around);
  }
}

/// Medians, predictors and scales as the steps are now.
/// @param last  step that gets the scales
SettledScales Settle(SatelliteTrack& track, std::int64_t step, std::int64_t last,
                     const Surroundings& around) {
  SettleMedians(track, step);
  const OfBoth range = ScalesOf(track, step, track.range_errors, RangeErrors);
  const OfBoth ionosphere = ScalesOf(track, step, track.ionosphere_errors, IonosphereErrors);
  StepState& own = track.At(step);
  own.range_by_neighbours = range.by_neighbours < kNeighboursMustBeBetter * range.by_median;
  own.ionosphere_by_neighbours = ionosphere.by_neighbours < ionosphere.by_median;
  const double root = std::sqrt(around.interval_s / kUsualInterval_s);
  track.settled_step = step;
  double range_m = own.range_by_neighbours ? range.by_neighbours : range.by_median;
  double ionosphere_m = own.ionosphere_by_neighbours ? ionosphere.by_neighbours : ionosphere.by_median;
  if (std::isfinite(range_m)) {
    track.usual_range_scale_m = range_m;
  } else {
    track.settled_step = kNeverSettled;
    const double usual = UsualRangeScale(track.satellite.system) * root;
    range_m =
        kFewErrorsFactor * (std::isfinite(track.usual_range_scale_m) ? track.usual_range_scale_m : usual);
  }
  if (std::isfinite(ionosphere_m)) {
    track.usual_ionosphere_scale_m = ionosphere_m;
  } else {
    track.settled_step = kNeverSettled;
    const double usual = kUsualIonosphere_m * root;
    ionosphere_m = kFewErrorsFactor *
                   (std::isfinite(track.usual_ionosphere_scale_m) ? track.usual_ionosphere_scale_m : usual);
    if (around.ionosphere_m > ionosphere_m) ionosphere_m = around.ionosphere_m;
  }
  SettleFrom(track, step, step, last, {range_m, ionosphere_m}, around);
  return {range_m, ionosphere_m};
}

/// Whether a step may take over what was settled a step or two before it.
bool GoesOn(const SatelliteTrack& track, std::int64_t step) {
  if (step - track.settled_step >= kSettledSteps || track.settled_step <= track.first) return false;
  const StepState& own = track.At(step);
  const StepState& before = track.At(track.settled_step);
  const bool quiet = !before.range_by_neighbours && !before.ionosphere_by_neighbours;
  return quiet && !own.gap && own.HasGeometry() == before.HasGeometry() && own.lone_band == before.lone_band;
}

void TakeOver(SatelliteTrack& track, std::int64_t step, const Surroundings& around) {
  const StepState& before = track.At(track.settled_step);
  StepState& own = track.At(step);
  SettleMedians(track, step);
  own.range_by_neighbours = before.range_by_neighbours;
  own.ionosphere_by_neighbours = before.ionosphere_by_neighbours;
  SettleFrom(track, step, step, step, {track.usual_range_scale_m, track.usual_ionosphere_scale_m}, around);
}

void PushErrors(ErrorWindows& windows, const OfBoth& errors) {
  windows.by_median.Push(errors.by_median);
  windows.by_neighbours.Push(errors.by_neighbours);
}

}  // namespace

SettledScales SettleScales(SatelliteTrack& track, std::int64_t step, const Surroundings& around) {
  const std::int64_t past = step - 3;
  const bool known = past > track.first && track.Has(past) && !track.At(past).lone_band;
  PushErrors(track.range_errors, known ? RangeErrors(track, past) : OfBoth{kAbsent, kAbsent});
  PushErrors(track.ionosphere_errors, known ? IonosphereErrors(track, past) : OfBoth{kAbsent, kAbsent});
  const bool before = step - 1 > track.first && !track.At(step - 1).lone_band;
  track.range_rates.Push(before && track.At(step - 1).HasGeometry() ? track.RangeRate(step - 1) : kAbsent);
  track.ionosphere_rates.Push(before ? track.IonosphereRate(step - 1) : kAbsent);
  if (!GoesOn(track, step)) return Settle(track, step, step, around);
  TakeOver(track, step, around);
  return {};
}

void RefreshScales(SatelliteTrack& track, std::int64_t step, const Surroundings& around) {
  Settle(track, step, step + kServedToo, around);
}

void RefreshScales(SatelliteTrack& track, std::int64_t step, const SettledScales& settled,
                   const Surroundings& around) {
  if (std::isnan(settled.range_m)) return RefreshScales(track, step, around);
  SettleFrom(track, step, step + 1, step + kServedToo, settled, around);
}

}  // namespace orsolva_host::analysis
