#include "host/live/windows/step_interval.h"
#include "host/live/windows/minute_store.h"

#include <gtest/gtest.h>

namespace {

using orsolva_host::live::kSecond_ns;
using orsolva_host::live::StepInterval;

TEST(StepInterval, IsTheMostFrequentStep) {
  StepInterval interval;
  EXPECT_FALSE(interval.Seconds());
  for (int i = 0; i < 50; ++i) interval.Add((i % 5 == 0 ? 7 : 1) * kSecond_ns);
  EXPECT_EQ(interval.Seconds(), 1.0);
  interval.Add(1000);  // no step
  EXPECT_EQ(interval.Seconds(), 1.0);
}

TEST(StepInterval, FollowsAReceiverThatIsSetToAnother) {
  StepInterval interval;
  for (int i = 0; i < 5000; ++i) interval.Add(kSecond_ns);
  int steps = 0;
  while (interval.Seconds() != 30.0 && steps < 1000) {
    interval.Add(30 * kSecond_ns);
    ++steps;
  }
  EXPECT_EQ(steps, 61);
  for (int i = 0; i < 60; ++i) interval.Add(30 * kSecond_ns);
  EXPECT_EQ(interval.Seconds(), 30.0);
}

}  // namespace
