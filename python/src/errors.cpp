#include "python/src/errors.h"

#include <nanobind/nanobind.h>
#include <nanobind/stl/string.h>

#include <exception>

#include "host/judging/run_error.h"
#include "host/output/byte_sink.h"
#include "host/report/earlier_report.h"
#include "host/report/profile.h"
#include "host/rinex/diagnostics.h"
#include "host/simulator/comparison.h"
#include "host/simulator/scenario.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;

void Raise(const char* name, const nb::object& error) {
  const nb::object type = nb::module_::import_("orsolva._errors").attr(name);
  PyErr_SetObject(type.ptr(), error.ptr());
}

void Raise(const char* name, const std::exception& error) {
  const nb::object type = nb::module_::import_("orsolva._errors").attr(name);
  Raise(name, type(nb::str(error.what())));
}

void RaiseFileError(const orsolva_host::FileError& error) {
  const nb::object type = nb::module_::import_("orsolva._errors").attr("FileError");
  const nb::object line = error.Line() > 0 ? nb::object(nb::int_(error.Line())) : nb::object(nb::none());
  Raise("FileError", type(error.what(), error.File(), line, error.Found(), error.Expected(), error.Advice()));
}

void Translate(const std::exception_ptr& thrown, void*) {
  try {
    std::rethrow_exception(thrown);
  } catch (const orsolva_host::FileError& error) {
    RaiseFileError(error);
  } catch (const ArgumentError& error) {
    Raise("ArgumentError", error);
  } catch (const orsolva_host::ProfileError& error) {
    Raise("ProfileError", error);
  } catch (const orsolva_host::EarlierReportError& error) {
    Raise("EarlierReportError", error);
  } catch (const orsolva_host::ScenarioError& error) {
    Raise("ScenarioError", error);
  } catch (const orsolva_host::RunError& error) {
    Raise("RunError", error);
  } catch (const orsolva_host::ComparisonError& error) {
    Raise("RunError", error);
  } catch (const orsolva_host::WriteError& error) {
    Raise("RunError", error);
  }
}

}  // namespace

void RegisterErrors() { nb::register_exception_translator(Translate); }

}  // namespace orsolva_python
