#include "host/cli/parquet_tables.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/cli/exit_codes.h"
#include "host/cli/python_interpreter.h"
#include "host/judging/run_error.h"
#include "host/platform/platform.h"
#include "host/terminal/interrupt.h"

namespace orsolva_host {
namespace {

/// Of the script below and of python/orsolva/_parquet.py, where a package cannot be imported.
constexpr int kNotInstalled = 64;
constexpr const char* kScript =
    "try:\n"
    "    from orsolva._parquet import main\n"
    "except ImportError:\n"
    "    sys.exit(64)\n"
    "sys.exit(main())\n";

bool IsKnown(int code) {
  return code == kGood || code == kRunFailed || code == kVerdictFailed || code == kInterrupted ||
         code == kTerminated;
}

}  // namespace

std::string ParquetTask(const QcRequest& request, const RunInputs& inputs) {
  nlohmann::json task;
  task["folder"] = request.parquet;
  task["names"] = OutputStems(inputs.observations);
  task["spans"] = inputs.joined;
  if (inputs.joined.empty()) {
    for (const std::string& file : inputs.observations) task["spans"].push_back({file});
  }
  task["navigation"] = inputs.navigation;
  task["jobs"] = request.jobs;
  task["options"] = request.given;
  try {
    return task.dump();
  } catch (const nlohmann::json::exception&) {
    throw RunError("--parquet: the name of a file is no UTF-8 text. Rename it.");
  }
}

int WriteParquet(const QcRequest& request, const RunInputs& inputs) {
  const std::string python = PythonInterpreter();
  const int code =
      RunProgram({python, "-c", std::string(kNotFromCurrentFolder) + kScript}, ParquetTask(request, inputs));
  if (const int interrupted = InterruptExitCode(); interrupted != 0) return interrupted;
  if (IsKnown(code)) return code;
  if (code == kNotInstalled) {
    throw RunError(fmt::format(
        "--parquet needs the Python packages orsolva and pyarrow. Install them: {} -m pip install orsolva "
        "pyarrow",
        python));
  }
  throw RunError(
      fmt::format("--parquet needs Python: '{}' did not run to its end (exit code {}). Install Python 3.11 "
                  "or later, then "
                  "python3 -m pip install orsolva pyarrow; or name the interpreter in ORSOLVA_PYTHON.",
                  python, code));
}

}  // namespace orsolva_host
