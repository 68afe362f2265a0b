#include "host/report/window_figures.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "host/report/analysis_figures.h"
#include "host/report/figure_text.h"
#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

using analysis::Count;
using analysis::SignalFigures;
using analysis::SpanFigures;
using analysis::SystemFigures;
using analysis::WindowFigures;

constexpr std::array kSystemKeys = {"satellites_tracked",
                                    "horizon_expected_epochs",
                                    "horizon_observed_epochs",
                                    "horizon_completeness_ratio",
                                    "cutoff_expected_epochs",
                                    "cutoff_observed_epochs",
                                    "cutoff_completeness_ratio",
                                    "sure_slips",
                                    "unsure_slips",
                                    "half_cycle_slips",
                                    "phase_jumps",
                                    "tested_steps",
                                    "untested_steps",
                                    "loss_of_lock_flags",
                                    "loss_of_lock_with_slip",
                                    "interruptions_of_signals",
                                    "interruptions_of_satellites",
                                    "interruptions_of_receiver"};

constexpr std::array kSignalOnlyKeys = {
    "code_values",        "phase_values",         "doppler_values",         "strength_values",
    "strength_mean_dbhz", "strength_values_used", "multipath_moving_rms_m", "multipath_values"};

template <typename Keys>
bool Contains(const Keys& keys, std::string_view key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

template <auto member>
std::optional<double> OfSpan(const WindowFigures& window) {
  return Get<member>(window.span);
}

void Add(std::optional<Count>& sum, const std::optional<Count>& more) {
  if (more) sum = sum.value_or(0) + *more;
}

/// Sums of a figure and of the values it is made of.
struct Weighted {
  double sum = 0, values = 0;

  void Add(double value, const std::optional<Count>& count) {
    sum += value * static_cast<double>(count.value_or(0));
    values += static_cast<double>(count.value_or(0));
  }
  std::optional<double> Mean() const { return values > 0 ? std::optional(sum / values) : std::nullopt; }
};

}  // namespace

std::vector<FigureRow<WindowFigures>> WindowRows() {
  const auto row = [](const char* key, std::optional<double> (*get)(const WindowFigures&)) {
    return FigureRow<WindowFigures>{key, FigureKind::kEpochs, get, {}, kNotInSum, FigureSource::kAnalysis};
  };
  return {row("nominal_epochs", OfSpan<&SpanFigures::expected_epochs>),
          row("present_epochs", OfSpan<&SpanFigures::present_epochs>),
          row("missing_epochs", OfSpan<&SpanFigures::lost_epochs>)};
}

std::vector<FigureRow<SystemFigures>> WindowSystemRows() {
  std::vector<FigureRow<SystemFigures>> rows;
  for (const FigureRow<SystemFigures>& row : AnalysisSystemRows()) {
    if (Contains(kSystemKeys, row.key)) rows.push_back(row);
  }
  return rows;
}

std::vector<FigureRow<SignalFigures>> WindowSignalRows() {
  std::vector<FigureRow<SignalFigures>> rows;
  for (const FigureRow<SignalFigures>& row : AnalysisSignalRows()) {
    if (Contains(kSystemKeys, row.key) || Contains(kSignalOnlyKeys, row.key)) rows.push_back(row);
  }
  return rows;
}

std::string WindowName(const WindowFigures& window) {
  std::string text = TimeText(TimeOfNanoseconds(window.from_ns)).substr(0, 19);
  text[10] = 'T';
  return text;
}

WindowTotals TotalsOf(const WindowFigures& window) {
  WindowTotals totals;
  std::optional<Count> expected, observed;
  for (const SystemFigures& system : window.systems) {
    Add(totals.satellites, system.satellites_observed);
    Add(expected, system.cutoff.expected);
    Add(observed, system.cutoff.observed);
    for (const auto& slips :
         {system.slips.sure, system.slips.unsure, system.slips.half_cycles, system.slips.unknown_size}) {
      Add(totals.slips, slips);
    }
    for (const auto& count : {system.interruptions.by_signal, system.interruptions.by_satellite,
                              system.interruptions.by_receiver}) {
      Add(totals.interruptions, count);
    }
  }
  if (expected.value_or(0) > 0)
    totals.completeness = static_cast<double>(observed.value_or(0)) / static_cast<double>(*expected);
  Weighted strength, squares;
  for (const SignalFigures& signal : window.signals) {
    if (signal.strength.mean_dbhz) strength.Add(*signal.strength.mean_dbhz, signal.strength.values);
    if (const auto& rms = signal.multipath.moving_m) squares.Add(*rms * *rms, signal.multipath.values);
  }
  totals.strength_dbhz = strength.Mean();
  if (const auto mean = squares.Mean()) totals.multipath_m = std::sqrt(*mean);
  return totals;
}

std::string WindowTable(const std::vector<WindowFigures>& windows, const TextStyle& style) {
  if (windows.empty()) return {};
  TextTable table;
  table.AddColumn("From (GPST)", -17);
  table.AddColumn("Epochs", 8);
  table.AddColumn("Missing", 9);
  table.AddColumn("Sats", 6);
  table.AddColumn("Cut-off %", 11);
  table.AddColumn("Slips", 7);
  table.AddColumn("Holes", 7);
  table.AddColumn("SNR", 7);
  table.AddColumn("MP m", 8);
  for (const WindowFigures& window : windows) {
    const WindowTotals totals = TotalsOf(window);
    std::string name = WindowName(window).substr(0, 16);
    name[10] = ' ';
    const bool any = window.span.present_epochs.value_or(0) > 0;
    const auto when_any = [any](std::string text) { return any ? text : std::string("-"); };
    table.AddRow({std::move(name), Whole(window.span.present_epochs), Whole(window.span.lost_epochs),
                  when_any(Whole(totals.satellites)), Shown(totals.completeness, FigureKind::kRatio, 2),
                  when_any(Whole(totals.slips)), when_any(Whole(totals.interruptions)),
                  Fixed(totals.strength_dbhz, 2), Fixed(totals.multipath_m, 3)},
                 window.span.lost_epochs.value_or(0) > 0 ? Tone::kWarn : Tone::kPlain);
  }
  return table.Text(style);
}

}  // namespace orsolva_host
