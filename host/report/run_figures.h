// The figures of a run, those that the library has of it, and those of the broadcast records of each
// satellite observed in it.
#ifndef ORSOLVA_REPORT_RUN_FIGURES_H
#define ORSOLVA_REPORT_RUN_FIGURES_H

#include <vector>

#include "host/report/figure_rows.h"

namespace orsolva_host {

std::vector<FigureRow<ReportRun>> RunRows();
std::vector<FigureRow<ReportRun>> LibraryRunRows();
std::vector<FigureRow<NavigationCoverage>> CoverageRows();

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_RUN_FIGURES_H
