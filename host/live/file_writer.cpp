#include "host/live/file_writer.h"

#include <chrono>
#include <exception>
#include <filesystem>
#include <utility>

#include "host/output/byte_sink.h"
#include "host/output/whole_file.h"

namespace orsolva_host::live {
namespace {

constexpr std::size_t kMostBytes = std::size_t{64}
                                   << 20;  ///< reports of an hour of a hundred stations and more
constexpr std::chrono::seconds kLongestWait{10};

}  // namespace

void FileWriter::Write(std::string path, std::string text, Failed failed) {
  {
    std::unique_lock lock(mutex_);
    const bool room = changed_.wait_for(lock, kLongestWait, [this] { return bytes_ < kMostBytes; });
    if (room) {
      bytes_ += text.size();
      jobs_.push_back({std::move(path), std::move(text), std::move(failed)});
      changed_.notify_all();
      return;
    }
  }
  failed(path + ": not written, the disk is too slow.");
}

void FileWriter::Finish() {
  {
    const std::lock_guard lock(mutex_);
    finishing_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void FileWriter::Work() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return finishing_ || !jobs_.empty(); });
    if (jobs_.empty()) return;
    const Job job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    Do(job);
    lock.lock();
    bytes_ -= job.text.size();
    changed_.notify_all();
  }
}

void FileWriter::Do(const Job& job) {
  try {
    WriteDurably(job.path, job.text);
  } catch (const std::exception& error) {
    job.failed(error.what());
  }
}

void WriteDurably(const std::string& path, const std::string& text) {
  MakeFolder(std::filesystem::path(path).parent_path().string());
  WholeFile file(path);
  file.Write(text);
  file.CommitToDisk();
}

}  // namespace orsolva_host::live
