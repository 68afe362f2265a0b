// Findings about file, epochs, position and receiver; findings.h has the rule of each.
#ifndef ORSOLVA_REPORT_DATA_FINDINGS_H
#define ORSOLVA_REPORT_DATA_FINDINGS_H

#include <vector>

#include "host/report/report.h"

namespace orsolva_host {

/// @param report  with its headline
void AddDataFindings(const Report& report, std::vector<Finding>& findings);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_DATA_FINDINGS_H
