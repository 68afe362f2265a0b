// Writes a report as text, "-" where there are no data.
#ifndef ORSOLVA_REPORT_TEXT_WRITER_H
#define ORSOLVA_REPORT_TEXT_WRITER_H

#include <string>

#include "host/report/figure_tables.h"
#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

/// No line is wider than the style's width (at least 40 columns are needed).
std::string WriteText(const Report& report, const TextStyle& style = {},
                      const FigureTables& tables = AllFigures());

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_TEXT_WRITER_H
