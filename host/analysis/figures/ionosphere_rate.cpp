#include "host/analysis/figures/ionosphere_rate.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/figures/result_rows.h"
#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::int64_t kWindow_ns = 300 * kNanosecondsPerSecond;
constexpr double kWindow_s = 300;
constexpr double kRateStep_s = 30;
constexpr double kLongestStep_s = 60;
constexpr double kTimeTolerance = 0.99;   // of the step that a rate needs, for time tags that wander
constexpr double kDisturbed = 0.5;        // TECU/min
constexpr int kDisturbedPart = 4;         // one satellite in so many
constexpr double kLeastSeparation = 0.3;  // of (1575.42 MHz / f)^2; less only shows phase noise
/// Metres of delay at 1575.42 MHz per TECU: 40.3e16 / f^2.
constexpr double kMetresPerTecu = 40.3e16 / (kReferenceCarrier_hz * kReferenceCarrier_hz);

/// Change of the slant TEC over a step, TECU; NaN without two bands.
double TecChange(const StepOutcome& outcome) {
  const SatelliteTrack& track = *outcome.track;
  const SignalTrack* high = nullptr;
  const SignalTrack* low = nullptr;
  for (std::size_t j = 0; j < track.signals.size() && j < kMostSignals; ++j) {
    if (!outcome.signals[j].GoesOn() || outcome.signals[j].returns) continue;
    if (high == nullptr) high = &track.signals[j];
    low = &track.signals[j];
  }
  if (high == nullptr || low->mu - high->mu < kLeastSeparation) return kAbsent;
  const std::int64_t i = outcome.step;
  const double change = (high->X(i) - high->X(i - 1)) - (low->X(i) - low->X(i - 1));
  return change / (low->mu - high->mu) / kMetresPerTecu;
}

}  // namespace

void IonosphereRate::AddEpoch(std::int64_t time_ns) {
  const std::int64_t window = time_ns / kWindow_ns;
  if (window == window_) return;
  window_ = window;
  // Steps are decided kLead epochs late, within one window at the intervals that have rates.
  CloseWindows(window - 1);
}

void IonosphereRate::CloseWindows(std::int64_t before) {
  for (auto& [id, satellite] : satellites_) {
    if (satellite.window < before) CloseWindow(satellite, systems_[id.system]);
  }
  for (auto& [letter, system] : systems_) system.Close(before);
}

void IonosphereRate::AddStep(const StepOutcome& outcome) {
  if (interval_s_ > kLongestStep_s) return;
  Satellite& satellite = satellites_[outcome.track->satellite];
  const double change = outcome.up && !outcome.state->gap ? TecChange(outcome) : kAbsent;
  if (std::isnan(change)) {
    satellite.tecu = satellite.time_s = 0;
    return;
  }
  satellite.tecu += change;
  satellite.time_s += outcome.state->dt_s;
  if (satellite.time_s >= kTimeTolerance * kRateStep_s) AddRate(outcome, satellite);
}

void IonosphereRate::AddRate(const StepOutcome& outcome, Satellite& satellite) {
  const std::int64_t window = outcome.state->time_ns / kWindow_ns;
  if (window != satellite.window) CloseWindow(satellite, systems_[outcome.track->satellite.system]);
  satellite.window = window;
  satellite.rates.Add(60 * satellite.tecu / satellite.time_s);
  satellite.tecu = satellite.time_s = 0;
}

void IonosphereRate::CloseWindow(Satellite& satellite, System& system) const {
  const Scatter rates = satellite.rates;
  satellite.rates = Scatter();
  const double expected = kWindow_s / std::max(kRateStep_s, interval_s_);
  if (rates.count < 2 || static_cast<double>(rates.count) < 0.5 * expected) return;
  const double roti = std::sqrt(rates.squares / static_cast<double>(rates.count - 1));
  system.roti.Add(roti);
  Window& window = system.open[satellite.window];
  ++window.satellites;
  window.disturbed += roti > kDisturbed;
}

/// Counts the windows of the station before one.
void IonosphereRate::System::Close(std::int64_t before) {
  while (!open.empty() && open.begin()->first < before) {
    const Window& window = open.begin()->second;
    disturbed_windows += window.disturbed > 0 && kDisturbedPart * window.disturbed >= window.satellites;
    open.erase(open.begin());
  }
}

void IonosphereRate::AddEvent(const Event& event) {
  if (event.kind != EventKind::kIonosphere || !IsUp(event.elevation_deg, cutoff_deg_)) return;
  ++systems_[event.satellite.system].events;
}

void IonosphereRate::FillIn(AnalysisResult& result) const {
  IonosphereRate closed = *this;
  closed.CloseWindows(window_ + 1);
  for (const auto& [letter, system] : closed.systems_) {
    IonosphereFigures& figures = SystemRow(result, letter).ionosphere;
    figures.events = system.events;
    if (system.roti.Count() == 0) continue;
    figures.windows = system.roti.Count();
    figures.median_roti = system.roti.Quantile(0.5);
    figures.p95_roti = system.roti.Quantile(0.95);
    figures.disturbed_minutes = static_cast<double>(system.disturbed_windows) * kWindow_s / 60;
  }
}

}  // namespace orsolva_host::analysis
