// Writes a report as CSV (RFC 4180) in long format: one row a figure.
#ifndef ORSOLVA_REPORT_CSV_WRITER_H
#define ORSOLVA_REPORT_CSV_WRITER_H

#include <string>

#include "host/report/figure_tables.h"
#include "host/report/report.h"

namespace orsolva_host {

/// "satellite,signal,figure,unit,value,file", with its line end.
std::string CsvHeading();

/// The rows of a report, without the heading. Absent figures have an empty value.
///
/// `satellite` is "G04", a system letter, "all" for the library total, or empty for figures of the run and
/// its headline; `signal` is a code such as "1C", or the band of a band figure, or empty.
std::string WriteCsvRows(const Report& report, const FigureTables& tables = AllFigures());

/// A field, in quotes when it needs them.
std::string CsvField(const std::string& text);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_CSV_WRITER_H
