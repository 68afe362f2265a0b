#include "python/src/report_tables.h"

#include "python/src/analysis_tables.h"
#include "python/src/event_tables.h"
#include "python/src/library_tables.h"
#include "python/src/verdict_tables.h"

namespace orsolva_python {
namespace {

Table Events(const orsolva_host::Report& report) { return EventTable(report.analysis.events); }

std::vector<ReportTable> AllTables() {
  std::vector<ReportTable> tables = {{"events", Events}};
  for (const auto& more : {AnalysisTables(), LibraryTables(), VerdictTables()})
    tables.insert(tables.end(), more.begin(), more.end());
  return tables;
}

}  // namespace

const std::vector<ReportTable>& ReportTables() {
  static const std::vector<ReportTable> kTables = AllTables();
  return kTables;
}

}  // namespace orsolva_python
