// The simulator as a header for tests: records go straight to the library, no files.
#include <gtest/gtest.h>

#include <cmath>

#include "host/simulator/simulation.h"
#include "orsolva/gnssqc.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using orsolva_test::ScenarioOf;

config_qct ConfigOf(const Scenario& scenario) {
  config_qct config = {};
  std::fill(std::begin(config.enable_system), std::end(config.enable_system), 1);
  std::fill(std::begin(config.combination_system), std::end(config.combination_system), 1);
  for (auto& row : config.include_satellite) std::fill(std::begin(row), std::end(row), 1);
  for (auto& row : config.satellite_freq) std::fill(std::begin(row), std::end(row), 1);
  config.elevation = 10;
  config.interval = scenario.interval_s;
  config.auto_detect_freq = 1;
  config.enable_position = 1;
  std::copy(scenario.receiver.position_m.begin(), scenario.receiver.position_m.end(), config.position);
  return config;
}

TEST(Direct, RecordsGoStraightToTheLibraryAndItsFiguresAreTheTruth) {
  Scenario scenario = ScenarioOf(3, 30);
  Fault gap;
  gap.kind = FaultKind::kMissingEpoch;
  gap.at_s = 3600;
  gap.duration_s = 300;
  scenario.faults = {gap};
  Simulation simulation(scenario);
  const config_qct config = ConfigOf(scenario);
  unsigned long long* handle = CreatQcProcess();
  ASSERT_NE(handle, nullptr);
  ASSERT_TRUE(InitialQc(simulation.Navigation().Body(), &config, handle));
  std::vector<ObsEpoch_QC_gbt> batch;
  while (simulation.NextBatch(batch, 100) > 0) {
    ASSERT_EQ(GNSSQCPlus({static_cast<int>(batch.size()), batch.data()}, handle), GNSSQC_OK);
  }
  const auto result = std::make_unique<result_qct>();
  ASSERT_TRUE(GetAllPeriodResult(handle, result.get()));
  DiposeProcess(handle);

  const Truth& truth = simulation.TruthSoFar();
  EXPECT_EQ(result->lost_epochs, 10);
  EXPECT_EQ(truth.missing_epochs, 10U);
  // GPS: completeness is that of the truth but for satellites that graze the cut-off.
  double expected = 0, observed = 0;
  for (const SatelliteTruth& s : truth.satellites) {
    if (s.system != 'G') continue;
    expected += static_cast<double>(s.above_cutoff);
    observed += static_cast<double>(s.two_signals);
  }
  EXPECT_NEAR(result->sys[0].completeness, observed / expected, 0.002);
}

TEST(Direct, MemoryDoesNotGrowWithTheSpan) {
  Scenario scenario = ScenarioOf(24 * 31, 60, "G");
  Simulation simulation(scenario);
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  for (int i = 0; i < 5000; ++i) ASSERT_TRUE(simulation.Next(*epoch));
  EXPECT_LE(simulation.TruthSoFar().clock.size(), 5000U / 10 + 2) << "a clock moment every ten minutes";
  EXPECT_TRUE(simulation.TruthSoFar().faults.empty());
}

}  // namespace
