#include "host/report/build_report.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "host/report/notes.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_host {
namespace {

constexpr int kBandSlots = 6;
constexpr int kSatellitesPerSlot = 64;
constexpr int kBdsSlot = 2;
constexpr int kNewBdsSlot = 5;
constexpr int kFirstNewBds = 18;
constexpr int kMostCodes = 8;
constexpr double kSameSnr_dbhz = 0.005;

/// The value, absent when it stands for nothing.
std::optional<double> Given(double value) {
  if (!std::isfinite(value) || value == 0) return std::nullopt;
  return value;
}

std::optional<double> GivenIf(bool has_data, double value) {
  if (!has_data || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<Count> CountIf(bool has_data, std::int64_t count) {
  if (!has_data || count < 0) return std::nullopt;
  return static_cast<Count>(count);
}

int EntriesIn(const code_qc_block& block) { return std::clamp(block.count, 0, kMostCodes); }

bool HasData(const code_qc_entry& e) { return e.observed_epochs > 0 || e.mp_count > 0 || e.snr_count > 0; }

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : "|") + name;
  return text;
}

SignalReport SignalOf(const SystemRow& system, const code_qc_entry& e) {
  SignalReport s;
  s.letter = system.letter;
  s.name = system.name;
  s.signal = SignalName(system.code, e.code);
  s.band = BandName(system.code, SignalBandSlot(system.code, e.code));
  const bool seen = e.expected_epochs > 0;
  s.expected = seen ? std::optional<Count>(e.expected_epochs) : std::nullopt;
  s.observed = seen ? std::optional<Count>(e.observed_epochs) : std::nullopt;
  s.completeness = GivenIf(seen, e.completeness);
  s.mp_m = GivenIf(e.mp_count > 0, e.mp_rms);
  s.mp_values = e.mp_count > 0 ? std::optional<Count>(e.mp_count) : std::nullopt;
  s.mp_restarts = CountIf(e.mp_count > 0, e.slip_count);
  s.phase_geometry_slips = CountIf(e.mp_count > 0, e.iod_slip_count);
  s.obs_per_restart = GivenIf(e.mp_count > 0 && e.observed_epochs > 0, e.obs_per_slip);
  s.snr_dbhz = GivenIf(e.snr_count > 0, e.snr);
  s.snr_below30_dbhz = GivenIf(e.snr_count_below30 > 0, e.snr_below30);
  s.snr_above30_dbhz = GivenIf(e.snr_count_above30 > 0, e.snr_above30);
  return s;
}

std::string StateOf(std::uint32_t used) {
  if (used == 0) return "excluded";
  return static_cast<std::int32_t>(used) > 0 ? "used" : "unhealthy";
}

void AddSystem(int slot, const result_qct& result, const total_code_qc_result& codes, Report& report) {
  const SystemRow& row = kSystemTable[slot];
  const code_qc_block& block = codes.sys[slot];
  SystemReport system;
  system.letter = row.letter;
  system.name = row.name;
  system.figures = FiguresOf(result.sys[slot], row.code);
  system.combination = CombinationOf(result.sys[slot], block);
  for (int i = 0; i < EntriesIn(block); ++i) {
    const code_qc_entry& entry = block.entries[i];
    if (!HasData(entry)) continue;
    report.signals.push_back(SignalOf(row, entry));
    system.signals.push_back(report.signals.back().signal);
  }
  if (system.figures.expected || !system.signals.empty()) report.systems.push_back(std::move(system));
}

void AddSatellites(int slot, const result_qct& result, Report& report) {
  const SystemRow& row = kSystemTable[slot];
  for (int i = 0; i < kSatellitesPerSlot; ++i) {
    const int used_slot = slot == kBdsSlot && i + 1 >= kFirstNewBds ? kNewBdsSlot : slot;
    SatelliteReport satellite;
    satellite.figures = FiguresOf(result.sat[slot][i], row.code);
    if (!satellite.figures.expected) continue;
    satellite.name = SatelliteName(row.letter, i + 1);
    satellite.state = StateOf(result.sat_used[used_slot][i]);
    report.satellites.push_back(std::move(satellite));
  }
}

/// The epochs an interval allows in the span, without the lost ones: the library's count of those it took.
Count JudgedEpochs(const result_qct& result, double interval_s) {
  const double span_s = std::round(Difference(result.end_time, result.start_time) * 1000) / 1000;
  const double judged = std::floor(span_s / interval_s + 1.0) - result.lost_epochs;
  constexpr double kMost = 1e15;
  return judged >= 0 && judged < kMost ? static_cast<Count>(judged) : 0;
}

/// Galileo combinations with a code that has no completeness channel are counted as observed nowhere: no
/// data, not a zero.
void DropUncountedObservations(Report& report) {
  const auto drop = [](Figures& f) {
    if (f.observed != Count{0}) return;
    f.observed.reset();
    f.completeness.reset();
  };
  for (SystemReport& system : report.systems) {
    if (!HasUncountedCode(system)) continue;
    drop(system.figures);
    for (SatelliteReport& satellite : report.satellites) {
      if (satellite.name[0] == system.letter) drop(satellite.figures);
    }
  }
}

std::optional<double> MultipathOf(const Figures& figures, int slot) {
  for (const BandFigures& band : figures.bands) {
    if (band.slot == slot) return band.mp_m;
  }
  return std::nullopt;
}

Headline HeadlineOf(const Report& report) {
  Headline sum;
  Count expected = 0;
  Count observed = 0;
  Count restarts = 0;
  for (const SystemReport& system : report.systems) {
    const Figures& f = system.figures;
    if (!f.expected || !f.observed) continue;
    expected += *f.expected;
    observed += *f.observed;
    restarts += f.mp_restarts.value_or(0);
  }
  if (expected > 0) {
    sum.expected = expected;
    sum.observed = observed;
    sum.completeness = static_cast<double>(observed) / static_cast<double>(expected);
  }
  if (observed > 0) sum.obs_per_restart = static_cast<double>(restarts > 0 ? observed / restarts : observed);
  sum.mp1_m = MultipathOf(report.library_total, 1);
  sum.mp2_m = MultipathOf(report.library_total, 2);
  return sum;
}

}  // namespace

