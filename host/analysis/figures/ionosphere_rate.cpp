#include "host/analysis/figures/ionosphere_rate.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "host/analysis/figures/result_rows.h"
#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::int64_t kWindow_ns = 300 * kNanosecondsPerSecond;
constexpr double kWindow_s = 300;
constexpr double kRateStep_s = 30;
constexpr double kLongestStep_s = 60;
constexpr double kTimeTolerance = 0.99;  // of the step that a rate needs, for time tags that wander
constexpr double kDisturbed = 0.5;       // TECU/min
constexpr int kDisturbedPart = 4;        // one satellite in so many
constexpr double kMinSeparation = 0.3;   // of (1575.42 MHz / f)^2; less only shows phase noise
/// Metres of delay at 1575.42 MHz per TECU: 40.3e16 / f^2.
constexpr double kMetresPerTecu = 40.3e16 / (kReferenceCarrier_hz * kReferenceCarrier_hz);

/// Change of the slant TEC over a step, TECU; NaN without two bands.
double TecChange(const StepOutcome& outcome) {
  const SignalMask usable = outcome.GoesOn() & ~outcome.returns;
  if (usable == 0) return kAbsent;
  const std::vector<SignalTrack>& signals = outcome.track->signals;
  const SignalTrack& high = signals[static_cast<std::size_t>(std::countr_zero(usable))];
  const SignalTrack& low = signals[static_cast<std::size_t>(31 - std::countl_zero(usable))];
  if (low.mu - high.mu < kMinSeparation) return kAbsent;
  const std::int64_t i = outcome.step;
  const double change = (high.X(i) - high.X(i - 1)) - (low.X(i) - low.X(i - 1));
  return change / ((low.mu - high.mu) * kMetresPerTecu);
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
  satellites_.ForEach([&](SatelliteId id, Satellite& satellite) {
    if (satellite.window < before) Close(id, satellite);
  });
  for (auto& [letter, system] : systems_) system.Close(before);
}

void IonosphereRate::AddStep(const StepOutcome& outcome) {
  if (interval_s_ > kLongestStep_s || outcome.track->satellite.system == 'S') return;
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
  if (window != satellite.window) Close(outcome.track->satellite, satellite);
  satellite.window = window;
  satellite.rates.Add(60 * satellite.tecu / satellite.time_s);
  satellite.tecu = satellite.time_s = 0;
}

void IonosphereRate::Close(SatelliteId id, Satellite& satellite) {
  const std::optional<double> roti = CloseWindow(satellite, systems_[id.system]);
  if (roti && keeps_windows_) windows_.push_back({id, satellite.window * kWindow_ns, *roti});
}

/// @return its ROTI, absent with too few rates
std::optional<double> IonosphereRate::CloseWindow(Satellite& satellite, System& system) const {
  const Scatter rates = satellite.rates;
  satellite.rates = Scatter();
  const double expected = kWindow_s / std::max(kRateStep_s, interval_s_);
  if (rates.count < 2 || static_cast<double>(rates.count) < 0.5 * expected) return std::nullopt;
  const double roti = std::sqrt(rates.AboutMean() / static_cast<double>(rates.count - 1));
  system.roti.Add(roti);
  Window& window = system.open[satellite.window];
  ++window.satellites;
  window.disturbed += roti > kDisturbed;
  return roti;
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
  std::map<char, System> systems = systems_;
  satellites_.ForEach([&](SatelliteId id, const Satellite& satellite) {
    Satellite closed = satellite;
    CloseWindow(closed, systems[id.system]);
  });
  for (auto& [letter, system] : systems) {
    system.Close(window_ + 1);
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
