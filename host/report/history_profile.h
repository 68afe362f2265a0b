// A station's own earlier reports as a profile of limits: what is usual here, instead of what networks ask
// for.
//
// Of a figure that is better high, good is what is above median - 3 s and fair what is above median - 5 s of
// the same figure in the last reports, s = 1.4826 MAD, the robust standard deviation (Rousseeuw and Croux
// 1993, JASA 88); of one that is better low, the other way round. s is at least a third of the limit of
// watched_figures.h, so that a station of perfect days may have a usual one. Figures with no better side are
// left out.
//
// Used are the reports of the same station whose first epoch lies before that of the report judged, the
// kMaxReports latest of them. A figure that fewer than kMinReports of them have is "no data".
#ifndef ORSOLVA_REPORT_HISTORY_PROFILE_H
#define ORSOLVA_REPORT_HISTORY_PROFILE_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/report/earlier_report.h"
#include "host/report/report.h"

namespace orsolva_host {

constexpr std::size_t kMinReports = 7;  ///< a week of days
constexpr std::size_t kMaxReports = 30;

/// The reports of a folder.
struct History {
  std::string folder;
  std::vector<EarlierReport> reports;
  std::vector<std::string> unreadable;  ///< why a file of the folder is not used, a sentence each
};

/// The reports in the files *.json of a folder, not of those below it.
/// @throws EarlierReportError when the folder cannot be read or holds no file of that name
History ReadHistory(const std::string& folder);

/// Holds a report against the history of its station. What is not used of the folder, and why, is in the
/// remarks.
ProfileVerdict Judge(const Report& report, const History& history);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_HISTORY_PROFILE_H
