// The figures that a comparison with earlier reports of a station looks at, and what counts as a change.
//
// The limits are this system's own choice: a smaller change is no reason to look at a station. Of epochs and
// events, whose numbers grow with the length of the data, the ratios are compared; numbers of satellites only
// between spans of like length.
#ifndef ORSOLVA_REPORT_WATCHED_FIGURES_H
#define ORSOLVA_REPORT_WATCHED_FIGURES_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>

#include "host/report/figure_list.h"

namespace orsolva_host {

enum class Better { kHigher, kLower, kNeither };

struct WatchedFigure {
  FigureScope scope;
  const char* key;  ///< of figures.h
  double limit;     ///< largest difference that is no change, in the unit of the figure
  double part;      ///< the same as a part of the earlier value; the larger one counts
  Better better;
  bool grows = false;  ///< with the length of the data: compared only between spans of like length

  double LimitAt(double earlier) const { return std::max(limit, part * std::fabs(earlier)); }
};

// clang-format off
inline constexpr WatchedFigure kWatchedFigures[] = {
    // scope               key                            limit  part  better
    {FigureScope::kRun,    "data_interval_s",             0.001, 0,    Better::kNeither},
    {FigureScope::kRun,    "receiver_mask_deg",           1,     0,    Better::kNeither},
    {FigureScope::kRun,    "code_residual_rms_m",         0.3,   0.3,  Better::kLower},
    {FigureScope::kRun,    "pdop_median",                 0.3,   0,    Better::kLower},
    {FigureScope::kRun,    "scatter_east_m",              0.3,   0.3,  Better::kLower},
    {FigureScope::kRun,    "scatter_north_m",             0.3,   0.3,  Better::kLower},
    {FigureScope::kRun,    "scatter_up_m",                0.6,   0.3,  Better::kLower},
    {FigureScope::kRun,    "antenna_moves",               0,     0,    Better::kLower},
    {FigureScope::kRun,    "solution_to_header_m",        2,     0,    Better::kLower},
    {FigureScope::kRun,    "receiver_clock_steered",      0,     0,    Better::kNeither},
    {FigureScope::kRun,    "satellites_without_orbit",    2,     0,    Better::kLower, true},
    {FigureScope::kRun,    "contradictions",              0,     0,    Better::kLower},
    {FigureScope::kSystem, "satellites_tracked",          2,     0,    Better::kHigher, true},
    {FigureScope::kSystem, "satellites_never_observed",   1,     0,    Better::kLower, true},
    {FigureScope::kSystem, "horizon_completeness_ratio",  0.02,  0,    Better::kHigher},
    {FigureScope::kSystem, "cutoff_completeness_ratio",   0.01,  0,    Better::kHigher},
    {FigureScope::kSystem, "slips_per_1000_observations", 0.5,   0.5,  Better::kLower},
    {FigureScope::kSignal, "signal_satellites",           2,     0,    Better::kHigher, true},
    {FigureScope::kSignal, "horizon_completeness_ratio",  0.02,  0,    Better::kHigher},
    {FigureScope::kSignal, "cutoff_completeness_ratio",   0.01,  0,    Better::kHigher},
    {FigureScope::kSignal, "strength_mean_dbhz",          1,     0,    Better::kHigher},
    {FigureScope::kSignal, "strength_p5_dbhz",            1.5,   0,    Better::kHigher},
    {FigureScope::kSignal, "multipath_moving_rms_m",      0.05,  0.2,  Better::kLower},
    {FigureScope::kSignal, "code_noise_m",                0.03,  0.2,  Better::kLower},
    {FigureScope::kSignal, "phase_noise_mm",              0.5,   0.3,  Better::kLower},
    {FigureScope::kSignal, "slips_per_1000_observations", 0.5,   0.5,  Better::kLower},
};
// clang-format on

/// Null when the figure is not watched.
inline const WatchedFigure* FindWatched(FigureScope scope, std::string_view key) {
  for (const WatchedFigure& row : kWatchedFigures) {
    if (row.scope == scope && key == row.key) return &row;
  }
  return nullptr;
}

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_WATCHED_FIGURES_H
