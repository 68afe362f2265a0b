#include "host/analysis/slips/step_departure.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/analysis/numeric/robust.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kSamples = 20;
constexpr int kMinSamples = 8;
// Of the means of the steps next to a step and two away: the best interpolation of averages of a random walk
// is near this.
constexpr double kNear = 1.24;
constexpr double kFar = -0.24;
constexpr double kClip_sigma = 2.5;
constexpr double kSigmaOfFourFifths = 0.7803;  // of normal errors over the 80th percentile of their sizes
constexpr double kLeastScale_m = 0.002;
constexpr double kPartOfCorrelation = 0.5;  // that is believed of so few samples

double Square(double x) { return x * x; }

struct Departure {
  double range_m;
  double ionosphere_m;

  bool IsKnown() const { return std::isfinite(range_m) && std::isfinite(ionosphere_m); }
};

Departure DepartureOf(const SatelliteTrack& track, std::int64_t i) {
  const StepState& s = track.At(i);
  const double median = std::isfinite(s.range_median) ? s.range_median : 0;
  const double near = 0.5 * (track.IonosphereRate(i - 1) + track.IonosphereRate(i + 1));
  const double far = 0.5 * (track.IonosphereRate(i - 2) + track.IonosphereRate(i + 2));
  const double expected = std::isfinite(far) ? kNear * near + kFar * far : near;
  return {(track.RangeRate(i) - median) * s.dt_s, (track.IonosphereRate(i) - expected) * s.dt_s};
}

/// Departures of earlier steps, range and ionosphere apart.
struct Samples {
  std::array<double, kSamples> range_m = {};
  std::array<double, kSamples> ionosphere_m = {};
  int count = 0;
};

/// Those that a slip in the step cannot have touched.
Samples SamplesBefore(const SatelliteTrack& track, std::int64_t step) {
  Samples samples;
  for (std::int64_t i = step - 3; i > track.first && i >= step - 2 - kSamples; --i) {
    if (!track.Has(i) || !track.At(i).HasGeometry() || track.At(i).lone_band) continue;
    const Departure d = DepartureOf(track, i);
    if (!d.IsKnown()) continue;
    const auto place = static_cast<std::size_t>(samples.count++);
    samples.range_m[place] = d.range_m;
    samples.ionosphere_m[place] = d.ionosphere_m;
  }
  return samples;
}

double Scale(std::array<double, kSamples> values, int count) {
  const auto end = values.begin() + count;
  std::for_each(values.begin(), end, [](double& v) { v = std::fabs(v); });
  std::sort(values.begin(), end);
  const double half = values[static_cast<std::size_t>(count / 2)];
  const double four_fifths = values[static_cast<std::size_t>(count * 4 / 5)];
  return std::max({kSigmaOfMedian * half, kSigmaOfFourFifths * four_fifths, kLeastScale_m});
}

}  // namespace

std::optional<StepDeparture> StepDeparture::Settle(const SatelliteTrack& track, std::int64_t step) {
  if (!DepartureOf(track, step).IsKnown()) return std::nullopt;
  const Samples samples = SamplesBefore(track, step);
  if (samples.count < kMinSamples) return std::nullopt;
  const double range_limit = kClip_sigma * Scale(samples.range_m, samples.count);
  const double ionosphere_limit = kClip_sigma * Scale(samples.ionosphere_m, samples.count);
  double range = 0, both = 0, ionosphere = 0;
  for (std::size_t j = 0; j < static_cast<std::size_t>(samples.count); ++j) {
    const double r = std::clamp(samples.range_m[j], -range_limit, range_limit);
    const double i = std::clamp(samples.ionosphere_m[j], -ionosphere_limit, ionosphere_limit);
    range += r * r, both += r * i, ionosphere += i * i;
  }
  const double range_m2 = range / samples.count + Square(kLeastScale_m);
  const double ionosphere_m2 = ionosphere / samples.count + Square(kLeastScale_m);
  // The samples may be quieter than what the satellite is known for.
  const double widened_m2 = std::max(range_m2, Square(track.At(step).range_scale_m));
  const double both_m2 = kPartOfCorrelation * both / samples.count * std::sqrt(widened_m2 / range_m2);
  const double determinant = widened_m2 * ionosphere_m2 - both_m2 * both_m2;
  StepDeparture settled;
  settled.step_ = step;
  settled.range_ = ionosphere_m2 / determinant;
  settled.both_ = -both_m2 / determinant;
  settled.ionosphere_ = widened_m2 / determinant;
  return settled;
}

double StepDeparture::Chi2(const SatelliteTrack& track) const {
  const Departure d = DepartureOf(track, step_);
  return range_ * d.range_m * d.range_m + 2 * both_ * d.range_m * d.ionosphere_m +
         ionosphere_ * d.ionosphere_m * d.ionosphere_m;
}

}  // namespace orsolva_host::analysis
