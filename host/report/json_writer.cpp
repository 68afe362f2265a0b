#include "host/report/json_writer.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

using Json = nlohmann::ordered_json;

template <typename T>
Json ValueOf(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json NumberOf(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

Json TimeOf(const std::optional<Time_gbt>& time) { return time ? Json(TimeText(*time)) : Json(nullptr); }

Json TextOf(const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); }

Json BandJson(const BandFigures& band) {
  Json j;
  j["slot"] = band.slot;
  j["band"] = TextOf(band.band);
  j["mp_rms_m"] = ValueOf(band.mp_m);
  j["snr_mean_dbhz"] = ValueOf(band.snr_dbhz);
  j["snr_mean_below_30deg_dbhz"] = ValueOf(band.snr_below30_dbhz);
  j["snr_mean_above_30deg_dbhz"] = ValueOf(band.snr_above30_dbhz);
  j["iono_rms_cycles"] = ValueOf(band.iono_rms_cycles);
  return j;
}

void AddFigures(const Figures& figures, Json& j) {
  j["expected_epochs"] = ValueOf(figures.expected);
  j["observed_epochs"] = ValueOf(figures.observed);
  j["completeness_ratio"] = ValueOf(figures.completeness);
  j["phase_geometry_slip_epochs"] = ValueOf(figures.phase_geometry_slips);
  j["mp_restart_epochs"] = ValueOf(figures.mp_restarts);
  j["observations_per_restart"] = ValueOf(figures.obs_per_restart);
  j["bands"] = Json::array();
  for (const BandFigures& band : figures.bands) j["bands"].push_back(BandJson(band));
}

Json CoverageJson(const NavigationCoverage& row) {
  Json j;
  j["satellite"] = row.satellite;
  j["epochs_seen"] = row.observed_epochs;
  j["navigation_records"] = row.records;
  j["unhealthy_records"] = row.unhealthy_records;
  j["first_reference"] = TimeOf(row.first_reference);
  j["last_reference"] = TimeOf(row.last_reference);
  j["navigation_covered_ratio"] = NumberOf(row.covered_ratio);
  return j;
}

Json RunJson(const ReportRun& run) {
  Json j;
  j["observation_file"] = run.observation_file;
  j["navigation_files"] = run.navigation_files;
  j["rinex_version"] = NumberOf(run.rinex_version);
  j["marker"] = TextOf(run.marker);
  j["receiver"] = TextOf(run.receiver);
  j["antenna"] = TextOf(run.antenna);
  j["first_epoch_gpst"] = TimeOf(run.first_epoch);
  j["last_epoch_gpst"] = TimeOf(run.last_epoch);
  j["duration_h"] = NumberOf(run.duration_h);
  j["interval_s"] = NumberOf(run.interval_s);
  j["interval_source"] = run.interval_source;
  j["epochs"] = run.epochs;
  j["judged_epochs"] = run.judged_epochs;
  j["lost_epochs"] = run.lost_epochs;
  j["position_ecef_m"] = Json::array();
  for (const double x : run.position_m) j["position_ecef_m"].push_back(NumberOf(x));
  j["position_source"] = run.position_source;
  j["distance_from_header_position_m"] = ValueOf(run.distance_from_header_m);
  j["elevation_cutoff_deg"] = NumberOf(run.elevation_cutoff_deg);
  j["averaging_window_epochs"] = run.averaging_window_epochs;
  j["systems"] = run.systems;
  j["excluded_satellites"] = run.excluded;
  j["navigation_coverage"] = Json::array();
  for (const NavigationCoverage& row : run.navigation_coverage) {
    j["navigation_coverage"].push_back(CoverageJson(row));
  }
  return j;
}

Json SystemJson(const SystemReport& system) {
  Json j;
  j["letter"] = std::string(1, system.letter);
  j["name"] = system.name;
  j["optimal_combination"] = system.combination;
  j["signals"] = system.signals;
  AddFigures(system.figures, j);
  return j;
}

Json SignalJson(const SignalReport& s) {
  Json j;
  j["letter"] = std::string(1, s.letter);
  j["name"] = s.name;
  j["signal"] = s.signal;
  j["band"] = TextOf(s.band);
  j["expected_epochs"] = ValueOf(s.expected);
  j["observed_epochs"] = ValueOf(s.observed);
  j["completeness_ratio"] = ValueOf(s.completeness);
  j["mp_rms_m"] = ValueOf(s.mp_m);
  j["mp_values"] = ValueOf(s.mp_values);
  j["mp_restart_epochs"] = ValueOf(s.mp_restarts);
  j["phase_geometry_slip_epochs"] = ValueOf(s.phase_geometry_slips);
  j["observations_per_restart"] = ValueOf(s.obs_per_restart);
  j["snr_mean_dbhz"] = ValueOf(s.snr_dbhz);
  j["snr_mean_below_30deg_dbhz"] = ValueOf(s.snr_below30_dbhz);
  j["snr_mean_above_30deg_dbhz"] = ValueOf(s.snr_above30_dbhz);
  return j;
}

Json SatelliteJson(const SatelliteReport& satellite) {
  Json j;
  j["satellite"] = satellite.name;
  j["state"] = satellite.state;
  AddFigures(satellite.figures, j);
  return j;
}

Json HeadlineJson(const Headline& headline) {
  Json j;
  j["expected_epochs"] = ValueOf(headline.expected);
  j["observed_epochs"] = ValueOf(headline.observed);
  j["completeness_ratio"] = ValueOf(headline.completeness);
  j["mp1_rms_m"] = ValueOf(headline.mp1_m);
  j["mp2_rms_m"] = ValueOf(headline.mp2_m);
  j["observations_per_restart"] = ValueOf(headline.obs_per_restart);
  return j;
}

Json OutcomeJson(const CriterionOutcome& outcome) {
  Json j;
  j["criterion"] = outcome.criterion;
  j["figure"] = outcome.figure;
  j["unit"] = outcome.unit;
  j["subject"] = TextOf(outcome.subject);
  j["signal"] = TextOf(outcome.signal);
  j["direction"] = outcome.at_least ? "at_least" : "at_most";
  j["good_limit"] = NumberOf(outcome.good_limit);
  j["fair_limit"] = NumberOf(outcome.fair_limit);
  j["value"] = ValueOf(outcome.value);
  j["grade"] = outcome.grade;
  j["missed_by"] = ValueOf(outcome.missed_by);
  j["source"] = outcome.source;
  return j;
}

Json VerdictJson(const Verdict& verdict) {
  Json j;
  j["profile"] = verdict.profile;
  j["title"] = verdict.title;
  j["grade"] = verdict.grade;
  j["passed"] = verdict.passed;
  j["outcomes"] = Json::array();
  for (const CriterionOutcome& outcome : verdict.outcomes) j["outcomes"].push_back(OutcomeJson(outcome));
  return j;
}

Json NoteJson(const ReportNote& note) {
  Json j;
  j["id"] = note.id;
  j["text"] = note.text;
  j["figures"] = note.figures;
  j["system"] = TextOf(note.system);
  j["bands"] = note.bands;
  return j;
}

Json NoticeJson(const ReportNotice& notice) {
  Json j;
  j["file"] = notice.file;
  j["line"] = notice.line > 0 ? Json(notice.line) : Json(nullptr);
  j["text"] = notice.text;
  j["count"] = notice.count;
  j["recovered"] = notice.recovered;
  return j;
}

}  // namespace

