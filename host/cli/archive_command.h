// The command that judges archives, which the Python package has.
#ifndef ORSOLVA_CLI_ARCHIVE_COMMAND_H
#define ORSOLVA_CLI_ARCHIVE_COMMAND_H

#include <string>
#include <vector>

namespace orsolva_host {

/// Becomes `python3 -m orsolva.archive`, which has a parser of its own.
/// @param arguments  those of the program, the word "archive" first
/// @return only where that cannot be run: the exit code, after a message that says what to install
int RunArchive(std::vector<std::string> arguments);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_ARCHIVE_COMMAND_H
