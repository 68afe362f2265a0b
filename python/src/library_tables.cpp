#include "python/src/library_tables.h"

#include <cstdint>
#include <string>

#include "host/report/figure_tables.h"
#include "host/report/library_headline.h"
#include "host/report/run_events.h"
#include "python/src/cells.h"
#include "python/src/figure_columns.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;

Table LibrarySystems(const Report& report) {
  Table table;
  Column& letters = table.Add("system", ColumnKind::kName);
  Column& names = table.Add("name", ColumnKind::kName);
  Column& combinations = table.Add("optimal_combination", ColumnKind::kTexts);
  Column& signals = table.Add("signals", ColumnKind::kTexts);
  std::vector<const Figures*> figures;
  for (const SystemReport& system : report.systems) {
    letters.AddText(Letter(system.letter));
    names.AddText(system.name);
    combinations.AddTexts(system.combination);
    signals.AddTexts(system.signals);
    figures.push_back(&system.figures);
  }
  AddFigureColumns(AllFigures().whole, figures, table);
  return table;
}

Table LibrarySignals(const Report& report) {
  Table table;
  Column& letters = table.Add("system", ColumnKind::kName);
  Column& signals = table.Add("signal", ColumnKind::kName);
  Column& bands = table.Add("band", ColumnKind::kName);
  for (const SignalReport& signal : report.signals) {
    letters.AddText(Letter(signal.letter));
    signals.AddText(signal.signal);
    bands.AddTextOrNull(signal.band);
  }
  AddFigureColumns(AllFigures().signal, Pointers(report.signals), table);
  return table;
}

Table LibrarySatellites(const Report& report) {
  Table table;
  Column& names = table.Add("satellite", ColumnKind::kName);
  Column& states = table.Add("state", ColumnKind::kName);
  std::vector<const Figures*> figures;
  for (const SatelliteReport& satellite : report.satellites) {
    names.AddText(satellite.name);
    states.AddText(satellite.state);
    figures.push_back(&satellite.figures);
  }
  AddFigureColumns(AllFigures().whole, figures, table);
  return table;
}

/// The bands of the library total, of systems and of satellites.
Table LibraryBands(const Report& report) {
  Table table;
  Column& subjects = table.Add("subject", ColumnKind::kName);
  Column& slots = table.Add("slot", ColumnKind::kWhole);
  Column& names = table.Add("band", ColumnKind::kName);
  std::vector<const BandFigures*> bands;
  const auto add = [&](const std::string& subject, const Figures& figures) {
    for (const BandFigures& band : figures.bands) {
      subjects.AddText(subject);
      slots.AddWhole(std::int64_t{band.slot});
      names.AddTextOrNull(band.band);
      bands.push_back(&band);
    }
  };
  add("all", report.library_total);
  for (const SystemReport& system : report.systems) add(Letter(system.letter), system.figures);
  for (const SatelliteReport& satellite : report.satellites) add(satellite.name, satellite.figures);
  AddFigureColumns(AllFigures().band, bands, table);
  return table;
}

Table Coverage(const Report& report) {
  Table table;
  Column& names = table.Add("satellite", ColumnKind::kName);
  Column& states = table.Add("state", ColumnKind::kName);
  Column& firsts = table.Add("first_reference", ColumnKind::kTime);
  Column& lasts = table.Add("last_reference", ColumnKind::kTime);
  for (const NavigationCoverage& row : report.run.navigation_coverage) {
    names.AddText(row.satellite);
    states.AddText(StateOf(report, row));
    firsts.AddTime(Nanoseconds(row.first_reference));
    lasts.AddTime(Nanoseconds(row.last_reference));
  }
  AddFigureColumns(AllFigures().coverage, Pointers(report.run.navigation_coverage), table);
  return table;
}

}  // namespace

std::vector<ReportTable> LibraryTables() {
  return {
      {"library_systems", LibrarySystems},       {"library_signals", LibrarySignals},
      {"library_satellites", LibrarySatellites}, {"library_bands", LibraryBands},
      {"navigation_coverage", Coverage},
  };
}

}  // namespace orsolva_python
