#include "host/cli/archive_command.h"

#include <utility>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/cli/python_interpreter.h"
#include "host/judging/run_error.h"
#include "host/platform/become_program.h"

namespace orsolva_host {
namespace {

/// Says what to install where the package is missing; what the package itself cannot import is its own
/// message.
constexpr const char* kScript =
    "try:\n"
    "    from orsolva.archive.__main__ import program\n"
    "except ImportError as error:\n"
    "    sys.exit(f\"orsolva: archive needs more of Python ({error}). Install it: \"\n"
    "             f\"{sys.executable} -m pip install 'orsolva[archive]'\")\n"
    "program(sys.argv[2:])\n";

}  // namespace

int RunArchive(std::vector<std::string> arguments) {
  const std::string python = PythonInterpreter();
  std::vector<std::string> words = {python, "-c", std::string(kNotFromCurrentFolder) + kScript};
  for (std::string& argument : arguments) words.push_back(std::move(argument));
  const int code = BecomeProgram(words);
  constexpr int kNotFound = 127;
  if (code != kNotFound) return code;
  throw RunError("archive needs Python: '" + python +
                 "' cannot be run. Install Python 3.11 or later, then python3 -m pip install "
                 "'orsolva[archive]'; or name the interpreter in ORSOLVA_PYTHON.");
}

// Here for the list of commands only: RunArchive has the arguments as they are.
Command ArchiveCommand() {
  return {"archive", "Judge archives of many stations and watch them change (needs Python)", {}, [] {
            return kGood;
          }};
}

}  // namespace orsolva_host