std::string WriteJson(const Report& report) {
  Json j;
  j["format"] = 2;
  j["library_version"] = report.run.library_version;
  j["run"] = RunJson(report.run);
  j["verdict"] = report.verdict ? VerdictJson(*report.verdict) : Json(nullptr);
  j["headline"] = HeadlineJson(report.headline);
  j["systems"] = Json::array();
  for (const SystemReport& system : report.systems) j["systems"].push_back(SystemJson(system));
  AddFigures(report.library_total, j["library_total"]);
  j["signals"] = Json::array();
  for (const SignalReport& signal : report.signals) j["signals"].push_back(SignalJson(signal));
  if (report.show_satellites) {
    j["satellites"] = Json::array();
    for (const SatelliteReport& satellite : report.satellites) {
      j["satellites"].push_back(SatelliteJson(satellite));
    }
  }
  j["notes"] = Json::array();
  for (const ReportNote& note : report.notes) j["notes"].push_back(NoteJson(note));
  j["notices"] = Json::array();
  for (const ReportNotice& notice : report.notices) j["notices"].push_back(NoticeJson(notice));
  j["further_notices"] = report.further_notices;
  return j.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string WriteJsonFailure(const std::string& file, const std::string& error) {
  Json j;
  j["format"] = 2;
  j["observation_file"] = file;
  j["error"] = error;
  return j.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace orsolva_host
