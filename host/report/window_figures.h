// The rows of the figures that windows of time have: those of the whole that are sums.
#ifndef ORSOLVA_REPORT_WINDOW_FIGURES_H
#define ORSOLVA_REPORT_WINDOW_FIGURES_H

#include <optional>
#include <string>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/report/figure_rows.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

std::vector<FigureRow<analysis::WindowFigures>> WindowRows();
std::vector<FigureRow<analysis::SystemFigures>> WindowSystemRows();
std::vector<FigureRow<analysis::SignalFigures>> WindowSignalRows();

/// "2020-06-25T06:00:00", the beginning of a window.
std::string WindowName(const analysis::WindowFigures& window);

/// A window over all its systems and signals.
struct WindowTotals {
  std::optional<analysis::Count> satellites;
  std::optional<double> completeness;    ///< from the cut-off up, of all expected epochs of all signals
  std::optional<analysis::Count> slips;  ///< of every size, from the cut-off up, one per satellite and step
  std::optional<analysis::Count> interruptions;
  std::optional<double> strength_dbhz;  ///< mean of all values
  std::optional<double> multipath_m;    ///< root of the mean of all squares
};

WindowTotals TotalsOf(const analysis::WindowFigures& window);

/// A table with a row per window; empty without windows.
std::string WindowTable(const std::vector<analysis::WindowFigures>& windows, const TextStyle& style);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_WINDOW_FIGURES_H
