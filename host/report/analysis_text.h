// The part of the text report that holds the analysis.
#ifndef ORSOLVA_REPORT_ANALYSIS_TEXT_H
#define ORSOLVA_REPORT_ANALYSIS_TEXT_H

#include <string>

#include "host/report/figure_tables.h"
#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

/// Lines for the whole file, then the table of systems.
std::string AnalysisText(const Report& report, const TextStyle& style, const FigureTables& tables);

/// The table of signals, and of satellites where the report shows them.
std::string AnalysisSignals(const Report& report, const TextStyle& style, const FigureTables& tables);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_ANALYSIS_TEXT_H
