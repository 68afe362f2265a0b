#include "host/cli/qc_complaint.h"

#include <algorithm>
#include <filesystem>

#include "host/cli/output_plan.h"

namespace orsolva_host {
namespace {

std::string ComplaintAboutMany(const QcRequest& request, const QcInputs& inputs) {
  const std::string& index = request.html;
  if (!request.detail.empty())
    return "--detail takes one observation file; for many use --output FOLDER --formats detail";
  if (index.empty()) return {};
  if (request.output.empty())
    return "--html of many observation files is the index of their pages: say with --output FOLDER where the "
           "pages go";
  namespace fs = std::filesystem;
  for (const std::string& stem : OutputStems(inputs.observations)) {
    const fs::path page = fs::absolute(request.output + "/" + stem + ".html").lexically_normal();
    if (page == fs::absolute(index).lexically_normal())
      return "--html " + index + ": this is the page of one of the files; give the index another name";
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
  return inputs.observations.size() > 1 ? ComplaintAboutMany(request, inputs) : std::string();
}

}  // namespace orsolva_host
