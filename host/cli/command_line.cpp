// The one source that includes the argument parser: it finds words and flags, the rows do the rest.
#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "host/cli/exit_codes.h"
#include "host/cli/help_text.h"
#include "host/judging/output_formats.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

using OptionsByRow = std::map<const Option*, CLI::Option*>;

/// Help as help_text.h writes it.
class HelpFormatter : public CLI::FormatterBase {
 public:
  explicit HelpFormatter(const std::vector<Command>& commands) : commands_(commands) {}
  std::string make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const override {
    for (const Command& command : commands_) {
      if (app->get_parent() != nullptr && command.name == app->get_name()) return CommandHelp(command);
    }
    return ProgramHelp(commands_);
  }

 private:
  const std::vector<Command>& commands_;
};

CLI::Option* AddToParser(CLI::App& parser, const Option& row) {
  const auto take = [](const CLI::results_t&) { return true; };
  const std::string flag = "--" + row.name;
  if (!row.TakesValue()) {
    // "{-}": the value of a flag that is given without one.
    CLI::Option* option = parser.add_flag(flag + (row.kind == OptionKind::kReport ? "{-}" : ""), row.help);
    return option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  }
  CLI::Option* option = parser.add_option(row.positional ? row.name : flag, take, row.help);
  option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  constexpr int kNoLimit = -1;
  option->required(row.required)->expected(1, row.many ? kNoLimit : 1);
  return option->allow_extra_args(row.many);
}

OptionsByRow AddToParser(CLI::App& parser, const std::vector<Command>& commands) {
  OptionsByRow options;
  for (const Command& command : commands) {
    CLI::App* added = parser.add_subcommand(command.name, command.description);
    for (const Option& row : command.options) {
      if (row.set) options[&row] = AddToParser(*added, row);
    }
  }
  return options;
}

/// Refuses what is no command; the parser knows flags only.
bool BeginsWithCommand(const std::vector<Command>& commands, const std::vector<std::string>& arguments) {
  const std::string first = arguments.empty() ? "" : arguments.front();
  if (first.compare(0, 1, "-") == 0) return true;
  for (const Command& command : commands) {
    if (command.name == first) return true;
  }
  PrintError((first.empty() ? "no command is given" : "'" + first + "' is not a command") +
             ". `orsolva --help` lists the commands.");
  return false;
}

/// What the parser found wrong, as a sentence; an unknown option before a missing argument.
std::string WrongUsage(const CLI::App& parser, const CLI::ParseError& error) {
  for (const std::string& extra : parser.remaining(true)) {
    if (extra.size() > 1 && extra[0] == '-') return "there is no option '" + extra + "'";
  }
  const std::string what = error.what();
  const std::string name = what.substr(0, what.find_first_of(": "));
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) return name + " needs a value";
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    return parser.get_subcommands().empty() ? "no command is given" : "the argument " + name + " is missing";
  }
  const std::vector<std::string> extras = parser.remaining(true);
  return extras.empty() ? what : "'" + extras.front() + "' is one argument too many";
}

/// Refuses an option where a value belongs; the parser takes any word there.
/// A file of such a name is given as ./--name or --option=--name.
void RefuseOptionsAsValues(const Command& command, const std::vector<std::string>& arguments) {
  const auto find = [&command](const std::string& word) {
    return std::find_if(command.options.begin(), command.options.end(),
                        [&word](const Option& row) { return !row.positional && word == "--" + row.name; });
  };
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const auto before = find(arguments[i - 1]);
    if (before == command.options.end() || !before->TakesValue()) continue;
    if (find(arguments[i]) != command.options.end()) throw UsageError("--" + before->name + " needs a value");
  }
}

bool EndsIn(const std::string& text, const std::string& ending) {
  return text.size() > ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<Command>& commands,
                             const std::vector<std::string>& arguments) {
  if (!BeginsWithCommand(commands, arguments)) return {nullptr, {}, kWrongUsage};
  CLI::App parser(kProgramDescription, "orsolva");
  parser.formatter(std::make_shared<HelpFormatter>(commands));
  parser.require_subcommand(1);
  const OptionsByRow options = AddToParser(parser, commands);
  CommandLine line;
  try {
    parser.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) throw UsageError(WrongUsage(parser, error));
    parser.exit(error);  // prints the help
    return line;
  }
  const std::string name = parser.get_subcommands().front()->get_name();
  const auto chosen = std::find_if(commands.begin(), commands.end(),
                                   [&name](const Command& command) { return command.name == name; });
  RefuseOptionsAsValues(*chosen, arguments);
  line.command = &*chosen;
  for (const Option& row : chosen->options) {
    if (!row.set) continue;
    for (const std::string& text : options.at(&row)->results()) line.values.push_back({&row, text});
  }
  return line;
}

void SetValues(const std::vector<GivenValue>& values) {
  for (const auto& [option, text] : values) {
    const std::string wrong = option->set(text);
    if (!wrong.empty()) throw UsageError((option->positional ? "" : "--") + option->name + ": " + wrong);
  }
}

std::vector<std::string> JoinFormatFiles(const std::vector<std::string>& arguments) {
  std::vector<std::string> joined;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    joined.push_back(arguments[i]);
    if (i + 1 == arguments.size() || arguments[i].compare(0, 2, "--") != 0) continue;
    const OutputFormat* format = FindFormat(std::string_view(arguments[i]).substr(2));
    if (format == nullptr || !format->stream) continue;
    if (EndsIn(arguments[i + 1], format->ending)) joined.back() += "=" + arguments[++i];
  }
  return joined;
}

}  // namespace orsolva_host
