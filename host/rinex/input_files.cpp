#include "host/rinex/input_files.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <tuple>

#include "host/rinex/byte_source.h"
#include "host/rinex/header_labels.h"
#include "host/rinex/line_reader.h"

namespace orsolva_host {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kDay_s = 86400;
// Broadcast records are valid for some hours; the file of an adjacent day may still cover part of the data.
constexpr std::int64_t kFarthest_days = 1;
constexpr int kOtherStation = 2;  ///< rank of a station

bool IsFolder(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

/// The regular files of a folder in the order of their names.
std::vector<std::string> FilesOf(const fs::path& folder) {
  std::vector<std::string> files;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code ignored;
    if (entry->is_regular_file(ignored)) files.push_back(entry->path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

FileKind KindOfContent(const std::string& path) {
  std::error_code ignored;
  if (!fs::is_regular_file(path, ignored)) return FileKind::kOther;
  try {
    Diagnostics unused;
    LineReader lines(OpenBytes(path, unused));
    std::string_view line;
    return lines.Next(line) ? KindOfFirstLine(line) : FileKind::kOther;
  } catch (const std::exception&) {
    return FileKind::kOther;
  }
}

std::int64_t DayOf(const Time_gbt& time) { return time.time / kDay_s - (time.time % kDay_s < 0 ? 1 : 0); }

/// How well the files of a station suit the observations of another or the same one; 0 is best. A file of a
/// whole network has what a single receiver missed.
int StationRank(const std::string& station, const std::string& wanted) {
  if (station.substr(0, 3) == "BRD") return 0;
  return !wanted.empty() && station.substr(0, 4) == wanted.substr(0, 4) ? 1 : kOtherStation;
}

}  // namespace

FileKind KindOfFirstLine(std::string_view line) {
  if (HeaderLabel(line) == "CRINEX VERS   / TYPE") return FileKind::kObservation;
  if (HeaderLabel(line) != "RINEX VERSION / TYPE") return FileKind::kOther;
  const char type = line[20];
  if (type == 'O') return FileKind::kObservation;
  return std::string_view("NGELJC").find(type) != std::string_view::npos ? FileKind::kNavigation
                                                                         : FileKind::kOther;
}

FileKind KindOfFile(const std::string& path) {
  const auto name = ParseRinexName(fs::path(path).filename().string());
  return name ? name->kind : KindOfContent(path);
}

InputFiles SortInputs(const std::vector<std::string>& paths) {
  InputFiles inputs;
  std::set<std::string> seen;
  const auto add = [&inputs](const std::string& file, FileKind kind) {
    (kind == FileKind::kObservation  ? inputs.observations
     : kind == FileKind::kNavigation ? inputs.navigation
                                     : inputs.others)
        .push_back(file);
  };
  for (const std::string& path : paths) {
    if (!IsFolder(path)) {
      add(path, KindOfFile(path) == FileKind::kNavigation ? FileKind::kNavigation : FileKind::kObservation);
      continue;
    }
    for (const std::string& file : FilesOf(path)) {
      const auto name = ParseRinexName(fs::path(file).filename().string());
      if (name && !seen.insert(path + "/" + name->whole).second) continue;
      add(file, KindOfFile(file));
    }
  }
  return inputs;
}

std::vector<std::string> NavigationFilesOf(const std::vector<std::string>& paths) {
  std::vector<std::string> files;
  for (const std::string& path : paths) {
    if (!IsFolder(path)) {
      files.push_back(path);
      continue;
    }
    const InputFiles inputs = SortInputs({path});
    if (inputs.navigation.empty()) {
      throw FileError(path, 0, "a folder without a navigation file", "RINEX navigation files in it",
                      "Name the folder that holds the navigation files of the day.");
    }
    files.insert(files.end(), inputs.navigation.begin(), inputs.navigation.end());
  }
  return files;
}

std::vector<NavigationGroup> NavigationBeside(const std::string& observation_file, const Time_gbt& first,
                                              const Time_gbt& last) {
  if (observation_file == "-") return {};
  const fs::path path(observation_file);
  const auto own = ParseRinexName(path.filename().string());
  const std::string station = own ? own->station : std::string();
  const std::int64_t first_day = DayOf(first);
  const std::int64_t last_day = std::max(DayOf(last), first_day);

  // Distance in days, rank of the station and station. Two compressions of one file count once.
  std::map<std::tuple<std::int64_t, int, std::string>, std::map<std::string, std::string>> found;
  for (const std::string& file : FilesOf(path.has_parent_path() ? path.parent_path() : fs::path("."))) {
    const auto name = ParseRinexName(fs::path(file).filename().string());
    if (!name || name->kind != FileKind::kNavigation) continue;
    const std::int64_t distance = std::max({first_day - name->day, name->day - last_day, std::int64_t{0}});
    if (distance > kFarthest_days) continue;
    const int rank = StationRank(name->station, station);
    const std::string of = rank == kOtherStation ? name->station : std::string();
    found[{distance, rank, of}].emplace(name->whole, file);
  }
  std::vector<NavigationGroup> groups;
  for (const auto& [key, files] : found) {
    groups.emplace_back();
    for (const auto& [whole, file] : files) {
      groups.back().push_back(path.has_parent_path() ? file : fs::path(file).filename().string());
    }
  }
  return groups;
}

}  // namespace orsolva_host
