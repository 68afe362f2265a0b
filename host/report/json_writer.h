// Writes a report as JSON: units in the key names, null where there are no data.
#ifndef ORSOLVA_REPORT_JSON_WRITER_H
#define ORSOLVA_REPORT_JSON_WRITER_H

#include <string>

#include "host/report/figure_tables.h"
#include "host/report/report.h"

namespace orsolva_host {

/// The value of "format": it grows when keys are renamed or change their meaning.
constexpr int kJsonFormat = 2;

/// One JSON object, indented by two blanks, with a line feed at its end. Bytes that are no UTF-8 are
/// replaced.
std::string WriteJson(const Report& report, const FigureTables& tables = AllFigures());

/// The object of a file that could not be judged, in an array of reports.
std::string WriteJsonFailure(const std::string& file, const std::string& error);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_JSON_WRITER_H
