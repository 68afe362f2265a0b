#include "qc/process.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/unit/qc/process_runs.h"

namespace {

using namespace orsolva;
using namespace orsolva_test;

TEST(Configure, AnExcludedSatelliteIsUnusableForTheWholeRun) {
  config_qct host = sky::Config();
  host.include_satellite[0][3] = 0;
  const auto process = Process(host);
  EXPECT_EQ(process->SatUsable[3], 0);
  EXPECT_EQ(process->SatUsable[2], 1);
  EXPECT_EQ(Process(sky::Config())->SatUsable[3], 1);
}

TEST(Configure, NumbersWithoutASatelliteAreSkipped) {
  config_qct host = sky::Config();
  for (auto& row : host.include_satellite) {
    for (std::int32_t& flag : row) flag = 0;
  }
  const auto process = Process(host);
  for (int number = 1; number <= 208; ++number) {
    const bool has_key = number <= 168 || (number >= 192 && number <= 201);
    EXPECT_EQ(process->SatUsable[number - 1], has_key ? 0 : 1) << number;
  }
}

TEST(Configure, BuildsTheMaskOfEnabledSystems) {
  config_qct host = sky::Config();
  host.enable_system[2] = 0;
  EXPECT_EQ(Process(host)->Config.SystemMask, 27U);
}

TEST(Configure, ACutoffThatIsNotPositiveBecomesTheLeast) {
  PostProcessGnssQc& process = *Process(sky::Config()).release();
  const std::unique_ptr<PostProcessGnssQc> owner(&process);
  QcConfig config;
  config.ElevationMask = 0.0;
  process.Configure(config);
  EXPECT_EQ(process.Config.ElevationMask, 0.0001);
  config.ElevationMask = -1.0;
  process.Configure(config);
  EXPECT_EQ(process.Config.ElevationMask, 0.0001);
}

TEST(Configure, ThePositionIsKnownWhenTheHostGivesIt) {
  const auto process = Process(sky::Config());
  EXPECT_EQ(process->Config.EnablePosition, 1);
  EXPECT_EQ(process->Position[1], sky::kStation[1]);
}

TEST(Configure, TheCombinationMaskFollowsTheFlagsAndLeavesTheSystemMask) {
  config_qct host = sky::Config();
  host.combination_system[1] = host.combination_system[4] = 0;
  const auto process = Process(host);
  EXPECT_EQ(process->CombinationMask, 1U + 4U + 8U);
  EXPECT_EQ(process->Config.SystemMask, 31U);
  EXPECT_EQ(std::make_unique<PostProcessGnssQc>()->CombinationMask, 31U);
}

TEST(Configure, ASecondTimeReplacesTheConfigurationAndKeepsTheMarks) {
  config_qct host = sky::Config();
  host.include_satellite[0][3] = 0;
  const auto process = Process(host);
  QcConfig second;
  second.ApplyDefaults();
  config_qct again = Config(5.0);
  again.include_satellite[0][6] = 0;
  second.Overlay(again);
  process->Configure(second);
  EXPECT_EQ(process->SatUsable[3], 0);
  EXPECT_EQ(process->SatUsable[6], 0);
  EXPECT_EQ(process->Config.Interval, 5.0);
}

}  // namespace
