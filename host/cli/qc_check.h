// A check of one or many files: judging on all cores, reports in order, a table at the end.
#ifndef ORSOLVA_CLI_QC_CHECK_H
#define ORSOLVA_CLI_QC_CHECK_H

#include <string>

#include "host/cli/qc_inputs.h"
#include "host/cli/qc_settings.h"

namespace orsolva_host {

/// @return the exit code
/// @throws WriteError, ProfileError, RunError when nothing was begun
int CheckFiles(const QcRequest& request);

/// What is wrong with the request as a whole, such as two reports on standard output; empty when nothing is.
std::string ComplaintAbout(const QcRequest& request, const QcInputs& inputs);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_QC_CHECK_H
