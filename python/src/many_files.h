// Many observation files on several threads.
#ifndef ORSOLVA_PYTHON_MANY_FILES_H
#define ORSOLVA_PYTHON_MANY_FILES_H

#include <nanobind/nanobind.h>

namespace orsolva_python {

void BindManyFiles(nanobind::module_& module);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_MANY_FILES_H
