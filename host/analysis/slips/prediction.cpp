#include "host/analysis/slips/prediction.h"

#include <algorithm>
#include <cmath>

namespace orsolva_host::analysis {
namespace {

constexpr double kFree_m = 1e4;   // prior of a quantity that nothing is known of
constexpr double kTied_m = 1e-5;  // prior of one that shall take nothing
constexpr double kLargestScale_m = 1e3;
constexpr double kLargestGapScale_m = 3;
constexpr double kApart_mu = 0.1;  // of bands that separate range and ionosphere by themselves
constexpr double kStencilsAgree =
    2;  // of the range scale; beyond, a slip three steps away may be in the wide one

/// Priors of the two rates of a step: nothing is known of the range where it is not modelled.
struct RatePriors {
  double range_m;
  double ionosphere_m;
};

RatePriors PriorsOf(const StepState& step, bool one_band) {
  if (one_band) return {kFree_m, kTied_m};
  if (!step.HasGeometry()) return {kFree_m, 0.5};
  return {0.02 + 0.001 * step.dt_s, 0.2 * std::max(1.0, step.dt_s / 30)};
}

struct NormalEquations {
  double one = 0, mu = 0, mu2 = 0, y = 0, mu_y = 0;
  double least_mu = 1e9, greatest_mu = 0;
  int count = 0;

