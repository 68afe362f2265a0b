// Notices of what file name and header state and the data contradict.
#ifndef ORSOLVA_JUDGING_STATEMENT_NOTICES_H
#define ORSOLVA_JUDGING_STATEMENT_NOTICES_H

#include <string>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// One for each statement about station, times and the interval of the file name. The interval of the header
/// has a notice where it is chosen, and other contradictions are findings alone.
void AddStatementNotices(const std::string& file, const std::vector<analysis::Contradiction>& contradictions,
                         Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_STATEMENT_NOTICES_H
