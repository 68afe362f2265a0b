// The lists of a report as tables. Columns of figures follow the rows of host/report: a new figure is a new
// column.
#ifndef ORSOLVA_PYTHON_REPORT_TABLES_H
#define ORSOLVA_PYTHON_REPORT_TABLES_H

#include <vector>

#include "host/report/report.h"
#include "python/src/columns.h"

namespace orsolva_python {

/// The tables of a report, one row of this list each: its name and how it is made.
struct ReportTable {
  const char* name;
  Table (*make)(const orsolva_host::Report& report);
};
const std::vector<ReportTable>& ReportTables();

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_REPORT_TABLES_H
