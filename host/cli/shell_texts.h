// What shells and manual readers are told about the command line, made from the command line itself.
#ifndef ORSOLVA_CLI_SHELL_TEXTS_H
#define ORSOLVA_CLI_SHELL_TEXTS_H

#include <CLI/CLI.hpp>
#include <string>

namespace orsolva_host {

/// A completion script. @param shell  "bash", "zsh" or "fish"; empty text for any other
std::string CompletionScript(const CLI::App& app, const std::string& shell);

/// The manual page orsolva(1), in man(7) macros.
std::string ManualPage(const CLI::App& app);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_SHELL_TEXTS_H
