// The lists of a report as tables. Columns of figures follow the rows of host/report: a new figure is a new
// column.
#ifndef ORSOLVA_PYTHON_REPORT_TABLES_H
#define ORSOLVA_PYTHON_REPORT_TABLES_H

#include <string>
#include <vector>

#include "host/report/detail_collector.h"
#include "host/report/report.h"
#include "python/src/columns.h"

namespace orsolva_python {

/// The tables of a report, one row of this list each: its name and how it is made.
struct ReportTable {
  const char* name;
  Table (*make)(const orsolva_host::Report& report);
};
const std::vector<ReportTable>& ReportTables();

/// Times of tracking without a break, which the page's collector keeps.
Table ArcTable(const orsolva_host::DetailCollector& detail);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_REPORT_TABLES_H
