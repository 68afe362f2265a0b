// Takes a command line apart by the rows of the commands' options.
#ifndef ORSOLVA_CLI_COMMAND_LINE_H
#define ORSOLVA_CLI_COMMAND_LINE_H

#include <string>
#include <vector>

#include "host/cli/option.h"

namespace orsolva_host {

struct CommandLine {
  const Command* command = nullptr;  ///< null when there is nothing to run: help or an error has been printed
  std::vector<GivenValue> values;    ///< in the order of the options, and of the command line for each
  int exit_code = 0;                 ///< without a command
};

/// Values are not set yet, so that those of a configuration file can come first.
/// @param arguments  without the program's name @throws UsageError naming what is wrong
CommandLine ParseCommandLine(const std::vector<Command>& commands, const std::vector<std::string>& arguments);

/// Sets the options. @throws UsageError naming the option whose value is wrong
void SetValues(const std::vector<GivenValue>& values);

/// Binds a file name to the format flag before it: "--json out.json" means "--json=out.json". A flag takes
/// the next argument when that ends in the format's own ending (.txt, .json, .csv, .sum).
std::vector<std::string> JoinFormatFiles(const std::vector<std::string>& arguments);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_COMMAND_LINE_H
