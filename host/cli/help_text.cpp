#include "host/cli/help_text.h"

#include <algorithm>

#include "host/cli/exit_codes.h"
#include "host/report/text_layout.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kHelpColumn = 26;

/// A name and its help to the right, or below when the name is long.
std::string Entry(const std::string& name, const std::string& help) {
  const std::string indent(kHelpColumn, ' ');
  std::string head = "  " + name;
  if (head.size() + 2 > kHelpColumn) return head + "\n" + Wrapped(help, indent, indent, kWidth);
  head.resize(kHelpColumn, ' ');
  return Wrapped(help, head, indent, kWidth);
}

std::string UsageLine(const Command& command) {
  std::string text = "Usage: orsolva " + command.name + " [OPTIONS]";
  for (const Option& row : command.options) {
    if (row.positional) text += row.required ? " " + row.Usage() : " [" + row.Usage() + "]";
  }
  return text + "\n";
}

std::string HeadingOf(const Option& row) {
  if (row.positional) return "Arguments";
  return row.group.empty() ? "Options" : row.group;
}

}  // namespace

const char* const kProgramDescription =
    "Checks the quality of GNSS observations in RINEX files, also Hatanaka-compressed ones (CRINEX).";

std::string ProgramHelp(const std::vector<Command>& commands) {
  std::string text = Wrapped(kProgramDescription, "", "", kWidth);
  text += "Usage: orsolva COMMAND [OPTIONS] [FILES]\n\nCommands:\n";
  for (const Command& command : commands) text += Entry(command.name, command.description);
  text += "\nOptions:\n" + Entry("--help", "Print this help; after a command, the help of that command");
  text += Entry("--version", "The same as the command version");
  return text + "\nExit codes:\n" + ExitCodeLines();
}

std::string CommandHelp(const Command& command) {
  std::string text = Wrapped(command.description + ".", "", "", kWidth) + UsageLine(command);
  std::string heading;
  for (const Option& row : command.options) {
    if (HeadingOf(row) != heading) text += "\n" + (heading = HeadingOf(row)) + ":\n";
    text += Entry(row.Usage(), row.HelpWithDefault());
  }
  return text + "\nExit codes:\n" + ExitCodeLines(command.exit_codes);
}

}  // namespace orsolva_host
