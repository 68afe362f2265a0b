// The truth is counted as the data is made. Here it is counted again, from the data.
#include "host/simulator/truth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "host/simulator/truth_json.h"
#include "tests/simulator/made.h"
#include "tests/support/json_reader.h"

namespace {

using namespace orsolva_host;
using json = orsolva_test::Json;
using orsolva_test::ScenarioOf;

Scenario Troubled() {
  Scenario s = ScenarioOf(3, 30);
  s.receiver.acquisition_s = 60;
  s.receiver.reacquisition_s = 30;
  for (const FaultKind kind : {FaultKind::kOutage, FaultKind::kMissingEpoch, FaultKind::kDuplicate}) {
    Fault fault;
    fault.kind = kind;
    fault.duration_s = kind == FaultKind::kOutage ? 600 : 0;
    fault.random = 10;
    s.faults.push_back(fault);
  }
  return s;
}

struct Recount {
  std::uint64_t tracked = 0, above = 0, high = 0;
  double snr = 0, snr_above = 0, snr_low = 0, snr_high = 0;
};

TEST(Truth, CountsAndMeansAreThoseOfTheData) {
  const Scenario scenario = Troubled();
  Simulation simulation(scenario);
  std::map<std::string, Recount> signals;
  std::map<std::string, std::uint64_t> visible, above, two;
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  std::uint64_t given = 0, done = 0;
  while (simulation.Next(*epoch)) {
    ++given;
    if (simulation.NominalEpochsDone() == done) continue;  // the epoch before, once more
    const bool missed = simulation.NominalEpochsDone() > done + 1;
    done = simulation.NominalEpochsDone();
    for (const SatelliteMoment& m : simulation.Moments()) {
      const std::string name = SatelliteName(m.system, m.number);
      const double elevation = m.elevation_rad * 57.29577951308232;
      if (!missed) ++visible[name], above[name] += elevation > 10;
      const Satellite_gbt* s = orsolva_test::Find(*epoch, m.system, m.number);
      if (s && elevation > 10 && s->signal_num >= 2) ++two[name];
      for (std::uint32_t j = 0; s && j < s->signal_num; ++j) {
        Recount& r = signals[name + std::string(SignalName(s->sys, s->signals[j].code))];
        const double snr = static_cast<double>(s->signals[j].snr);
        ++r.tracked, r.snr += snr;
        if (elevation > 10) ++r.above, r.snr_above += snr;
        elevation > 30 ? (++r.high, r.snr_high += snr) : r.snr_low += snr;
      }
    }
  }
  const Truth& truth = simulation.TruthSoFar();
  EXPECT_EQ(truth.delivered_epochs, given);
  EXPECT_EQ(truth.nominal_epochs, 360U);
  EXPECT_EQ(truth.missing_epochs, 10U);
  int checked = 0;
  for (const SatelliteTruth& s : truth.satellites) {
    const std::string name = SatelliteName(s.system, s.number);
    EXPECT_GE(s.visible, visible[name]) << "epochs that are missing are visible too";
    EXPECT_LE(s.visible, visible[name] + 20);
    EXPECT_GE(s.above_cutoff, above[name]);
    EXPECT_EQ(s.two_signals, two[name]) << name;
    for (const SignalTruth& t : s.signals) {
      const Recount& r = signals[name + t.name];
      EXPECT_EQ(t.tracked, r.tracked) << name << t.name;
      EXPECT_EQ(t.above_cutoff, r.above);
      EXPECT_EQ(t.snr.count, r.tracked);
      EXPECT_EQ(t.snr_above30.count, r.high);
      EXPECT_EQ(t.snr_below30.count, r.tracked - r.high);
      EXPECT_NEAR(t.snr.sum, r.snr, 1e-6);
      EXPECT_NEAR(t.snr_above_cutoff.sum, r.snr_above, 1e-6);
      EXPECT_NEAR(t.snr_above30.sum, r.snr_high, 1e-6);
      EXPECT_NEAR(t.snr_below30.sum, r.snr_low, 1e-6);
      checked += r.above > 0;
    }
  }
  EXPECT_GT(checked, 150);
}

TEST(Truth, MultipathAndNoiseHaveTheRootMeanSquareOfTheirModels) {
  Scenario scenario = ScenarioOf(6, 10, "J");  // high for hours
  scenario.errors.code_noise_m = {0.3, 0.3};
  scenario.errors.multipath_m = {0.8, 0.8};
  Simulation simulation(scenario);
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  while (simulation.Next(*epoch)) {
  }
  int checked = 0;
  for (const SatelliteTruth& s : simulation.TruthSoFar().satellites) {
    for (const SignalTruth& t : s.signals) {
      if (t.above_cutoff < 2000) continue;
      EXPECT_NEAR(std::sqrt(t.noise_square.Mean()), 0.3, 0.02);
      EXPECT_NEAR(std::sqrt(t.multipath_square.Mean()), 0.8 / std::sqrt(2.0), 0.02) << "of a sine";
      EXPECT_NEAR(t.code_error_square.Mean(), 0.09 + 0.32, 0.03) << "they are independent";
      ++checked;
    }
  }
  EXPECT_GE(checked, 6);
}

TEST(Truth, TheMovingMeanTakesItsShareOfWhiteNoise) {
  // Of white noise, a value less the mean of n with it keeps the share 1 - 1/n of the variance.
  Scenario scenario = ScenarioOf(6, 30, "J");
  scenario.errors.code_noise_m = {0.5, 0.5};
  scenario.errors.multipath_m = {0, 0};
  Fault jump;
  jump.kind = FaultKind::kCodeJump;
  jump.at_s = 3600;
  jump.size = 1000;
  scenario.faults = {jump};
  Simulation simulation(scenario);
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  while (simulation.Next(*epoch)) {
  }
  EXPECT_EQ(simulation.TruthSoFar().mean_window, 10);
  for (const SatelliteTruth& s : simulation.TruthSoFar().satellites) {
    for (const SignalTruth& t : s.signals) {
      if (t.above_cutoff < 700) continue;
      EXPECT_NEAR(t.detrended_square.Mean(), 0.25 * 0.9, 0.04) << "a code jump restarts the mean";
      EXPECT_GT(t.code_error_square.Mean(), 1e5);
    }
  }
}

TEST(TruthJson, HasEveryKeyOfItsPage) {
  Simulation simulation(Troubled());
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  while (simulation.Next(*epoch)) {
  }
  const json j = json::parse(TruthJson(simulation.Settings(), simulation.TruthSoFar()));
  const auto keys = [](const json& object) {
    std::set<std::string> names;
    for (const auto& [key, value] : object.items()) names.insert(key);
    return names;
  };
  using Keys = std::set<std::string>;
  EXPECT_EQ(keys(j), (Keys{"format", "scenario", "seed", "systems", "interval_s", "cutoff_deg",
                           "moving_mean_epochs", "first_epoch_gpst", "last_epoch_gpst", "nominal_epochs",
                           "delivered_epochs", "missing_epochs", "receiver", "faults", "satellites"}));
  EXPECT_EQ(keys(j["receiver"]), (Keys{"track", "header_position_ecef_m", "clock"}));
  EXPECT_EQ(keys(j["receiver"]["track"][0]), (Keys{"time_gpst", "position_ecef_m"}));
  EXPECT_EQ(keys(j["receiver"]["clock"][0]), (Keys{"time_gpst", "bias_s"}));
  EXPECT_EQ(keys(j["faults"][0]), (Keys{"kind", "satellite", "signal", "time_gpst", "duration_s", "size",
                                        "elevation_deg", "shows_in_the_data"}));
  EXPECT_EQ(keys(j["satellites"][0]), (Keys{"satellite", "healthy", "visible_epochs", "above_cutoff_epochs",
                                            "two_signals_epochs", "signals"}));
  EXPECT_EQ(keys(j["satellites"][0]["signals"][0]),
            (Keys{"signal", "tracked_epochs", "above_cutoff_epochs", "above_30deg_epochs", "arcs",
                  "code_noise_rms_m", "multipath_rms_m", "code_error_rms_m",
                  "code_error_less_moving_mean_rms_m", "snr_mean_dbhz", "snr_mean_above_cutoff_dbhz",
                  "snr_mean_below_30deg_dbhz", "snr_mean_above_30deg_dbhz"}));
}

TEST(TruthJson, AFigureWithoutDataIsNull) {
  Scenario scenario = ScenarioOf(0.1, 30, "G");
  Simulation simulation(scenario);
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  while (simulation.Next(*epoch)) {
  }
  const json j = json::parse(TruthJson(scenario, simulation.TruthSoFar()));
  int absent = 0;
  for (const json& satellite : j["satellites"]) {
    const json& signal = satellite["signals"][0];
    if (signal["tracked_epochs"] != 0) continue;
    ++absent;
    EXPECT_TRUE(signal["snr_mean_dbhz"].is_null());
    EXPECT_TRUE(signal["multipath_rms_m"].is_null());
  }
  EXPECT_GT(absent, 10);
}

}  // namespace
