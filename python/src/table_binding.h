// Tables as Python sees them: NumPy views and the Arrow PyCapsule interface.
#ifndef ORSOLVA_PYTHON_TABLE_BINDING_H
#define ORSOLVA_PYTHON_TABLE_BINDING_H

#include <nanobind/nanobind.h>

#include <memory>

#include "python/src/columns.h"

namespace orsolva_python {

void BindTables(nanobind::module_& module);

using TablePtr = std::shared_ptr<const Table>;

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_TABLE_BINDING_H
