// Why a run came to no result.
#ifndef ORSOLVA_JUDGING_RUN_ERROR_H
#define ORSOLVA_JUDGING_RUN_ERROR_H

#include <exception>
#include <stdexcept>
#include <string>

namespace orsolva_host {

/// A run that came to no result: what happened and what the user can do.
class RunError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Any error as a sentence for people, also those of the standard library.
std::string ErrorText(const std::exception& error);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_RUN_ERROR_H
