// Completion scripts and the manual page, made from the rows of the commands' options.
#ifndef ORSOLVA_CLI_SHELL_TEXTS_H
#define ORSOLVA_CLI_SHELL_TEXTS_H

#include <string>
#include <vector>

#include "host/cli/option.h"

namespace orsolva_host {

/// A completion script. @param shell  "bash", "zsh" or "fish"; empty text for any other
std::string CompletionScript(const std::vector<Command>& commands, const std::string& shell);

/// The manual page orsolva(1), in man(7) macros.
std::string ManualPage(const std::vector<Command>& commands);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_SHELL_TEXTS_H
