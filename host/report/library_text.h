// The part of the text report that holds the library's record.
#ifndef ORSOLVA_REPORT_LIBRARY_TEXT_H
#define ORSOLVA_REPORT_LIBRARY_TEXT_H

#include <string>

#include "host/report/figure_tables.h"
#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

/// The part with its heading, and the notes on its figures.
std::string LibraryText(const Report& report, const TextStyle& style, const FigureTables& tables);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_LIBRARY_TEXT_H
