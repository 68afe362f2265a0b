// Any bytes as a scenario (JSON). One that is taken simulates its first epochs.
#include "host/simulator/scenario.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "fuzz/require.h"
#include "host/simulator/scenario_json.h"
#include "host/simulator/simulation.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// Orbits of days of sky cost far more than reading the text.
constexpr double kMaxHours = 0.02;

void BeginSimulation(orsolva_host::Scenario scenario) {
  scenario.hours = std::min(scenario.hours, kMaxHours);
  orsolva_host::Simulation simulation(scenario);
  const auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  for (int i = 0; i < 3 && simulation.Next(*epoch); ++i) {
    orsolva_fuzz::Require(epoch->sat_num <= 80, "at most 80 satellites");
    for (std::uint32_t k = 0; k < epoch->sat_num; ++k) {
      orsolva_fuzz::Require(epoch->sats[k].signal_num <= 8, "at most 8 signals");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orsolva_host::Scenario scenario;
  try {
    ReadScenario(std::string(data, data + size), scenario);
    CheckScenario(scenario);
    BeginSimulation(scenario);
  } catch (const orsolva_host::ScenarioError& error) {
    orsolva_fuzz::Require(*error.what() != '\0', "an error says what is wrong");
  }
  return 0;
}
