#include <CLI/CLI.hpp>
#include <cstdio>

#include "host/cli/commands.h"
#include "host/cli/config_file.h"
#include "host/cli/exit_codes.h"

namespace orsolva_host {

void AddConfigCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("config", "Print a configuration file with every default");
  command->callback([&exit_code] {
    std::fputs(DefaultConfig().c_str(), stdout);
    exit_code = kGood;
  });
}

}  // namespace orsolva_host
