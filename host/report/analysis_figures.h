// The rows of the analysis' figures. Their rules are in the headers of host/analysis/figures.
#ifndef ORSOLVA_REPORT_ANALYSIS_FIGURES_H
#define ORSOLVA_REPORT_ANALYSIS_FIGURES_H

#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/report/figure_rows.h"

namespace orsolva_host {

/// How many satellites were in view and healthy but never observed; absent without orbits.
std::optional<Count> NeverObservedHealthy(const analysis::AnalysisResult& result);

std::vector<FigureRow<analysis::AnalysisResult>> AnalysisRows();
std::vector<FigureRow<analysis::SystemFigures>> AnalysisSystemRows();
std::vector<FigureRow<analysis::SignalFigures>> AnalysisSignalRows();
std::vector<FigureRow<analysis::SatelliteFigures>> AnalysisSatelliteRows();
std::vector<FigureRow<analysis::WideLaneFigures>> WideLaneRows();

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_ANALYSIS_FIGURES_H
