#include "host/report/whole_file.h"

#include <filesystem>
#include <system_error>

namespace orsolva_host {
namespace {

namespace fs = std::filesystem;

std::string PartOf(const std::string& path) {
  std::error_code ignored;
  const fs::path target(path);
  if (fs::exists(target, ignored) && !fs::is_regular_file(target, ignored)) return path;
  return (target.parent_path() / (".part-" + target.filename().string())).string();
}

}  // namespace

WholeFile::WholeFile(const std::string& path) : path_(path), part_(PartOf(path)), sink_(OpenSink(part_)) {}

WholeFile::~WholeFile() {
  if (sink_ == nullptr) return;
  sink_.reset();
  std::error_code ignored;
  if (part_ != path_) fs::remove(part_, ignored);
}

void WholeFile::Write(std::string_view text) { sink_->Write(text.data(), text.size()); }

void WholeFile::Commit() {
  sink_->Close();
  if (part_ != path_) {
    std::error_code why;
    fs::rename(part_, path_, why);
    if (why) throw WriteError(path_ + ": " + why.message());
  }
  sink_.reset();
}

}  // namespace orsolva_host
