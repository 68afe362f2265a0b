// Filling the output records from the statistics of a run.
#ifndef ORSOLVA_RESULTS_OUTPUT_RECORDS_H
#define ORSOLVA_RESULTS_OUTPUT_RECORDS_H

#include "orsolva/records.h"
#include "results/result_sources.h"

namespace orsolva {

/// The whole-run result.
/// @return whether the filled record is plausible: lost epochs not negative, combined completeness in [0, 1]
bool FillAllPeriodResult(const ResultSources& sources, result_qct& record);

/// The result per signal code. The record is zeroed first.
void FillEachCodeResult(const ResultSources& sources, total_code_qc_result& record);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_OUTPUT_RECORDS_H
