#include "python/src/analysis_tables.h"

#include <cstdint>
#include <string>

#include "host/report/figure_tables.h"
#include "python/src/cells.h"
#include "python/src/figure_columns.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;
using analysis::SignalFigures;
using analysis::WindowFigures;

Table Systems(const Report& report) {
  Table table;
  Column& letters = table.Add("system", ColumnKind::kName);
  for (const auto& system : report.analysis.figures.systems) letters.AddText(Letter(system.letter));
  AddFigureColumns(AllFigures().analysis_system, Pointers(report.analysis.figures.systems), table);
  return table;
}

Table SignalTable(const std::vector<SignalFigures>& signals, bool by_satellite) {
  Table table;
  Column& systems = table.Add("system", ColumnKind::kName);
  Column* const satellites = by_satellite ? &table.Add("satellite", ColumnKind::kName) : nullptr;
  Column& codes = table.Add("signal", ColumnKind::kName);
  Column& partners = table.Add("multipath_partner", ColumnKind::kName);
  Column& methods = table.Add("phase_noise_method", ColumnKind::kName);
  for (const SignalFigures& signal : signals) {
    systems.AddText(Letter(signal.system));
    if (satellites != nullptr) satellites->AddText(NameOf(signal.satellite));
    codes.AddText(NameOf(signal.code));
    partners.AddTextOrNull(signal.multipath.partner);
    methods.AddTextOrNull(signal.phase_noise.method);
  }
  AddFigureColumns(AllFigures().analysis_signal, Pointers(signals), table);
  return table;
}

Table Signals(const Report& report) { return SignalTable(report.analysis.figures.signals, false); }

Table SatelliteSignals(const Report& report) {
  return SignalTable(report.analysis.figures.satellite_signals, true);
}

Table Satellites(const Report& report) {
  Table table;
  Column& names = table.Add("satellite", ColumnKind::kName);
  Column& firsts = table.Add("first_epoch", ColumnKind::kTime);
  Column& lasts = table.Add("last_epoch", ColumnKind::kTime);
  Column& lacking = table.Add("lacking_signals", ColumnKind::kTexts);
  for (const auto& satellite : report.analysis.figures.satellites) {
    names.AddText(NameOf(satellite.id));
    firsts.AddTime(satellite.first_ns);
    lasts.AddTime(satellite.last_ns);
    lacking.AddTexts(Names(satellite.lacking));
  }
  AddFigureColumns(AllFigures().analysis_satellite, Pointers(report.analysis.figures.satellites), table);
  return table;
}

Table WideLanes(const Report& report) {
  Table table;
  Column& systems = table.Add("system", ColumnKind::kName);
  Column& firsts = table.Add("signal", ColumnKind::kName);
  Column& seconds = table.Add("second_signal", ColumnKind::kName);
  for (const auto& pair : report.analysis.figures.wide_lanes) {
    systems.AddText(Letter(pair.system));
    firsts.AddText(NameOf(pair.first));
    seconds.AddText(NameOf(pair.second));
  }
  AddFigureColumns(AllFigures().wide_lane, Pointers(report.analysis.figures.wide_lanes), table);
  return table;
}

/// The rows of one list of elevation bins.
class BinTable {
 public:
  void Add(const SignalFigures& signal, const char* figure, const std::vector<analysis::ElevationBin>& bins) {
    const std::string satellite = signal.satellite.system == ' ' ? std::string() : NameOf(signal.satellite);
    for (const analysis::ElevationBin& bin : bins) {
      systems_.AddText(Letter(signal.system));
      satellites_.AddTextOrNull(satellite);
      signals_.AddText(NameOf(signal.code));
      figures_.AddText(figure);
      from_.AddWhole(std::int64_t{bin.from_deg});
      to_.AddWhole(std::int64_t{bin.to_deg});
      value_.AddReal(bin.value);
      values_.AddWhole(static_cast<std::int64_t>(bin.values));
    }
  }
  void Add(const std::vector<SignalFigures>& signals) {
    for (const SignalFigures& signal : signals) {
      Add(signal, "strength_mean_dbhz", signal.strength.mean_by_elevation);
      Add(signal, "strength_p5_dbhz", signal.strength.p5_by_elevation);
      Add(signal, "multipath_moving_rms_m", signal.multipath.by_elevation);
    }
  }

  Table table;

 private:
  Column& systems_ = table.Add("system", ColumnKind::kName);
  Column& satellites_ = table.Add("satellite", ColumnKind::kName);
  Column& signals_ = table.Add("signal", ColumnKind::kName);
  Column& figures_ = table.Add("figure", ColumnKind::kName);
  Column& from_ = table.Add("from_deg", ColumnKind::kWhole);
  Column& to_ = table.Add("to_deg", ColumnKind::kWhole);
  Column& value_ = table.Add("value", ColumnKind::kReal);
  Column& values_ = table.Add("values", ColumnKind::kWhole);
};

Table ByElevation(const Report& report) {
  BinTable bins;
  bins.Add(report.analysis.figures.signals);
  bins.Add(report.analysis.figures.satellite_signals);
  return bins.table;
}

