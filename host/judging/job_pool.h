// Runs numbered jobs on several threads; the caller waits for them in any order.
#ifndef ORSOLVA_JUDGING_JOB_POOL_H
#define ORSOLVA_JUDGING_JOB_POOL_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orsolva_host {

class JobPool {
 public:
  /// Begins at once, with fewer threads when the system gives no more.
  /// @param work  is called once for every number below `jobs`, from several threads. What it throws ends
  /// that job and no other.
  /// @throws std::system_error when not even one thread can be started
  JobPool(std::size_t jobs, unsigned threads, std::function<void(std::size_t)> work);
  /// Jobs that have not begun are dropped; those under way are waited for.
  ~JobPool();
  JobPool(const JobPool&) = delete;
  JobPool& operator=(const JobPool&) = delete;

  /// Waits until a job is done, at most the time given. @return whether it is done
  /// @throws what the job threw
  bool Wait(std::size_t job, std::chrono::milliseconds longest);
  /// Drops jobs that have not begun.
  void Stop() { next_.store(jobs_); }
  /// After Stop: waits until no job is under way, at most the time given. @return whether none is
  bool WaitForEnd(std::chrono::milliseconds longest);
  /// How many are done.
  std::size_t Done();

 private:
  void Work();

  std::size_t jobs_;
  std::function<void(std::size_t)> work_;
  std::atomic<std::size_t> next_{0};
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<char> done_;
  std::vector<std::exception_ptr> thrown_;
  std::size_t count_ = 0;
  unsigned working_ = 0;  ///< threads that have begun and not ended
  std::vector<std::thread> threads_;
};

/// As many threads as asked for, or one per core.
unsigned MostThreads(unsigned asked);

/// Threads of a run over so many jobs: as many as asked for, or one per core; never more than jobs, at least
/// one.
unsigned ThreadsFor(unsigned asked, std::size_t jobs);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_JOB_POOL_H
