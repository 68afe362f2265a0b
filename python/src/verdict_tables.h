// What a report concludes, and its list of all figures, as tables.
#ifndef ORSOLVA_PYTHON_VERDICT_TABLES_H
#define ORSOLVA_PYTHON_VERDICT_TABLES_H

#include <vector>

#include "python/src/report_tables.h"

namespace orsolva_python {

std::vector<ReportTable> VerdictTables();

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_VERDICT_TABLES_H
