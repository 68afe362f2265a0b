// Files of stations, written on a thread of their own: putting a file on the disk takes milliseconds, or
// seconds on a memory card, for which no epoch waits.
#ifndef ORSOLVA_LIVE_FILE_WRITER_H
#define ORSOLVA_LIVE_FILE_WRITER_H

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace orsolva_host::live {

/// May be used from any thread.
class FileWriter {
 public:
  /// Gets why a file could not be written, on either thread.
  using Failed = std::function<void(const std::string& why)>;

  FileWriter() : thread_([this] { Work(); }) {}
  /// Finishes.
  ~FileWriter() { Finish(); }

  /// Writes a file, with its folder, so that after a power failure it is there whole or as it was before.
  /// With kMostBytes yet to be written it waits for room, at most kLongestWait; then the file is given up.
  void Write(std::string path, std::string text, Failed failed);
  /// Writes what is left. Nothing may be written afterwards.
  void Finish();

 private:
  struct Job {
    std::string path, text;
    Failed failed;
  };
  void Work();
  static void Do(const Job& job);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Job> jobs_;
  std::size_t bytes_ = 0;  ///< of the jobs, with the one at work
  bool finishing_ = false;
  std::thread thread_;
};

/// The same at once, on the thread of the caller. @throws WriteError
void WriteDurably(const std::string& path, const std::string& text);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_FILE_WRITER_H
