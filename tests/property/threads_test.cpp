// Handles are independent: threads with a handle each get what one thread gets.
#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {
namespace {

TEST(Threads, MirroredHandlesInEightThreadsGiveTheSameBits) {
  SkyOptions options;
  options.Epochs = 60;
  const SimulatedSky sky(options);
  const config_qct given = sky.Config();
  config_qct computed = given;
  computed.enable_position = 0;  // positioning runs in the threads as well

  constexpr int kThreads = 8;
  std::vector<std::unique_ptr<Results>> results(kThreads + 1);
  const auto run = [&](int k) {
    Process process;
    if (!process.Initialise(sky.Navigation, computed)) return;
    for (int at = 0; at < options.Epochs; at += 10) process.Feed(sky.Epochs.data() + at, 10);
    results[static_cast<std::size_t>(k)] = std::make_unique<Results>(process);
  };
  run(kThreads);
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k) threads.emplace_back(run, k);
  for (std::thread& thread : threads) thread.join();

  ASSERT_NE(results[kThreads], nullptr);
  EXPECT_TRUE(results[kThreads]->Plausible);
  for (int k = 0; k < kThreads; ++k) {
    ASSERT_NE(results[k], nullptr);
    EXPECT_TRUE(results[k]->SameBits(*results[kThreads])) << "thread " << k;
  }
}

}  // namespace
}  // namespace orsolva_test
