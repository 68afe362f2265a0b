#include "host/cli/config_file.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <utility>

#include "host/platform/platform.h"
#include "host/report/text_layout.h"
#include "host/report/toml_keys.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/text_file.h"

namespace orsolva_host {
namespace {

bool IsConfigurable(const Option& row) { return !row.positional && !row.command_line_only; }

[[noreturn]] void Refuse(const std::string& origin, const toml::node& node, const std::string& what) {
  throw ConfigError(fmt::format("{}:{}: {}", origin, node.source().begin.line, what));
}

/// A single value as the command line would have it; absent for a list or table.
std::optional<std::string> ValueText(const toml::node& node) {
  if (const auto text = node.value_exact<std::string>()) return text;
  if (const auto whole = node.value_exact<std::int64_t>()) return fmt::format("{}", *whole);
  if (const auto number = node.value_exact<double>()) return fmt::format("{}", *number);
  if (const auto flag = node.value_exact<bool>()) return *flag ? "true" : "false";
  return std::nullopt;
}

void SetValue(const Option& row, const toml::node& node, const std::string& origin,
              std::vector<GivenValue>& values) {
  std::optional<std::string> text = ValueText(node);
  if (!text) Refuse(origin, node, fmt::format("expected one value for '{}'", row.name));
  if (text->empty()) return;
  if (row.kind == OptionKind::kReport) {
    if (*text == "false") return;
    if (*text == "true") *text = "-";
  }
  const std::string wrong = row.set(*text);
  if (!wrong.empty()) Refuse(origin, node, row.name + ": " + wrong);
  values.push_back({&row, std::move(*text)});
}

void SetKey(const Command& command, const std::string& key, const toml::node& node, const std::string& origin,
            std::vector<GivenValue>& values) {
  const Option* row = command.Find(key);
  if (row == nullptr || !IsConfigurable(*row)) {
    Refuse(origin, node,
           fmt::format("'{}' is not a key of [{}]; `orsolva config` prints them all", key, command.name));
  }
  if (const toml::array* list = node.as_array()) {
    for (const toml::node& item : *list) SetValue(*row, item, origin, values);
  } else {
    SetValue(*row, node, origin, values);
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

std::string ChosenFile(const std::vector<GivenValue>& values) {
  std::string named;
  for (const GivenValue& value : values) {
    if (value.option->name == "no-config" && value.text == "true") return {};
    if (value.option->name == "config") named = value.text;
  }
  return named.empty() ? FileOfTheUser() : named;
}

std::string TextOfConfig(const std::string& path) {
  try {
    return TextOfFile(path, kLargestSettings_bytes);
  } catch (const FileError& error) {
    throw ConfigError(std::string("the configuration file cannot be read: ") + error.what());
  }
}

std::string TomlValue(const Option& row) {
  if (!row.TakesValue()) return "false";
  return row.kind == OptionKind::kNumber ? row.default_text : "\"" + row.default_text + "\"";
}

}  // namespace

std::vector<GivenValue> SetFromConfig(const Command& command, std::string_view text,
                                      const std::string& origin) {
  std::vector<GivenValue> values;
  if (const std::size_t line = LineOfDeepKey(text); line > 0) {
    throw ConfigError(fmt::format("{}:{}: a key of more than {} parts", origin, line, kMaxKeyParts));
  }
  try {
    const toml::table table = toml::parse(text, origin);
    for (const auto& [section, node] : table) {
      const toml::table* keys = node.as_table();
      if (keys == nullptr || section.str() != command.name) {
        Refuse(origin, node,
               fmt::format("'{}' is not a section: options belong below [{}]", section.str(), command.name));
      }
      for (const auto& [key, value] : *keys) SetKey(command, std::string(key.str()), value, origin, values);
    }
  } catch (const toml::parse_error& error) {
    throw ConfigError(
        fmt::format("{}:{}: {}", origin, error.source().begin.line, std::string(error.description())));
  }
  return values;
}

std::vector<GivenValue> SetFromConfig(const CommandLine& line) {
  if (line.command->Find("config") == nullptr) return {};
  const std::string path = ChosenFile(line.values);
  if (path.empty()) return {};
  return SetFromConfig(*line.command, TextOfConfig(path), path);
}

std::string DefaultConfig(const Command& command) {
  std::string text = "# Options of orsolva " + command.name +
                     ". The command line overrides them.\n"
                     "# Read from --config FILE, $ORSOLVA_CONFIG, or ~/.config/orsolva/config.toml.\n"
                     "# Every key has its default here; remove the # to change it.\n\n[" +
                     command.name + "]\n";
  for (const Option& row : command.options) {
    if (!IsConfigurable(row)) continue;
    text += "\n" + Wrapped(row.HelpWithRange(), "# ", "# ", 80);
    text += fmt::format("#{} = {}\n", row.name, TomlValue(row));
  }
  return text;
}

}  // namespace orsolva_host
