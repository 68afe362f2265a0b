// Settings of a run from the arguments of a call.
#ifndef ORSOLVA_PYTHON_SETTINGS_H
#define ORSOLVA_PYTHON_SETTINGS_H

#include <nanobind/nanobind.h>

#include "host/judging/settings.h"

namespace orsolva_python {

/// @param arguments  by name, of the types that orsolva/_settings.py makes sure of; what is missing keeps its
/// default
/// @throws ArgumentError that names the argument, ProfileError, EarlierReportError
orsolva_host::JudgingSettings SettingsFrom(const nanobind::dict& arguments);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_SETTINGS_H
