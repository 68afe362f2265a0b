#include "host/output/whole_file.h"

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <set>
#include <system_error>

#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

namespace fs = std::filesystem;

/// The hidden names of the files being written, of all threads.
struct Unfinished {
  std::mutex mutex;
  std::vector<std::string> names;

  void Remove(const std::string& name) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found != names.end()) names.erase(found);
  }
};

Unfinished& AllUnfinished() {
  static Unfinished all;
  return all;
}

/// The hidden name; the path itself if it is not a regular file.
std::string PartOf(const std::string& path) {
  std::error_code ignored;
  const fs::path target(path);
  if (fs::exists(target, ignored) && !fs::is_regular_file(target, ignored)) return path;
  return (target.parent_path() / (".part-" + target.filename().string())).string();
}

}  // namespace

WholeFiles::~WholeFiles() {
  Unfinished& all = AllUnfinished();
  const std::lock_guard<std::mutex> lock(all.mutex);
  std::error_code ignored;
  for (const auto& [part, path] : files_) {
    fs::remove(part, ignored);
    all.Remove(part);
  }
}

std::unique_ptr<ByteSink> WholeFiles::Begin(const std::string& path) {
  const std::string part = PartOf(path);
  if (part == path) return OpenSink(path);
  Unfinished& all = AllUnfinished();
  const std::lock_guard<std::mutex> lock(all.mutex);
  files_.emplace_back(part, path);
  all.names.push_back(part);
  return OpenSink(part, path);
}

void WholeFiles::Publish() {
  Unfinished& all = AllUnfinished();
  const std::lock_guard<std::mutex> lock(all.mutex);
  for (const auto& [part, path] : files_) {
    std::error_code error;
    fs::rename(part, path, error);
    if (error) throw WriteError(path + ": could not be put in place (" + error.message() + ").");
    all.Remove(part);
  }
  files_.clear();
}

void WholeFiles::PublishToDisk() {
  std::set<std::string> folders;
  for (const auto& [part, path] : files_) {
    const std::string wrong = SyncToDisk(part);
    if (!wrong.empty()) throw WriteError(path + ": could not be put on the disk (" + wrong + ").");
    folders.insert(fs::path(path).parent_path().string());
  }
  Publish();
  // Without it a new name may be missing after a power failure, as if the file had not been written.
  for (const std::string& folder : folders) SyncToDisk(folder.empty() ? "." : folder);
}

void RemoveUnfinishedFiles() {
  Unfinished& all = AllUnfinished();
  all.mutex.lock();  // for good
  std::error_code ignored;
  for (const std::string& name : all.names) fs::remove(name, ignored);
}

void WholeFile::Commit() {
  sink_->Close();
  files_.Publish();
}

void WholeFile::CommitToDisk() {
  sink_->Close();
  files_.PublishToDisk();
}

void WriteWholeFile(const std::string& path, std::string_view text) {
  WholeFile file(path);
  file.Write(text);
  file.Commit();
}

}  // namespace orsolva_host