Table Drops(const Report& report) {
  Table table;
  Column& satellites = table.Add("satellite", ColumnKind::kName);
  Column& signals = table.Add("signal", ColumnKind::kName);
  Column& from = table.Add("from_time", ColumnKind::kTime);
  Column& to = table.Add("to_time", ColumnKind::kTime);
  Column& mean = table.Add("mean_drop_db", ColumnKind::kReal);
  Column& largest = table.Add("largest_drop_db", ColumnKind::kReal);
  Column& others = table.Add("other_bands_dropped", ColumnKind::kYesNo);
  for (const SignalFigures& signal : report.analysis.figures.satellite_signals) {
    for (const analysis::StrengthDrop& drop : signal.strength.drops) {
      satellites.AddText(NameOf(signal.satellite));
      signals.AddText(NameOf(signal.code));
      from.AddTime(drop.from_ns);
      to.AddTime(drop.to_ns);
      mean.AddReal(drop.mean_drop_db);
      largest.AddReal(drop.largest_drop_db);
      others.AddYesNo(drop.other_bands);
    }
  }
  return table;
}

Table Gaps(const Report& report) {
  Table table;
  Column& before = table.Add("last_before", ColumnKind::kTime);
  Column& after = table.Add("first_after", ColumnKind::kTime);
  Column& missing = table.Add("missing_epochs", ColumnKind::kWhole);
  for (const analysis::DataGap& gap : report.analysis.figures.span.gaps) {
    before.AddTime(gap.last_before_ns);
    after.AddTime(gap.first_after_ns);
    missing.AddWhole(static_cast<std::int64_t>(gap.missing_epochs));
  }
  return table;
}

Table NeverObserved(const Report& report) {
  Table table;
  Column& names = table.Add("satellite", ColumnKind::kName);
  Column& healthy = table.Add("healthy_epochs", ColumnKind::kWhole);
  Column& unhealthy = table.Add("unhealthy_epochs", ColumnKind::kWhole);
  for (const auto& satellite : report.analysis.figures.never_observed) {
    names.AddText(NameOf(satellite.id));
    healthy.AddWhole(static_cast<std::int64_t>(satellite.healthy_epochs));
    unhealthy.AddWhole(static_cast<std::int64_t>(satellite.unhealthy_epochs));
  }
  return table;
}

Table Contradictions(const Report& report) {
  Table table;
  Column& ids = table.Add("id", ColumnKind::kText);
  Column& stated = table.Add("stated", ColumnKind::kText);
  Column& found = table.Add("found", ColumnKind::kText);
  for (const auto& contradiction : report.analysis.figures.contradictions) {
    ids.AddText(contradiction.id);
    stated.AddText(contradiction.stated);
    found.AddText(contradiction.found);
  }
  return table;
}

Table Windows(const Report& report) {
  Table table;
  Column& from = table.Add("from_time", ColumnKind::kTime);
  Column& to = table.Add("to_time", ColumnKind::kTime);
  for (const WindowFigures& window : report.analysis.figures.windows) {
    from.AddTime(window.from_ns);
    to.AddTime(window.to_ns);
  }
  AddFigureColumns(AllFigures().window, Pointers(report.analysis.figures.windows), table);
  return table;
}

Table WindowSystems(const Report& report) {
  Table table;
  Column& from = table.Add("from_time", ColumnKind::kTime);
  Column& letters = table.Add("system", ColumnKind::kName);
  std::vector<const analysis::SystemFigures*> rows;
  for (const WindowFigures& window : report.analysis.figures.windows) {
    for (const auto& system : window.systems) {
      from.AddTime(window.from_ns);
      letters.AddText(Letter(system.letter));
      rows.push_back(&system);
    }
  }
  AddFigureColumns(AllFigures().window_system, rows, table);
  return table;
}

Table WindowSignals(const Report& report) {
  Table table;
  Column& from = table.Add("from_time", ColumnKind::kTime);
  Column& letters = table.Add("system", ColumnKind::kName);
  Column& codes = table.Add("signal", ColumnKind::kName);
  std::vector<const SignalFigures*> rows;
  for (const WindowFigures& window : report.analysis.figures.windows) {
    for (const SignalFigures& signal : window.signals) {
      from.AddTime(window.from_ns);
      letters.AddText(Letter(signal.system));
      codes.AddText(NameOf(signal.code));
      rows.push_back(&signal);
    }
  }
  AddFigureColumns(AllFigures().window_signal, rows, table);
  return table;
}

}  // namespace

std::vector<ReportTable> AnalysisTables() {
  return {
      {"systems", Systems},
      {"signals", Signals},
      {"satellites", Satellites},
      {"satellite_signals", SatelliteSignals},
      {"wide_lanes", WideLanes},
      {"by_elevation", ByElevation},
      {"windows", Windows},
      {"window_systems", WindowSystems},
      {"window_signals", WindowSignals},
      {"gaps", Gaps},
      {"strength_drops", Drops},
      {"never_observed", NeverObserved},
      {"contradictions", Contradictions},
  };
}

}  // namespace orsolva_python
