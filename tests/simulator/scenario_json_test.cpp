// Scenario files: every key arrives, every mistake is named with its key, what was found and what is
// expected.
#include "host/simulator/scenario_json.h"

#include <gtest/gtest.h>

#include "host/simulator/fault_kinds.h"
#include "host/simulator/presets.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;

std::string WrongOf(const std::string& text) {
  try {
    Scenario scenario;
    ReadScenario(text, scenario);
    CheckScenario(scenario);
  } catch (const ScenarioError& error) {
    return error.what();
  }
  return "";
}

TEST(ScenarioJson, AnEmptyObjectLeavesTheDefaults) {
  Scenario scenario;
  ReadScenario("{}", scenario);
  EXPECT_EQ(scenario.interval_s, 30);
  EXPECT_EQ(scenario.hours, 24);
  EXPECT_EQ(scenario.systems, "GREJC");
  EXPECT_TRUE(scenario.faults.empty());
}

TEST(ScenarioJson, EveryKeyOfTheScenarioArrives) {
  Scenario s;
  ReadScenario(R"({"name": "n", "station": "ABCD00XYZ", "seed": 18446744073709551615, "systems": "GE",
    "start": "2023-12-31 06:30:15", "hours": 2.5, "interval_s": 0.1, "truth_cutoff_deg": 15,
    "cadence": {"gps_s": 3600, "glonass_s": 1800, "bds_s": 7200, "galileo_s": 600, "qzss_s": 7200},
    "signals": {"G": ["1C", "5Q"], "C3G": ["2I"]}})",
               s);
  EXPECT_NO_THROW(CheckScenario(s));
  EXPECT_EQ(s.name, "n");
  EXPECT_EQ(s.station, "ABCD00XYZ");
  EXPECT_EQ(s.seed, 18446744073709551615ULL);
  EXPECT_EQ(s.systems, "GE");
  EXPECT_EQ(s.start.time, 1704004215);
  EXPECT_EQ(s.hours, 2.5);
  EXPECT_EQ(s.interval_s, 0.1);
  EXPECT_EQ(s.truth_cutoff_deg, 15);
  EXPECT_EQ(s.cadence.gps_s, 3600);
  EXPECT_EQ(s.cadence.bds_s, 7200);
  EXPECT_EQ(s.cadence.galileo_s, 600);
  EXPECT_EQ(s.cadence.qzss_s, 7200);
  EXPECT_EQ(SignalsOf(s, 'G', 1), (std::vector<std::string>{"1C", "5Q"}));
  EXPECT_EQ(SignalsOf(s, 'C', 60), (std::vector<std::string>{"2I"}));
  EXPECT_EQ(SignalsOf(s, 'C', 30).size(), 5U);
}

TEST(ScenarioJson, EveryKeyOfTheReceiverArrives) {
  Scenario s;
  ReadScenario(R"({"receiver": {"position_m": [6378137, 1, 2], "cutoff_deg": 3, "clock_bias_s": 1e-3,
    "clock_drift": -1e-8, "millisecond_jumps": true, "start_up_s": 10, "acquisition_s": 20,
    "reacquisition_s": 30, "signal_delay_s": {"G5Q": 40}}})",
               s);
  const ReceiverModel& r = s.receiver;
  EXPECT_NO_THROW(CheckScenario(s));
  EXPECT_EQ(r.position_m, (std::array<double, 3>{6378137, 1, 2}));
  EXPECT_EQ(r.cutoff_deg, 3);
  EXPECT_EQ(r.clock_bias_s, 1e-3);
  EXPECT_EQ(r.clock_drift, -1e-8);
  EXPECT_TRUE(r.millisecond_jumps);
  EXPECT_EQ(r.start_up_s, 10);
  EXPECT_EQ(r.acquisition_s, 20);
  EXPECT_EQ(r.reacquisition_s, 30);
  EXPECT_EQ(r.signal_delay_s.at("G5Q"), 40);
}

