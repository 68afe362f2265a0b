#include "host/report/error_groups.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace orsolva_host {
namespace {

/// A line without "file: " or "file:12: " behind its indent.
std::string WithoutPlace(const std::string& file, std::string_view line) {
  const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
  std::string_view rest = line.substr(indent);
  if (rest.substr(0, file.size()) != file) return std::string(line);
  rest.remove_prefix(file.size());
  if (rest.size() < 2 || rest[0] != ':') return std::string(line);
  std::size_t end = 1;
  if (rest[end] != ' ') end = rest.find_first_not_of("0123456789", 1);
  if (end > 1 && end != std::string_view::npos && rest[end] == ':') ++end;
  if (end >= rest.size() || rest[end] != ' ') return std::string(line);
  return std::string(line.substr(0, indent)) + std::string(rest.substr(end + 1));
}

}  // namespace

std::string CauseOf(const std::string& file, const std::string& error) {
  std::string cause;
  std::string_view rest = error;
  for (;;) {
    const std::size_t end = rest.find('\n');
    cause += WithoutPlace(file, rest.substr(0, end));
    if (end == std::string_view::npos) return cause;
    cause += '\n';
    rest.remove_prefix(end + 1);
  }
}

std::vector<ErrorGroup> GroupedByCause(const std::vector<FailedFile>& files) {
  std::vector<ErrorGroup> groups;
  for (const FailedFile& failed : files) {
    std::string cause = CauseOf(failed.file, failed.error);
    const auto known = std::find_if(groups.begin(), groups.end(),
                                    [&cause](const ErrorGroup& group) { return group.cause == cause; });
    if (known == groups.end()) {
      groups.push_back({std::move(cause), {failed}});
    } else {
      known->files.push_back(failed);
    }
  }
  return groups;
}

std::string TextOf(const ErrorGroup& group) {
  if (group.files.size() == 1) return group.files.front().error;
  std::string text = fmt::format("{} files: {}", group.files.size(), group.cause);
  for (const FailedFile& failed : group.files) text += "\n  " + failed.file;
  return text;
}

}  // namespace orsolva_host
