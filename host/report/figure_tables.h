// The rows of every figure, by what the figure belongs to.
#ifndef ORSOLVA_REPORT_FIGURE_TABLES_H
#define ORSOLVA_REPORT_FIGURE_TABLES_H

#include <vector>

#include "host/report/figure_rows.h"

namespace orsolva_host {

/// Every figure of a report, by what it belongs to.
struct FigureTables {
  std::vector<FigureRow<ReportRun>> run;
  std::vector<FigureRow<Headline>> headline;
  // Of the library's record.
  std::vector<FigureRow<ReportRun>> library_run;
  std::vector<FigureRow<LibraryHeadline>> library_headline;
  std::vector<FigureRow<Figures>> whole;     ///< of a system or a satellite
  std::vector<FigureRow<BandFigures>> band;  ///< of a band of a system or a satellite
  std::vector<FigureRow<Figures>> total;     ///< of the library total
  std::vector<FigureRow<BandFigures>> slot;  ///< of a band slot of the library total
  std::vector<FigureRow<SignalReport>> signal;
  std::vector<FigureRow<NavigationCoverage>> coverage;  ///< of an observed satellite
  // Of the analysis.
  std::vector<FigureRow<analysis::AnalysisResult>> analysis;
  std::vector<FigureRow<analysis::SystemFigures>> analysis_system;
  std::vector<FigureRow<analysis::SignalFigures>> analysis_signal;  ///< of a system or of a satellite
  std::vector<FigureRow<analysis::SatelliteFigures>> analysis_satellite;
  std::vector<FigureRow<analysis::WideLaneFigures>> wide_lane;
  std::vector<FigureRow<analysis::WindowFigures>> window;  ///< of time
  std::vector<FigureRow<analysis::SystemFigures>> window_system;
  std::vector<FigureRow<analysis::SignalFigures>> window_signal;
};

/// The rows of the program.
const FigureTables& AllFigures();

/// Calls visit(row) for every row of every scope.
template <typename Visit>
void ForEachRow(const FigureTables& tables, Visit&& visit) {
  const auto all = [&visit](const auto& rows) {
    for (const auto& row : rows) visit(row);
  };
  all(tables.run);
  all(tables.headline);
  all(tables.library_run);
  all(tables.library_headline);
  all(tables.whole);
  all(tables.band);
  all(tables.total);
  all(tables.slot);
  all(tables.signal);
  all(tables.coverage);
  all(tables.analysis);
  all(tables.analysis_system);
  all(tables.analysis_signal);
  all(tables.analysis_satellite);
  all(tables.wide_lane);
  all(tables.window);
  all(tables.window_system);
  all(tables.window_signal);
}

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FIGURE_TABLES_H
