#include "host/judging/inputs.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>

#include "host/formats/sp3_reader.h"
#include "host/judging/stream_detection.h"
#include "host/platform/platform.h"
#include "host/rinex/file_names.h"
#include "host/rinex/input_files.h"

namespace orsolva_host {
namespace {

/// The files a pattern matches, in the order of their names; the text itself when it matches none.
std::vector<std::string> Matches(const std::string& text) {
  std::error_code ignored;
  if (text.find_first_of("*?[") == std::string::npos || std::filesystem::exists(text, ignored)) return {text};
  std::vector<std::string> files = FilesMatching(text);
  return files.empty() ? std::vector<std::string>{text} : files;
}

bool IsFolder(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

/// Whether the name is one that people give observation files: .rnx, .crx, .obs, .20o, .20d, .rtcm3, .rtcm,
/// .sbf, .ubx, compressed or not.
bool LooksLikeObservations(const std::string& path) {
  std::string name = std::filesystem::path(path).filename().string();
  for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const std::string ending = std::filesystem::path(WithoutCompressionSuffix(name)).extension().string();
  if (ending == ".rnx" || ending == ".crx" || ending == ".obs") return true;
  if (ending == ".rtcm3" || ending == ".rtcm" || ending == ".sbf" || ending == ".ubx") return true;
  return ending.size() == 4 && std::isdigit(static_cast<unsigned char>(ending[1])) != 0 &&
         std::isdigit(static_cast<unsigned char>(ending[2])) != 0 && (ending[3] == 'o' || ending[3] == 'd');
}

void Append(const std::vector<std::string>& files, std::vector<std::string>& to) {
  to.insert(to.end(), files.begin(), files.end());
}

bool IsNavigationStream(const std::string& path) {
  const std::optional<DetectedStream> stream = DetectStream(path);
  return stream && stream->navigation;
}

void AddFolder(const std::string& path, bool for_navigation, RunInputs& inputs) {
  InputFiles sorted = SortInputs({path});
  for (const std::string& file : sorted.others) {
    const std::optional<DetectedStream> stream = DetectStream(file);
    if (stream) (stream->navigation ? sorted.navigation : sorted.observations).push_back(file);
  }
  std::sort(sorted.observations.begin(), sorted.observations.end());
  if (for_navigation) {
    inputs.navigation.push_back(path);
  } else if (!sorted.observations.empty()) {
    Append(sorted.observations, inputs.observations);
  } else if (!sorted.navigation.empty()) {
    Append(sorted.navigation, inputs.navigation);
  } else {
    // Reading it says that there is nothing in it.
    inputs.observations.push_back(path);
  }
}

void AddFile(const std::string& path, RunInputs& inputs) {
  std::error_code ignored;
  const bool there = path == "-" || std::filesystem::exists(path, ignored);
  bool navigation = path != "-" && (KindOfFile(path) == FileKind::kNavigation || IsSp3File(path) ||
                                    IsNavigationStream(path));
  // A mistyped name of a navigation file must not let other navigation files take its place.
  if (!there && !inputs.observations.empty() && !LooksLikeObservations(path)) navigation = true;
  (navigation ? inputs.navigation : inputs.observations).push_back(path);
}

}  // namespace

void JoinObservations(JoinRule rule, RunInputs& inputs) {
  if (rule == JoinRule::kNone) return;
  inputs.joined = SpansOf(inputs.observations, rule);
  inputs.observations.clear();
  for (const JoinedFiles& files : inputs.joined) inputs.observations.push_back(files.front());
}

RunInputs InputsOf(const std::vector<std::string>& paths, const std::vector<std::string>& navigation) {
  RunInputs inputs;
  bool file_named = false;
  for (const std::string& text : paths) {
    for (const std::string& path : Matches(text)) {
      if (IsFolder(path)) {
        AddFolder(path, file_named, inputs);
      } else {
        AddFile(path, inputs);
        file_named = !inputs.observations.empty();
      }
    }
  }
  Append(navigation, inputs.navigation);
  return inputs;
}

}  // namespace orsolva_host
