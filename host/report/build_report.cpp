#include "host/report/build_report.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "host/report/findings.h"
#include "host/report/headline.h"
#include "host/report/library_figures.h"
#include "host/report/notes.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

constexpr double kSameSnr_dbhz = 0.005;

int EntriesIn(const code_qc_block& block) { return std::clamp(block.count, 0, ORSOLVA_MAX_CODES); }

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : "|") + name;
  return text;
}

const char* StateOf(std::uint32_t used) {
  if (used == 0) return "excluded";
  return static_cast<std::int32_t>(used) > 0 ? "judged" : "unhealthy";
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
  for (int i = 0; i < ORSOLVA_MAX_NUMBERS; ++i) {
    const bool bd3 = row.code == kBds && i + 1 >= ORSOLVA_FIRST_BDS3;
    const int used_slot = bd3 ? ORSOLVA_BD3_SLOT : slot;
    SatelliteReport satellite;
    satellite.figures = FiguresOf(result.sat[slot][i], row.code);
    satellite.name = SatelliteName(row.letter, i + 1);
    const std::uint32_t used = result.sat_used[used_slot][i];
    satellite.state = StateOf(used);
    if (static_cast<std::int32_t>(used) <= 0) report.unusable.push_back({satellite.name, StateOf(used)});
    if (!satellite.figures.expected) continue;
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

}  // namespace

std::vector<std::string> CombinationOf(const qc_core_summary& summary, const code_qc_block& codes) {
  std::vector<std::string> combination;
  for (int slot = 1; slot <= ORSOLVA_BAND_SLOTS; ++slot) {
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
  Conclude(report, nullptr);
  return report;
}

void Conclude(Report& report, const RunEvents* events) {
  report.headline = HeadlineOf(report, events);
  report.findings = FindingsOf(report, events);
  report.notes = NotesOf(report);
}

std::vector<ReportNotice> NoticesOf(const Diagnostics& diagnostics) {
  std::vector<ReportNotice> notices;
  for (const Notice& n : diagnostics.Notices()) {
    notices.push_back({n.file, n.line, n.text, n.count, n.recovered});
  }
  return notices;
}

}  // namespace orsolva_host
