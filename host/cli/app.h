// The program's command line as a whole: every command with its options, in one place that help, manual,
// completions and configuration are made from.
#ifndef ORSOLVA_CLI_APP_H
#define ORSOLVA_CLI_APP_H

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace orsolva_host {

/// @param exit_code  set to what the program answers when a command was run; must outlive the application
std::unique_ptr<CLI::App> MakeApp(int& exit_code);

/// Binds a file name to the format flag before it: "--json out.json" means "--json=out.json". A flag takes
/// the next argument when that is "-" or ends in the flag's own ending (.txt, .json, .csv, .sum).
std::vector<std::string> JoinFormatFiles(const std::vector<std::string>& arguments);

/// One option as help, manual and completions show it.
struct OptionFacts {
  std::string name;      ///< "--elevation", or the name of a positional
  std::string argument;  ///< "NUMBER", "[=FILE]" or empty
  std::string description;
  std::string default_text;
  bool positional = false;
  bool takes_file = false;
};

std::vector<OptionFacts> OptionsOf(const CLI::App& command);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_APP_H
