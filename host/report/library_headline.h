// The figures a file is known by: computed here once, and only rendered by text, JSON, CSV, the SUM line, the
// network table, the page and the index. Their rules:
//
// clang-format off
// expected_epochs, observed_epochs   sums over the systems whose combination counts complete observations; a Galileo
//                                    combination with E5b or E5 counts none and stays out with both
// completeness_ratio                 observed_epochs / expected_epochs
// mp1_rms_m, mp2_rms_m               the library's pool over all systems of the band slots 1 and 2
// observations_per_restart           observed_epochs / the restarts of the same systems, the fraction dropped;
//                                    observed_epochs without a restart
// satellites_observed                satellites of the systems judged with any value in the file; each is in exactly
//                                    one of the six counts that follow
// satellites_judged                  above the cut-off at some epoch, and neither excluded nor unhealthy
// satellites_excluded                left out on request
// satellites_unhealthy               called unhealthy by their broadcast records
// satellites_without_record          without any broadcast record
// satellites_without_position        with records, but none of its time, or of no known kind of orbit
// satellites_below_cutoff            the others, which were never above the elevation cut-off
// geometry_free_slips                satellites and epochs with a slip of the geometry-free phase, those of the whole
//                                    receiver apart
// code_jumps                         satellites and epochs at which the multipath departed from its mean, those of the whole
//                                    receiver apart
// receiver_slip_epochs               epochs at which many satellites slipped or jumped at once; see finding_limits.h
// gaps_in_view                       interruptions of single satellites above the cut-off; see finding_limits.h
// clang-format on
#ifndef ORSOLVA_REPORT_LIBRARY_HEADLINE_H
#define ORSOLVA_REPORT_LIBRARY_HEADLINE_H

#include <string>
#include <vector>

#include "host/report/figure_rows.h"
#include "host/report/report.h"

namespace orsolva_host {

struct RunEvents;

/// Which of the satellites_... figures an observed satellite belongs to: "judged", "excluded", "unhealthy",
/// "no_record", "no_position" or "below_cutoff".
std::string StateOf(const Report& report, const NavigationCoverage& satellite);

/// @param events  what happened to the satellites; null when that was not collected, and its figures are
/// absent
LibraryHeadline LibraryHeadlineOf(const Report& report, const RunEvents* events);

std::vector<FigureRow<LibraryHeadline>> LibraryHeadlineRows();

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_LIBRARY_HEADLINE_H
