// Writes a report as text of at most 80 columns, "-" where there are no data.
#ifndef ORSOLVA_REPORT_TEXT_WRITER_H
#define ORSOLVA_REPORT_TEXT_WRITER_H

#include <string>

#include "host/report/report.h"

namespace orsolva_host {

std::string WriteText(const Report& report);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_TEXT_WRITER_H
