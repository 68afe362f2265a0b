// Navigation files as Python sees them.
#ifndef ORSOLVA_PYTHON_NAVIGATION_BINDING_H
#define ORSOLVA_PYTHON_NAVIGATION_BINDING_H

#include <nanobind/nanobind.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/judging/shared_navigation.h"

namespace orsolva_python {

/// Read once, and used by any number of runs, also at the same time.
struct Navigation {
  std::vector<std::string> paths;  ///< empty where it was not read from files
  std::shared_ptr<orsolva_host::SharedNavigation> shared;
};

/// Reads the files, unless that has been done.
/// @throws FileError; ArgumentError when there are precise orbits, which a run has from its beginning or not
/// at all
std::shared_ptr<const orsolva_host::ReadNavigation> RecordsOf(const Navigation& navigation);

void BindNavigation(nanobind::module_& module);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_NAVIGATION_BINDING_H
