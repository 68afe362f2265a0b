// orsolva qc: many files at the same time, reports in order, a table at the end.
#ifndef ORSOLVA_CLI_CHECK_FILES_H
#define ORSOLVA_CLI_CHECK_FILES_H

#include "host/cli/request.h"

namespace orsolva_host {

/// Errors are printed. @return the exit code
int CheckFiles(QcRequest& request);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_CHECK_FILES_H
