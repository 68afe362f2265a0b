// Writes a report as lines for grep and awk: one SUM line, then rows that begin with "=KEY".
#ifndef ORSOLVA_REPORT_SUM_WRITER_H
#define ORSOLVA_REPORT_SUM_WRITER_H

#include <string>

#include "host/report/figure_tables.h"
#include "host/report/report.h"

namespace orsolva_host {

/// The lines of a report. Fields are separated by blanks, "-" without data; the last one is the file, with
/// blanks in its name written as "%20". The fields are listed in docs/user/report-formats.md.
std::string WriteSum(const Report& report, const FigureTables& tables = AllFigures());

/// The line of a file that could not be judged: "#FAILED FILE REASON".
std::string WriteSumFailure(const std::string& file, const std::string& reason);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_SUM_WRITER_H
