// A small report with every kind of row, for the tests of writers and checks.
#ifndef ORSOLVA_TESTS_HOST_SAMPLE_REPORT_H
#define ORSOLVA_TESTS_HOST_SAMPLE_REPORT_H

#include <array>

#include "host/report/report.h"

namespace orsolva_test {

inline orsolva_host::Figures SampleFigures() {
  orsolva_host::Figures f;
  f.expected = 1000;
  f.observed = 900;
  f.completeness = 0.9;
  f.phase_geometry_slips = 12;
  f.mp_restarts = 3;
  f.obs_per_restart = 300;
  f.bands.push_back({1, "L1", 0.25, 44.5, std::nullopt, 48.0, 0.1});
  f.bands.push_back({2, "L2", std::nullopt, 40.0, 38.0, 42.0, std::nullopt});
  return f;
}

/// GPS with one satellite and one signal.
inline orsolva_host::Report SampleReport() {
  orsolva_host::Report r;
  r.run.library_version = "V1";
  r.run.observation_file = "dir/station one.rnx";
  r.run.interval_source = "header";
  r.run.position_source = "computed";
  r.run.systems = "G";
  r.run.first_epoch = Time_gbt{1593043200, 0};
  r.run.last_epoch = Time_gbt{1593129570, 0};
  r.run.duration_h = 86370.0 / 3600;
  r.run.interval_s = 30;
  r.run.elevation_cutoff_deg = 10;
  r.run.averaging_window_epochs = 10;
  r.run.epochs = 2880;
  r.run.judged_epochs = 2880;
  r.run.lost_epochs = 0;
  r.run.position_m = std::array<double, 3>{};
  r.run.navigation_coverage.push_back(
      {"G04", 900, 11, 1, Time_gbt{1593043200, 0}, Time_gbt{1593129600, 0}, 0.5});
  r.systems.push_back({'G', "GPS", {"1C", "2W"}, {"1C", "2W"}, SampleFigures()});
  r.library_total = SampleFigures();
  for (orsolva_host::BandFigures& band : r.library_total.bands) band.band.clear();
  r.satellites.push_back({"G04", "judged", SampleFigures()});
  orsolva_host::SignalReport s;
  s.name = "GPS";
  s.signal = "1C";
  s.band = "L1";
  s.expected = 1000;
  s.observed = 950;
  s.completeness = 0.95;
  s.mp_m = 0.25;
  s.mp_values = 940;
  s.mp_restarts = 3;
  s.phase_geometry_slips = 12;
  s.obs_per_restart = 950.0 / 3;
  r.signals.push_back(s);
  r.states["G04"] = "judged";
  r.library_headline.expected = 1000;
  r.library_headline.observed = 900;
  r.library_headline.completeness = 0.9;
  r.library_headline.mp1_m = 0.25;
  r.library_headline.obs_per_restart = 300;
  r.library_headline.satellites_observed = r.library_headline.satellites_judged = 1;
  r.headline.nominal_epochs = r.headline.present_epochs = 2880;
  r.headline.missing_epochs = 0;
  r.headline.cutoff_expected = 2000;
  r.headline.cutoff_observed = 1900;
  r.headline.cutoff_completeness = 0.95;
  r.headline.cycle_slips = 2;
  r.headline.observations_per_slip = 950;
  r.headline.gps_mp1_m = 0.26;
  r.verdict = {"fair", "2 gaps while in view"};
  r.findings.push_back({"gaps-in-view",
                        "warning",
                        "2 gaps while in view",
                        "Single satellites were lost.",
                        {{"gaps_in_view", 2}},
                        {"G04"},
                        ""});
  r.notes.push_back({"phase-test", "Slips count more than slips.", {"phase_geometry_slip_epochs"}, "", {}});
  r.notices.push_back({"f.rnx", 3, "odd", 2, true});
  return r;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_HOST_SAMPLE_REPORT_H
