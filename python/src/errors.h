// Errors of the readers and of runs as exceptions of the package.
#ifndef ORSOLVA_PYTHON_ERRORS_H
#define ORSOLVA_PYTHON_ERRORS_H

#include <stdexcept>

namespace orsolva_python {

/// An argument out of its range, of the wrong shape or in the wrong order: ArgumentError of the package.
class ArgumentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Makes every error of the readers and of runs the exception of the package with the same meaning. The
/// classes are those of orsolva._errors.
void RegisterErrors();

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_ERRORS_H
