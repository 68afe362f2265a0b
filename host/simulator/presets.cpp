#include "host/simulator/presets.h"

namespace orsolva_host {

const std::vector<Preset>& Presets() {
  static const std::vector<Preset> presets = {
      {"quiet", "a station-day without faults", R"({"name": "quiet"})"},
      {"station-day", "a station-day of five systems with a handful of faults", R"({
        "name": "station-day",
        "receiver": {
          "position_m": [-3024831.536, 4928986.861, 2681262.589],
          "acquisition_s": 30, "reacquisition_s": 30
        },
        "faults": [
          {"kind": "slip", "signal": "1C", "satellite": "G", "size": 10, "random": 4, "random_above_deg": 30},
          {"kind": "slip", "signal": "5Q", "satellite": "E", "size": -50, "random": 2, "random_above_deg": 30},
          {"kind": "slip", "signal": "2I", "satellite": "C", "size": 4, "random": 2, "random_above_deg": 30},
          {"kind": "code_jump", "signal": "1C", "size": 25, "duration_s": 300, "random": 3},
          {"kind": "outage", "satellite": "R", "duration_s": 900, "random": 2},
          {"kind": "outage", "satellite": "J02", "signal": "5Q", "at_s": 28800, "duration_s": 3600},
          {"kind": "outage", "at_s": 43200, "duration_s": 240},
          {"kind": "snr_drop", "signal": "1C", "size": 12, "duration_s": 1800, "random": 2},
          {"kind": "missing_epoch", "random": 12},
          {"kind": "duplicate_epoch", "random": 2},
          {"kind": "unhealthy", "satellite": "G12"},
          {"kind": "header_offset", "size": 25}
        ]})"},
      {"slips", "many slips from half a cycle to a hundred", R"({
        "name": "slips",
        "faults": [
          {"kind": "slip", "size": 0.5, "random": 20},
          {"kind": "slip", "size": 1, "random": 20},
          {"kind": "slip", "size": 10, "random": 20},
          {"kind": "slip", "size": 100, "random": 20}
        ]})"},
      {"storm", "an ionospheric storm through the afternoon", R"({
        "name": "storm",
        "errors": {"vertical_tec_night": 10, "vertical_tec_day": 70},
        "faults": [{"kind": "iono_storm", "size": 12, "at_s": 36000, "duration_s": 21600, "period_s": 600}]})"},
      {"gaps", "outages of signals, satellites and the receiver, missing, late and duplicate epochs", R"({
        "name": "gaps",
        "receiver": {"start_up_s": 120, "acquisition_s": 30, "reacquisition_s": 60, "signal_delay_s": {"G5Q": 30}},
        "faults": [
          {"kind": "outage", "duration_s": 600, "random": 30},
          {"kind": "outage", "satellite": "E", "at_s": 21600, "duration_s": 1200},
          {"kind": "outage", "at_s": 43200, "duration_s": 900},
          {"kind": "missing_epoch", "at_s": 7200, "duration_s": 330},
          {"kind": "missing_epoch", "random": 40},
          {"kind": "duplicate_epoch", "random": 10},
          {"kind": "late_epoch", "size": 0.25, "random": 5},
          {"kind": "late_delivery", "random": 5}
        ]})"},
      {"clock", "a receiver clock that drifts and is reset by milliseconds", R"({
        "name": "clock",
        "receiver": {"clock_drift": 1e-7, "millisecond_jumps": true}})"},
      {"galileo-bands", "Galileo with E5b and E5 in addition to E1, E5a and E6", R"({
        "name": "galileo-bands",
        "signals": {"E": ["1C", "5Q", "7Q", "8Q", "6C"]}})"},
      {"scintillation", "a disturbed ionosphere: a TEC rate up to 5 TECU/min at 95 % and phase scintillation",
       R"({
        "name": "scintillation",
        "faults": [{"kind": "tec_rate", "size": 1.7}, {"kind": "scintillation", "size": 0.12}]})"},
      {"polar",
       "a polar station: low satellites, bursts of scintillation, weak signals, flags right and wrong", R"({
        "name": "polar",
        "receiver": {
          "position_m": [1202433.9, 252632.2, 6237772.5],
          "lock_flags": {"at_slip": 0.9, "at_acquisition": 1, "without_slip": 0.001}
        },
        "errors": {"vertical_tec_night": 10, "vertical_tec_day": 0},
        "observables": {"doppler": true, "strength": true},
        "faults": [
          {"kind": "tec_rate", "size": 0.3},
          {"kind": "tec_rate", "size": 0.4, "at_s": 23400, "duration_s": 10800},
          {"kind": "tec_rate", "size": 0.8, "at_s": 25200, "duration_s": 7200},
          {"kind": "scintillation", "size": 0.2, "at_s": 25200, "duration_s": 7200},
          {"kind": "tec_rate", "size": 0.5, "at_s": 66600, "duration_s": 14400},
          {"kind": "tec_rate", "size": 0.9, "at_s": 68400, "duration_s": 10800},
          {"kind": "scintillation", "size": 0.12, "at_s": 68400, "duration_s": 10800},
          {"kind": "snr_drop", "satellite": "G", "signal": "2W", "size": 8, "duration_s": 1200, "random": 10},
          {"kind": "slip", "size": 1, "random": 10}
        ]})"},
      {"kinematic", "two hours at 1 s on a circle of 200 m, driven after half an hour", R"({
        "name": "kinematic", "hours": 2, "interval_s": 1,
        "receiver": {"path": {"kind": "circle", "radius_m": 200, "speed_m_s": 15, "from_s": 1800}},
        "observables": {"doppler": true, "strength": true},
        "faults": [{"kind": "slip", "size": 1, "random": 10}]})"},
      {"steered-clock", "a receiver clock steered to GPS time, with a random walk and two slews", R"({
        "name": "steered-clock",
        "receiver": {"clock_bias_s": 0, "clock_drift": 0, "clock_walk": 5e-11, "clock_steering_s": 600},
        "faults": [
          {"kind": "clock_slew", "size": 0.5, "at_s": 28800, "duration_s": 600},
          {"kind": "clock_slew", "size": -0.5, "at_s": 57600, "duration_s": 600}
        ]})"},
      {"clock-jumps", "jumps of the receiver clock with and without the phases, and a power failure", R"({
        "name": "clock-jumps",
        "receiver": {"clock_walk": 5e-11},
        "faults": [
          {"kind": "clock_jump", "size": 1, "random": 5},
          {"kind": "code_clock_jump", "size": 1, "at_s": 21600},
          {"kind": "code_clock_jump", "size": -1, "at_s": 36000},
          {"kind": "power_failure", "at_s": 64800, "duration_s": 90}
        ]})"},
      {"half-cycles", "half-cycle ambiguities resolved late, half-cycle slips, flags present and missing",
       R"({
        "name": "half-cycles",
        "receiver": {"half_cycle_s": 120, "lock_flags": {"at_slip": 0.8, "at_acquisition": 1, "without_slip": 0.0005}},
        "observables": {"strength": true},
        "faults": [
          {"kind": "outage", "duration_s": 60, "random": 20},
          {"kind": "slip", "size": 0.5, "random": 20}, {"kind": "slip", "size": -1.5, "random": 20}
        ]})"},
      {"satellite-clocks", "glitches of satellite clocks by decimetres, for a step and for good", R"({
        "name": "satellite-clocks",
        "faults": [
          {"kind": "satellite_clock", "size": 0.2, "duration_s": 1, "random": 10},
          {"kind": "satellite_clock", "size": 0.15, "random": 10},
          {"kind": "satellite_clock", "size": -0.5, "random": 10}
        ]})"},
      {"thermal", "noise by signal strength, and the multipath of the ground 2 m below the antenna", R"({
        "name": "thermal",
        "errors": {
          "thermal_noise": {},
          "multipath_by_elevation": [[0, 0.8], [10, 0.5], [30, 0.2], [90, 0.05]], "reflector_height_m": 2
        },
        "observables": {"strength": true}})"},
      {"high-rate", "an hour at ten epochs per second",
       R"({"name": "high-rate", "hours": 1, "interval_s": 0.1})"},
  };
  return presets;
}

const Preset* FindPreset(std::string_view name) {
  for (const Preset& preset : Presets()) {
    if (name == preset.name) return &preset;
  }
  return nullptr;
}

}  // namespace orsolva_host
