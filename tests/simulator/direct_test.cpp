// The simulator as a header for tests: records go straight to the library, no files.
#include <gtest/gtest.h>

#include <cmath>

#include "host/simulator/simulation.h"
#include "orsolva/session.hpp"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using orsolva_test::ScenarioOf;

orsolva::Config ConfigOf(const Scenario& scenario) {
  orsolva::Config config;
  config.interval_s = scenario.interval_s;
  config.position_m = scenario.receiver.position_m;
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
  orsolva::Session session;
  ASSERT_TRUE(session.Start(ConfigOf(scenario), simulation.Navigation().Body()));
  std::vector<ObsEpoch_QC_gbt> batch;
  while (simulation.NextBatch(batch, 100) > 0) ASSERT_TRUE(session.Feed(batch));
  const auto result = session.Result();
  ASSERT_TRUE(result);

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
