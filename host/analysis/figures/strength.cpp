#include "host/analysis/figures/strength.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/figures/result_rows.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kP5 = 0.05;
constexpr double kLowPart = 0.16;  // one sigma below the median of a normal distribution

ElevationBin BinAt(std::size_t i, double value, Count values) {
  const int from_deg = static_cast<int>(i) * kElevationBin_deg;
  return {from_deg, from_deg + kElevationBin_deg, value, values};
}

}  // namespace

void Strength::Add(const ObservationEpoch& epoch, const SignalRoster& roster, const Sky& sky) {
  signals_.resize(roster.Signals().size());
  shared_.resize(roster.SharedSignals().size());
  const auto number = static_cast<std::int32_t>(epoch.time_ns / kStrengthWindow_ns);
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) {
    const SatelliteObservation& satellite = epoch.satellites[i];
    const double elevation_deg = sky.ElevationDegrees(i);
    const bool in_bin = elevation_deg >= 0;
    const std::size_t elevation_bin =
        in_bin ? std::min(static_cast<std::size_t>(elevation_deg / kElevationBin_deg), kElevationBins - 1)
               : 0;
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      const std::size_t place = satellite.first_signal + k;
      const double snr_dbhz = epoch.signals[place].snr_dbhz;
      if (!(snr_dbhz > 0)) continue;
      Signal& signal = signals_[roster.SignalAt(place)];
      const std::size_t bin = StrengthHistogram::BinOf(snr_dbhz);
      signal.sum.dbhz += snr_dbhz;
      ++signal.sum.values;
      signal.values.Add(bin);
      if (!in_bin) continue;
      signal.by_elevation[elevation_bin].dbhz += snr_dbhz;
      ++signal.by_elevation[elevation_bin].values;
      shared_[roster.Signals()[roster.SignalAt(place)].shared][elevation_bin].Add(bin);
      AddToWindow(signal, number, snr_dbhz, elevation_deg);
    }
  }
}

void Strength::AddToWindow(Signal& signal, std::int32_t number, double snr_dbhz, double elevation_deg) {
  if (number != signal.open.number) {
    Close(signal.open, signal.windows);
    signal.open = {number, 0, 0, 0};
  }
  ++signal.open.values;
  signal.open.sum_dbhz += snr_dbhz;
  signal.open.sum_elevation_deg += elevation_deg;
}

/// Adds a window to those kept and forgets the ones that are too old.
void Strength::Close(const Window& window, std::vector<StrengthWindow>& windows) {
  if (window.values == 0) return;
  const auto is_kept = [&](const StrengthWindow& w) { return w.number > window.number - kKeptWindows; };
  windows.erase(windows.begin(), std::find_if(windows.begin(), windows.end(), is_kept));
  windows.push_back({window.number, static_cast<float>(window.sum_dbhz / window.values),
                     static_cast<float>(window.sum_elevation_deg / window.values)});
}

void Strength::FillIn(const Sum& sum, const StrengthHistogram& values, const ElevationSums& by_elevation,
                      StrengthFigures& figures) {
  if (sum.values == 0) return;
  figures.values = sum.values;
  figures.mean_dbhz = sum.dbhz / static_cast<double>(sum.values);
  figures.p5_dbhz = values.Quantile(kP5, kMinValues);
  for (std::size_t i = 0; i < kElevationBins; ++i) {
    const Sum& bin = by_elevation[i];
    if (bin.values > 0)
      figures.mean_by_elevation.push_back(BinAt(i, bin.dbhz / static_cast<double>(bin.values), bin.values));
  }
}

void Strength::FillIn(const SignalRoster& roster, AnalysisResult& result) const {
  FillInSums(roster, result);
  FillInDrops(roster, result);
}

