// Many observation files on several threads: outcomes as values, in the order of the files.
//
//   JudgingPool pool(files, settings, {"brdc.rnx"});
//   for (std::size_t i = 0; i < pool.Size(); ++i) Use(pool.Take(i));
#ifndef ORSOLVA_JUDGING_JUDGING_POOL_H
#define ORSOLVA_JUDGING_JUDGING_POOL_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/judging/job_pool.h"
#include "host/judging/joined_files.h"
#include "host/judging/run_monitor.h"
#include "host/judging/settings.h"
#include "host/judging/shared_navigation.h"
#include "host/report/detail_sink.h"
#include "host/report/event_sink.h"
#include "host/report/report.h"
#include "host/report/series_sink.h"

namespace orsolva_host {

/// What came of one file.
struct FileOutcome {
  std::optional<Report> report;  ///< absent when the file could not be judged
  /// Empty when the file was processed to its end. Else why not, with the notices that explain it, line by
  /// line. A file that could be read in part has both.
  std::string error;
  bool stopped = false;       ///< cancelled before it had a report
  bool nobody_reads = false;  ///< standard output, to which its events go, has been closed
};

/// What a caller adds to the run of one file. Made, used and destroyed on the thread of that run.
class FileHooks {
 public:
  virtual ~FileHooks() = default;
  /// Notified of every epoch while the run goes on; may be null.
  virtual DetailSink* Detail() { return nullptr; }
  /// Gets every event of the analysis, perhaps on another thread than that of the run, before Finish; may be
  /// null.
  virtual EventSink* Events() { return nullptr; }
  /// The same for figures over time.
  virtual SeriesSink* Series() { return nullptr; }
  /// Called with the finished report. What it throws becomes the file's error, and the report is dropped.
  virtual void Finish(const Report& /*report*/) {}
};

struct PoolOptions {
  /// Files at the same time; 0: one per core. Where half as many files use them all, the analysis of each has
  /// a thread of its own (JudgingSettings::analysis_on_own_thread).
  unsigned threads = 0;
  bool count_bytes = false;  ///< for PoolProgress::bytes
  /// The files that each of the pool's is joined from, itself the first; empty: it stands for itself alone.
  std::vector<JoinedFiles> joined;
  /// Makes the hooks of a file; may be empty. Called on several threads; what it throws is the file's error.
  std::function<std::unique_ptr<FileHooks>(std::size_t file)> hooks;
};

struct PoolProgress {
  std::size_t files_done = 0;
  std::uint64_t epochs = 0;
  std::uint64_t bytes = 0;  ///< of the files as they lie on disk
};

class JudgingPool {
 public:
  /// Begins at once, with fewer threads when the system gives no more.
  /// @param navigation  files and folders that serve every file; empty: those next to each file
  /// @throws std::system_error when not even one thread can be started
  JudgingPool(std::vector<std::string> files, JudgingSettings settings, std::vector<std::string> navigation,
              PoolOptions options = {});
  /// Cancels what has not ended and waits for it.
  ~JudgingPool() { Cancel(); }
  JudgingPool(const JudgingPool&) = delete;
  JudgingPool& operator=(const JudgingPool&) = delete;

  std::size_t Size() const { return files_.size(); }
  /// Waits until a file is done, at most the time given. @return whether it is done
  bool Wait(std::size_t file, std::chrono::milliseconds longest);
  /// Waits until a file is done and hands its outcome over; the pool keeps nothing of it. After Cancel a file
  /// that has not begun is stopped as well.
  FileOutcome Take(std::size_t file);
  /// Ends files under way at their next epoch and begins no further ones.
  void Cancel();
  /// After Cancel: waits until no file is under way, at most the time given. @return whether none is
  bool WaitForEnd(std::chrono::milliseconds longest) { return pool_.WaitForEnd(longest); }
  PoolProgress Progress();

 private:
  void ProcessFile(std::size_t file);

  std::vector<std::string> files_;
  JudgingSettings settings_;
  SharedNavigation navigation_;
  PoolOptions options_;
  RunMonitor monitor_;
  std::vector<FileOutcome> outcomes_;
  JobPool pool_;  ///< last: its threads use what is above
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_JUDGING_POOL_H
