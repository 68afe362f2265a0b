#include "host/analysis/figures/carrier_noise.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <utility>

#include "host/analysis/figures/result_rows.h"
#include "host/analysis/numeric/robust.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kRootOfTwenty = 4.47213595499958;
constexpr double kFastInterval_s =
    1.05;                           // at and below, what differences leave of ionosphere and range is noise
constexpr double kEvenStep = 0.02;  // of the interval by which steps of a third difference may differ from it
constexpr const char* kMethodNames[] = {"", "three bands", "within the band", "third difference"};

double ThirdDifference(const SignalTrack& s, std::int64_t i) {
  return s.X(i) - s.X(i - 3) - 3 * (s.X(i - 1) - s.X(i - 2));
}

/// Whether one signal is a part of the other, as E5a and E5b are of E5: their phases err together.
bool Overlap(char band, char other) {
  const auto part_of_8 = [](char b) { return b == '5' || b == '7'; };
  return (band == '8' && part_of_8(other)) || (other == '8' && part_of_8(band));
}

}  // namespace

void CarrierNoise::SetInterval(double interval_s) {
  interval_s_ = interval_s;
  fast_ = interval_s <= kFastInterval_s;
}

/// One method per signal: a better one starts again.
void CarrierNoise::Signal::Add(Method by, double size_m) {
  if (by < method) return;
  if (by > method) sizes = Sizes();
  method = by;
  sizes.Add(size_m);
}

void CarrierNoise::AddStep(const StepOutcome& outcome) {
  // Before signals are rearranged: those that wait are pointed at.
  if (outcome.state->epoch != epoch_) TakeOffCommonPart();
  epoch_ = outcome.state->epoch;
  Satellite& satellite = satellites_[outcome.track->satellite];
  if (outcome.rearranged) {
    Arrange(satellite.signals, outcome);
    satellite.smooth = {};
    satellite.ready = 0;
  }
  const SignalMask ready = Ready(outcome, satellite);
  if (ready == 0) return;
  if (fast_) {
    Wait(outcome, ready, satellite);
  } else if (outcome.up && outcome.step % 2 == 0) {  // neighbours have three values in common and add little
    AddCombinations(outcome, ready, satellite);
  }
}

/// Signals with a third difference that ends with the step.
SignalMask CarrierNoise::Ready(const StepOutcome& outcome, Satellite& satellite) const {
  const bool even = std::fabs(outcome.state->dt_s - interval_s_) <= kEvenStep * interval_s_;
  const SignalMask smooth = even ? outcome.GoesOn() & ~outcome.returns : 0;
  satellite.smooth = {smooth, satellite.smooth[0], satellite.smooth[1]};
  return smooth & satellite.smooth[1] & satellite.smooth[2];
}

void CarrierNoise::AddCombinations(const StepOutcome& outcome, SignalMask ready, Satellite& satellite) {
  const SatelliteTrack& track = *outcome.track;
  if (ready != satellite.ready) {
    satellite.ready = ready;
    Combine(track, satellite);
  }
  std::array<double, kMaxSignals> differences;
  for (SignalMask left = ready; left != 0;) {
    const std::size_t j = TakeFirst(left);
    differences[j] = ThirdDifference(track.signals[j], outcome.step);
  }
  for (SignalMask left = ready; left != 0;) {
    const std::size_t j = TakeFirst(left);
    const Combination& c = satellite.combinations[j];
    if (c.method == kNone) continue;
    double sum = 0;
    for (std::size_t k = 0; k < c.place.size(); ++k) sum += c.weight[k] * differences[c.place[k]];
    satellite.signals[outcome.number[j]].Add(c.method, std::fabs(sum) * (1 / kRootOfTwenty));
  }
}

/// What each signal's noise is read off, from the signals that are ready.
void CarrierNoise::Combine(const SatelliteTrack& track, Satellite& satellite) {
  for (SignalMask left = satellite.ready; left != 0;) {
    const std::size_t j = TakeFirst(left);
    Combination& c = satellite.combinations[j];
    c = WithinBand(track, j, satellite.ready);
    if (c.method == kNone) c = OfThreeBands(track, j, satellite.ready);
  }
}

CarrierNoise::Combination CarrierNoise::WithinBand(const SatelliteTrack& track, std::size_t place,
                                                   SignalMask ready) {
  for (std::size_t j = 0; j < track.signals.size() && j < kMaxSignals; ++j) {
    if (j == place || !Has(ready, j) || track.signals[j].code.band != track.signals[place].code.band)
      continue;
    const double weight = std::sqrt(0.5);
    return {kWithinBand, {place, j, j}, {weight, -weight, 0}};
  }
  return {};
}