  void Add(double m, double value, double weight) {
    one += weight;
    mu += weight * m;
    mu2 += weight * m * m;
    y += weight * value;
    mu_y += weight * m * value;
    least_mu = std::min(least_mu, m);
    greatest_mu = std::max(greatest_mu, m);
    ++count;
  }
  bool OneBand() const { return greatest_mu - least_mu < 1e-6; }
  /// As E5b and E5 of Galileo: with a free range the ionosphere would take decimetres of noise.
  bool NearlyOneBand() const { return greatest_mu - least_mu < kApart_mu; }
};

/// Rates of a step with one band of a satellite that has two: the ionosphere goes on as its median did.
void TakeOthersIonosphere(SatelliteTrack& track, std::int64_t i, const NormalEquations& n) {
  StepState& step = track.At(i);
  const double median =
      std::isfinite(step.ionosphere_median) ? step.ionosphere_median : track.At(i - 1).ionosphere_median;
  step.ionosphere_rate = std::isfinite(median) ? median : 0;
  step.range_rate = n.y / n.one / step.dt_s + n.least_mu * step.ionosphere_rate;
}

double Gap(const StepState& step, double interval_s) { return std::max(step.dt_s / interval_s, 1.0); }

/// Mean of the finite ones among four steps on both sides, each side's mean counting once.
double MeanSlopeAround(const SatelliteTrack& track, std::int64_t step) {
  double sum = 0;
  int sides = 0;
  for (const int direction : {-1, 1}) {
    double side = 0;
    int count = 0;
    for (int j = 1; j <= 4; ++j) {
      const double v = track.IonosphereRate(step + direction * j);
      if (!std::isfinite(v)) continue;
      side += v;
      ++count;
    }
    if (count > 0) sum += side / count, ++sides;
  }
  return sides > 0 ? sum / sides : kAbsent;
}

void PredictIonosphere(const SatelliteTrack& track, std::int64_t step, Prediction& p) {
  const StepState& s = track.At(step);
  const double before = track.IonosphereRate(step - 1);
  const double after = track.IonosphereRate(step + 1);
  const bool b = std::isfinite(before), a = std::isfinite(after);
  const bool has_median = std::isfinite(s.ionosphere_median);
  double rate = 0;
  if (!s.ionosphere_by_neighbours && has_median) {
    rate = s.ionosphere_median;
    p.noise_gain = kGainOfMedian;
  } else if (b && a) {
    rate = 0.5 * (before + after);
    p.noise_gain = kGainOfNeighbours;
  } else if (b || a) {
    rate = b ? before : after;
    p.ionosphere_factor = 1.8;
    p.noise_gain = kGainOfOneNeighbour;
  } else {
    rate = has_median ? s.ionosphere_median : 0;
    p.ionosphere_factor = has_median ? 2.5 : 6;
    p.noise_gain = kGainOfNothing;
  }
  if (s.gap) {
    const double slope = MeanSlopeAround(track, step);
    if (std::isfinite(slope)) rate = slope;
  }
  p.ionosphere_m = rate * s.dt_s;
}

void PredictModelledRange(const SatelliteTrack& track, std::int64_t step, Prediction& p) {
  const StepState& s = track.At(step);
  double rate = std::isfinite(s.range_median) ? s.range_median : 0;
  const double mean = MeanOfNeighbours(track.RangeRate(step - 1), track.RangeRate(step + 1));
  if (s.range_by_neighbours && std::isfinite(mean) && !s.gap) {
    rate = mean;
    p.noise_gain = std::max(p.noise_gain, kGainOfNeighbours);
  }
  p.range_m = rate * s.dt_s;
}

/// Rate of a step whose range is not modelled; others hold only what the model leaves over.
double UnmodelledRate(const SatelliteTrack& track, std::int64_t step) {
  if (!track.Has(step) || track.At(step).HasGeometry()) return kAbsent;
  return track.RangeRate(step);
}

/// Whether so many steps on both sides are as long as the step.
bool IsEven(const SatelliteTrack& track, std::int64_t step, std::int64_t width) {
  for (std::int64_t i = step - width; i <= step + width; ++i) {
    if (track.At(i).dt_s != track.At(step).dt_s) return false;
  }
  return true;
}

/// The cubic where an epoch is late or early: Lagrange's through the rates at the middles of their steps.
double UnevenCubicRangeRate(const SatelliteTrack& track, std::int64_t step) {
  constexpr std::array<std::int64_t, 4> kNeighbours = {-2, -1, 1, 2};
  const std::int64_t origin_ns = track.At(step).time_ns;
  const auto middle_s = [&](std::int64_t i) {
    const StepState& s = track.At(i);
    return static_cast<double>(s.time_ns - origin_ns) * 1e-9 - 0.5 * s.dt_s;
  };
  const double at_s = middle_s(step);
  double rate = 0;
  for (const std::int64_t i : kNeighbours) {
    double weight = 1;
    for (const std::int64_t j : kNeighbours) {
      if (i != j) weight *= (at_s - middle_s(step + j)) / (middle_s(step + i) - middle_s(step + j));
    }
    rate += weight * UnmodelledRate(track, step + i);
  }
  return rate;
}

double ExtrapolatedRangeRate(const SatelliteTrack& track, std::int64_t step) {
  for (const int direction : {-1, 1}) {
    const double u1 = UnmodelledRate(track, step + direction);
    const double u2 = UnmodelledRate(track, step + 2 * direction);
    const double u3 = UnmodelledRate(track, step + 3 * direction);
    const double rate = 3 * u1 - 3 * u2 + u3;
    if (std::isfinite(rate)) return rate;
  }
  return kAbsent;
}

void PredictUnmodelledRange(const SatelliteTrack& track, std::int64_t step, Prediction& p) {
  const StepState& s = track.At(step);
  p.range_factor = kAbsent;
  if (s.gap) return;
  const UnmodelledRange cubic = RangeFromNeighbours(track, step);
  if (std::isfinite(cubic.rate)) {
    p.range_m = cubic.rate * s.dt_s + (std::isfinite(cubic.common_m) ? cubic.common_m : 0);
    if (!std::isfinite(cubic.common_m)) return;
    p.range_factor = 1;
    p.noise_gain = std::max(p.noise_gain, kGainOfCubic);
    return;
  }
  if (!s.clock_known) return;  // a one-sided stencil has no common part to take off
  const double extrapolated = ExtrapolatedRangeRate(track, step);
  if (!std::isfinite(extrapolated)) return;
  p.range_m = extrapolated * s.dt_s;
  p.range_factor = 6;
  p.noise_gain = std::max(p.noise_gain, kGainOfExtrapolation);
}

/// Takes off what the signals have in common, those that were there before where there are any.
void TakeOffCommon(StepTest& test) {
  const std::uint32_t all = test.count == kMaxSignals ? ~0U : (std::uint32_t{1} << test.count) - 1;
  const std::uint32_t left_out = test.returning == all ? 0 : test.returning;
  double sum = 0;
  int counted = 0;
  for (int i = 0; i < test.count; ++i) {
    if ((left_out >> i & 1) != 0) continue;
    sum += test.r[static_cast<std::size_t>(i)];
    ++counted;
  }
  for (int i = 0; i < test.count; ++i) test.r[static_cast<std::size_t>(i)] -= sum / counted;
}

}  // namespace

double MeanOfNeighbours(double before, double after) { return 0.5 * (before + after); }

double CubicRangeRate(const SatelliteTrack& track, std::int64_t step) {
  if (!track.Has(step - 2) || !track.Has(step + 2)) return kAbsent;
  if (!IsEven(track, step, 2)) return UnevenCubicRangeRate(track, step);
  return (-UnmodelledRate(track, step - 2) + 4 * UnmodelledRate(track, step - 1) +
          4 * UnmodelledRate(track, step + 1) - UnmodelledRate(track, step + 2)) /
         6;
}

double WideRangeRate(const SatelliteTrack& track, std::int64_t step) {
  if (!track.Has(step - 3) || !track.Has(step + 3) || !IsEven(track, step, 3)) return kAbsent;
  return (6 * (UnmodelledRate(track, step - 1) + UnmodelledRate(track, step + 1)) +
          3 * (UnmodelledRate(track, step - 2) + UnmodelledRate(track, step + 2)) -
          2 * (UnmodelledRate(track, step - 3) + UnmodelledRate(track, step + 3))) /
         14;
}

UnmodelledRange RangeFromNeighbours(const SatelliteTrack& track, std::int64_t step) {
  const StepState& s = track.At(step);
  const double near = CubicRangeRate(track, step);
  if (std::isfinite(s.wide_common_m)) {
    const double wide = WideRangeRate(track, step);
    const double apart_m = (wide - near) * s.dt_s + s.wide_common_m - s.common_m;
    if (std::fabs(apart_m) < kStencilsAgree * s.range_scale_m) return {wide, s.wide_common_m};
  }
  return {near, s.common_m};
}

void FitRates(SatelliteTrack& track, std::int64_t i) {
  StepState& step = track.At(i);
  step.range_rate = step.ionosphere_rate = kAbsent;
  if (i <= track.first || step.gap || step.broken) return;
  const double noise = PhaseNoise(step);
  const double weight = 1 / (2 * noise * noise);
  NormalEquations n;
  for (const SignalTrack& s : track.signals) {
    if (!s.unstable && s.IsReal(i) && s.IsReal(i - 1)) n.Add(s.mu, s.X(i) - s.X(i - 1), weight);
  }
  if (n.count == 0) return;
  if (!n.OneBand()) track.two_band_step = std::max(track.two_band_step, i);
  step.lone_band = n.OneBand() && i - track.two_band_step <= kTrail;
  if (step.lone_band) return TakeOthersIonosphere(track, i, n);
  const bool inseparable = step.HasGeometry() ? n.OneBand() : n.NearlyOneBand();
  const RatePriors prior = PriorsOf(step, inseparable);
  const double a00 = n.one + 1 / (prior.range_m * prior.range_m);
  const double a11 = n.mu2 + 1 / (prior.ionosphere_m * prior.ionosphere_m);
  const double determinant = a00 * a11 - n.mu * n.mu;
  step.range_rate = (a11 * n.y - n.mu * n.mu_y) / determinant / step.dt_s;
  step.ionosphere_rate = (n.mu * n.y - a00 * n.mu_y) / determinant / step.dt_s;
}

Prediction Predict(const SatelliteTrack& track, std::int64_t step) {
  Prediction p;
  PredictIonosphere(track, step, p);
  if (track.At(step).HasGeometry()) {
    PredictModelledRange(track, step, p);
  } else {
    PredictUnmodelledRange(track, step, p);
  }
  return p;
}

void MakeTest(const SatelliteTrack& track, std::int64_t i, double interval_s, StepTest& test) {
  const StepState& step = track.At(i);
  const Prediction p = Predict(track, i);
  const double ratio = Gap(step, interval_s);
  const double range = std::isfinite(p.range_factor)
                           ? std::min(p.range_factor * step.range_scale_m * ratio, kLargestScale_m)
                           : kFree_m;
  double ionosphere =
      p.ionosphere_factor * step.ionosphere_scale_m * std::min(ratio * std::sqrt(ratio), 5 * ratio);
  if (ratio > 1.5) ionosphere = std::min(std::max(ionosphere, 0.002 * ratio), kLargestGapScale_m);
  test.range_m2 = range * range;
  test.ionosphere_m2 = ionosphere * ionosphere;
  test.count = 0;
  test.returning = 0;
  const double noise = PhaseNoise(step);
  for (std::size_t j = 0; j < track.signals.size() && test.count < kMaxSignals; ++j) {
    const SignalTrack& s = track.signals[j];
    if (s.unstable || !s.IsReal(i) || !s.IsKnown(i - 1)) continue;
    const auto place = static_cast<std::size_t>(test.count);
    const bool returns = !s.IsReal(i - 1);
    test.signal[place] = static_cast<std::uint8_t>(j);
    test.mu[place] = s.mu;
    test.r[place] = s.X(i) - s.X(i - 1) - p.range_m + s.mu * p.ionosphere_m;
    test.noise_m2[place] = p.noise_gain * noise * noise + (returns ? s.carried_variance_m2 : 0);
    if (returns) test.returning |= std::uint32_t{1} << test.count;
    ++test.count;
  }
  test.free_range = !std::isfinite(p.range_factor);
  test.predicted_range_m = p.range_m;
  test.predicted_ionosphere_m = p.ionosphere_m;
  if (test.free_range && test.count > 0) TakeOffCommon(test);
}

void TakePhases(const SatelliteTrack& track, std::int64_t step, std::int64_t from, const SignalMetres& metres,
                StepTest& test) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(test.count); ++i) {
    const SignalTrack& s = track.signals[test.signal[i]];
    const double off = metres[test.signal[i]];
    const double end = s.X(step) - (step >= from ? off : 0);
    const double begin = s.X(step - 1) - (step - 1 >= from ? off : 0);
    test.r[i] = end - begin - test.predicted_range_m + s.mu * test.predicted_ionosphere_m;
  }
  if (test.free_range && test.count > 0) TakeOffCommon(test);
}

