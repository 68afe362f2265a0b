#include "host/cli/option.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace orsolva_host {
namespace {

std::string Joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

Option Stored(std::string name, OptionKind kind, std::string argument, std::string& target,
              std::string help) {
  Option row = Row(std::move(name), kind, std::move(argument), std::move(help));
  row.set = [&target](const std::string& text) {
    target = text;
    return std::string();
  };
  row.default_text = target;
  return row;
}

std::vector<std::string> FactsOf(const Option& row) {
  std::vector<std::string> facts;
  if (!row.range.empty()) facts.push_back(row.range);
  if (row.kind == OptionKind::kChoice) facts.push_back(Joined(row.words, ", "));
  if (!row.excludes.empty()) facts.push_back("not with --" + Joined(row.excludes, " or --"));
  return facts;
}

std::string WithFacts(const std::string& help, const std::vector<std::string>& facts) {
  return facts.empty() ? help : help + " (" + Joined(facts, "; ") + ")";
}

bool IsOn(const GivenValue& value) {
  bool on = true;
  return value.option->kind != OptionKind::kSwitch || !ParseSwitch(value.text, on).empty() || on;
}

}  // namespace

Option Row(std::string name, OptionKind kind, std::string argument, std::string help) {
  Option row;
  row.name = std::move(name);
  row.kind = kind;
  row.argument = std::move(argument);
  row.help = std::move(help);
  return row;
}

std::string Option::Usage() const {
  if (positional) return argument + (many ? "..." : "");
  if (kind == OptionKind::kReport) return "--" + name + "[=FILE]";
  return "--" + name + (argument.empty() ? "" : " " + argument) + (many ? "..." : "");
}

std::string Option::HelpWithRange() const { return WithFacts(help, FactsOf(*this)); }

std::string Option::HelpWithDefault() const {
  std::vector<std::string> facts = FactsOf(*this);
  if (!default_text.empty()) facts.push_back("default: " + default_text);
  return WithFacts(help, facts);
}

Option Switch(std::string name, bool& target, std::string help) {
  Option row = Row(std::move(name), OptionKind::kSwitch, "", std::move(help));
  row.set = [&target](const std::string& text) { return ParseSwitch(text, target); };
  return row;
}

Option ReportFile(std::string name, std::string& target, std::string help) {
  return Stored(std::move(name), OptionKind::kReport, "", target, std::move(help));
}

Option FileOption(std::string name, std::string argument, std::string& target, std::string help) {
  return Stored(std::move(name), OptionKind::kFile, std::move(argument), target, std::move(help));
}

Option FolderOption(std::string name, std::string& target, std::string help) {
  return Stored(std::move(name), OptionKind::kFolder, "FOLDER", target, std::move(help));
}

Option TextOption(std::string name, std::string argument, std::string& target, std::string help) {
  return Stored(std::move(name), OptionKind::kText, std::move(argument), target, std::move(help));
}

Option Choice(std::string name, std::string argument, std::vector<std::string> words, std::string& target,
              std::string help) {
  Option row = Stored(std::move(name), OptionKind::kChoice, std::move(argument), target, std::move(help));
  row.words = std::move(words);
  row.set = [&target, words = row.words](const std::string& text) {
    if (std::find(words.begin(), words.end(), text) == words.end())
      return "'" + text + "' is none of " + Joined(words, ", ");
    target = text;
    return std::string();
  };
  return row;
}

Option ListOption(std::string name, std::string argument, std::vector<std::string>& target,
                  std::string help) {
  Option row = Row(std::move(name), OptionKind::kFile, std::move(argument), std::move(help));
  row.set = [&target](const std::string& text) {
    target.push_back(text);
    return std::string();
  };
  return row;
}

Option Number(std::string name, std::string argument, std::optional<double>& target, std::string help) {
  Option row = Row(std::move(name), OptionKind::kNumber, std::move(argument), std::move(help));
  row.set = [&target](const std::string& text) { return ParseNumber(text, target.emplace()); };
  return row;
}

Option Number(std::string name, std::string argument, double low, double high, double& target,
              std::string help) {
  Option row = Row(std::move(name), OptionKind::kNumber, std::move(argument), std::move(help));
  row.default_text = fmt::format("{:g}", target);
  row.range = fmt::format("{:g} to {:g}", low, high);
  row.set = [=, &target](const std::string& text) { return ParseNumber(text, low, high, target); };
  return row;
}

Option WholeNumber(std::string name, std::string argument, unsigned high, unsigned& target,
                   std::string help) {
  Option row = Row(std::move(name), OptionKind::kNumber, std::move(argument), std::move(help));
  row.default_text = std::to_string(target);
  row.range = fmt::format("0 to {}", high);
  row.set = [=, &target](const std::string& text) { return ParseWholeNumber(text, high, target); };
  return row;
}

Option Positional(Option row, bool required) {
  row.positional = true;
  row.required = required;
  row.argument = row.name;
  return row;
}

const Option* Command::Find(const std::string& option) const {
  const auto found =
      std::find_if(options.begin(), options.end(), [&](const Option& row) { return row.name == option; });
  return found == options.end() ? nullptr : &*found;
}

void CheckExclusions(const std::vector<GivenValue>& values) {
  for (const GivenValue& value : values) {
    if (!IsOn(value)) continue;
    for (const std::string& other : value.option->excludes) {
      const bool both = std::any_of(values.begin(), values.end(), [&other](const GivenValue& v) {
        return v.option->name == other && IsOn(v);
      });
      if (both) throw UsageError("--" + value.option->name + " excludes --" + other);
    }
  }
}

}  // namespace orsolva_host
