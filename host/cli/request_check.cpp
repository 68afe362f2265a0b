#include "host/cli/request_check.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "host/judging/selection_texts.h"

namespace orsolva_host {
namespace {

std::filesystem::path WholePath(const std::string& path) {
  if (path.empty()) throw ValidationError("the name of a file is empty: is a variable of the script unset?");
  return std::filesystem::absolute(path).lexically_normal();
}

void ValidateStandardStreams(const QcRequest& request, const RunInputs& inputs) {
  const auto from_input = std::count(inputs.observations.begin(), inputs.observations.end(), "-") +
                          std::count(inputs.navigation.begin(), inputs.navigation.end(), "-");
  if (from_input > 1) {
    throw ValidationError(
        "standard input can be read once only: give - for one observation or navigation file, and name "
        "the other files");
  }
  if (from_input > 0 && !request.parquet.empty()) {
    throw ValidationError("--parquet reads files more than once: save standard input as a file first");
  }
  const auto on_output =
      std::count_if(std::begin(kFormats), std::end(kFormats), [&](const OutputFormat& row) {
        const bool can = row.stream || row.format == Format::kEvents || row.format == Format::kSeries;
        return can && request.outputs.File(row.format) == "-";
      });
  if (on_output > 1) {
    throw ValidationError(
        "only one of --text, --json, --csv, --sum, --events and --series can go to standard output; give the "
        "others files");
  }
}

void ValidateSelection(const JudgingSettings& settings) {
  const EpochSelection& selection = settings.selection;
  if (selection.sampling_s && settings.interval_s && *settings.interval_s < *selection.sampling_s) {
    throw ValidationError(
        "--interval is shorter than --sampling: the interval meant is that of the epochs taken; leave it "
        "out");
  }
  const std::string wrong = Contradiction(selection);
  if (!wrong.empty()) throw ValidationError("--start and --end: " + wrong);
}

/// Options that mean something else, or nothing, with many files.
void ValidateMany(const QcRequest& request, const RunInputs& inputs) {
  const OutputSettings& outputs = request.outputs;
  for (const Format table : {Format::kDetail, Format::kEvents, Format::kSeries}) {
    if (outputs.File(table).empty()) continue;
    const std::string name = FormatRow(table).name;
    throw ValidationError("--" + name +
                          " takes one observation file; for many use --output FOLDER --formats " + name);
  }
  const std::string& index = outputs.File(Format::kHtml);
  if (index.empty()) return;
  if (outputs.folder.empty()) {
    throw ValidationError(
        "--html of many observation files is the index of their pages: say with --output FOLDER where the "
        "pages go");
  }
  const OutputNames names(outputs, inputs.observations);
  for (std::size_t file = 0; file < inputs.observations.size(); ++file) {
    if (WholePath(names.InFolder(file, Format::kHtml)) != WholePath(index)) continue;
    throw ValidationError("--html " + index +
                          ": this is the page of one of the files; give the index another name");
  }
}

/// Two outputs of one name would end as one of them, and one on an input would destroy it. Devices such as
/// /dev/null take any number.
void ValidatePaths(const QcRequest& request, const RunInputs& inputs) {
  std::set<std::filesystem::path> outputs;
  for (const std::string& path : OutputNames(request.outputs, inputs.observations).All()) {
    std::error_code ignored;
    if (std::filesystem::is_character_file(path, ignored)) continue;
    if (!outputs.insert(WholePath(path)).second)
      throw ValidationError(path + ": two outputs of this run have this name; give one of them another");
  }
  std::vector<const std::vector<std::string>*> inputs_read = {&inputs.observations, &inputs.navigation};
  for (const JoinedFiles& joined : inputs.joined) inputs_read.push_back(&joined);
  for (const auto* files : inputs_read) {
    for (const std::string& file : *files) {
      if (file == "-" || outputs.count(WholePath(file)) == 0) continue;
      throw ValidationError(
          file + ": this input would be replaced by an output of the same name; give the output another");
    }
  }
}

}  // namespace

void ValidateRequest(const QcRequest& request, const RunInputs& inputs) {
  ValidateSelection(request.settings);
  ValidateStandardStreams(request, inputs);
  if (inputs.observations.size() > 1) ValidateMany(request, inputs);
  ValidatePaths(request, inputs);
}

}  // namespace orsolva_host
