// The figures a file is known by: those of the analysis over all systems, computed here once and rendered by
// every format. Their rules:
//
// clang-format off
// nominal_epochs, present_epochs, missing_epochs, data_gaps, satellites_without_orbit, solution_to_header_m,
// satellites_never_observed, code_residual_rms_m, contradictions
//                              those of the analysis
// satellites_tracked           sum over the systems
// satellites_with_orbit        satellites_tracked less satellites_without_orbit: only these have elevations, and
//                              with them completeness
// cutoff_expected_epochs, cutoff_observed_epochs
//                              sums over the systems
// cutoff_completeness_ratio    the second over the first
// cycle_slips                  slips of satellites of every size, sure, unsure, half cycles and jumps; sum over the
//                              systems, from the cut-off up, once a step
// tested_steps                 sum over the systems
// observations_per_slip        tested_steps / cycle_slips, absent without a slip and with fewer than 100 tested steps
// observations_without_slip    tested_steps where there is no slip: "more than n"
// interruptions_of_satellites, interruptions_of_signals
//                              sums over the systems
// gps_mp1_rms_m, gps_mp2_rms_m multipath_moving_rms_m of the GPS signal of band 1 and 2 that archives use: 1C and 2W
//                              where they have one, else the one with the most values
// worst_multipath_rms_m        the largest multipath_moving_rms_m of all signals
// clang-format on
#ifndef ORSOLVA_REPORT_HEADLINE_H
#define ORSOLVA_REPORT_HEADLINE_H

#include <vector>

#include "host/report/figure_rows.h"
#include "host/report/report.h"

namespace orsolva_host {

Headline HeadlineOf(const analysis::AnalysisResult& result);

std::vector<FigureRow<Headline>> HeadlineRows();

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_HEADLINE_H
