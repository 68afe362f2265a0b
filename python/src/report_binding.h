// Reports as Python sees them, and the calls that make them from files.
#ifndef ORSOLVA_PYTHON_REPORT_BINDING_H
#define ORSOLVA_PYTHON_REPORT_BINDING_H

#include <nanobind/nanobind.h>

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "host/report/detail_collector.h"
#include "host/report/report.h"
#include "host/report/series_collector.h"
#include "python/src/columns.h"

namespace orsolva_python {

/// A report with what its page and its detail table need. It does not change.
struct FinishedReport {
  orsolva_host::Report report;
  /// Null where it was not asked for. WriteHtml thins it, so that pages are written one at a time.
  std::unique_ptr<orsolva_host::DetailCollector> page;
  orsolva_host::SeriesCollector page_series;  ///< for the page as well
  // Absent where they were not asked for.
  std::shared_ptr<const Table> detail;
  std::shared_ptr<const Table> series;
  std::optional<std::vector<orsolva_host::analysis::Event>> all_events;
  std::mutex page_mutex;
};

void BindReports(nanobind::module_& module);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_REPORT_BINDING_H
