#include <CLI/CLI.hpp>
#include <cstdio>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/judging/qc_run.h"

namespace orsolva_host {

void AddVersionCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("version", "Print name, version and build time of the library");
  command->callback([&exit_code] {
    std::puts(LibraryBanner().c_str());
    exit_code = kGood;
  });
}

}  // namespace orsolva_host