Figures FiguresOf(const qc_core_summary& s, int system) {
  Figures f;
  const bool seen = s.expected_epochs > 0;
  const bool observed = s.observed_epochs > 0;
  if (seen) f.expected = s.expected_epochs;
  if (seen) f.observed = s.observed_epochs;
  f.completeness = GivenIf(seen, s.completeness);
  if (observed || s.slip_epochs > 0) f.phase_geometry_slips = s.slip_epochs;
  const bool multipath = std::any_of(std::begin(s.mp), std::end(s.mp), [](double mp) { return mp > 0; });
  if (observed || multipath || s.jump_epochs > 0) f.mp_restarts = s.jump_epochs;
  f.obs_per_restart = GivenIf(observed, s.obs_per_slip);
  for (int i = 0; i < kBandSlots; ++i) {
    BandFigures band;
    band.slot = i + 1;
    band.band = BandName(system, band.slot);
    band.mp_m = Given(s.mp[i]);
    band.snr_dbhz = Given(s.snr[i]);
    band.snr_below30_dbhz = Given(s.snr_30[i][0]);
    band.snr_above30_dbhz = Given(s.snr_30[i][1]);
    band.iono_rms_cycles = Given(s.iod[i]);
    if (band.HasData()) f.bands.push_back(band);
  }
  return f;
}

std::vector<std::string> CombinationOf(const qc_core_summary& summary, const code_qc_block& codes) {
  std::vector<std::string> combination;
  for (int slot = 1; slot <= kBandSlots; ++slot) {
    if (summary.snr[slot - 1] == 0 && summary.mp[slot - 1] == 0) continue;
    std::vector<std::string> all;
    std::vector<std::string> same;
    for (int i = 0; i < EntriesIn(codes); ++i) {
      const code_qc_entry& entry = codes.entries[i];
      if (SignalBandSlot(codes.system, entry.code) != slot || !HasData(entry)) continue;
      all.emplace_back(SignalName(codes.system, entry.code));
      if (std::fabs(entry.snr - summary.snr[slot - 1]) < kSameSnr_dbhz) same.push_back(all.back());
    }
    if (!all.empty()) combination.push_back(same.size() == 1 ? same[0] : Joined(all));
  }
  return combination;
}

int AveragingWindow(double interval_s) {
  if (interval_s <= 5.0) return 50;
  return interval_s <= 30.0 ? static_cast<int>(300.0 / interval_s) : 10;
}

Report BuildReport(ReportRun run, const result_qct& result, const total_code_qc_result& codes) {
  Report report;
  report.run = std::move(run);
  const bool any = result.start_time.time != 0 || result.end_time.time != 0;
  if (any) report.run.first_epoch = result.start_time;
  if (any) report.run.last_epoch = result.end_time;
  report.run.duration_h = std::isfinite(result.duration) ? result.duration : 0;
  report.run.lost_epochs = result.lost_epochs;
  report.run.averaging_window_epochs = AveragingWindow(report.run.interval_s);
  report.run.judged_epochs = JudgedEpochs(result, report.run.interval_s);
  for (int i = 0; i < 3; ++i) report.run.position_m[i] = result.station_xyz[i];
  for (int slot = 0; slot < kSystems; ++slot) {
    AddSystem(slot, result, codes, report);
    AddSatellites(slot, result, report);
  }
  report.library_total = FiguresOf(result.total, 0);
  DropUncountedObservations(report);
  report.headline = HeadlineOf(report);
  report.notes = NotesOf(report);
  return report;
}

std::vector<ReportNotice> NoticesOf(const Diagnostics& diagnostics) {
  std::vector<ReportNotice> notices;
  for (const Notice& n : diagnostics.Notices()) {
    notices.push_back({n.file, n.line, n.text, n.count, n.recovered});
  }
  return notices;
}

}  // namespace orsolva_host
