#include "host/judging/epoch_queue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

namespace {

using namespace orsolva_host;

/// An epoch of so many signals, whose values say where they belong.
ObservationEpoch EpochOf(std::int64_t number, std::size_t signals) {
  ObservationEpoch epoch;
  epoch.time_ns = number;
  epoch.events = static_cast<std::uint32_t>(number % 7);
  epoch.receiver_clock_offset_s = 0.5;
  epoch.satellites.push_back({{'E', 11}, 0, signals});
  epoch.signals.resize(signals);
  for (std::size_t i = 0; i < signals; ++i)
    epoch.signals[i].phase_cycles = static_cast<double>(number) * 1e6 + static_cast<double>(i);
  return epoch;
}

void ExpectEpoch(const ObservationEpoch& epoch, std::int64_t number) {
  EXPECT_EQ(epoch.time_ns, number);
  EXPECT_EQ(epoch.events, static_cast<std::uint32_t>(number % 7));
  EXPECT_EQ(epoch.receiver_clock_offset_s, 0.5);
  ASSERT_EQ(epoch.satellites.size(), 1U);
  EXPECT_TRUE((epoch.satellites[0].id == SatelliteId{'E', 11}));
  EXPECT_EQ(epoch.satellites[0].signal_count, epoch.signals.size());
  for (std::size_t i = 0; i < epoch.signals.size(); ++i)
    ASSERT_EQ(epoch.signals[i].phase_cycles, static_cast<double>(number) * 1e6 + static_cast<double>(i));
}

/// 40 KB: a block holds some fifty of them.
constexpr std::size_t kManySignals = 1000;

TEST(EpochQueue, GivesTheEpochsInTheirOrderToAnotherThread) {
  constexpr std::int64_t kEpochs = 500;
  EpochQueue queue(2);
  std::int64_t taken = 0;
  std::thread taker([&] {
    ObservationEpoch epoch;
    while (queue.Take(epoch)) ExpectEpoch(epoch, taken++);
  });
  for (std::int64_t number = 0; number < kEpochs; ++number)
    ASSERT_TRUE(queue.Put(EpochOf(number, number % 3 == 0 ? kManySignals : 0)));
  queue.Close();
  taker.join();
  EXPECT_EQ(taken, kEpochs);
}

TEST(EpochQueue, AnEpochLargerThanABlockHasOneOfItsOwn) {
  EpochQueue queue(3);
  ASSERT_TRUE(queue.Put(EpochOf(1, 1)));
  ASSERT_TRUE(queue.Put(EpochOf(2, 100 * kManySignals)));
  ASSERT_TRUE(queue.Put(EpochOf(3, 1)));
  queue.Close();
  ObservationEpoch epoch;
  for (std::int64_t number = 1; number <= 3; ++number) {
    ASSERT_TRUE(queue.Take(epoch));
    ExpectEpoch(epoch, number);
  }
  EXPECT_FALSE(queue.Take(epoch));
}

TEST(EpochQueue, ALimitSetLaterHoldsOnceWhatWaitedIsRead) {
  EpochQueue queue(8);
  constexpr std::int64_t kWaiting = 300;  // six blocks
  for (std::int64_t number = 0; number < kWaiting; ++number)
    ASSERT_TRUE(queue.Put(EpochOf(number, kManySignals)));
  queue.Limit(2);
  using namespace std::chrono_literals;
  EXPECT_FALSE(queue.WaitForRoom(0ms));
  ObservationEpoch epoch;
  std::int64_t taken = 0;
  while (taken < kWaiting) {
    ASSERT_TRUE(queue.Take(epoch));
    ExpectEpoch(epoch, taken++);
  }
  EXPECT_TRUE(queue.WaitForRoom(0ms));
  std::int64_t put = 0;  // as many as two blocks hold, then none
  while (queue.WaitForRoom(0ms) && put < kWaiting) ASSERT_TRUE(queue.Put(EpochOf(put++, kManySignals)));
  EXPECT_LT(put, 110);
  queue.Close();
  taken = 0;
  while (queue.Take(epoch)) ExpectEpoch(epoch, taken++);
  EXPECT_EQ(taken, put);
}

TEST(EpochQueue, AFullQueueWaitsForRoom) {
  // More than two blocks hold: without waiting, the epochs would be there before one is taken.
  constexpr std::int64_t kEpochs = 200;
  EpochQueue queue(2);
  std::int64_t put = 0;
  std::thread putter([&] {
    while (put < kEpochs && queue.Put(EpochOf(put, kManySignals))) ++put;
    queue.Close();
  });
  ObservationEpoch epoch;
  std::int64_t taken = 0;
  while (queue.Take(epoch)) ExpectEpoch(epoch, taken++);
  putter.join();
  EXPECT_EQ(taken, kEpochs);
}

TEST(EpochQueue, AbandonEndsBothSides) {
  EpochQueue full(2), empty(2);
  std::int64_t put = 0;
  std::thread putter([&] {
    while (full.Put(EpochOf(put, kManySignals))) ++put;
  });
  bool taken = true;
  std::thread taker([&] {
    ObservationEpoch epoch;
    taken = empty.Take(epoch);
  });
  full.Abandon();
  empty.Abandon();
  putter.join();
  taker.join();
  EXPECT_LE(put, 110);  // of 40 KB in two blocks of 2 MB
  EXPECT_FALSE(taken);
  ObservationEpoch epoch;
  EXPECT_FALSE(full.Take(epoch));
  EXPECT_TRUE(full.Abandoned());
}

}  // namespace
