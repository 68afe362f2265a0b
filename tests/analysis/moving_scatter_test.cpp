#include "host/analysis/figures/moving_scatter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "host/analysis/figures/log_histogram.h"
#include "host/analysis/figures/scatter.h"
#include "host/analysis/figures/step_outcome.h"
#include "tests/analysis/made_track.h"
#include "tests/analysis/normal_noise.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kCutoff_deg = 10;

/// A series of values every few seconds.
ScatterByElevation SeriesOf(int values, double interval_s, const std::function<double(double)>& value_at,
                            double elevation_deg = 45) {
  MovingScatter moving;
  ScatterByElevation sums;
  JudgedBlocks blocks;
  for (int k = 0; k < values; ++k) {
    const double t = k * interval_s;
    moving.Add(kMadeStart_ns + static_cast<std::int64_t>(t * 1e9), value_at(t), elevation_deg,
               IsUp(elevation_deg, kCutoff_deg), sums, blocks);
  }
  moving.End(sums, blocks);
  return sums;
}

// 30,000 values: the standard deviation of a scatter is 1 / sqrt(60,000) of it, 0.4 %.
TEST(MovingScatter, OfWhiteNoiseIsItsDeviationAtAnyInterval) {
  for (const double interval : {1.0, 15.0, 30.0, 60.0}) {
    NormalNoise noise(17);
    const auto sums = SeriesOf(30000, interval, [&](double) { return 12.6 + 0.25 * noise(); });
    EXPECT_NEAR(*sums.Rms(1), 0.25, 0.25 * 0.015) << interval;
    EXPECT_EQ(sums.Values(), 30000U);
  }
}

// At 30 s the mean of 21 values of a period of ten is 1 / 21 of the value in the middle.
TEST(MovingScatter, OfAQuickSinusoidIsItsRms) {
  const auto sums = SeriesOf(5000, 30, [](double t) { return 0.5 * std::sin(2 * kPi * t / 300 + 0.3); });
  EXPECT_NEAR(*sums.Rms(1), 0.5 / std::sqrt(2) * (20.0 / 21) * std::sqrt(21.0 / 20), 0.003);
}

TEST(MovingScatter, OfASlowSinusoidLeavesWhatTheWindowLetsThrough) {
  for (const double period : {1800.0, 10800.0}) {
    const auto sums = SeriesOf(200000, 30, [&](double t) { return std::sin(2 * kPi * t / period); });
    const double x = kPi * 30 / period;
    const double left = 1 - std::sin(21 * x) / (21 * std::sin(x));
    EXPECT_NEAR(*sums.Rms(1), left / std::sqrt(2) * std::sqrt(21.0 / 20), 0.02 * left + 0.001) << period;
  }
}

// Ten values at each end are up to ten steps from the middle of their window: the squares of 1 to 10 add up
// to 385.
TEST(MovingScatter, ATrendLeavesNothingButAtTheEnds) {
  const double step = 0.03;
  const auto sums = SeriesOf(20000, 30, [&](double t) { return step * t / 30; });
  EXPECT_NEAR(*sums.Rms(1), std::sqrt(2 * 385 * step * step * 21 / 20 / 20000), 1e-9);
}

TEST(MovingScatter, ASeriesShorterThanTheWindowLeavesNothing) {
  const auto steady = [](double) { return 1.0; };
  EXPECT_FALSE(SeriesOf(20, 30, steady).Rms(1));
  EXPECT_EQ(SeriesOf(21, 30, steady).Values(), 21U);
  EXPECT_EQ(*SeriesOf(21, 30, steady).Rms(1), 0.0);
}

TEST(MovingScatter, HolesAreTime) {
  NormalNoise noise(4);
  MovingScatter moving;
  ScatterByElevation sums;
  JudgedBlocks blocks;
  for (int k = 0; k < 4000; ++k) {
    if (k % 100 < 15) continue;
    moving.Add(kMadeStart_ns + k * MovingScatter::kBlock_ns, noise(), 45, true, sums, blocks);
  }
  EXPECT_TRUE(moving.End(sums, blocks));
  EXPECT_NEAR(*sums.Rms(1), 1, 0.05);
}

