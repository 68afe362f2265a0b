#include "python/src/waiting.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using Clock = std::chrono::steady_clock;

constexpr int kTick_ms = 50;
constexpr std::chrono::milliseconds kProgressEvery(100);

/// A thread and what it threw. Joined when this is destroyed.
class Worker {
 public:
  Worker(const std::function<void()>& work, orsolva_host::RunMonitor& monitor)
      : monitor_(monitor), thread_([this, &work] { Run(work); }) {}
  ~Worker() {
    monitor_.stop.store(true);
    const nb::gil_scoped_release release;
    thread_.join();
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  bool Wait(int milliseconds) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return done_; });
  }
  void Rethrow() const {
    if (thrown_) std::rethrow_exception(thrown_);
  }

 private:
  void Run(const std::function<void()>& work) {
    try {
      work();
    } catch (...) {
      thrown_ = std::current_exception();
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    done_ = true;
    changed_.notify_all();
  }

  orsolva_host::RunMonitor& monitor_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool done_ = false;
  std::exception_ptr thrown_;
  std::thread thread_;  ///< last: it uses what is above
};

void Tell(const nb::object& progress, const orsolva_host::RunMonitor& monitor) {
  progress(monitor.epochs.load(std::memory_order_relaxed));
}

}  // namespace

void WaitFor(const std::function<bool(int milliseconds)>& done, const orsolva_host::RunMonitor& monitor,
             const nb::object& progress) {
  Clock::time_point next = Clock::now() + kProgressEvery;
  for (;;) {
    bool over = false;
    {
      const nb::gil_scoped_release release;
      over = done(kTick_ms);
    }
    if (over) break;
    if (PyErr_CheckSignals() != 0) throw nb::python_error();
    if (progress.is_none() || Clock::now() < next) continue;
    Tell(progress, monitor);
    next = Clock::now() + kProgressEvery;
  }
}

void RunInterruptibly(const std::function<void()>& work, orsolva_host::RunMonitor& monitor,
                      const nb::object& progress) {
  {
    Worker worker(work, monitor);
    WaitFor([&worker](int milliseconds) { return worker.Wait(milliseconds); }, monitor, progress);
    worker.Rethrow();
  }
  if (!progress.is_none()) Tell(progress, monitor);
}

}  // namespace orsolva_python
