#include "host/cli/qc_complaint.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>
#include <vector>

#include "host/judging/output_plan.h"

namespace orsolva_host {
namespace {

constexpr std::pair<const char*, const char*> kFolderEndings[] = {
    {"text", ".txt"}, {"json", ".json"}, {"csv", ".csv"},
    {"sum", ".sum"},  {"html", ".html"}, {"detail", ".detail.csv"}};

std::filesystem::path WholePath(const std::string& path) {
  return std::filesystem::absolute(path).lexically_normal();
}

std::string ComplaintAboutMany(const QcRequest& request, const QcInputs& inputs) {
  const std::string& index = request.html;
  if (!request.detail.empty())
    return "--detail takes one observation file; for many use --output FOLDER --formats detail";
  if (index.empty()) return {};
  if (request.output.empty())
    return "--html of many observation files is the index of their pages: say with --output FOLDER where the "
           "pages go";
  for (const std::string& stem : OutputStems(inputs.observations)) {
    if (WholePath(request.output + "/" + stem + ".html") == WholePath(index))
      return "--html " + index + ": this is the page of one of the files; give the index another name";
  }
  return {};
}

/// The files that the run writes by their names: those of the options, and those in the folder.
std::vector<std::string> OutputPaths(const QcRequest& request, const QcInputs& inputs) {
  std::vector<std::string> paths;
  for (const std::string* path : {&request.text, &request.json, &request.csv, &request.sum, &request.detail,
                                  &request.html, &request.network}) {
    if (!path->empty() && *path != "-") paths.push_back(*path);
  }
  if (request.output.empty()) return paths;
  for (const std::string& stem : OutputStems(inputs.observations)) {
    for (const auto& [name, ending] : kFolderEndings) {
      if (("," + request.formats + ",").find("," + std::string(name) + ",") != std::string::npos)
        paths.push_back(request.output + "/" + stem + ending);
    }
  }
  return paths;
}

/// Two outputs of one name would end as one of them, and one on an input would destroy it. Devices such as
/// /dev/null take any number.
std::string ComplaintAboutPaths(const QcRequest& request, const QcInputs& inputs) {
  std::set<std::filesystem::path> outputs;
  for (const std::string& path : OutputPaths(request, inputs)) {
    std::error_code ignored;
    if (std::filesystem::is_character_file(path, ignored)) continue;
    if (!outputs.insert(WholePath(path)).second)
      return path + ": two outputs of this run have this name; give one of them another";
  }
  for (const auto* files : {&inputs.observations, &inputs.navigation}) {
    for (const std::string& file : *files) {
      if (file != "-" && outputs.count(WholePath(file)) > 0)
        return file + ": this input would be replaced by an output of the same name; give the output another";
    }
  }
  return {};
}

}  // namespace

std::string ComplaintAbout(const QcRequest& request, const QcInputs& inputs) {
  const auto from_input = std::count(inputs.observations.begin(), inputs.observations.end(), "-") +
                          std::count(inputs.navigation.begin(), inputs.navigation.end(), "-");
  if (from_input > 1) {
    return "standard input can be read once only: give - for one observation or navigation file, and name "
           "the other files";
  }
  int on_output = 0;
  for (const std::string* path : {&request.text, &request.json, &request.csv, &request.sum}) {
    on_output += *path == "-" ? 1 : 0;
  }
  if (on_output > 1)
    return "only one of --text, --json, --csv and --sum can go to standard output; give the others files";
  if (inputs.observations.size() > 1) {
    const std::string complaint = ComplaintAboutMany(request, inputs);
    if (!complaint.empty()) return complaint;
  }
  return ComplaintAboutPaths(request, inputs);
}

}  // namespace orsolva_host
