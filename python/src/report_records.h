// The single values of a report as dictionaries, one per part, and the list of all figures.
#ifndef ORSOLVA_PYTHON_REPORT_RECORDS_H
#define ORSOLVA_PYTHON_REPORT_RECORDS_H

#include <nanobind/nanobind.h>

#include <optional>

#include "host/report/report.h"
#include "host/report/stream_facts.h"

namespace orsolva_python {

nanobind::dict RunRecord(const orsolva_host::Report& report);
nanobind::dict HeadlineRecord(const orsolva_host::Report& report);
nanobind::dict AnalysisRecord(const orsolva_host::Report& report);
nanobind::dict LibraryHeadlineRecord(const orsolva_host::Report& report);
nanobind::dict LibraryRunRecord(const orsolva_host::Report& report);
nanobind::dict LibraryTotalRecord(const orsolva_host::Report& report);
nanobind::dict VerdictRecord(const orsolva_host::Report& report);
/// None without a profile.
nanobind::object ProfileRecord(const orsolva_host::Report& report);
/// None where no earlier report is named.
nanobind::object ComparisonRecord(const orsolva_host::Report& report);
/// None for files that are no recording of a stream.
nanobind::object StreamRecord(const std::optional<orsolva_host::StreamFacts>& stream);
nanobind::list FindingRecords(const orsolva_host::Report& report);

/// (part, key, type, unit, title) of every figure that is a member of a record above or a column of a table.
nanobind::list FigureMembers();

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_REPORT_RECORDS_H