void Strength::FillInSums(const SignalRoster& roster, AnalysisResult& result) const {
  std::vector<Signal> sums(shared_.size());
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    const Signal& signal = signals_[i];
    if (signal.sum.values == 0) continue;
    const ListedSignal& listed = roster.Signals()[i];
    FillIn(signal.sum, signal.values, signal.by_elevation,
           SatelliteSignalRow(result, roster.Satellites()[listed.satellite], listed.code).strength);
    Signal& sum = sums[listed.shared];
    sum.sum.dbhz += signal.sum.dbhz;
    sum.sum.values += signal.sum.values;
    sum.values.Add(signal.values);
    for (std::size_t k = 0; k < kElevationBins; ++k) {
      sum.by_elevation[k].dbhz += signal.by_elevation[k].dbhz;
      sum.by_elevation[k].values += signal.by_elevation[k].values;
    }
  }
  for (std::size_t i = 0; i < sums.size(); ++i) {
    if (sums[i].sum.values == 0) continue;
    const SharedSignal& shared = roster.SharedSignals()[i];
    StrengthFigures& figures = SystemSignalRow(result, shared.system, shared.code).strength;
    FillIn(sums[i].sum, sums[i].values, sums[i].by_elevation, figures);
    for (std::size_t k = 0; k < kElevationBins; ++k) {
      if (const auto p5 = shared_[i][k].Quantile(kP5, kMinValues))
        figures.p5_by_elevation.push_back(BinAt(k, *p5, shared_[i][k].Count()));
    }
  }
}

std::vector<StrengthCurves> Strength::Curves(const SignalRoster& roster) const {
  std::vector<ElevationSums> sums(shared_.size());
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    for (std::size_t k = 0; k < kElevationBins; ++k) {
      Sum& sum = sums[roster.Signals()[i].shared][k];
      sum.dbhz += signals_[i].by_elevation[k].dbhz;
      sum.values += signals_[i].by_elevation[k].values;
    }
  }
  std::vector<StrengthCurves> curves;
  for (std::size_t i = 0; i < shared_.size(); ++i) {
    StrengthCurve::Bins medians, means, spreads;
    for (std::size_t k = 0; k < kElevationBins; ++k) {
      medians[k] = shared_[i][k].Quantile(0.5, kMinCurveValues).value_or(kAbsent);
      const double low = shared_[i][k].Quantile(kLowPart, kMinCurveValues).value_or(kAbsent);
      spreads[k] = std::isnan(low) ? kAbsent : std::max(medians[k] - low, StrengthHistogram::kBin_db);
      const Sum& sum = sums[i][k];
      means[k] = sum.values < kMinCurveValues ? kAbsent : sum.dbhz / static_cast<double>(sum.values);
    }
    curves.push_back({StrengthCurve(medians), StrengthCurve(means), StrengthCurve(spreads)});
  }
  return curves;
}

/// Those of each signal up to the end of the stream, the open ones included.
std::vector<std::vector<StrengthWindow>> Strength::KeptWindows() const {
  std::int32_t last = 0;
  for (const Signal& signal : signals_) last = std::max(last, signal.open.number);
  std::vector<std::vector<StrengthWindow>> windows(signals_.size());
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    for (const StrengthWindow& window : signals_[i].windows) {
      if (window.number > last - kKeptWindows) windows[i].push_back(window);
    }
    if (signals_[i].open.number > last - kKeptWindows) Close(signals_[i].open, windows[i]);
  }
  return windows;
}

void Strength::FillInDrops(const SignalRoster& roster, AnalysisResult& result) const {
  const std::vector<StrengthCurves> curves = Curves(roster);
  const StrengthDrops drops(roster, curves, KeptWindows());
  for (std::size_t i = 0; i < shared_.size(); ++i) {
    std::vector<StrengthDrop> found = drops.OfSystem(i);
    const SharedSignal& shared = roster.SharedSignals()[i];
    if (!found.empty()) SystemSignalRow(result, shared.system, shared.code).strength.drops = std::move(found);
  }
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    std::vector<StrengthDrop> found = drops.OfSatellite(i);
    const ListedSignal& signal = roster.Signals()[i];
    const SatelliteId id = roster.Satellites()[signal.satellite];
    if (!found.empty()) SatelliteSignalRow(result, id, signal.code).strength.drops = std::move(found);
  }
}

}  // namespace orsolva_host::analysis
