#include "host/report/build_report.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "host/report/findings.h"
#include "host/report/headline.h"
#include "host/report/library_figures.h"
#include "host/report/library_headline.h"
#include "host/report/notes.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

int EntriesIn(const code_qc_block& block) { return std::clamp(block.count, 0, ORSOLVA_MAX_CODES); }

/// The codes that a run chose for a system: of each band the one that its figures are of.
std::vector<std::string> CombinationOf(const SystemRow& system, const orsolva::ChosenCombination& chosen) {
  std::vector<std::string> combination;
  for (int slot = 0; slot < ORSOLVA_BAND_SLOTS; ++slot) {
    // Bands without completeness and SNR have a code for multipath only.
    const int code = chosen.codes[slot] != 0 ? chosen.codes[slot] : chosen.mp_codes[slot];
    if (code != 0) combination.emplace_back(SignalName(system.code, code));
  }
  return combination;
}

const char* StateOf(std::uint32_t used) {
  if (used == 0) return "excluded";
  return static_cast<std::int32_t>(used) > 0 ? "judged" : "unhealthy";
}

void AddSystem(int slot, const result_qct& result, const total_code_qc_result& codes,
               const orsolva::RunFacts& facts, Report& report) {
  const SystemRow& row = kSystemTable[slot];
  const code_qc_block& block = codes.sys[slot];
  SystemReport system;
  system.letter = row.letter;
  system.name = row.name;
  system.figures = FiguresOf(result.sys[slot], row.code);
  system.combination = CombinationOf(row, facts.systems[slot].combination);
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
    satellite.state = StateOf(result.sat_used[used_slot][i]);
    if (!satellite.figures.expected) continue;
    report.satellites.push_back(std::move(satellite));
  }
}

const char* StateOf(orsolva::SatelliteUse use) {
  switch (use) {
    case orsolva::SatelliteUse::kUsed:
      return "judged";
    case orsolva::SatelliteUse::kExcluded:
    case orsolva::SatelliteUse::kSystemDisabled:
      return "excluded";
    case orsolva::SatelliteUse::kUnhealthy:
      return "unhealthy";
    case orsolva::SatelliteUse::kNoRecord:
      return "no_record";
    case orsolva::SatelliteUse::kBelowCutoff:
      return "below_cutoff";
    case orsolva::SatelliteUse::kNotObserved:
    case orsolva::SatelliteUse::kNoElevation:
      break;
  }
  return "no_position";
}

void AddStates(const orsolva::RunFacts& facts, Report& report) {
  for (const orsolva::SatelliteFacts& satellite : facts.satellites) {
    const int slot = SystemSlotOfCode(satellite.sys);
    if (slot >= 0)
      report.states[SatelliteName(kSystemTable[slot].letter, satellite.prn)] = StateOf(satellite.use);
  }
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
  const bool any_counts = std::any_of(report.systems.begin(), report.systems.end(),
                                      [](const SystemReport& s) { return s.figures.observed.has_value(); });
  if (!any_counts) drop(report.library_total);
}

}  // namespace

Report BuildReport(ReportRun run, const result_qct& result, const total_code_qc_result& codes,
                   const orsolva::RunFacts& facts) {
  Report report;
  report.run = std::move(run);
  const bool any = result.start_time.time != 0 || result.end_time.time != 0;
  if (any) report.run.first_epoch = result.start_time;
  if (any) report.run.last_epoch = result.end_time;
  report.run.duration_h = std::isfinite(result.duration) ? result.duration : 0;
  report.run.lost_epochs = result.lost_epochs;
  report.run.averaging_window_epochs = facts.averaging_window_epochs;
  report.run.judged_epochs = facts.epochs;
  report.run.position_m = {result.station_xyz[0], result.station_xyz[1], result.station_xyz[2]};
  for (int slot = 0; slot < kSystems; ++slot) {
    AddSystem(slot, result, codes, facts, report);
    AddSatellites(slot, result, report);
  }
  AddStates(facts, report);
  report.library_total = FiguresOf(result.total, 0);
  DropUncountedObservations(report);
  Conclude(report, nullptr);
  return report;
}

void Conclude(Report& report, const RunEvents* events) {
  report.headline = HeadlineOf(report.analysis.figures);
  report.library_headline = LibraryHeadlineOf(report, events);
  report.findings = FindingsOf(report);
  report.verdict = VerdictOf(report);
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
