// Requests that cannot be meant so.
#ifndef ORSOLVA_CLI_QC_COMPLAINT_H
#define ORSOLVA_CLI_QC_COMPLAINT_H

#include <string>

#include "host/cli/qc_settings.h"
#include "host/judging/qc_inputs.h"

namespace orsolva_host {

/// What is wrong with the request as a whole, such as two reports on standard output; empty when nothing is.
std::string ComplaintAbout(const QcRequest& request, const QcInputs& inputs);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_QC_COMPLAINT_H
