// A fixed number of threads for the requests of clients.
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

/// Runs jobs on its threads, in their order. Who gives them limits their number: a client has one at a time.
class ConnectionThreads {
 public:
  explicit ConnectionThreads(std::size_t threads);
  ~ConnectionThreads();
  ConnectionThreads(const ConnectionThreads&) = delete;
  ConnectionThreads& operator=(const ConnectionThreads&) = delete;

  void Run(std::function<void()> job);
  /// Returns when every job has run.
  void Join();

 private:
  void Work();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> jobs_;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_CONNECTION_THREADS_H
