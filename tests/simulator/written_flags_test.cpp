// What the simulator writes, plain and as CRINEX, is what a reader reads: flags, strength digits, Doppler,
// events.
#include <gtest/gtest.h>

#include <cmath>

#include "host/rinex/diagnostics.h"
#include "host/rinex/observation_reader.h"
#include "host/simulator/file_set.h"
#include "host/simulator/presets.h"
#include "host/simulator/scenario_json.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;

Scenario Flagged() {
  Scenario scenario;
  ReadScenario(
      R"({"hours": 0.25, "interval_s": 5, "seed": 7002, "observables": {"doppler": true, "strength": true},
    "receiver": {"half_cycle_s": 60, "lock_flags": {"at_slip": 0.5, "at_acquisition": 0.9, "without_slip": 0.05}},
    "faults": [{"kind": "slip", "size": 1.5, "random": 30}, {"kind": "outage", "duration_s": 30, "random": 20},
      {"kind": "power_failure", "at_s": 300, "duration_s": 10}]})",
      scenario);
  return scenario;
}

bool Same(double a, double b) { return (std::isnan(a) && std::isnan(b)) || std::fabs(a - b) < 1e-9; }

void ExpectSame(const ObservationEpoch& a, const ObservationEpoch& b) {
  ASSERT_EQ(a.time_ns, b.time_ns);
  ASSERT_EQ(a.events, b.events);
  ASSERT_EQ(a.satellites.size(), b.satellites.size());
  ASSERT_EQ(a.signals.size(), b.signals.size());
  for (std::size_t i = 0; i < a.signals.size(); ++i) {
    const SignalObservation &x = a.signals[i], &y = b.signals[i];
    ASSERT_EQ(NameOf(x.code), NameOf(y.code));
    ASSERT_EQ(x.loss_of_lock, y.loss_of_lock);
    ASSERT_EQ(x.strength_digit, y.strength_digit);
    ASSERT_TRUE(Same(x.pseudorange_m, y.pseudorange_m) && Same(x.phase_cycles, y.phase_cycles));
    ASSERT_TRUE(Same(x.doppler_hz, y.doppler_hz));
    ASSERT_NEAR(x.snr_dbhz, y.snr_dbhz, 1e-5);  // three decimals of a float
  }
}

class WrittenFlags : public ::testing::TestWithParam<bool> {};

TEST_P(WrittenFlags, AreReadAsTheyWereSimulated) {
  const orsolva_test::TestFolder folder("written_flags");
  const FileSetOptions options{folder.Path(), false, GetParam()};
  WriteFileSet(Flagged(), options, [](std::uint64_t, std::uint64_t) {});
  Diagnostics diagnostics;
  ObservationReader reader(FileNames(Flagged(), options).observations, diagnostics);
  Simulation simulation(Flagged());
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch simulated, read;
  std::size_t epochs = 0, flags = 0, events = 0;
  while (simulation.Next(*record, simulated)) {
    ASSERT_TRUE(reader.Next(*record, read));
    ExpectSame(simulated, read);
    ++epochs;
    events += read.events != 0;
    for (const SignalObservation& o : read.signals) flags += o.loss_of_lock != 0;
  }
  EXPECT_FALSE(reader.Next(*record, read));
  EXPECT_EQ(epochs, 178U);
  EXPECT_EQ(events, 1U);
  EXPECT_GT(flags, 1000U);
}

INSTANTIATE_TEST_SUITE_P(PlainAndCrinex, WrittenFlags, ::testing::Bool());

TEST(Presets, EveryPresetShowsSatellitesWithinTenEpochs) {
  for (const Preset& preset : Presets()) {
    Scenario scenario;
    ReadScenario(preset.json, scenario);
    Simulation simulation(scenario);
    auto record = std::make_unique<ObsEpoch_QC_gbt>();
    for (int i = 0; i < 10; ++i) ASSERT_TRUE(simulation.Next(*record)) << preset.name;
    EXPECT_GT(record->sat_num, 10U) << preset.name;
  }
}

}  // namespace
