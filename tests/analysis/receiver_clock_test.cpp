#include "host/analysis/slips/receiver_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace orsolva_host::analysis {
namespace {

class ReceiverClock : public testing::Test {
 protected:
  std::vector<ClockSample> Samples(const std::vector<double>& metres) {
    std::vector<ClockSample> samples;
    offsets_.resize(metres.size());
    for (std::size_t i = 0; i < metres.size(); ++i) {
      const double azimuth = 1.1 * static_cast<double>(i), up = 0.3 + 0.08 * static_cast<double>(i);
      const double flat = std::sqrt(1 - up * up);
      samples.push_back(
          {metres[i], 1, {flat * std::cos(azimuth), flat * std::sin(azimuth), up}, &offsets_[i]});
    }
    return samples;
  }

 private:
  std::vector<ClockOffsets> offsets_ = std::vector<ClockOffsets>(16);
};

TEST_F(ReceiverClock, IsTheMeanAndASlippedSatelliteDoesNotPull) {
  auto samples = Samples({7.001, 6.999, 7.002, 6.998, 7.0, 7.19});
  const auto change = SolveClock(samples);
  ASSERT_TRUE(change);
  EXPECT_NEAR(change->metres, 7.0, 0.001);
  EXPECT_FALSE(change->moved);
}

TEST_F(ReceiverClock, OffsetsOfSatelliteClocksAreLearned) {
  for (int i = 0; i < 20; ++i) {
    auto samples = Samples({1.02, 0.99, 1.0, 1.0, 0.99});
    ASSERT_TRUE(SolveClock(samples));
  }
  auto samples = Samples({5.02, 4.99});
  EXPECT_FALSE(SolveClock(samples)) << "two satellites are too few";
  samples = Samples({5.02, 4.99, 5.0, 5.0, 4.99});
  EXPECT_NEAR(SolveClock(samples)->metres, 5.0, 0.003);
}

TEST_F(ReceiverClock, OffsetsGrowWithTheLengthOfTheStep) {
  for (int i = 0; i < 20; ++i) {
    auto samples = Samples({1.02, 0.99, 1.0, 1.0, 0.99});
    for (ClockSample& s : samples) s.dt_s = 30;
    ASSERT_TRUE(SolveClock(samples));
  }
  auto samples = Samples({1.24, 0.88, 1.0, 1.0, 0.88});
  for (ClockSample& s : samples) s.dt_s = 360;
  ASSERT_TRUE(SolveClock(samples));
  EXPECT_NEAR(samples[0].offset_m, 0.24, 0.001) << "twelve times what it is in 30 s";
}

TEST_F(ReceiverClock, WhatAllSatellitesDriftByIsTheReceivers) {
  // A satellite alone wanders first; the others follow later by as much.
  for (int i = 0; i < 40; ++i) {
    auto samples = Samples({0.01, 0, 0, 0, 0});
    ASSERT_TRUE(SolveClock(samples));
  }
  double clock_m = 0;
  for (int i = 0; i < 40; ++i) {
    auto samples = Samples({0.01, 0.01, 0.01, 0.01, 0.01});
    const auto change = SolveClock(samples);
    ASSERT_TRUE(change);
    clock_m = change->metres;
  }
  EXPECT_NEAR(clock_m, 0.01, 1e-6);
}

TEST_F(ReceiverClock, ASlipOfASatelliteThatRisesMovesNoStepAfterIt) {
  for (int step = 0; step < 10; ++step) {
    auto samples = Samples({0, 0, 0, 0, step == 0 ? 20.0 : 0});
    const auto change = SolveClock(samples);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->metres, 0) << step;
    EXPECT_EQ(samples[4].offset_m, 0) << step;
  }
}

TEST_F(ReceiverClock, ADriftOfOneSatelliteIsNotSharedOutAmongTheOthers) {
  for (int step = 0; step < 40; ++step) {
    auto samples = Samples({0, 0, 0, 0, 0, 0.15});
    const auto change = SolveClock(samples);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->metres, 0) << step;
  }
}

TEST_F(ReceiverClock, AnOffsetCountsFromFiveSteps) {
  for (int step = 0; step < 7; ++step) {
    auto samples = Samples({0, 0, 0, 0, 0, 0.1});
    ASSERT_TRUE(SolveClock(samples));
    EXPECT_EQ(samples[5].offset_m, step < 5 ? 0 : 0.1) << step;
  }
}

TEST(ClockOffsets, ADroppedStepIsForgotten) {
  ClockOffsets offsets;
  for (int epoch = 1; epoch <= 26; ++epoch) offsets.Push(epoch, epoch);
  EXPECT_EQ(offsets.Rate(), 16.5) << "7 to 26";
  offsets.Drop(26);
  EXPECT_EQ(offsets.Rate(), 16);
  offsets.Drop(7);
  EXPECT_EQ(offsets.Rate(), 16.5);
  offsets.Drop(26), offsets.Drop(6), offsets.Drop(27);
  EXPECT_EQ(offsets.Rate(), 16.5) << "gone, left and not seen yet";
}

TEST(ClockOffsets, WhatIsNoDriftTakesThePlaceOfOldSteps) {
  ClockOffsets offsets;
  for (int epoch = 0; epoch < 20; ++epoch) offsets.Push(epoch, 1);
  for (int epoch = 20; epoch < 35; ++epoch) offsets.Push(epoch, std::nan(""));
  EXPECT_EQ(offsets.Rate(), 1);
  offsets.Push(35, std::nan(""));
  EXPECT_TRUE(std::isnan(offsets.Rate()));
}

TEST_F(ReceiverClock, IsThatOfTheLargestClusterWhereManySatellitesSlipTogether) {
  auto samples = Samples({3.000, 3.001, 2.999, 3.002, 3.242, 3.245, 2.758, 2.76, 3.6});
  const auto change = SolveClock(samples);
  ASSERT_TRUE(change);
  EXPECT_NEAR(change->metres, 3.0005, 0.002);
}

TEST_F(ReceiverClock, IsUnknownWhereTwoClustersAreAlike) {
  auto samples = Samples({3.000, 3.242, 3.001, 3.245, 2.999, 3.24, 3.002, 3.241, 2.7});
  EXPECT_FALSE(SolveClock(samples));
}

TEST_F(ReceiverClock, IsUnknownWhereSatellitesDisagree) {
  auto samples = Samples({0, 5, -7, 12});
  EXPECT_FALSE(SolveClock(samples));
}

TEST_F(ReceiverClock, AMovedAntennaIsSolvedWithTheClock) {
  const Vector3 shift = {0.8, -0.5, 0.3};
  auto samples = Samples(std::vector<double>(9, 0.0));
  for (ClockSample& s : samples) {
    s.metres = 2.5;
    for (std::size_t i = 0; i < 3; ++i) s.metres -= s.line_of_sight[i] * shift[i];
  }
  const auto change = SolveClock(samples);
  ASSERT_TRUE(change && change->moved);
  EXPECT_NEAR(change->metres, 2.5, 1e-6);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(change->shift_m[i], shift[i], 1e-6);
  EXPECT_NEAR(change->shift_doubt_m, 0.003, 1e-9);  // 3 times the least spread over the root of nine
}

}  // namespace
}  // namespace orsolva_host::analysis
