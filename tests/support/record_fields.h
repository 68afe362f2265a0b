// Walks the output records field by field, naming each.
#ifndef ORSOLVA_TESTS_SUPPORT_RECORD_FIELDS_H
#define ORSOLVA_TESTS_SUPPORT_RECORD_FIELDS_H

#include <string>

#include "orsolva/records.h"

namespace orsolva_test {

inline std::string Indexed(const std::string& name, int i) { return name + "[" + std::to_string(i) + "]"; }

/// Calls visit(path, name, a's field, b's field) for every field but padding.
template <class Visit>
void VisitFields(const Time_gbt& a, const Time_gbt& b, const std::string& path, Visit&& visit) {
  visit(path, "time", a.time, b.time);
  visit(path, "sec", a.sec, b.sec);
}

template <class Visit>
void VisitFields(const qc_core_summary& a, const qc_core_summary& b, const std::string& path, Visit&& visit) {
  visit(path, "system", a.system, b.system);
  visit(path, "expected_epochs", a.expected_epochs, b.expected_epochs);
  visit(path, "observed_epochs", a.observed_epochs, b.observed_epochs);
  visit(path, "slip_epochs", a.slip_epochs, b.slip_epochs);
  visit(path, "jump_epochs", a.jump_epochs, b.jump_epochs);
  visit(path, "completeness", a.completeness, b.completeness);
  for (int i = 0; i < 6; ++i) {
    const std::string slot = Indexed(path, i);
    visit(slot, "mp", a.mp[i], b.mp[i]);
    visit(slot, "snr", a.snr[i], b.snr[i]);
    visit(slot, "snr_30", a.snr_30[i][0], b.snr_30[i][0]);
    visit(slot, "snr_30", a.snr_30[i][1], b.snr_30[i][1]);
    visit(slot, "iod", a.iod[i], b.iod[i]);
  }
  visit(path, "obs_per_slip", a.obs_per_slip, b.obs_per_slip);
}

template <class Visit>
void VisitFields(const result_qct& a, const result_qct& b, Visit&& visit) {
  VisitFields(a.start_time, b.start_time, "start_time", visit);
  VisitFields(a.end_time, b.end_time, "end_time", visit);
  for (int i = 0; i < 3; ++i) visit(Indexed("", i), "station_xyz", a.station_xyz[i], b.station_xyz[i]);
  visit("", "duration", a.duration, b.duration);
  visit("", "lost_epochs", a.lost_epochs, b.lost_epochs);
  for (int s = 0; s < 6; ++s) VisitFields(a.sys[s], b.sys[s], Indexed("sys", s), visit);
  for (int s = 0; s < 6; ++s) {
    for (int p = 0; p < 64; ++p) {
      VisitFields(a.sat[s][p], b.sat[s][p], Indexed(Indexed("sat", s), p), visit);
      visit(Indexed(Indexed("", s), p), "sat_used", a.sat_used[s][p], b.sat_used[s][p]);
    }
  }
  VisitFields(a.total, b.total, "total", visit);
}

template <class Visit>
void VisitFields(const code_qc_block& a, const code_qc_block& b, const std::string& path, Visit&& visit) {
  visit(path, "system", a.system, b.system);
  visit(path, "count", a.count, b.count);
  for (int i = 0; i < 8; ++i) {
    const std::string entry = Indexed(path + ".entries", i);
    const code_qc_entry& x = a.entries[i];
    const code_qc_entry& y = b.entries[i];
    visit(entry, "code", x.code, y.code);
    visit(entry, "completeness", x.completeness, y.completeness);
    visit(entry, "mp_rms", x.mp_rms, y.mp_rms);
    visit(entry, "snr", x.snr, y.snr);
    visit(entry, "snr_below30", x.snr_below30, y.snr_below30);
    visit(entry, "snr_above30", x.snr_above30, y.snr_above30);
    visit(entry, "obs_per_slip", x.obs_per_slip, y.obs_per_slip);
    visit(entry, "slip_count", x.slip_count, y.slip_count);
    visit(entry, "expected_epochs", x.expected_epochs, y.expected_epochs);
    visit(entry, "observed_epochs", x.observed_epochs, y.observed_epochs);
    visit(entry, "mp_count", x.mp_count, y.mp_count);
    visit(entry, "snr_count", x.snr_count, y.snr_count);
    visit(entry, "snr_count_above30", x.snr_count_above30, y.snr_count_above30);
    visit(entry, "snr_count_below30", x.snr_count_below30, y.snr_count_below30);
    visit(entry, "iod_slip_count", x.iod_slip_count, y.iod_slip_count);
  }
}

template <class Visit>
void VisitFields(const total_code_qc_result& a, const total_code_qc_result& b, Visit&& visit) {
  for (int s = 0; s < 6; ++s) VisitFields(a.sys[s], b.sys[s], Indexed("sys", s), visit);
  for (int s = 0; s < 6; ++s) {
    for (int p = 0; p < 64; ++p) VisitFields(a.sat[s][p], b.sat[s][p], Indexed(Indexed("sat", s), p), visit);
  }
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_RECORD_FIELDS_H
