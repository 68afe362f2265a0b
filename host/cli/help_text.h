// What --help prints, at most 80 columns wide.
#ifndef ORSOLVA_CLI_HELP_TEXT_H
#define ORSOLVA_CLI_HELP_TEXT_H

#include <string>
#include <vector>

#include "host/cli/option.h"

namespace orsolva_host {

extern const char* const kProgramDescription;

/// The commands and the exit codes.
std::string ProgramHelp(const std::vector<Command>& commands);

/// The options of one command, by group.
std::string CommandHelp(const Command& command);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_HELP_TEXT_H
