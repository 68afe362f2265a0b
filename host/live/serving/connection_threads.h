// A fixed number of threads for connections.
#ifndef ORSOLVA_LIVE_SERVING_CONNECTION_THREADS_H
#define ORSOLVA_LIVE_SERVING_CONNECTION_THREADS_H

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orsolva_host::live {

/// Runs jobs on its threads. While all of them are busy Run() waits, so that no queue grows: further clients
/// stay with the operating system, which refuses them when it has enough.
class ConnectionThreads {
 public:
  explicit ConnectionThreads(std::size_t threads);
  ~ConnectionThreads();
  ConnectionThreads(const ConnectionThreads&) = delete;
  ConnectionThreads& operator=(const ConnectionThreads&) = delete;

  void Run(std::function<void()> job);
  /// Ends the waiting of Run(): jobs given from now on run as threads come free.
  void StopWaiting();
  /// Returns when every job has run.
  void Join();

 private:
  void Work();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> jobs_;
  std::size_t idle_ = 0;
  bool stop_waiting_ = false;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_CONNECTION_THREADS_H
