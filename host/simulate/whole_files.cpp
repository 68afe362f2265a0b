#include "host/simulate/whole_files.h"

#include <filesystem>
#include <system_error>

#include "host/simulate/byte_sink.h"

namespace orsolva_host {

WholeFiles::~WholeFiles() {
  std::error_code ignored;
  for (const auto& [temporary, path] : files_) std::filesystem::remove(temporary, ignored);
}

std::string WholeFiles::Begin(const std::string& path) {
  const std::filesystem::path own(path);
  const std::string temporary = (own.parent_path() / (".unfinished_" + own.filename().string())).string();
  files_.emplace_back(temporary, path);
  return temporary;
}

void WholeFiles::Publish() {
  for (const auto& [temporary, path] : files_) {
    std::error_code error;
    std::filesystem::rename(temporary, path, error);
    if (error) throw WriteError(path + ": could not be put in place (" + error.message() + ").");
  }
  files_.clear();
}

}  // namespace orsolva_host
