// orsolva: judges the quality of GNSS observation files.
#include <CLI/CLI.hpp>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"

int main(int argc, char** argv) {
  CLI::App app("Judges the quality of GNSS observations.", "orsolva");
  app.footer("Exit codes: 0 good, 1 the run failed, 2 wrong usage.");
  app.require_subcommand(1);
  int exit_code = orsolva_host::kWrongUsage;
  orsolva_host::AddQcCommand(app, exit_code);
  orsolva_host::AddSimulateCommand(app, exit_code);
  orsolva_host::AddCompareCommand(app, exit_code);
  orsolva_host::AddVersionCommand(app, exit_code);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? orsolva_host::kGood : orsolva_host::kWrongUsage;
  }
  return exit_code;
}
