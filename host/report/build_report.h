// Makes the report's model from the library's result records.
#ifndef ORSOLVA_REPORT_BUILD_REPORT_H
#define ORSOLVA_REPORT_BUILD_REPORT_H

#include <string>
#include <vector>

#include "host/report/report.h"
#include "host/rinex/diagnostics.h"
#include "orsolva/records.h"

namespace orsolva_host {

struct RunEvents;

/// The codes of a system's optimal combination, one entry a band slot with data.
///
/// The result record holds the combination's figures but not its codes: a band with one code is that code;
/// among several it is the one whose mean SNR is the band's (within 0.005 dB-Hz). Where that does not single
/// one out, the entry names all of them, "1C|1L".
std::vector<std::string> CombinationOf(const qc_core_summary& summary, const code_qc_block& codes);

/// How many epochs the multipath mean spans at an interval: 50 up to 5 s, 300 s up to 30 s, 10 beyond.
int AveragingWindow(double interval_s);

/// @param run  what was read and set; times, position, duration, window, judged and lost epochs are filled in
Report BuildReport(ReportRun run, const result_qct& result, const total_code_qc_result& codes);

/// Computes headline, findings and notes from everything else in the report, which is whole.
/// @param events  what happened to the satellites; null when that was not collected
void Conclude(Report& report, const RunEvents* events);

std::vector<ReportNotice> NoticesOf(const Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_BUILD_REPORT_H
