#include "host/simulator/truth_json.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

using Json = nlohmann::ordered_json;

Json MeanJson(const MeanOf& mean) { return mean.count > 0 ? Json(mean.Mean()) : Json(nullptr); }

/// Whether the scenario writes loss-of-lock flags.
bool WithFlags(const Scenario& scenario) {
  const LockFlags& flags = scenario.receiver.lock_flags;
  return flags.at_slip > 0 || flags.at_acquisition > 0 || flags.without_slip > 0 ||
         scenario.receiver.half_cycle_s > 0;
}

Json RmsJson(const MeanOf& squares) {
  return squares.count > 0 ? Json(std::sqrt(squares.Mean())) : Json(nullptr);
}

/// What only some scenarios have: scatter of phases, flags, errors by elevation.
void AddExtras(const Scenario& scenario, const SignalTruth& s, Json& j) {
  const bool scintillates =
      std::any_of(scenario.faults.begin(), scenario.faults.end(),
                  [](const Fault& fault) { return fault.kind == FaultKind::kScintillation; });
  if (scenario.errors.thermal_noise || scintillates) j["phase_noise_rms_m"] = RmsJson(s.phase_noise_square);
  if (WithFlags(scenario)) {
    j["loss_of_lock_flags"] = {{"at_slips", s.flags_at_slips},
                               {"missing_at_slips", s.slips_unflagged},
                               {"at_acquisitions", s.flags_at_arcs},
                               {"elsewhere", s.flags_elsewhere},
                               {"half_cycle_epochs", s.half_cycle_flags}};
  }
  if (!scenario.errors.thermal_noise && scenario.errors.multipath_by_elevation.empty()) return;
  Json bins = Json::array();
  for (std::size_t i = 0; i < kTruthBins; ++i) {
    const BinTruth& bin = s.by_elevation[i];
    const int from_deg = static_cast<int>(i) * kTruthBin_deg;
    if (bin.snr.count == 0) continue;
    bins.push_back({{"from_deg", from_deg},
                    {"to_deg", from_deg + kTruthBin_deg},
                    {"epochs", bin.snr.count},
                    {"snr_mean_dbhz", MeanJson(bin.snr)},
                    {"code_noise_rms_m", RmsJson(bin.noise_square)},
                    {"multipath_rms_m", RmsJson(bin.multipath_square)},
                    {"phase_noise_rms_m", RmsJson(bin.phase_noise_square)}});
  }
  j["by_elevation"] = bins;
}

Json SignalJson(const Scenario& scenario, const SignalTruth& s) {
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
  AddExtras(scenario, s, j);
  return j;
}

Json SatelliteJson(const Scenario& scenario, const SatelliteTruth& s) {
  Json j;
  j["satellite"] = SatelliteName(s.system, s.number);
  j["healthy"] = s.healthy;
  j["visible_epochs"] = s.visible;
  j["above_cutoff_epochs"] = s.above_cutoff;
  j["two_signals_epochs"] = s.two_signals;
  j["signals"] = Json::array();
  for (const SignalTruth& signal : s.signals) j["signals"].push_back(SignalJson(scenario, signal));
  return j;
}

Json FaultJson(const Scenario& scenario, const InjectedFault& f) {
  Json j;
  j["kind"] = f.kind;
  j["satellite"] = f.satellite.empty() ? Json(nullptr) : Json(f.satellite);
  j["signal"] = f.signal.empty() ? Json(nullptr) : Json(f.signal);
  j["time_gpst"] = TimeText(f.time);
  j["duration_s"] = f.duration_s;
  j["size"] = f.size;
  j["elevation_deg"] = f.satellite.empty() ? Json(nullptr) : Json(f.elevation_deg);
  j["shows_in_the_data"] = f.seen;
  if (WithFlags(scenario) && f.kind == "slip") j["loss_of_lock_flag"] = f.flagged;
  return j;
}

Json ReceiverJson(const Truth& truth) {
  Json j;
  j["track"] = Json::array();
  // A static receiver has a track of one point.
  if (truth.track.empty()) {
    j["track"].push_back({{"time_gpst", TimeText(truth.first)}, {"position_ecef_m", truth.position_m}});
  }
  for (const TrackPoint& point : truth.track) {
    j["track"].push_back({{"time_gpst", TimeText(point.time)}, {"position_ecef_m", point.position_m}});
  }
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
  for (const InjectedFault& fault : truth.faults) j["faults"].push_back(FaultJson(scenario, fault));
  j["satellites"] = Json::array();
  for (const SatelliteTruth& s : truth.satellites) j["satellites"].push_back(SatelliteJson(scenario, s));
  return j.dump(2) + "\n";
}

}  // namespace orsolva_host
