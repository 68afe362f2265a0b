#include "host/live/serving/connection_threads.h"

#include <utility>

namespace orsolva_host::live {

ConnectionThreads::ConnectionThreads(std::size_t threads) {
  for (std::size_t i = 0; i < threads; ++i) threads_.emplace_back([this] { Work(); });
}

ConnectionThreads::~ConnectionThreads() { Join(); }

void ConnectionThreads::Run(std::function<void()> job) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    jobs_.push_back(std::move(job));
  }
  changed_.notify_one();
}

void ConnectionThreads::Join() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
  threads_.clear();
}

void ConnectionThreads::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return !jobs_.empty() || ending_; });
    if (jobs_.empty()) return;
    const std::function<void()> job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job();
    lock.lock();
  }
}

}  // namespace orsolva_host::live