/// The two other bands that give the signal the greatest share of the variance.
CarrierNoise::Combination CarrierNoise::OfThreeBands(const SatelliteTrack& track, std::size_t place,
                                                     SignalMask ready) {
  Combination best;
  double best_share = kMinShare;
  const double mu = track.signals[place].mu;
  for (std::size_t p = 0; p < track.signals.size() && p < kMaxSignals; ++p) {
    for (std::size_t q = p + 1; q < track.signals.size() && q < kMaxSignals; ++q) {
      if (p == place || q == place || !Has(ready, p) || !Has(ready, q)) continue;
      const char own = track.signals[place].code.band;
      const char band_p = track.signals[p].code.band, band_q = track.signals[q].code.band;
      if (Overlap(own, band_p) || Overlap(own, band_q) || Overlap(band_p, band_q)) continue;
      const double mu_p = track.signals[p].mu, mu_q = track.signals[q].mu;
      const double a = mu_p - mu_q, b = mu_q - mu, c = mu - mu_p;
      const double norm = std::sqrt(a * a + b * b + c * c);
      // A second signal on one of the bands would leave no third band.
      if (a == 0 || b == 0 || c == 0 || a * a / (norm * norm) < best_share) continue;
      best_share = a * a / (norm * norm);
      best = {kThreeBands, {place, p, q}, {a / norm, b / norm, c / norm}};
    }
  }
  return best;
}

void CarrierNoise::Wait(const StepOutcome& outcome, SignalMask ready, Satellite& satellite) {
  double first = kAbsent;
  for (SignalMask left = ready; left != 0;) {
    const std::size_t j = TakeFirst(left);
    const double difference = ThirdDifference(outcome.track->signals[j], outcome.step);
    if (std::isnan(first)) first_signals_.push_back(first = difference);
    waiting_.push_back({&satellite.signals[outcome.number[j]], difference, first, outcome.up});
  }
}

/// Of the satellites of one epoch, whose steps are decided one after the other.
void CarrierNoise::TakeOffCommonPart() {
  if (first_signals_.size() >= kMinSatellites) {
    std::sort(first_signals_.begin(), first_signals_.end());
    for (const Waiting& w : waiting_) {
      if (!w.up) continue;
      const double size = std::fabs(w.metres - MedianWithout(w.first_metres)) / kRootOfTwenty;
      w.signal->Add(kThirdDifference, size);
    }
  }
  waiting_.clear();
  first_signals_.clear();
}

/// Median of the sorted first signals but one.
double CarrierNoise::MedianWithout(double value) const {
  const std::size_t rest = first_signals_.size() - 1;
  const auto at = [&](std::size_t rank) {
    const double here = first_signals_[rank];
    return here < value ? here : first_signals_[rank + 1];
  };
  return 0.5 * (at((rest - 1) / 2) + at(rest / 2));
}

void CarrierNoise::FillIn(AnalysisResult& result) const {
  std::map<std::pair<char, std::string>, std::array<Sizes, kMethods>> systems;
  const auto figures_of = [](Method method, const Sizes& sizes) {
    PhaseNoiseFigures figures;
    const auto median = sizes.Quantile(0.5);
    if (sizes.Count() < kMinValues || !median) return figures;
    figures.noise_mm = 1e3 * kSigmaOfMedian * *median;
    figures.method = kMethodNames[method];
    figures.values = sizes.Count();
    return figures;
  };
  satellites_.ForEach([&](SatelliteId id, const Satellite& satellite) {
    for (const Signal& signal : satellite.signals) {
      SatelliteSignalRow(result, id, signal.code).phase_noise = figures_of(signal.method, signal.sizes);
      systems[{id.system, NameOf(signal.code)}][signal.method].Add(signal.sizes);
    }
  });
  for (const auto& [key, by_method] : systems) {
    const auto most = std::max_element(by_method.begin(), by_method.end(),
                                       [](const Sizes& a, const Sizes& b) { return a.Count() < b.Count(); });
    const auto method = static_cast<Method>(most - by_method.begin());
    SystemSignalRow(result, key.first, {key.second[0], key.second[1]}).phase_noise =
        figures_of(method, *most);
  }
}

}  // namespace orsolva_host::analysis
