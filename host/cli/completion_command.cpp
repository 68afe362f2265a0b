#include <cstdio>
#include <memory>
#include <string>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/cli/shell_texts.h"

namespace orsolva_host {

Command CompletionCommand() {
  auto shell = std::make_shared<std::string>();
  Option row = Choice("SHELL", "SHELL", {"bash", "zsh", "fish"}, *shell, "Name of the shell");
  return {
      "completion", "Print the completion script of a shell", {Positional(std::move(row), true)}, [shell] {
        std::fputs(CompletionScript(AllCommands(), *shell).c_str(), stdout);
        return kGood;
      }};
}

Command ManualCommand() {
  return {"manual", "Print the manual page in man macros", {}, [] {
            std::fputs(ManualPage(AllCommands()).c_str(), stdout);
            return kGood;
          }};
}

}  // namespace orsolva_host
