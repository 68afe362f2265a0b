// Makes the report's model from the library's result records.
#ifndef ORSOLVA_REPORT_BUILD_REPORT_H
#define ORSOLVA_REPORT_BUILD_REPORT_H

#include <string>
#include <vector>

#include "host/report/report.h"
#include "host/rinex/diagnostics.h"
#include "orsolva/records.h"
#include "orsolva/run_facts.h"

namespace orsolva_host {

struct RunEvents;

/// @param run  what was read and set; times, position, duration, window, judged and lost epochs are filled in
Report BuildReport(ReportRun run, const result_qct& result, const total_code_qc_result& codes,
                   const orsolva::RunFacts& facts);

/// Computes headline, findings and notes from everything else in the report, which is whole.
/// @param events  what happened to the satellites; null when that was not collected
void Conclude(Report& report, const RunEvents* events);

std::vector<ReportNotice> NoticesOf(const Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_BUILD_REPORT_H
