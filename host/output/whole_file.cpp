#include "host/output/whole_file.h"

#include <filesystem>
#include <system_error>

namespace orsolva_host {
namespace {

namespace fs = std::filesystem;

/// The hidden name; the path itself for what cannot be renamed onto.
std::string PartOf(const std::string& path) {
  std::error_code ignored;
  const fs::path target(path);
  if (fs::exists(target, ignored) && !fs::is_regular_file(target, ignored)) return path;
  return (target.parent_path() / (".part-" + target.filename().string())).string();
}

}  // namespace

WholeFiles::~WholeFiles() {
  std::error_code ignored;
  for (const auto& [part, path] : files_) {
    if (part != path) fs::remove(part, ignored);
  }
}

std::unique_ptr<ByteSink> WholeFiles::Begin(const std::string& path) {
  files_.emplace_back(PartOf(path), path);
  return OpenSink(files_.back().first);
}

void WholeFiles::Publish() {
  for (const auto& [part, path] : files_) {
    if (part == path) continue;
    std::error_code error;
    fs::rename(part, path, error);
    if (error) throw WriteError(path + ": could not be put in place (" + error.message() + ").");
  }
  files_.clear();
}

void WholeFile::Commit() {
  sink_->Close();
  files_.Publish();
}

void WriteWholeFile(const std::string& path, std::string_view text) {
  WholeFile file(path);
  file.Write(text);
  file.Commit();
}

}  // namespace orsolva_host
