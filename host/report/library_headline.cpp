#include "host/report/library_headline.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "host/report/run_events.h"

namespace orsolva_host {
namespace {

std::optional<double> MultipathOf(const Figures& figures, int slot) {
  for (const BandFigures& band : figures.bands) {
    if (band.slot == slot) return band.mp_m;
  }
  return std::nullopt;
}

/// Sums over the systems that count their complete observations.
void AddCompleteness(const Report& report, LibraryHeadline& headline) {
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
    headline.expected = expected;
    headline.observed = observed;
    headline.completeness = static_cast<double>(observed) / static_cast<double>(expected);
  }
  if (observed > 0) {
    headline.obs_per_restart = static_cast<double>(restarts > 0 ? observed / restarts : observed);
  }
}

void AddSatellites(const Report& report, LibraryHeadline& headline) {
  const auto& rows = report.run.navigation_coverage;
  if (rows.empty()) return;
  const auto count = [&](std::string_view state) {
    return static_cast<Count>(std::count_if(rows.begin(), rows.end(), [&](const NavigationCoverage& row) {
      return StateOf(report, row) == state;
    }));
  };
  headline.satellites_observed = rows.size();
  headline.satellites_judged = count("judged");
  headline.satellites_excluded = count("excluded");
  headline.satellites_unhealthy = count("unhealthy");
  headline.satellites_without_record = count("no_record");
  headline.satellites_without_position = count("no_position");
  headline.satellites_below_cutoff = count("below_cutoff");
}

void AddEvents(const RunEvents& events, LibraryHeadline& headline) {
  Count slips = 0;
  Count jumps = 0;
  Count gaps = 0;
  for (const SatelliteEvents& satellite : events.satellites) {
    slips += satellite.geometry_free_slips;
    jumps += satellite.code_jumps;
    gaps += satellite.gaps.size();
  }
  headline.geometry_free_slips = slips;
  headline.code_jumps = jumps;
  headline.receiver_slip_epochs = events.receiver_epochs.size();
  headline.gaps_in_view = gaps;
}

}  // namespace

std::string StateOf(const Report& report, const NavigationCoverage& satellite) {
  const auto known = report.states.find(satellite.satellite);
  if (known != report.states.end()) return known->second;
  if (satellite.records > 0) return "no_position";
  return satellite.unhealthy_records > 0 ? "unhealthy" : "no_record";
}

LibraryHeadline LibraryHeadlineOf(const Report& report, const RunEvents* events) {
  LibraryHeadline headline;
  AddCompleteness(report, headline);
  headline.mp1_m = MultipathOf(report.library_total, 1);
  headline.mp2_m = MultipathOf(report.library_total, 2);
  AddSatellites(report, headline);
  if (events != nullptr) AddEvents(*events, headline);
  return headline;
}

// The text of a heading is the line of the report and, after the bar, what follows the number in it.
// clang-format off
std::vector<FigureRow<LibraryHeadline>> LibraryHeadlineRows() {
  return {
      {"expected_epochs",            FigureKind::kEpochs,       Get<&LibraryHeadline::expected>,                   {"Completeness|epochs expected", 0, 0}, 0},
      {"observed_epochs",            FigureKind::kEpochs,       Get<&LibraryHeadline::observed>,                   {"Completeness|observed", 0, 0}, 0},
      {"completeness_ratio",         FigureKind::kRatio,        Get<&LibraryHeadline::completeness>,               {"Completeness|", 0, 2},   2},
      {"mp1_rms_m",                  FigureKind::kMetres,       Get<&LibraryHeadline::mp1_m>,                      {"Multipath|MP1", 0, 3},   3},
      {"mp2_rms_m",                  FigureKind::kMetres,       Get<&LibraryHeadline::mp2_m>,                      {"Multipath|MP2", 0, 3},   3},
      {"observations_per_restart",   FigureKind::kObservations, Get<&LibraryHeadline::obs_per_restart>,            {"Multipath|observations per restart", 0, 0}, 0},
      {"satellites_observed",        FigureKind::kSatellites,   Get<&LibraryHeadline::satellites_observed>,        {"Satellites|observed", 0, 0}, 0},
      {"satellites_judged",          FigureKind::kSatellites,   Get<&LibraryHeadline::satellites_judged>,          {"Satellites|judged", 0, 0}, 0},
      {"satellites_excluded",        FigureKind::kSatellites,   Get<&LibraryHeadline::satellites_excluded>,        {"Satellites|excluded", 0, 0}, 0},
      {"satellites_unhealthy",       FigureKind::kSatellites,   Get<&LibraryHeadline::satellites_unhealthy>,       {"Satellites|unhealthy", 0, 0}, 0},
      {"satellites_without_record",  FigureKind::kSatellites,   Get<&LibraryHeadline::satellites_without_record>,  {"Satellites|without record", 0, 0}, 0},
      {"satellites_without_position", FigureKind::kSatellites,  Get<&LibraryHeadline::satellites_without_position>, {"Satellites|without position", 0, 0}, 0},
      {"satellites_below_cutoff",    FigureKind::kSatellites,   Get<&LibraryHeadline::satellites_below_cutoff>,    {"Satellites|below the cut-off", 0, 0}, 0},
      {"geometry_free_slips",        FigureKind::kEvents,       Get<&LibraryHeadline::geometry_free_slips>,        {"Events|geometry-free slips", 0, 0}, 0},
      {"code_jumps",                 FigureKind::kEvents,       Get<&LibraryHeadline::code_jumps>,                 {"Events|code jumps", 0, 0}, 0},
      {"receiver_slip_epochs",       FigureKind::kEpochs,       Get<&LibraryHeadline::receiver_slip_epochs>,       {"Events|slips of the receiver", 0, 0}, 0},
      {"gaps_in_view",               FigureKind::kEvents,       Get<&LibraryHeadline::gaps_in_view>,               {"Events|gaps in view", 0, 0}, 0},
  };
}
// clang-format on

}  // namespace orsolva_host
