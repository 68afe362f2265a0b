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
