// Observation files as Python reads them.
#ifndef ORSOLVA_PYTHON_OBSERVATION_BINDING_H
#define ORSOLVA_PYTHON_OBSERVATION_BINDING_H

#include <nanobind/nanobind.h>

#include "host/rinex/observation_header.h"

namespace orsolva_python {

void BindObservations(nanobind::module_& module);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_OBSERVATION_BINDING_H
