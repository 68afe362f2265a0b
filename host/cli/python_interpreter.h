// The Python that runs what the package has beyond the command.
#ifndef ORSOLVA_CLI_PYTHON_INTERPRETER_H
#define ORSOLVA_CLI_PYTHON_INTERPRETER_H

#include <string>

namespace orsolva_host {

/// What the environment variable ORSOLVA_PYTHON names; else that in the folder of the program, as in a
/// virtual environment; else python3 of the path.
std::string PythonInterpreter();

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_PYTHON_INTERPRETER_H
