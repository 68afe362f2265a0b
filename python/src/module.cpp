// The native module of the package. Everything in it is private; python/orsolva is the way in.
#include <nanobind/nanobind.h>
#include <nanobind/stl/string.h>

#include "host/judging/library_version.h"
#include "orsolva/session.hpp"
#include "python/src/checker_binding.h"
#include "python/src/errors.h"
#include "python/src/navigation_binding.h"
#include "python/src/observation_binding.h"
#include "python/src/report_binding.h"
#include "python/src/simulation_binding.h"
#include "python/src/table_binding.h"

NB_MODULE(_core, module) {
  using namespace orsolva_python;
  RegisterErrors();
  BindTables(module);
  BindNavigation(module);
  BindReports(module);
  BindObservations(module);
  BindChecker(module);
  BindSimulation(module);
  module.attr("library_version") = orsolva_host::kLibraryVersion;
  module.def("library_banner", [] { return orsolva::LibraryBanner(); });
}
