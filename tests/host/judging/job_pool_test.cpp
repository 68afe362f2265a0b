#include "host/judging/job_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using orsolva_host::JobPool;
using orsolva_host::ThreadsFor;

constexpr std::chrono::milliseconds kLong(600000);

TEST(JobPool, RunsEveryJobOnceForAnyNumberOfThreads) {
  constexpr std::size_t kJobs = 500;
  for (const unsigned threads : {1U, 2U, 7U}) {
    std::vector<std::atomic<int>> runs(kJobs);
    {
      JobPool pool(kJobs, threads, [&runs](std::size_t job) { ++runs[job]; });
      for (std::size_t job = 0; job < kJobs; ++job) ASSERT_TRUE(pool.Wait(job, kLong));
      EXPECT_EQ(pool.Done(), kJobs);
    }
    for (const std::atomic<int>& count : runs) EXPECT_EQ(count, 1);
  }
}

TEST(JobPool, ResultsAreTakenInTheOrderOfTheirNumbersWhicheverEndsFirst) {
  // The first job ends only when all others have.
  constexpr std::size_t kJobs = 20;
  std::atomic<std::size_t> others{0};
  std::vector<std::string> results(kJobs);
  JobPool pool(kJobs, 2, [&](std::size_t job) {
    while (job == 0 && others < kJobs - 1) std::this_thread::yield();
    results[job] = std::to_string(job);
    if (job > 0) ++others;
  });
  std::string order, wanted;
  for (std::size_t job = 0; job < kJobs; ++job) {
    ASSERT_TRUE(pool.Wait(job, kLong));
    order += results[job] + " ";
    wanted += std::to_string(job) + " ";
  }
  EXPECT_EQ(order, wanted);
}

TEST(JobPool, AnExceptionEndsItsJobAndNoOther) {
  constexpr std::size_t kJobs = 50;
  std::atomic<int> whole{0};
  JobPool pool(kJobs, 3, [&](std::size_t job) {
    if (job % 10 == 3) throw std::runtime_error("job " + std::to_string(job));
    ++whole;
  });
  for (std::size_t job = 0; job < kJobs; ++job) {
    if (job % 10 != 3) {
      EXPECT_TRUE(pool.Wait(job, kLong));
      continue;
    }
    try {
      pool.Wait(job, kLong);
      ADD_FAILURE() << job;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), "job " + std::to_string(job));
    }
  }
  EXPECT_EQ(whole, 45);
}

TEST(JobPool, HasOneJobAtMostOnEveryThreadAndUsesAllThreads) {
  constexpr unsigned kThreads = 3;
  std::mutex mutex;
  std::condition_variable changed;
  std::set<std::thread::id> at_work;
  std::size_t most = 0;
  bool doubled = false;
  JobPool pool(30, kThreads, [&](std::size_t) {
    std::unique_lock<std::mutex> lock(mutex);
    doubled = doubled || !at_work.insert(std::this_thread::get_id()).second;
    most = std::max(most, at_work.size());
    changed.notify_all();
    // Nobody goes on before all threads have met once.
    changed.wait(lock, [&] { return most == kThreads; });
    at_work.erase(std::this_thread::get_id());
  });
  for (std::size_t job = 0; job < 30; ++job) ASSERT_TRUE(pool.Wait(job, kLong));
  EXPECT_FALSE(doubled);
  EXPECT_EQ(most, kThreads);
}

TEST(JobPool, LeavesOutWhatHasNotBegunWhenStopped) {
  std::atomic<int> begun{0};
  std::atomic<bool> go{false};
  {
    JobPool pool(100, 2, [&](std::size_t) {
      ++begun;
      while (!go) std::this_thread::yield();
    });
    while (begun < 2) std::this_thread::yield();
    EXPECT_FALSE(pool.Wait(0, std::chrono::milliseconds(0)));
    pool.Stop();
    go = true;
  }
  EXPECT_EQ(begun, 2);
}

TEST(JobPool, HasAsManyThreadsAsAskedForButNoMoreThanJobsAndNeverNone) {
  EXPECT_EQ(ThreadsFor(4, 10), 4U);
  EXPECT_EQ(ThreadsFor(4, 2), 2U);
  EXPECT_EQ(ThreadsFor(4, 0), 1U);
  EXPECT_GE(ThreadsFor(0, 1000), 1U);
  EXPECT_EQ(ThreadsFor(0, 1), 1U);
}

}  // namespace
