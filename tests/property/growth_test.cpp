// Work and memory go with the epochs fed, whatever their times and the interval say.
//
// Work is measured by counting allocations and their bytes, never by a clock; the loops that absurd
// times would make run for hours are caught by the time limit of the test runner.
#include <gtest/gtest.h>

#include <limits>

#include "tests/property/failing_memory.h"
#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {
namespace {

TEST(Growth, LiveFeedAllocatesNoMoreInItsLastHourThanInItsFirst) {
  SkyOptions options;
  options.Interval = 30.0;
  options.Epochs = 960;
  const SimulatedSky sky(options);
  Process process;
  ASSERT_TRUE(process.Initialise(sky.Navigation, sky.Config()));
  const auto feed = [&](int from, int to) {
    const unsigned long long before = FailingMemory::bytes;
    for (int k = from; k < to; ++k) EXPECT_EQ(process.Feed(sky.Epochs.data() + k, 1), GNSSQC_OK);
    return static_cast<double>(FailingMemory::bytes - before);
  };
  feed(0, 120);
  const double early = feed(120, 240);
  feed(240, 840);
  const double late = feed(840, 960);
  // Lists that double now and then move some bytes from one hour to another.
  EXPECT_LT(late, 1.5 * early + 2e6);
}

struct AbsurdCase {
  const char* Name;
  double Interval;
  std::int64_t Jump;  // s, between the two halves of the epochs
};

class AbsurdTimes : public testing::TestWithParam<AbsurdCase> {};

/// Bytes allocated by one run of `sky` that is fed whole, and by one that is fed epoch by epoch.
unsigned long long BytesOfBothFeeds(const SimulatedSky& sky, const config_qct& config,
                                    double completeness[2]) {
  const unsigned long long before = FailingMemory::bytes;
  Process one, many;
  EXPECT_TRUE(one.Initialise(sky.Navigation, config));
  EXPECT_TRUE(many.Initialise(sky.Navigation, config));
  one.Feed(sky.Epochs);
  for (const ObsEpoch_QC_gbt& epoch : sky.Epochs) many.Feed(&epoch, 1);
  const Results results(one), others(many);
  completeness[0] = results.Whole->total.completeness;
  completeness[1] = others.Whole->total.completeness;
  return FailingMemory::bytes - before;
}

TEST_P(AbsurdTimes, AllocateNoMoreThanTwiceWhatAnOrdinaryRunDoes) {
  SkyOptions options;
  options.Epochs = 40;
  double completeness[2];
  const SimulatedSky ordinary(options);
  const unsigned long long usual = BytesOfBothFeeds(ordinary, ordinary.Config(), completeness);
  SimulatedSky sky(options);
  for (std::size_t k = 20; k < sky.Epochs.size(); ++k) {
    sky.Epochs[k].time.time = static_cast<std::int64_t>(static_cast<std::uint64_t>(sky.Epochs[k].time.time) +
                                                        static_cast<std::uint64_t>(GetParam().Jump));
  }
  config_qct config = sky.Config();
  config.interval = GetParam().Interval;
  const unsigned long long bytes = BytesOfBothFeeds(sky, config, completeness);
  EXPECT_LE(bytes, 2 * usual);
  EXPECT_GE(completeness[0], 0.0);
  EXPECT_GE(completeness[1], 0.0);
}

INSTANTIATE_TEST_SUITE_P(
    Growth, AbsurdTimes,
    testing::Values(AbsurdCase{"TinyInterval", 1e-9, 0}, AbsurdCase{"HourAtTinyInterval", 1e-9, 3600},
                    AbsurdCase{"CenturyJump", 30.0, 3155760000},
                    AbsurdCase{"CenturyJumpAtTinyInterval", 1e-6, 3155760000},
                    AbsurdCase{"JumpBack", 30.0, -3155760000}, AbsurdCase{"HugeInterval", 1e300, 0},
                    AbsurdCase{"InfiniteInterval", std::numeric_limits<double>::infinity(), 0},
                    AbsurdCase{"NanInterval", std::numeric_limits<double>::quiet_NaN(), 0},
                    AbsurdCase{"EndOfTime", 30.0, std::numeric_limits<std::int64_t>::max() - 1593100000}),
    [](const auto& tested) { return tested.param.Name; });

}  // namespace
}  // namespace orsolva_test
