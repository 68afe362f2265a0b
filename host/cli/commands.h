// The commands of the program.
#ifndef ORSOLVA_CLI_COMMANDS_H
#define ORSOLVA_CLI_COMMANDS_H

#include <string>
#include <vector>

#include "host/cli/option.h"

namespace orsolva_host {

/// All of them, in the order of the help, each with the option --help.
std::vector<Command> AllCommands();

// One each. A command owns the settings that its options write.
Command QcCommand();
Command LiveCommand();
Command InspectCommand();
Command ExplainCommand();
Command SimulateCommand();
Command ArchiveCommand();
Command CompareCommand();
Command ConfigCommand();
Command CompletionCommand();
Command ManualCommand();
Command VersionCommand();

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_COMMANDS_H