TEST(MovingScatter, EveryBlockFromTheCutOffUpIsJudgedOnceWithItsTime) {
  MovingScatter moving;
  ScatterByElevation sums;
  JudgedBlocks blocks;
  blocks.Keep();
  std::vector<std::int64_t> times;
  for (int k = 0; k < 200; ++k) {
    if (k % 10 == 3) continue;
    const bool up = k < 150;
    const std::int64_t time_ns = kMadeStart_ns + k * MovingScatter::kBlock_ns;
    moving.Add(time_ns, k % 2, 45, up, sums, blocks);
    if (up) times.push_back(time_ns / MovingScatter::kBlock_ns * MovingScatter::kBlock_ns);
  }
  EXPECT_TRUE(moving.End(sums, blocks));
  std::vector<std::int64_t> judged;
  for (const JudgedBlock& block : blocks.Take()) judged.push_back(block.time_ns);
  EXPECT_EQ(judged, times);
}

TEST(MovingScatter, CountsByElevationAndFromTheCutOffUp) {
  const auto zero = [](double t) { return t > 0 ? 0.0 : 0.0; };
  ScatterByElevation sums = SeriesOf(100, 30, zero, 9.9);
  EXPECT_EQ(sums.Values(), 0U);
  sums.Add(SeriesOf(60, 30, zero, 10));
  sums.Add(SeriesOf(30, 30, zero, 90));
  sums.Add(SeriesOf(25, 30, zero, kAbsent));
  const auto bins = sums.Bins(30);
  ASSERT_EQ(bins.size(), 3U);
  EXPECT_EQ(bins[0].values, 100U);
  EXPECT_EQ(bins[1].from_deg, 10);
  EXPECT_EQ(bins[2].to_deg, 90);
  EXPECT_EQ(sums.Values(), 115U);
  EXPECT_EQ(sums.Bins(31).size(), 2U);
}

TEST(PooledScatter, HoldsEachArcAgainstItsOwnMean) {
  PooledScatter pooled;
  Scatter first, second, lone;
  for (const double x : {1.0, 3.0}) first.Add(x);
  for (const double x : {1e6, 1e6 + 1, 1e6 + 2}) second.Add(x);
  lone.Add(5);
  pooled.Add(first);
  pooled.Add(second);
  pooled.Add(lone);
  EXPECT_DOUBLE_EQ(*pooled.Deviation(5), std::sqrt((2.0 + 2.0) / (1 + 2)));
  EXPECT_FALSE(pooled.Deviation(6));
}

TEST(LogHistogram, QuantilesAreWithinOnePercent) {
  LogHistogram<-10, 10> histogram;
  for (int k = 1; k <= 100000; ++k) histogram.Add(1e-5 * k);  // uniform
  EXPECT_NEAR(*histogram.Quantile(0.5), 0.5, 0.005);
  EXPECT_NEAR(*histogram.Quantile(0.95), 0.95, 0.0095);
  NormalNoise noise(3);
  LogHistogram<-10, 10> normal;
  for (int k = 0; k < 100000; ++k) normal.Add(std::fabs(0.37 * noise()));
  EXPECT_NEAR(1.4826 * *normal.Quantile(0.5), 0.37, 0.37 * 0.01);
}

TEST(LogHistogram, WithoutValuesOrBelowItsRangeThereIsNoQuantile) {
  LogHistogram<-4, 4> histogram;
  EXPECT_FALSE(histogram.Quantile(0.5));
  for (int k = 0; k < 9; ++k) histogram.Add(0);
  histogram.Add(1);
  EXPECT_FALSE(histogram.Quantile(0.5));
  EXPECT_NEAR(*histogram.Quantile(0.95), 1, 0.13);
  histogram.Add(1e30);
  EXPECT_EQ(histogram.Count(), 11U);
}

}  // namespace
}  // namespace orsolva_host::analysis
