#include <fmt/format.h>

#include <string>
#include <vector>

#include "host/cli/app.h"
#include "host/cli/shell_texts.h"
#include "host/report/figures.h"
#include "host/report/profile.h"

namespace orsolva_host {
namespace {

struct Command {
  std::string name;
  std::string description;
  std::vector<OptionFacts> options;
};

std::vector<Command> CommandsOf(const CLI::App& app) {
  std::vector<Command> commands;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    commands.push_back({command->get_name(), command->get_description(), OptionsOf(*command)});
  }
  return commands;
}

/// Words that an argument may be, where these are known.
std::string ChoicesOf(const std::string& command, const OptionFacts& option) {
  std::string words;
  if (option.name == "--profile") {
    for (int i = 0; i < kBuiltInProfileCount; ++i) words += std::string(" ") + kBuiltInProfiles[i].name;
  } else if (option.name == "--color") {
    words = " auto always never";
  } else if (option.name == "--position") {
    words = " spp header";
  } else if (command == "explain" && option.positional) {
    for (int i = 0; i < kFigures; ++i) words += std::string(" ") + kFigureTable[i].key;
  } else if (command == "completion" && option.positional) {
    words = " bash zsh fish";
  }
  return words.empty() ? words : words.substr(1);
}

/// The text inside single quotes of a shell.
std::string Quotable(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\'') {
      out += "'\\''";
    } else {
      out += c;
    }
  }
  return out;
}

/// The same where a colon or bracket would end a description of zsh.
std::string ZshText(const std::string& text) {
  std::string out;
  for (const char c : Quotable(text)) {
    if (c == '[' || c == ']' || c == ':') out += '\\';
    out += c;
  }
  return out;
}

std::string BashCase(const Command& command) {
  std::string words;
  std::string values;
  std::string positional;
  for (const OptionFacts& o : command.options) {
    const std::string choices = ChoicesOf(command.name, o);
    if (o.positional) {
      positional += (positional.empty() || choices.empty() ? "" : " ") + choices;
      continue;
    }
    words += (words.empty() ? "" : " ") + o.name;
    if (!choices.empty()) {
      values += fmt::format(
          "        {}) COMPREPLY=($(compgen -W '{}' -- \"$cur\") $(compgen -f -- \"$cur\")); return ;;\n",
          o.name, choices);
    } else if (!o.argument.empty() && o.argument != "[=FILE]") {
      values += fmt::format("        {}) COMPREPLY=({}); return ;;\n", o.name,
                            o.takes_file ? "$(compgen -f -- \"$cur\")" : "");
    }
  }
  return fmt::format(
      "    {})\n      case $prev in\n{}      *) ;;\n      esac\n      if [[ $cur == -* ]]; then\n        "
      "COMPREPLY=($(compgen -W '{}' -- \"$cur\"))\n      else\n        COMPREPLY=($(compgen -W '{}' -- "
      "\"$cur\") "
      "$(compgen -f -- \"$cur\"))\n      fi ;;\n",
      command.name, values, words, positional);
}

std::string BashScript(const std::vector<Command>& commands) {
  std::string names;
  std::string cases;
  for (const Command& command : commands) {
    names += (names.empty() ? "" : " ") + command.name;
    cases += BashCase(command);
  }
  return "# bash completion of orsolva\n_orsolva() {\n"
         "  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  COMPREPLY=()\n"
         "  if ((COMP_CWORD == 1)); then\n"
         "    COMPREPLY=($(compgen -W '" +
         names + " --help' -- \"$cur\"))\n    return\n  fi\n  case ${COMP_WORDS[1]} in\n" + cases +
         "  *) ;;\n  esac\n}\ncomplete -o filenames -F _orsolva orsolva\n";
}

std::string ZshOption(const std::string& command, const OptionFacts& o) {
  const std::string choices = ChoicesOf(command, o);
  std::string action = o.takes_file ? "_files" : " ";
  if (!choices.empty()) action = "(" + choices + ")";
  if (o.positional) return fmt::format(" \\\n        '*:{}:{}'", ZshText(o.name), action);
  std::string argument;
  std::string name = o.name;
  if (o.argument == "[=FILE]") {
    name += "=-";
    argument = "::file:_files";
  } else if (!o.argument.empty()) {
    name += "=";
    argument = fmt::format(":{}:{}", ZshText(o.argument), action);
  }
  return fmt::format(" \\\n        '*{}[{}]{}'", name, ZshText(o.description), argument);
}

std::string ZshScript(const std::vector<Command>& commands) {
  std::string names;
  std::string cases;
  for (const Command& command : commands) {
    names += fmt::format("    '{}:{}'\n", command.name, ZshText(command.description));
    cases += fmt::format("    {})\n      _arguments -s", command.name);
    for (const OptionFacts& o : command.options) cases += ZshOption(command.name, o);
    cases += " ;;\n";
  }
  return "#compdef orsolva\n_orsolva() {\n  local -a commands\n  commands=(\n" + names +
         "  )\n  if ((CURRENT == 2)); then\n    _describe command commands\n    return\n  fi\n"
         "  local command=$words[2]\n  shift words\n  ((CURRENT--))\n  case $command in\n" +
         cases +
         "  esac\n}\nif [ \"$funcstack[1]\" = _orsolva ]; then\n  _orsolva \"$@\"\nelse\n  compdef _orsolva "
         "orsolva\nfi\n";
}

std::string FishScript(const std::vector<Command>& commands) {
  std::string text = "# fish completion of orsolva\n";
  for (const Command& command : commands) {
    text += fmt::format("complete -c orsolva -n __fish_use_subcommand -f -a {} -d '{}'\n", command.name,
                        Quotable(command.description));
    for (const OptionFacts& o : command.options) {
      const std::string choices = ChoicesOf(command.name, o);
      std::string line = fmt::format("complete -c orsolva -n '__fish_seen_subcommand_from {}'", command.name);
      if (o.positional) {
        if (choices.empty()) continue;
        line += fmt::format(" -f -a '{}'", choices);
      } else {
        line += fmt::format(" -l {} -d '{}'", o.name.substr(2), Quotable(o.description));
        if (!o.argument.empty() && o.argument != "[=FILE]") line += o.takes_file ? " -r -F" : " -x";
        if (!choices.empty()) line += fmt::format(" -a '{}'", choices);
      }
      text += line + "\n";
    }
  }
  return text;
}

}  // namespace

std::string CompletionScript(const CLI::App& app, const std::string& shell) {
  const std::vector<Command> commands = CommandsOf(app);
  if (shell == "bash") return BashScript(commands);
  if (shell == "zsh") return ZshScript(commands);
  return shell == "fish" ? FishScript(commands) : std::string();
}

}  // namespace orsolva_host
