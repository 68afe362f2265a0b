// Figures of the analysis as tables.
#ifndef ORSOLVA_PYTHON_ANALYSIS_TABLES_H
#define ORSOLVA_PYTHON_ANALYSIS_TABLES_H

#include <vector>

#include "python/src/report_tables.h"

namespace orsolva_python {

std::vector<ReportTable> AnalysisTables();

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_ANALYSIS_TABLES_H
