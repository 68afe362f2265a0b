// What to look at first in a report: computed once, from the figures of the analysis, in order of harm, and
// only rendered by the writers. The limits are those of finding_limits.h.
//
// clang-format off
// id                   severity       said when
// damaged              error          reading ended before the end of the file
// nothing-observed     error          no satellite of the systems chosen was observed
// no-navigation        warning        no broadcast record can be used: the text says which file is missing
// no-position, no-epochs, implausible
//                      info, warning  why else the library has no record; a warning where there are no orbits
// not-judged           info to error  satellites observed have no orbit: a warning from not_judged_share on or with a
//                                     whole system, an error from hardly_judged_share on
// position-unusable    error          codes do not fit a position: residuals above unusable_residual_m
// antenna-moves        info, warning  the antenna moves; a warning where its first position is far_from_header_m off
// position-off         info           the header's position is off_header_m off
// position-far         warning        the position of the header is contradicted
// given-position-far   warning        the position given is far_from_header_m off
// wrong-interval, wrong-name-interval
//                      warning        the interval of header or file name is not that of the data
// statements           warning        other statements of header or file name that the data contradict
// missing-epochs       info to error  epochs are missing; a warning from missing_share on, an error above
//                                     mostly_missing_share
// unusable-epochs      warning        unusable_share of the epochs do not allow a position
// disordered-epochs    info           duplicate epochs, or time goes backwards
// power-failures       warning        the file flags them
// receiver-slips       warning        least_common satellites or more, and more than common_share of those tracked,
//                                     slipped at one epoch
// code-clock-jumps     warning        codes jumped against the phases
// clock-resets         info           the receiver clock was reset
// receiver-restarts    info to error  too few phases go on over a step; a warning above some_restarts_share of the
//                                     steps, an error above mostly_restarts_share
// changed-statements, signals-gone, became-worse
//                      warning        against an earlier report: another marker, receiver or antenna, signals that
//                                     are gone, figures worse by more than their limit (watched_figures.h)
// cycle-slips          info, warning  a warning with fewer than least_steps_per_slip tested steps per slip
// half-cycles          info, warning  as cycle-slips
// satellite-gaps, signal-gaps
//                      info, warning  interruptions; a warning with fewer than
//                                     least_observations_per_interruption for each
// strength-drops       warning        all satellites of a signal were weaker for a while
// weak-signals         info, warning  a signal is weaker than weak_dbhz; a warning for more than half of them
// incomplete           info, warning  a system is less than least_completeness complete; no warning for SBAS alone
// missing-observations info, warning  some_missing_share of the observations expected are missing in epochs that are
//                                     there; a warning from many_missing_share on
// ionosphere           warning        ROTI of a system above disturbed_roti at 95 %
// gps-multipath        warning        MP1 or MP2 of GPS above most_mp1_m or most_mp2_m
// satellite-strength-drops, satellite-clocks, never-observed
//                      info           of single satellites
// worst-multipath, least-complete
//                      info           always: the worst signal
// no-slips, nothing-missing, nothing-worse
//                      good           nothing of the kind was found
// clang-format on
#ifndef ORSOLVA_REPORT_FINDINGS_H
#define ORSOLVA_REPORT_FINDINGS_H

#include <string>
#include <vector>

#include "host/report/report.h"

namespace orsolva_host {

/// @param report  with its headline. Errors come first, then warnings, each in the order above.
std::vector<Finding> FindingsOf(const Report& report);

/// The line that every output begins with: "poor" with an error among the findings, "not judged" without any
/// orbit, "fair" with a warning, else "good". @param report  with its headline and its findings
Verdict VerdictOf(const Report& report);

/// The end of that line: what is worth knowing although it makes nothing worse; may be empty.
std::string NotableOf(const Report& report);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FINDINGS_H
