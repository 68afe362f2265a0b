#include "host/cli/config_file.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "host/cli/app.h"
#include "host/platform/platform.h"
#include "host/report/text_layout.h"
#include "host/report/toml_keys.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/text_file.h"

namespace orsolva_host {
namespace {

/// Options that make no sense in a file.
bool IsOfCommandLineOnly(const std::string& name) {
  return name == "--help" || name == "--config" || name == "--no-config";
}

std::vector<OptionFacts> ConfigurableOptions() {
  int ignored = 0;
  const std::unique_ptr<CLI::App> app = MakeApp(ignored);
  std::vector<OptionFacts> options = OptionsOf(*app->get_subcommand("qc"));
  options.erase(
      std::remove_if(options.begin(), options.end(),
                     [](const OptionFacts& o) { return o.positional || IsOfCommandLineOnly(o.name); }),
      options.end());
  return options;
}

[[noreturn]] void Refuse(const std::string& origin, const toml::node& node, const std::string& what) {
  throw ConfigError(fmt::format("{}:{}: {}", origin, node.source().begin.line, what));
}

/// A single value as the command line would have it; absent for a list or table.
std::optional<std::string> TextOf(const toml::node& node) {
  if (const auto text = node.value_exact<std::string>()) return text;
  if (const auto whole = node.value_exact<std::int64_t>()) return fmt::format("{}", *whole);
  if (const auto number = node.value_exact<double>()) return fmt::format("{}", *number);
  if (const auto flag = node.value_exact<bool>()) return *flag ? "true" : "false";
  return std::nullopt;
}

/// What the option says about a value, empty when it takes it.
std::string Complaint(const std::string& argument) {
  int ignored = 0;
  const std::unique_ptr<CLI::App> app = MakeApp(ignored);
  app->get_subcommand("qc")->callback([] {});
  try {
    app->parse(std::vector<std::string>{"file", argument, "qc"});
  } catch (const CLI::ParseError& error) {
    return error.what();
  }
  return {};
}

void AddArgument(const OptionFacts& option, const toml::node& node, const std::string& origin,
                 std::vector<std::string>& arguments) {
  const std::optional<std::string> text = TextOf(node);
  if (!text) Refuse(origin, node, fmt::format("expected one value for '{}'", option.name.substr(2)));
  if (text->empty()) return;
  const bool flag = option.argument.empty() || option.argument == "[=FILE]";
  if (flag && *text == "false") return;
  std::string argument = option.name;
  if (!(flag && *text == "true")) argument += "=" + *text;
  const std::string complaint = Complaint(argument);
  if (!complaint.empty()) Refuse(origin, node, complaint);
  arguments.push_back(argument);
}

void AddArguments(const std::vector<OptionFacts>& options, const std::string& key, const toml::node& node,
                  const std::string& origin, std::vector<std::string>& arguments) {
  const auto option = std::find_if(options.begin(), options.end(),
                                   [&key](const OptionFacts& o) { return o.name == "--" + key; });
  if (option == options.end()) {
    Refuse(origin, node, "'" + key + "' is no key of [qc]; `orsolva config` prints them all");
  }
  if (const toml::array* list = node.as_array()) {
    for (const toml::node& item : *list) AddArgument(*option, item, origin, arguments);
  } else {
    AddArgument(*option, node, origin, arguments);
  }
}

/// The file that is read without being named; empty when there is none.
std::string FileOfTheUser() {
  const char* named = std::getenv("ORSOLVA_CONFIG");
  if (named != nullptr && *named != '\0') return named;
  const std::string folder = SettingsFolder();
  if (folder.empty()) return {};
  const std::string file = folder + "/orsolva/config.toml";
  std::error_code ignored;
  return std::filesystem::is_regular_file(file, ignored) ? file : std::string();
}

std::string ChosenFile(const std::vector<std::string>& arguments) {
  constexpr std::string_view kOption = "--config=";
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    if (arguments[i] == "--no-config") return {};
    if (arguments[i].compare(0, kOption.size(), kOption) == 0) return arguments[i].substr(kOption.size());
    if (arguments[i] == "--config" && i + 1 < arguments.size()) return arguments[i + 1];
  }
  return FileOfTheUser();
}

std::string TextOfConfig(const std::string& path) {
  try {
    return TextOfFile(path, kLargestSettings_bytes);
  } catch (const FileError& error) {
    throw ConfigError(std::string("the configuration file cannot be read: ") + error.what());
  }
}

std::string TomlValue(const OptionFacts& option) {
  if (option.argument.empty() || option.argument == "[=FILE]") return "false";
  const std::string& text = option.default_text;
  const bool number = !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
    return std::isdigit(c) != 0 || c == '.';
  });
  return number ? text : "\"" + text + "\"";
}

}  // namespace

std::vector<std::string> ConfigArguments(std::string_view text, const std::string& origin) {
  std::vector<std::string> arguments;
  if (const std::size_t line = LineOfDeepKey(text); line > 0) {
    throw ConfigError(fmt::format("{}:{}: a key of more than {} parts", origin, line, kMostKeyParts));
  }
  try {
    const std::vector<OptionFacts> options = ConfigurableOptions();
    const toml::table table = toml::parse(text, origin);
    for (const auto& [section, node] : table) {
      const toml::table* keys = node.as_table();
      if (keys == nullptr || section.str() != "qc") {
        Refuse(origin, node, fmt::format("'{}' is no section: options stand below [qc]", section.str()));
      }
      for (const auto& [key, value] : *keys) {
        AddArguments(options, std::string(key.str()), value, origin, arguments);
      }
    }
  } catch (const toml::parse_error& error) {
    throw ConfigError(
        fmt::format("{}:{}: {}", origin, error.source().begin.line, std::string(error.description())));
  }
  return arguments;
}

std::vector<std::string> WithConfigFile(const std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments[0] != "qc") return arguments;
  const std::string path = ChosenFile(arguments);
  if (path.empty()) return arguments;
  std::vector<std::string> all = {"qc"};
  for (std::string& argument : ConfigArguments(TextOfConfig(path), path)) all.push_back(std::move(argument));
  all.insert(all.end(), arguments.begin() + 1, arguments.end());
  return all;
}

std::string DefaultConfig() {
  std::string text =
      "# Options of orsolva qc. Flags on the command line go over them.\n"
      "# Read from --config FILE, $ORSOLVA_CONFIG, or ~/.config/orsolva/config.toml.\n"
      "# Every key stands at its default; remove the # to change it.\n\n[qc]\n";
  for (const OptionFacts& option : ConfigurableOptions()) {
    text += "\n" + Wrapped(option.description, "# ", "# ", 80);
    text += fmt::format("#{} = {}\n", option.name.substr(2), TomlValue(option));
  }
  return text;
}

}  // namespace orsolva_host
