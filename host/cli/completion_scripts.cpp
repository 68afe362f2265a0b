#include <fmt/format.h>

#include <string>
#include <vector>

#include "host/cli/shell_texts.h"

namespace orsolva_host {
namespace {

/// The words that the argument of an option may be, where these are known.
std::string WordsOf(const Option& row) {
  std::string words;
  for (const std::string& word : row.words) words += (words.empty() ? "" : " ") + word;
  return words;
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

/// What follows an option that takes a value.
std::string BashValues(const Option& row) {
  std::string reply;
  if (!row.words.empty()) reply += "$(compgen -W '" + WordsOf(row) + "' -- \"$cur\")";
  if (row.TakesFile()) reply += std::string(reply.empty() ? "" : " ") + "$(compgen -f -- \"$cur\")";
  return fmt::format("        --{}) COMPREPLY=({}); return ;;\n", row.name, reply);
}

std::string BashCase(const Command& command) {
  std::string words;
  std::string values;
  std::string positional;
  for (const Option& row : command.options) {
    if (row.positional) {
      positional += (positional.empty() || row.words.empty() ? "" : " ") + WordsOf(row);
      continue;
    }
    words += (words.empty() ? "" : " ") + ("--" + row.name);
    if (row.TakesValue()) values += BashValues(row);
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

std::string ZshOption(const Option& row) {
  std::string action = row.TakesFile() ? "_files" : " ";
  if (!row.words.empty()) action = "(" + WordsOf(row) + ")";
  if (row.positional) return fmt::format(" \\\n        '*:{}:{}'", ZshText(row.name), action);
  std::string argument;
  std::string name = "--" + row.name;
  if (row.kind == OptionKind::kReport) {
    name += "=-";
    argument = "::file:_files";
  } else if (row.TakesValue()) {
    name += "=";
    argument = fmt::format(":{}:{}", ZshText(row.argument), action);
  }
  return fmt::format(" \\\n        '*{}[{}]{}'", name, ZshText(row.help), argument);
}

std::string ZshScript(const std::vector<Command>& commands) {
  std::string names;
  std::string cases;
  for (const Command& command : commands) {
    names += fmt::format("    '{}:{}'\n", command.name, ZshText(command.description));
    cases += fmt::format("    {})\n      _arguments -s", command.name);
    for (const Option& row : command.options) cases += ZshOption(row);
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
    for (const Option& row : command.options) {
      std::string line = fmt::format("complete -c orsolva -n '__fish_seen_subcommand_from {}'", command.name);
      if (row.positional) {
        if (row.words.empty()) continue;
        line += fmt::format(" -f -a '{}'", WordsOf(row));
      } else {
        line += fmt::format(" -l {} -d '{}'", row.name, Quotable(row.help));
        if (row.TakesValue()) line += row.TakesFile() ? " -r -F" : " -x";
        if (!row.words.empty()) line += fmt::format(" -a '{}'", WordsOf(row));
      }
      text += line + "\n";
    }
  }
  return text;
}

}  // namespace

std::string CompletionScript(const std::vector<Command>& commands, const std::string& shell) {
  if (shell == "bash") return BashScript(commands);
  if (shell == "zsh") return ZshScript(commands);
  return shell == "fish" ? FishScript(commands) : std::string();
}

}  // namespace orsolva_host
