#include "host/judging/job_pool.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace orsolva_host {

JobPool::JobPool(std::size_t jobs, unsigned threads, std::function<void(std::size_t)> work)
    : jobs_(jobs), work_(std::move(work)), done_(jobs, 0), thrown_(jobs) {
  for (unsigned i = 0; i < threads; ++i) {
    try {
      threads_.emplace_back([this] { Work(); });
    } catch (const std::system_error&) {
      if (threads_.empty()) throw;
      return;  // fewer do the same work
    }
  }
}

JobPool::~JobPool() {
  Stop();
  for (std::thread& thread : threads_) thread.join();
}

void JobPool::Work() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++working_;
  }
  for (;;) {
    const std::size_t job = next_.fetch_add(1);
    if (job >= jobs_) break;
    std::exception_ptr thrown;
    try {
      work_(job);
    } catch (...) {
      thrown = std::current_exception();
    }
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      thrown_[job] = std::move(thrown);
      done_[job] = 1;
      ++count_;
    }
    changed_.notify_all();
  }
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    --working_;
  }
  changed_.notify_all();
}

bool JobPool::Wait(std::size_t job, std::chrono::milliseconds longest) {
  std::unique_lock<std::mutex> lock(mutex_);
  if (!changed_.wait_for(lock, longest, [&] { return done_[job] != 0; })) return false;
  if (thrown_[job]) std::rethrow_exception(thrown_[job]);
  return true;
}

bool JobPool::WaitForEnd(std::chrono::milliseconds longest) {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, longest, [&] { return working_ == 0; });
}

std::size_t JobPool::Done() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return count_;
}

unsigned MostThreads(unsigned asked) {
  return asked > 0 ? asked : std::max(1U, std::thread::hardware_concurrency());
}

unsigned ThreadsFor(unsigned asked, std::size_t jobs) {
  return static_cast<unsigned>(std::clamp<std::size_t>(jobs, 1, MostThreads(asked)));
}

}  // namespace orsolva_host
