#include "host/cli/commands.h"

#include <utility>

namespace orsolva_host {
namespace {

/// The parser acts on it by itself: the row has nothing to set.
Option HelpOption() {
  Option row = Row("help", OptionKind::kSwitch, "", "Print this help");
  row.command_line_only = true;
  return row;
}

}  // namespace

std::vector<Command> AllCommands() {
  std::vector<Command> commands;
  for (const auto make :
       {QcCommand, LiveCommand, InspectCommand, ExplainCommand, SimulateCommand, CompareCommand,
        ArchiveCommand, ConfigCommand, CompletionCommand, ManualCommand, VersionCommand}) {
    commands.push_back(make());
    Option help = HelpOption();
    if (!commands.back().options.empty()) help.group = commands.back().options.back().group;
    commands.back().options.push_back(std::move(help));
  }
  return commands;
}

}  // namespace orsolva_host
