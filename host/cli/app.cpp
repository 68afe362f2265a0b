#include "host/cli/app.h"

#include <utility>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"

namespace orsolva_host {
namespace {

constexpr char kFlagFile[] = "{-}";

/// Shows "--json[=FILE]" for a flag that may take a file.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_name(const CLI::Option* option, bool is_positional) const override {
    std::string name = CLI::Formatter::make_option_name(option, is_positional);
    const std::size_t at = name.find(kFlagFile);
    if (at != std::string::npos) name.replace(at, sizeof kFlagFile - 1, "[=FILE]");
    return name;
  }
};

bool EndsIn(const std::string& text, const std::string& ending) {
  return text.size() > ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

}  // namespace

std::unique_ptr<CLI::App> MakeApp(int& exit_code) {
  auto app = std::make_unique<CLI::App>("Judges the quality of GNSS observations.", "orsolva");
  app->formatter(std::make_shared<HelpFormatter>());
  app->footer("Exit codes:\n" + ExitCodeLines());
  app->require_subcommand(1);
  AddQcCommand(*app, exit_code);
  AddInspectCommand(*app, exit_code);
  AddExplainCommand(*app, exit_code);
  AddSimulateCommand(*app, exit_code);
  AddCompareCommand(*app, exit_code);
  AddConfigCommand(*app, exit_code);
  AddCompletionCommand(*app, exit_code);
  AddManualCommand(*app, exit_code);
  AddVersionCommand(*app, exit_code);
  return app;
}

std::vector<std::string> JoinFormatFiles(const std::vector<std::string>& arguments) {
  const std::pair<const char*, const char*> kFlags[] = {
      {"--text", ".txt"}, {"--json", ".json"}, {"--csv", ".csv"}, {"--sum", ".sum"}};
  std::vector<std::string> joined;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    joined.push_back(arguments[i]);
    if (i + 1 == arguments.size()) break;
    for (const auto& [flag, ending] : kFlags) {
      if (arguments[i] != flag) continue;
      if (EndsIn(arguments[i + 1], ending)) joined.back() += "=" + arguments[++i];
      break;
    }
  }
  return joined;
}

std::vector<OptionFacts> OptionsOf(const CLI::App& command) {
  std::vector<OptionFacts> all;
  for (const CLI::Option* option : command.get_options()) {
    OptionFacts facts;
    facts.positional = option->get_lnames().empty();
    facts.name = facts.positional ? option->get_name(true) : "--" + option->get_lnames().front();
    facts.description = option->get_description();
    facts.default_text = option->get_default_str();
    const bool flag = option->get_expected_max() == 0 || option->get_type_size_max() == 0;
    const bool flag_with_file = option->get_name(false, true).find(kFlagFile) != std::string::npos;
    if (flag_with_file) {
      facts.argument = "[=FILE]";
      facts.default_text.clear();
    } else if (!facts.positional && !flag) {
      facts.argument = option->get_type_name();
    }
    facts.takes_file = facts.positional || flag_with_file || facts.argument.find("FILE") == 0 ||
                       facts.argument.find("FOLDER") == 0 || facts.argument.find("PATH") == 0;
    all.push_back(std::move(facts));
  }
  return all;
}

}  // namespace orsolva_host
