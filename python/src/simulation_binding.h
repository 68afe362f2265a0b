// Simulated days with known truth.
#ifndef ORSOLVA_PYTHON_SIMULATION_BINDING_H
#define ORSOLVA_PYTHON_SIMULATION_BINDING_H

#include <nanobind/nanobind.h>

namespace orsolva_python {

void BindSimulation(nanobind::module_& module);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_SIMULATION_BINDING_H