TEST(ScenarioJson, EveryKeyOfTheErrorsArrives) {
  Scenario s;
  ReadScenario(R"({"errors": {"code_noise_m": {"zenith": 1, "horizon": 2},
    "multipath_m": {"zenith": 3, "horizon": 4}, "multipath_period_s": 5,
    "phase_noise_m": {"zenith": 0.1, "horizon": 0.2}, "snr_zenith_dbhz": 51, "snr_horizon_dbhz": 31,
    "snr_noise_db": 1.5, "troposphere": false, "ionosphere": false, "vertical_tec_night": 6,
    "vertical_tec_day": 7}})",
               s);
  const ErrorModel& e = s.errors;
  EXPECT_NO_THROW(CheckScenario(s));
  EXPECT_EQ(e.code_noise_m.zenith, 1);
  EXPECT_EQ(e.code_noise_m.horizon, 2);
  EXPECT_EQ(e.multipath_m.zenith, 3);
  EXPECT_EQ(e.multipath_m.horizon, 4);
  EXPECT_EQ(e.multipath_period_s, 5);
  EXPECT_EQ(e.phase_noise_m.horizon, 0.2);
  EXPECT_EQ(e.snr_zenith_dbhz, 51);
  EXPECT_EQ(e.snr_horizon_dbhz, 31);
  EXPECT_EQ(e.snr_noise_db, 1.5);
  EXPECT_FALSE(e.troposphere);
  EXPECT_FALSE(e.ionosphere);
  EXPECT_EQ(e.vertical_tec_night, 6);
  EXPECT_EQ(e.vertical_tec_day, 7);
}

TEST(ScenarioJson, EveryKeyOfClocksFlagsPathsAndThermalNoiseArrives) {
  Scenario s;
  ReadScenario(R"({"observables": {"doppler": true, "strength": true},
    "receiver": {"clock_walk": 1e-10, "clock_steering_s": 300, "half_cycle_s": 60,
      "lock_flags": {"at_slip": 0.5, "at_acquisition": 0.25, "without_slip": 0.125},
      "path": {"kind": "line", "speed_m_s": 3, "heading_deg": 45, "radius_m": 7, "from_s": 60, "to_s": 120}},
    "errors": {"multipath_by_elevation": [[5, 0.5], [90, 0.1]], "reflector_height_m": 2, "doppler_noise_hz": 0.1,
      "thermal_noise": {"dll_bandwidth_hz": 1, "pll_bandwidth_hz": 18, "integration_s": 0.01,
        "correlator_spacing_chips": 0.5}}})",
               s);
  EXPECT_NO_THROW(CheckScenario(s));
  EXPECT_TRUE(s.observables.doppler && s.observables.strength);
  const ReceiverModel& r = s.receiver;
  EXPECT_EQ(r.clock_walk, 1e-10);
  EXPECT_EQ(r.clock_steering_s, 300);
  EXPECT_EQ(r.half_cycle_s, 60);
  EXPECT_EQ(r.lock_flags.at_slip, 0.5);
  EXPECT_EQ(r.lock_flags.at_acquisition, 0.25);
  EXPECT_EQ(r.lock_flags.without_slip, 0.125);
  EXPECT_EQ(r.path.kind, PathKind::kLine);
  EXPECT_EQ(r.path.speed_m_s, 3);
  EXPECT_EQ(r.path.heading_deg, 45);
  EXPECT_EQ(r.path.radius_m, 7);
  EXPECT_EQ(r.path.from_s, 60);
  EXPECT_EQ(r.path.to_s, 120);
  const ErrorModel& e = s.errors;
  ASSERT_EQ(e.multipath_by_elevation.size(), 2U);
  EXPECT_EQ(e.multipath_by_elevation[1].elevation_deg, 90);
  EXPECT_EQ(e.multipath_by_elevation[1].value, 0.1);
  EXPECT_EQ(e.reflector_height_m, 2);
  EXPECT_EQ(e.doppler_noise_hz, 0.1);
  ASSERT_TRUE(e.thermal_noise.has_value());
  EXPECT_EQ(e.thermal_noise->dll_bandwidth_hz, 1);
  EXPECT_EQ(e.thermal_noise->pll_bandwidth_hz, 18);
  EXPECT_EQ(e.thermal_noise->integration_s, 0.01);
  EXPECT_EQ(e.thermal_noise->correlator_spacing_chips, 0.5);
}

TEST(ScenarioJson, EveryKindAndKeyOfAFaultArrives) {
  for (const std::string& kind : FaultNames()) {
    Scenario s;
    ReadScenario(R"({"faults": [{"kind": ")" + kind + R"(", "satellite": "G04", "signal": "1C", "at_s": 60,
      "duration_s": 90, "size": 2, "period_s": 300, "random": 3, "random_above_deg": 20}]})",
                 s);
    ASSERT_EQ(s.faults.size(), 1U) << kind;
    const Fault& f = s.faults[0];
    EXPECT_NO_THROW(CheckScenario(s)) << kind;
    EXPECT_EQ(f.target.system, 'G');
    EXPECT_EQ(f.target.satellite, 4);
    EXPECT_EQ(f.target.signal, "1C");
    EXPECT_EQ(f.at_s, 60);
    EXPECT_EQ(f.duration_s, 90);
    EXPECT_EQ(f.size, 2);
    EXPECT_EQ(f.period_s, 300);
    EXPECT_EQ(f.random, 3);
    EXPECT_EQ(f.random_above_deg, 20);
  }
}

