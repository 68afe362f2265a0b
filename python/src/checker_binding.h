// Judging a caller's own data as they come.
#ifndef ORSOLVA_PYTHON_CHECKER_BINDING_H
#define ORSOLVA_PYTHON_CHECKER_BINDING_H

#include <nanobind/nanobind.h>

namespace orsolva_python {

void BindChecker(nanobind::module_& module);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_CHECKER_BINDING_H
