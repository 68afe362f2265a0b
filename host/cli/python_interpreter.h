// The Python that runs what the package has beyond the command.
#ifndef ORSOLVA_CLI_PYTHON_INTERPRETER_H
#define ORSOLVA_CLI_PYTHON_INTERPRETER_H

#include <string>

namespace orsolva_host {

/// What the environment variable ORSOLVA_PYTHON names; else that in the folder of the program, as in a
/// virtual environment; else python3 of the path.
std::string PythonInterpreter();

/// Before every script given to it by -c: nothing is imported from the current folder, which may be a
/// stranger's.
constexpr const char* kNotFromCurrentFolder = "import sys\nif sys.path[:1] == ['']: del sys.path[0]\n";

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_PYTHON_INTERPRETER_H
