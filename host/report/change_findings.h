// What became worse since an earlier report, as findings.
#ifndef ORSOLVA_REPORT_CHANGE_FINDINGS_H
#define ORSOLVA_REPORT_CHANGE_FINDINGS_H

#include <vector>

#include "host/report/report.h"

namespace orsolva_host {

/// Nothing for a report without a comparison.
void AddChangeFindings(const Report& report, std::vector<Finding>& findings);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_CHANGE_FINDINGS_H
