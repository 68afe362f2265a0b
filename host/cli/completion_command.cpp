#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/cli/shell_texts.h"

namespace orsolva_host {

void AddCompletionCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("completion", "Print the completion script of a shell");
  auto shell = std::make_shared<std::string>();
  command->add_option("SHELL", *shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
  command->callback([shell, &app, &exit_code] {
    std::fputs(CompletionScript(app, *shell).c_str(), stdout);
    exit_code = kGood;
  });
}

void AddManualCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("manual", "Print the manual page in man macros");
  command->callback([&app, &exit_code] {
    std::fputs(ManualPage(app).c_str(), stdout);
    exit_code = kGood;
  });
}

}  // namespace orsolva_host
