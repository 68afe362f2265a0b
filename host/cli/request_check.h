// Rejects contradictory requests.
#ifndef ORSOLVA_CLI_REQUEST_CHECK_H
#define ORSOLVA_CLI_REQUEST_CHECK_H

#include <stdexcept>

#include "host/cli/request.h"
#include "host/judging/inputs.h"

namespace orsolva_host {

/// What is wrong with a request as a whole, and what to do instead.
class ValidationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Refuses, before anything is read or written, two reports on standard output, outputs of one name, outputs
/// that would replace an input, and the like. @throws ValidationError
void ValidateRequest(const QcRequest& request, const RunInputs& inputs);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_REQUEST_CHECK_H
