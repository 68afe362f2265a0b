// What happened to phases, and the times of tracking between, as tables.
#ifndef ORSOLVA_PYTHON_EVENT_TABLES_H
#define ORSOLVA_PYTHON_EVENT_TABLES_H

#include <vector>

#include "host/analysis/slips/event.h"
#include "host/report/detail_collector.h"
#include "python/src/columns.h"

namespace orsolva_python {

Table EventTable(const std::vector<orsolva_host::analysis::Event>& events);

/// Times of tracking without a break, which the page's collector keeps.
Table ArcTable(const orsolva_host::DetailCollector& detail);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_EVENT_TABLES_H