double Chi2(const StepTest& test, const std::array<double, kMaxSignals>& r, double more_range_m2,
            double more_ionosphere_m2) {
  if (test.count == 0) return 0;
  const double range_m2 = test.range_m2 + more_range_m2;
  const double ionosphere_m2 = test.ionosphere_m2 + more_ionosphere_m2;
  // A range that is as good as free takes a common part of any size, which would only cost digits below.
  double common = 0;
  if (range_m2 > 1) {
    for (int i = 0; i < test.count; ++i) common += r[static_cast<std::size_t>(i)];
    common /= test.count;
  }
  double one = 0, mu = 0, mu2 = 0, y = 0, mu_y = 0, yy = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(test.count); ++i) {
    const double w = 1 / test.noise_m2[i];
    const double wm = w * test.mu[i];
    const double value = r[i] - common;
    one += w;
    mu += wm;
    mu2 += wm * test.mu[i];
    y += w * value;
    mu_y += wm * value;
    yy += w * value * value;
  }
  const double a00 = one + 1 / range_m2;
  const double a11 = mu2 + 1 / ionosphere_m2;
  const double determinant = a00 * a11 - mu * mu;
  return std::max(0.0, yy - (a11 * y * y - 2 * mu * y * mu_y + a00 * mu_y * mu_y) / determinant);
}

}  // namespace orsolva_host::analysis
