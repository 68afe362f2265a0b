#include "host/simulator/truth_json.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

using Json = nlohmann::ordered_json;

Json MeanJson(const MeanOf& mean) { return mean.count > 0 ? Json(mean.Mean()) : Json(nullptr); }

Json RmsJson(const MeanOf& squares) {
  return squares.count > 0 ? Json(std::sqrt(squares.Mean())) : Json(nullptr);
}

Json SignalJson(const SignalTruth& s) {
  Json j;
  j["signal"] = s.name;
  j["tracked_epochs"] = s.tracked;
  j["above_cutoff_epochs"] = s.above_cutoff;
  j["above_30deg_epochs"] = s.snr_above30.count;
  j["arcs"] = s.arcs;
  j["code_noise_rms_m"] = RmsJson(s.noise_square);
  j["multipath_rms_m"] = RmsJson(s.multipath_square);
  j["code_error_rms_m"] = RmsJson(s.code_error_square);
  j["code_error_less_moving_mean_rms_m"] = RmsJson(s.detrended_square);
  j["snr_mean_dbhz"] = MeanJson(s.snr);
  j["snr_mean_above_cutoff_dbhz"] = MeanJson(s.snr_above_cutoff);
  j["snr_mean_below_30deg_dbhz"] = MeanJson(s.snr_below30);
  j["snr_mean_above_30deg_dbhz"] = MeanJson(s.snr_above30);
  return j;
}

Json SatelliteJson(const SatelliteTruth& s) {
  Json j;
  j["satellite"] = SatelliteName(s.system, s.number);
  j["healthy"] = s.healthy;
  j["visible_epochs"] = s.visible;
  j["above_cutoff_epochs"] = s.above_cutoff;
  j["two_signals_epochs"] = s.two_signals;
  j["signals"] = Json::array();
  for (const SignalTruth& signal : s.signals) j["signals"].push_back(SignalJson(signal));
  return j;
}

Json FaultJson(const InjectedFault& f) {
  Json j;
  j["kind"] = f.kind;
  j["satellite"] = f.satellite.empty() ? Json(nullptr) : Json(f.satellite);
  j["signal"] = f.signal.empty() ? Json(nullptr) : Json(f.signal);
  j["time_gpst"] = TimeText(f.time);
  j["duration_s"] = f.duration_s;
  j["size"] = f.size;
  j["elevation_deg"] = f.satellite.empty() ? Json(nullptr) : Json(f.elevation_deg);
  j["shows_in_the_data"] = f.seen;
  return j;
}

Json ReceiverJson(const Truth& truth) {
  Json j;
  j["track"] = Json::array();
  // The receiver is static, so its track is one point.
  j["track"].push_back({{"time_gpst", TimeText(truth.first)}, {"position_ecef_m", truth.position_m}});
  j["header_position_ecef_m"] = truth.header_position_m;
  j["clock"] = Json::array();
  for (const ClockMoment& m : truth.clock) {
    j["clock"].push_back({{"time_gpst", TimeText(m.time)}, {"bias_s", m.bias_s}});
  }
  return j;
}

}  // namespace

std::string TruthJson(const Scenario& scenario, const Truth& truth) {
  Json j;
  j["format"] = 1;
  j["scenario"] = scenario.name;
  j["seed"] = scenario.seed;
  j["systems"] = scenario.systems;
  j["interval_s"] = truth.interval_s;
  j["cutoff_deg"] = truth.cutoff_deg;
  j["moving_mean_epochs"] = truth.mean_window;
  j["first_epoch_gpst"] = TimeText(truth.first);
  j["last_epoch_gpst"] = TimeText(truth.last);
  j["nominal_epochs"] = truth.nominal_epochs;
  j["delivered_epochs"] = truth.delivered_epochs;
  j["missing_epochs"] = truth.missing_epochs;
  j["receiver"] = ReceiverJson(truth);
  j["faults"] = Json::array();
  for (const InjectedFault& fault : truth.faults) j["faults"].push_back(FaultJson(fault));
  j["satellites"] = Json::array();
  for (const SatelliteTruth& s : truth.satellites) j["satellites"].push_back(SatelliteJson(s));
  return j.dump(2) + "\n";
}

}  // namespace orsolva_host
