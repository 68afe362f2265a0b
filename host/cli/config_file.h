// Options of `orsolva qc` from a configuration file (TOML), below those of the command line.
#ifndef ORSOLVA_CLI_CONFIG_FILE_H
#define ORSOLVA_CLI_CONFIG_FILE_H

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orsolva_host {

/// A configuration that cannot be used: file, line and what is wrong.
class ConfigError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The arguments with those of the configuration file put right after "qc", so that later ones go over them.
///
/// The file is the one of --config FILE, else of the environment's ORSOLVA_CONFIG, else
/// $XDG_CONFIG_HOME/orsolva/config.toml or ~/.config/orsolva/config.toml where that exists. --no-config
/// leaves it out. Other commands than qc take no configuration.
/// @throws ConfigError
std::vector<std::string> WithConfigFile(const std::vector<std::string>& arguments);

/// The arguments that the text of a configuration file stands for.
/// @param origin  for messages
/// @throws ConfigError for unknown keys and for values that the option refuses
std::vector<std::string> ConfigArguments(std::string_view text, const std::string& origin);

/// A configuration file with every key at its default, all commented out.
std::string DefaultConfig();

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_CONFIG_FILE_H
