// Options of `orsolva qc` from a configuration file (TOML), overridden by those of the command line.
#ifndef ORSOLVA_CLI_CONFIG_FILE_H
#define ORSOLVA_CLI_CONFIG_FILE_H

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/cli/command_line.h"
#include "host/cli/option.h"

namespace orsolva_host {

/// A configuration that cannot be used: file, line and what is wrong.
class ConfigError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Sets the options of a command from its configuration file. A command without --config has none.
///
/// The file is the one of --config FILE, else of the environment's ORSOLVA_CONFIG, else
/// $XDG_CONFIG_HOME/orsolva/config.toml or ~/.config/orsolva/config.toml where that exists. --no-config
/// leaves it out.
/// @return the values that were set
/// @throws ConfigError
std::vector<GivenValue> SetFromConfig(const CommandLine& line);

/// Sets the options of a command from the text of a configuration file.
/// @param origin  for messages
/// @return the values that were set, options of the command
/// @throws ConfigError for unknown keys and for values that the option refuses
std::vector<GivenValue> SetFromConfig(const Command& command, std::string_view text,
                                      const std::string& origin);

/// A configuration file with every key at its default, all commented out.
std::string DefaultConfig(const Command& command);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_CONFIG_FILE_H
