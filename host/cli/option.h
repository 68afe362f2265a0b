// One option of a command as a row: what help, manual page, completions, configuration file and documentation
// show, and what the command line sets, is made from it.
#ifndef ORSOLVA_CLI_OPTION_H
#define ORSOLVA_CLI_OPTION_H

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/argument_texts.h"
#include "host/cli/exit_codes.h"

namespace orsolva_host {

enum class OptionKind {
  kSwitch,  ///< --sats
  kReport,  ///< --json or --json=FILE
  kNumber,  ///< --elevation DEGREES, in a range
  kText,    ///< --systems LETTERS
  kChoice,  ///< --color WHEN, one of some words
  kFile,    ///< --html FILE
  kFolder,  ///< --output FOLDER
};

/// Takes the text of a value. @return an empty text, or what is wrong with the value
using SetOption = std::function<std::string(const std::string& text)>;

struct Option {
  std::string name;  ///< "elevation"; of a positional argument in capitals, "FILES"
  OptionKind kind = OptionKind::kText;
  std::string argument;  ///< "DEGREES"; empty for switches
  std::string help;      ///< one sentence without a full stop
  SetOption set;
  std::string default_text;        ///< empty: none
  std::string range;               ///< of a number, "0 to 90"
  std::vector<std::string> words;  ///< values that completions offer; with kChoice there are no others
  std::string group;               ///< heading in the help
  bool positional = false;
  bool required = false;
  bool many = false;                  ///< takes several values at a time; every option may be repeated
  std::vector<std::string> excludes;  ///< names of options that contradict this one
  bool command_line_only = false;     ///< makes no sense in a configuration file

  bool TakesValue() const { return kind != OptionKind::kSwitch && kind != OptionKind::kReport; }
  bool TakesFile() const {
    return kind == OptionKind::kFile || kind == OptionKind::kFolder || kind == OptionKind::kReport;
  }
  /// "--elevation DEGREES", "--json[=FILE]", "FILES..."
  std::string Usage() const;
  /// The help, and in brackets the range, the words and what the option excludes.
  std::string HelpWithRange() const;
  /// The same with the default.
  std::string HelpWithDefault() const;
};

/// A row without a target.
Option Row(std::string name, OptionKind kind, std::string argument, std::string help);

// Rows by kind. The target holds the default, is written by the row, and must outlive it.

Option Switch(std::string name, bool& target, std::string help);
Option ReportFile(std::string name, std::string& target, std::string help);
Option FileOption(std::string name, std::string argument, std::string& target, std::string help);
Option FolderOption(std::string name, std::string& target, std::string help);
Option TextOption(std::string name, std::string argument, std::string& target, std::string help);
Option Choice(std::string name, std::string argument, std::vector<std::string> words, std::string& target,
              std::string help);
/// Every value is appended.
Option ListOption(std::string name, std::string argument, std::vector<std::string>& target, std::string help);

/// A value that a parser takes apart. @param default_text  what the target holds, as a user would write it
template <typename Target>
Option Parsed(std::string name, std::string argument, std::string default_text,
              std::string (*parse)(const std::string&, Target&), Target& target, std::string help) {
  Option row = Row(std::move(name), OptionKind::kText, std::move(argument), std::move(help));
  row.set = [parse, &target](const std::string& text) { return parse(text, target); };
  row.default_text = std::move(default_text);
  return row;
}

/// Any finite number; the default is elsewhere.
Option Number(std::string name, std::string argument, std::optional<double>& target, std::string help);
/// A number from low to high, ends included.
Option Number(std::string name, std::string argument, double low, double high, double& target,
              std::string help);
/// A whole number from 0 to high, ends included.
Option WholeNumber(std::string name, std::string argument, unsigned high, unsigned& target, std::string help);

/// A positional argument made from a row.
Option Positional(Option row, bool required);

/// One command of the program.
struct Command {
  std::string name;
  std::string description;
  std::vector<Option> options;  ///< positional arguments first
  std::function<int()> run;     ///< to be called when the options are set; returns the exit code
  /// What run may return and the program exit with.
  std::vector<int> exit_codes = {kGood, kRunFailed, kWrongUsage};

  /// nullptr when there is none of the name.
  const Option* Find(const std::string& option) const;
};

/// An option with the text of its value.
struct GivenValue {
  const Option* option;
  std::string text;
};

/// A command line that cannot be meant: what is wrong.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Refuses values of options that exclude each other; a switch that is off excludes nothing. @throws
/// UsageError
void CheckExclusions(const std::vector<GivenValue>& values);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_OPTION_H
