#include "host/report/figure_list.h"

#include <fmt/format.h>

#include <cmath>

#include "host/report/figures.h"

namespace orsolva_host {
namespace {

class Lister {
 public:
  explicit Lister(std::vector<FigureValue>& out) : out_(out) {}

  void Begin(FigureScope scope, const std::string& subject) {
    scope_ = scope;
    subject_ = subject;
    signal_.clear();
  }
  void Signal(const std::string& signal) { signal_ = signal; }

  void Add(const char* key, const std::optional<double>& value) {
    const bool finite = value && std::isfinite(*value);
    out_.push_back({scope_, subject_, signal_, key, UnitOf(key), finite ? value : std::nullopt});
  }
  void Add(const char* key, const std::optional<Count>& count) {
    Add(key, count ? std::optional<double>(static_cast<double>(*count)) : std::nullopt);
  }
  void Add(const char* key, double value) { Add(key, std::optional<double>(value)); }

  void AddFigures(const Figures& f) {
    Add("expected_epochs", f.expected);
    Add("observed_epochs", f.observed);
    Add("completeness_ratio", f.completeness);
    Add("phase_geometry_slip_epochs", f.phase_geometry_slips);
    Add("mp_restart_epochs", f.mp_restarts);
    Add("observations_per_restart", f.obs_per_restart);
    for (const BandFigures& band : f.bands) {
      Signal(band.band.empty() ? fmt::format("slot{}", band.slot) : band.band);
      Add("mp_rms_m", band.mp_m);
      Add("snr_mean_dbhz", band.snr_dbhz);
      Add("snr_mean_below_30deg_dbhz", band.snr_below30_dbhz);
      Add("snr_mean_above_30deg_dbhz", band.snr_above30_dbhz);
      Add("iono_rms_cycles", band.iono_rms_cycles);
    }
  }

 private:
  std::vector<FigureValue>& out_;
  FigureScope scope_ = FigureScope::kRun;
  std::string subject_;
  std::string signal_;
};

void AddRun(const ReportRun& run, Lister& list) {
  list.Begin(FigureScope::kRun, "");
  list.Add("duration_h", run.duration_h);
  list.Add("interval_s", run.interval_s);
  list.Add("epochs", static_cast<double>(run.epochs));
  list.Add("judged_epochs", static_cast<double>(run.judged_epochs));
  list.Add("lost_epochs", static_cast<double>(run.lost_epochs));
  list.Add("distance_from_header_position_m", run.distance_from_header_m);
  list.Add("elevation_cutoff_deg", run.elevation_cutoff_deg);
  list.Add("averaging_window_epochs", static_cast<double>(run.averaging_window_epochs));
}

void AddSignal(const SignalReport& s, Lister& list) {
  list.Begin(FigureScope::kSignal, std::string(1, s.letter));
  list.Signal(s.signal);
  list.Add("expected_epochs", s.expected);
  list.Add("observed_epochs", s.observed);
  list.Add("completeness_ratio", s.completeness);
  list.Add("mp_rms_m", s.mp_m);
  list.Add("mp_values", s.mp_values);
  list.Add("mp_restart_epochs", s.mp_restarts);
  list.Add("phase_geometry_slip_epochs", s.phase_geometry_slips);
  list.Add("observations_per_restart", s.obs_per_restart);
  list.Add("snr_mean_dbhz", s.snr_dbhz);
  list.Add("snr_mean_below_30deg_dbhz", s.snr_below30_dbhz);
  list.Add("snr_mean_above_30deg_dbhz", s.snr_above30_dbhz);
}

void AddCoverage(const NavigationCoverage& c, Lister& list) {
  list.Begin(FigureScope::kSatellite, c.satellite);
  list.Add("epochs_seen", static_cast<double>(c.observed_epochs));
  list.Add("navigation_records", static_cast<double>(c.records));
  list.Add("unhealthy_records", static_cast<double>(c.unhealthy_records));
  list.Add("navigation_covered_ratio", c.covered_ratio);
}

}  // namespace

std::vector<FigureValue> ListFigures(const Report& report) {
  std::vector<FigureValue> figures;
  Lister list(figures);
  AddRun(report.run, list);
  list.Begin(FigureScope::kLibraryTotal, "all");
  list.AddFigures(report.library_total);
  for (const SystemReport& system : report.systems) {
    list.Begin(FigureScope::kSystem, std::string(1, system.letter));
    list.AddFigures(system.figures);
  }
  for (const SignalReport& signal : report.signals) AddSignal(signal, list);
  for (const SatelliteReport& satellite : report.satellites) {
    list.Begin(FigureScope::kSatellite, satellite.name);
    list.AddFigures(satellite.figures);
  }
  for (const NavigationCoverage& row : report.run.navigation_coverage) AddCoverage(row, list);
  return figures;
}

}  // namespace orsolva_host