TEST(ScenarioJson, CommentsAreTakenAndATargetMayBeASystem) {
  Scenario s;
  ReadScenario("{ // all Galileo\n \"faults\": [{\"kind\": \"outage\", \"satellite\": \"E\"}] }", s);
  EXPECT_EQ(s.faults[0].target.system, 'E');
  EXPECT_EQ(s.faults[0].target.satellite, 0);
}

TEST(ScenarioJson, MistakesNameTheKeyWhatWasFoundAndWhatIsExpected) {
  const struct {
    const char* text;
    const char* key;
    const char* found;
    const char* expected;
  } cases[] = {
      {"{", "", "found invalid JSON: parse error at line 1", "expect"},
      {"[]", "scenario: ", "found []", "expected an object"},
      {R"({"hours": 1e999})", "", "found invalid JSON: number overflow", "1e999"},
      {"[[[[[[[[[[[[[[[[[[[[]]]]]]]]]]]]]]]]]]]]", "scenario: ", "found more than 16 levels", "expected"},
      {R"({"intervall_s": 30})", "intervall_s: ", "found an unknown key", "interval_s"},
      {R"({"seed": 1, "seed": 2})", "seed: ", "found a duplicate key", "expected it once"},
      {R"({"seed": -1})", "seed: ", "found -1", "expected a non-negative integer"},
      {R"({"interval_s": "30"})", "interval_s: ", "found \"30\"", "expected a number"},
      {R"({"interval_s": 0.05})", "interval_s: ", "found 0.05", "expected 0.1 to 60"},
      {R"({"interval_s": 0.12345})", "interval_s: ", "found 0.12345", "integer multiple of 0.001"},
      {R"({"hours": 1000})", "hours: ", "found 1000", "expected"},
      {R"({"systems": "GX"})", "systems: ", "found \"GX\"", "letters from GREJC"},
      {R"({"systems": "GG"})", "systems: ", "found \"GG\"", "each once"},
      {R"({"station": "../../etc"})", "station: ", "found \"../../etc\"", "nine capital letters"},
      {R"({"start": "yesterday"})", "start: ", "found \"yesterday\"", "YYYY-MM-DD"},
      {R"({"start": "1999-01-01"})", "start: ", "found", "2006-01-03"},
      {R"({"receiver": {"position_m": [1, 2]}})", "receiver.position_m: ", "found [1,2]", "three numbers"},
      {R"({"receiver": {"position_m": [1, 2, 3]}})", "receiver.position_m", "found 3.7", "6.3e+06"},
      {R"({"receiver": {"millisecond_jumps": 1}})", "receiver.millisecond_jumps: ", "found 1",
       "true or false"},
      {R"({"receiver": {"signal_delay_s": {"G9Z": 1}}})", "receiver.signal_delay_s.G9Z: ", "found", "G5Q"},
      {R"({"receiver": {"clock_walk": -1}})", "receiver.clock_walk: ", "found -1", "0 to 0.001"},
      {R"({"receiver": {"lock_flags": {"at_slip": 2}}})", "receiver.lock_flags.at_slip: ", "found 2",
       "0 to 1"},
      {R"({"receiver": {"path": {"kind": "square"}}})", "receiver.path.kind: ", "found \"square\"", "circle"},
      {R"({"receiver": {"path": {"kind": "line", "speed_m_s": 100}}})",
       "receiver.path (length of the line, m): ", "found 8.64e+06", "0 to 100000"},
      {R"({"receiver": {"path": {"from_s": 9, "to_s": 5}}})", "receiver.path.to_s: ", "found 5", "9 to"},
      {R"({"errors": {"thermal_noise": {"integration_s": 0}}})",
       "errors.thermal_noise.integration_s: ", "found 0", "0.0001 to 10"},
      {R"({"errors": {"multipath_by_elevation": [[1]]}})", "errors.multipath_by_elevation: ", "found [[1]]",
       "pairs of degrees and metres"},
      {R"({"errors": {"multipath_by_elevation": [[9, 1], [5, 1]]}})",
       "errors.multipath_by_elevation (degrees, ascending): ", "found 5", "9.01 to 90"},
      {R"({"observables": {"doppler": 1}})", "observables.doppler: ", "found 1", "true or false"},
      {R"({"faults": [{"kind": "scintillation", "size": -1}]})", "faults[0].size: ", "found -1", "0 to 10"},
      {R"({"faults": [{"kind": "tec_rate"}]})", "faults[0].size: ", "found none", "TECU per minute"},
      {R"({"errors": {"code_noise_m": {"zenith": -1}}})", "errors.code_noise_m.zenith: ", "found -1", "0 to"},
      {R"({"errors": {"code_noise_m": 0.3}})", "errors.code_noise_m: ", "found 0.3", "an object"},
      {R"({"cadence": {"glonass_s": 900}})", "cadence.glonass_s: ", "found 900", "1800"},
      {R"({"cadence": {"galileo_s": 700}})", "cadence.galileo_s: ", "found 700", "multiple of 600"},
      {R"({"signals": {"G": ["9Z"]}})", "signals.G: ", "found \"9Z\"", "observation codes"},
      {R"({"signals": {"G": ["1C", "1C"]}})", "signals.G: ", "found \"1C\"", "each once"},
      {R"({"signals": {"X": ["1C"]}})", "signals.X: ", "found an unknown group", "C3G"},
      {R"({"faults": {}})", "faults: ", "found {}", "a list"},
      {R"({"faults": [{}]})", "faults[0].kind: ", "found none", "slip"},
      {R"({"faults": [{"kind": "slipp"}]})", "faults[0].kind: ", "found \"slipp\"", "slip"},
      {R"({"faults": [{"kind": "slip"}]})", "faults[0].size: ", "found none", "cycles"},
      {R"({"faults": [{"kind": "outage"}, {"kind": "outage", "at": 5}]})", "faults[1].at: ", "unknown key",
       "at_s"},
      {R"({"faults": [{"kind": "outage", "random": 1.5}]})", "faults[0].random: ", "found 1.5", "10000"},
      {R"({"faults": [{"kind": "outage", "satellite": "X01"}]})", "faults[0].satellite: ", "X01", "G04"},
      {R"({"faults": [{"kind": "outage", "satellite": "G11"}]})", "faults[0].satellite: ", "found G11",
       "constellation"},
      {R"({"faults": [{"kind": "slip", "size": 1, "satellite": "R", "signal": "5Q"}]})",
       "faults[0].signal: ", "found \"5Q\"", "expected a signal"},
      {R"({"faults": [{"kind": "unhealthy"}]})", "faults[0].satellite: ", "found none", "G04"},
      {R"({"faults": [{"kind": "late_epoch", "size": -1}]})", "faults[0].size: ", "found -1", "0 to 60"},
  };
  for (const auto& c : cases) {
    const std::string wrong = WrongOf(c.text);
    EXPECT_EQ(wrong.find(c.key), 0U) << c.text << "\n" << wrong;
    EXPECT_NE(wrong.find(c.found), std::string::npos) << c.text << "\n" << wrong;
    EXPECT_NE(wrong.find(c.expected), std::string::npos) << c.text << "\n" << wrong;
  }
}

TEST(ScenarioJson, AFilesMistakesBeginWithItsName) {
  const orsolva_test::TestFolder folder("scenario_json");
  const std::string path = folder.Path("s.json");
  orsolva_test::WriteText(path, R"({"hours": 0})");
  for (const std::string& name : {path, folder.Path("none.json")}) {
    Scenario scenario;
    try {
      ReadScenarioFile(name, scenario);
      ADD_FAILURE() << name;
    } catch (const ScenarioError& error) {
      EXPECT_EQ(std::string(error.what()).find(name + ": "), 0U) << error.what();
    }
  }
}

TEST(Presets, AllAreGoodScenariosOfTheirName) {
  EXPECT_GE(Presets().size(), 8U);
  for (const Preset& preset : Presets()) {
    Scenario scenario;
    EXPECT_NO_THROW(ReadScenario(preset.json, scenario)) << preset.name;
    EXPECT_NO_THROW(CheckScenario(scenario)) << preset.name;
    EXPECT_EQ(scenario.name, preset.name);
  }
  EXPECT_EQ(FindPreset("no-such"), nullptr);
}

}  // namespace
