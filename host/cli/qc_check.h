// A check of one or many files: judging on all cores, reports in order, a table at the end.
#ifndef ORSOLVA_CLI_QC_CHECK_H
#define ORSOLVA_CLI_QC_CHECK_H

#include "host/cli/qc_settings.h"

namespace orsolva_host {

/// @return the exit code
/// @throws WriteError, ProfileError, RunError when nothing was begun
int CheckFiles(const QcRequest& request);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_QC_CHECK_H
