// What to look at first in a report: computed once, in order of harm, and only rendered by the writers.
//
// clang-format off
// id                   severity  said when
// damaged              warning   reading ended before the end of the file
// no-navigation        warning   there is no broadcast record that can be used: the text says which file is missing
// no-position          warning   no position could be computed, so that the library gives no figures
// no-epochs            warning   the library took no epoch
// implausible          warning   the library refuses its own result, as with more epochs than the interval allows
// not-judged           warning   a satellite was observed, and is unhealthy or has no broadcast record or no position
// nothing-judged       warning   no satellite was judged: there are no figures, and no "good" finding is said
// no-completeness      warning   no system has a completeness, for want of signal strengths or of a code that counts
// position-far         warning   the position lies farther than far_from_header_m from the header's
// lost-epochs          warning   epochs of the span are not in the file
// receiver-slips       warning   at an epoch, least_common satellites or more, and more than common_share of those
//                                tracked, slipped or jumped
// gaps-in-view         warning   a satellite was interrupted for at most longest_gap_s, above the cut-off on both
//                                sides, while others were tracked
// satellite-slips      warning   a satellite has a slip of the geometry-free phase of its own
// code-jumps           warning   the multipath combination of a satellite departed from its running mean
// worst-multipath      info      always: the signal with the largest multipath RMS
// least-complete       info      always: the signal with the lowest completeness
// no-slips             good      no slip of the geometry-free phase and no code jump on the satellites judged
// nothing-missing      good      every signal was observed whenever it was expected
// clang-format on
#ifndef ORSOLVA_REPORT_FINDINGS_H
#define ORSOLVA_REPORT_FINDINGS_H

#include <vector>

#include "host/report/report.h"

namespace orsolva_host {

struct RunEvents;

/// @param report  with its headline; @param events  null when they were not collected
std::vector<Finding> FindingsOf(const Report& report, const RunEvents* events);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FINDINGS_H
