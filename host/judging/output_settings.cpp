#include "host/judging/output_settings.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

#include "host/rinex/file_names.h"

namespace orsolva_host {
namespace {

bool DropEnding(std::string& name, const std::string& ending) {
  if (name.size() <= ending.size()) return false;
  for (std::size_t i = 0; i < ending.size(); ++i) {
    const char c = name[name.size() - ending.size() + i];
    if (std::tolower(static_cast<unsigned char>(c)) != ending[i]) return false;
  }
  name.resize(name.size() - ending.size());
  return true;
}

}  // namespace

bool OutputSettings::InFolder(Format format) const {
  return !folder.empty() && std::find(formats.begin(), formats.end(), format) != formats.end();
}

OutputNames::OutputNames(const OutputSettings& settings, const std::vector<std::string>& inputs)
    : settings_(settings), stems_(OutputStems(inputs)) {
  const bool index = Many() && !settings.folder.empty() && !settings.File(Format::kHtml).empty();
  pages_in_folder_ = settings.InFolder(Format::kHtml) || index;
}

std::string OutputNames::InFolder(std::size_t input, Format format) const {
  return settings_.folder + "/" + stems_[input] + FormatRow(format).ending;
}

std::vector<std::string> OutputNames::PagesOf(std::size_t input) const {
  std::vector<std::string> pages;
  if (pages_in_folder_) pages.push_back(InFolder(input, Format::kHtml));
  const std::string& named = settings_.File(Format::kHtml);
  if (!Many() && !named.empty()) pages.push_back(named);
  return pages;
}

std::string OutputNames::Index() const {
  if (!Many() || !pages_in_folder_) return {};
  const std::string& asked = settings_.File(Format::kHtml);
  return asked.empty() ? settings_.folder + "/index.html" : asked;
}

std::vector<std::string> OutputNames::TablesOf(std::size_t input, Format table) const {
  std::vector<std::string> tables;
  if (settings_.InFolder(table)) tables.push_back(InFolder(input, table));
  const std::string& named = settings_.File(table);
  if (!named.empty()) tables.push_back(named);
  return tables;
}

std::vector<std::string> OutputNames::All() const {
  std::vector<std::string> all;
  const auto add_named = [&all](const std::string& path) {
    if (!path.empty() && path != "-") all.push_back(path);
  };
  for (const std::string& path : settings_.files) add_named(path);
  add_named(settings_.network);
  for (std::size_t input = 0; input < stems_.size(); ++input) {
    for (const OutputFormat& row : kFormats) {
      const bool page = row.format == Format::kHtml && pages_in_folder_;
      if (page || settings_.InFolder(row.format)) all.push_back(InFolder(input, row.format));
    }
  }
  return all;
}

std::vector<std::string> OutputStems(const std::vector<std::string>& inputs) {
  std::set<std::string> taken;
  if (inputs.size() > 1) taken = {"network", "index"};
  std::vector<std::string> stems;
  for (const std::string& input : inputs) {
    std::string name = std::filesystem::path(input).filename().string();
    if (input == "-" || name.empty()) name = "stdin";
    name.resize(WithoutCompressionSuffix(name).size());
    for (const char* ending : {".crx", ".rnx"}) {
      if (DropEnding(name, ending)) break;
    }
    std::string stem = name;
    for (int i = 2; !taken.insert(stem).second; ++i) stem = name + "-" + std::to_string(i);
    stems.push_back(stem);
  }
  return stems;
}

}  // namespace orsolva_host
