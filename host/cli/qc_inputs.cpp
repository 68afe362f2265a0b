#include "host/cli/qc_inputs.h"

#include <glob.h>

#include <filesystem>

#include "host/rinex/input_files.h"

namespace orsolva_host {
namespace {

/// The files a pattern matches, in the order of their names; the text itself when it matches none.
std::vector<std::string> Matches(const std::string& text) {
  std::error_code ignored;
  if (text.find_first_of("*?[") == std::string::npos || std::filesystem::exists(text, ignored)) return {text};
  glob_t found = {};
  std::vector<std::string> files;
  if (glob(text.c_str(), 0, nullptr, &found) == 0)
    files.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
  globfree(&found);
  return files.empty() ? std::vector<std::string>{text} : files;
}

}  // namespace

QcInputs InputsOf(const std::vector<std::string>& paths, const std::vector<std::string>& navigation) {
  QcInputs inputs;
  for (const std::string& text : paths) {
    for (const std::string& path : Matches(text)) {
      std::error_code ignored;
      const bool folder = std::filesystem::is_directory(path, ignored);
      const InputFiles sorted = SortInputs({path});
      for (const std::string& file : sorted.observations) inputs.observations.push_back(file);
      if (folder && !sorted.observations.empty()) continue;
      for (const std::string& file : sorted.navigation) inputs.navigation.push_back(file);
      // Reading it says that there is nothing in it.
      if (folder && sorted.navigation.empty()) inputs.observations.push_back(path);
    }
  }
  inputs.navigation.insert(inputs.navigation.end(), navigation.begin(), navigation.end());
  return inputs;
}

}  // namespace orsolva_host
