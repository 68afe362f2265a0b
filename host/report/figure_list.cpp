#include "host/report/figure_list.h"

#include <fmt/format.h>

namespace orsolva_host {
namespace {

class Lister {
 public:
  explicit Lister(const FigureTables& tables) : tables_(tables) {}

  template <typename Owner>
  void Add(FigureScope scope, const std::string& subject, const std::string& signal,
           const std::vector<FigureRow<Owner>>& rows, const Owner& owner) {
    for (const FigureRow<Owner>& row : rows) {
      out_.push_back({scope, subject, signal, row.key, UnitOf(row.kind), row.get(owner)});
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

  std::vector<FigureValue> Take() { return std::move(out_); }

 private:
  const FigureTables& tables_;
  std::vector<FigureValue> out_;
};

}  // namespace

std::vector<FigureValue> ListFigures(const Report& report, const FigureTables& tables) {
  Lister list(tables);
  list.Add(FigureScope::kRun, "", "", tables.run, report.run);
  list.Add(FigureScope::kHeadline, "", "", tables.headline, report.headline);
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
  return list.Take();
}

}  // namespace orsolva_host
