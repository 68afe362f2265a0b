#include "host/report/figure_list.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/report/window_figures.h"

namespace orsolva_host {
namespace {

class Lister {
 public:
  explicit Lister(const FigureTables& tables) : tables_(tables) {}

  template <typename Owner>
  void Add(FigureScope scope, const std::string& subject, const std::string& signal,
           const std::vector<FigureRow<Owner>>& rows, const Owner& owner) {
    for (const FigureRow<Owner>& row : rows) {
      out_.push_back({scope, subject, signal, row.key, UnitOf(row.kind), row.get(owner), row.source});
    }
  }

  void AddWhole(FigureScope scope, const std::string& subject, const Figures& figures) {
    Add(scope, subject, "", tables_.whole, figures);
    for (const BandFigures& band : figures.bands) Add(scope, subject, band.band, tables_.band, band);
  }

  void AddTotal(const Figures& total) {
    Add(FigureScope::kLibraryTotal, "all", "", tables_.total, total);
    for (const BandFigures& slot : total.bands) {
      Add(FigureScope::kLibraryTotal, "all", fmt::format("slot{}", slot.slot), tables_.slot, slot);
    }
  }

  /// Of the analysis, what the headline does not have already.
  void AddRest(const analysis::AnalysisResult& result) {
    for (const auto& row : tables_.analysis) {
      const bool listed = std::any_of(tables_.headline.begin(), tables_.headline.end(),
                                      [&row](const auto& r) { return std::string_view(r.key) == row.key; });
      if (!listed)
        out_.push_back({FigureScope::kRun, "", "", row.key, UnitOf(row.kind), row.get(result), row.source});
    }
  }

  /// @param each  whether every signal of every satellite is listed as well
  void AddAnalysis(const analysis::AnalysisResult& result, bool each) {
    AddRest(result);
    for (const analysis::SystemFigures& system : result.systems) {
      Add(FigureScope::kSystem, std::string(1, system.letter), "", tables_.analysis_system, system);
    }
    for (const analysis::SignalFigures& signal : result.signals) {
      AddSignal(FigureScope::kSignal, std::string(1, signal.system), signal);
    }
    for (const analysis::WideLaneFigures& pair : result.wide_lanes) {
      Add(FigureScope::kSignal, std::string(1, pair.system), NameOf(pair.first) + "-" + NameOf(pair.second),
          tables_.wide_lane, pair);
    }
    for (const analysis::SatelliteFigures& satellite : result.satellites) {
      Add(FigureScope::kSatellite, NameOf(satellite.id), "", tables_.analysis_satellite, satellite);
    }
    if (!each) return;
    for (const analysis::SignalFigures& signal : result.satellite_signals) {
      AddSignal(FigureScope::kSatellite, NameOf(signal.satellite), signal);
    }
  }

  void AddWindows(const std::vector<analysis::WindowFigures>& windows) {
    for (const analysis::WindowFigures& window : windows) {
      const std::string at = "@" + WindowName(window);
      Add(FigureScope::kWindow, "", at, tables_.window, window);
      for (const analysis::SystemFigures& system : window.systems)
        Add(FigureScope::kWindow, std::string(1, system.letter), at, tables_.window_system, system);
      for (const analysis::SignalFigures& signal : window.signals) {
        Add(FigureScope::kWindow, std::string(1, signal.system), NameOf(signal.code) + at,
            tables_.window_signal, signal);
      }
    }
  }

  std::vector<FigureValue> Take() { return std::move(out_); }

 private:
  void AddSignal(FigureScope scope, const std::string& subject, const analysis::SignalFigures& signal) {
    Add(scope, subject, NameOf(signal.code), tables_.analysis_signal, signal);
    const auto bins = [&](const char* key, FigureKind kind,
                          const std::vector<analysis::ElevationBin>& by_elevation) {
      for (const analysis::ElevationBin& bin : by_elevation) {
        const std::string place = fmt::format("{}@{}-{}", NameOf(signal.code), bin.from_deg, bin.to_deg);
        out_.push_back({scope, subject, place, key, UnitOf(kind), bin.value, FigureSource::kAnalysis});
      }
    };
    bins("strength_mean_dbhz", FigureKind::kDbHz, signal.strength.mean_by_elevation);
    bins("strength_p5_dbhz", FigureKind::kDbHz, signal.strength.p5_by_elevation);
    bins("multipath_moving_rms_m", FigureKind::kMetres, signal.multipath.by_elevation);
  }

  const FigureTables& tables_;
  std::vector<FigureValue> out_;
};

}  // namespace

std::vector<FigureValue> ListFigures(const Report& report, const FigureTables& tables) {
  Lister list(tables);
  list.Add(FigureScope::kRun, "", "", tables.run, report.run);
  list.Add(FigureScope::kHeadline, "", "", tables.headline, report.headline);
  list.AddAnalysis(report.analysis.figures, report.show_satellite_signals);
  list.Add(FigureScope::kRun, "", "", tables.library_run, report.run);
  list.Add(FigureScope::kHeadline, "", "", tables.library_headline, report.library_headline);
  list.AddTotal(report.library_total);
  for (const SystemReport& system : report.systems) {
    list.AddWhole(FigureScope::kSystem, std::string(1, system.letter), system.figures);
  }
  for (const SignalReport& signal : report.signals) {
    list.Add(FigureScope::kSignal, std::string(1, signal.letter), signal.signal, tables.signal, signal);
  }
  for (const SatelliteReport& satellite : report.satellites) {
    list.AddWhole(FigureScope::kSatellite, satellite.name, satellite.figures);
  }
  for (const NavigationCoverage& row : report.run.navigation_coverage) {
    list.Add(FigureScope::kSatellite, row.satellite, "", tables.coverage, row);
  }
  list.AddWindows(report.analysis.figures.windows);
  return list.Take();
}

}  // namespace orsolva_host
