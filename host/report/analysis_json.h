// The object "analysis" of a report in JSON.
#ifndef ORSOLVA_REPORT_ANALYSIS_JSON_H
#define ORSOLVA_REPORT_ANALYSIS_JSON_H

#include <nlohmann/json_fwd.hpp>

#include "host/report/figure_tables.h"
#include "host/report/report.h"

namespace orsolva_host {

/// With its satellites and their signals where the report shows them.
nlohmann::ordered_json AnalysisJson(const Report& report, const FigureTables& tables);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_ANALYSIS_JSON_H
