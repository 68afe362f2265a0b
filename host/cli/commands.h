// The commands of the program. Each adds its arguments to the application and does its work when chosen.
#ifndef ORSOLVA_CLI_COMMANDS_H
#define ORSOLVA_CLI_COMMANDS_H

namespace CLI {
class App;
}

namespace orsolva_host {

/// orsolva qc OBS [NAV...]
/// @param exit_code  set to what the program answers when the command was chosen
void AddQcCommand(CLI::App& app, int& exit_code);

/// orsolva simulate
void AddSimulateCommand(CLI::App& app, int& exit_code);

/// orsolva compare REPORT TRUTH
void AddCompareCommand(CLI::App& app, int& exit_code);

/// orsolva inspect FILE...
void AddInspectCommand(CLI::App& app, int& exit_code);

/// orsolva explain [FIGURE]
void AddExplainCommand(CLI::App& app, int& exit_code);

/// orsolva config
void AddConfigCommand(CLI::App& app, int& exit_code);

/// orsolva completion SHELL
void AddCompletionCommand(CLI::App& app, int& exit_code);

/// orsolva manual
void AddManualCommand(CLI::App& app, int& exit_code);

/// orsolva version
void AddVersionCommand(CLI::App& app, int& exit_code);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_COMMANDS_H
