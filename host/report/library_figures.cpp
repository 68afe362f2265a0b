#include "host/report/library_figures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>

#include "host/rinex/signal_codes.h"
#include "orsolva/records.h"

namespace orsolva_host {
namespace {

/// The value; 0 and what is not finite mean no data.
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

/// The largest multipath RMS of the bands.
std::optional<double> WorstMultipath(const Figures& figures) {
  std::optional<double> worst;
  for (const BandFigures& band : figures.bands) {
    if (band.mp_m && (!worst || *band.mp_m > *worst)) worst = band.mp_m;
  }
  return worst;
}

constexpr TextColumn kNoColumn = {};

}  // namespace

bool HasData(const code_qc_entry& e) { return e.observed_epochs > 0 || e.mp_count > 0 || e.snr_count > 0; }

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
  for (int i = 0; i < static_cast<int>(std::size(s.mp)); ++i) {
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

// Columns: key, kind, value, heading with width and decimals in the text report, decimals in lines for grep.
// clang-format off
std::vector<FigureRow<Figures>> WholeRows() {
  return {
      {"expected_epochs",            FigureKind::kEpochs,       Get<&Figures::expected>,             {"Expected", 9, 0}, 0},
      {"observed_epochs",            FigureKind::kEpochs,       Get<&Figures::observed>,             {"Observed", 9, 0}, 0},
      {"completeness_ratio",         FigureKind::kRatio,        Get<&Figures::completeness>,         {"Compl %", 8, 2},  2},
      {"phase_geometry_slip_epochs", FigureKind::kEpochs,       Get<&Figures::phase_geometry_slips>, {"PG slips", 9, 0}, 0},
      {"mp_restart_epochs",          FigureKind::kEpochs,       Get<&Figures::mp_restarts>,          {"Rst", 5, 0},      0},
      {"observations_per_restart",   FigureKind::kObservations, Get<&Figures::obs_per_restart>,      {"Obs/rst", 8, 0},  0},
      {"mp_worst_rms_m",             FigureKind::kMetres,       WorstMultipath,                         {nullptr, 0, 3}},
  };
}

std::vector<FigureRow<BandFigures>> BandRows() {
  return {
      {"mp_rms_m",                  FigureKind::kMetres, Get<&BandFigures::mp_m>,             {"MP", 9, 3},          3},
      {"snr_mean_dbhz",             FigureKind::kDbHz,   Get<&BandFigures::snr_dbhz>,         {"SNR", 10, 2},        2},
      {"snr_mean_below_30deg_dbhz", FigureKind::kDbHz,   Get<&BandFigures::snr_below30_dbhz>, {"SNR<=30deg", 12, 2}, kNotInSum},
      {"snr_mean_above_30deg_dbhz", FigureKind::kDbHz,   Get<&BandFigures::snr_above30_dbhz>, {"SNR>30deg", 12, 2},  kNotInSum},
      {"iono_rms_cycles",           FigureKind::kCycles, Get<&BandFigures::iono_rms_cycles>,  {"Iono RMS", 14, 4},   kNotInSum},
  };
}

std::vector<FigureRow<Figures>> TotalRows() {
  return {
      {"total_expected_epochs",            FigureKind::kEpochs,       Get<&Figures::expected>,             {"Total exp", 11, 0}, 0},
      {"total_observed_epochs",            FigureKind::kEpochs,       Get<&Figures::observed>,             {"Total obs", 11, 0}, 0},
      {"total_completeness_ratio",         FigureKind::kRatio,        Get<&Figures::completeness>,         {"Total %", 9, 2},    2},
      {"total_phase_geometry_slip_epochs", FigureKind::kEpochs,       Get<&Figures::phase_geometry_slips>, {"PG slips", 10, 0},  0},
      {"total_mp_restart_epochs",          FigureKind::kEpochs,       Get<&Figures::mp_restarts>,          {"Restarts", 10, 0},  0},
      {"total_observations_per_restart",   FigureKind::kObservations, Get<&Figures::obs_per_restart>,      {"Obs/rst", 10, 0},   0},
  };
}

std::vector<FigureRow<BandFigures>> SlotRows() {
  return {
      {"total_mp_rms_m",                  FigureKind::kMetres, Get<&BandFigures::mp_m>,             {"MP", 9, 3},          3},
      {"total_snr_mean_dbhz",             FigureKind::kDbHz,   Get<&BandFigures::snr_dbhz>,         {"SNR", 10, 2},        2},
      {"total_snr_mean_below_30deg_dbhz", FigureKind::kDbHz,   Get<&BandFigures::snr_below30_dbhz>, {"SNR<=30deg", 12, 2}, kNotInSum},
      {"total_snr_mean_above_30deg_dbhz", FigureKind::kDbHz,   Get<&BandFigures::snr_above30_dbhz>, {"SNR>30deg", 12, 2},  kNotInSum},
      {"total_iono_rms_cycles",           FigureKind::kCycles, Get<&BandFigures::iono_rms_cycles>,  kNoColumn,             kNotInSum},
  };
}

std::vector<FigureRow<SignalReport>> SignalRows() {
  return {
      {"expected_epochs",            FigureKind::kEpochs,       Get<&SignalReport::expected>,             {"Exp", 6, 0},      0},
      {"observed_epochs",            FigureKind::kEpochs,       Get<&SignalReport::observed>,             {"Obs", 7, 0},      0},
      {"completeness_ratio",         FigureKind::kRatio,        Get<&SignalReport::completeness>,         {"Compl %", 8, 2},  2},
      {"mp_rms_m",                   FigureKind::kMetres,       Get<&SignalReport::mp_m>,                 {"MP m", 7, 3},     3},
      {"mp_values",                  FigureKind::kValues,       Get<&SignalReport::mp_values>},
      {"mp_restart_epochs",          FigureKind::kEpochs,       Get<&SignalReport::mp_restarts>,          {"Rst", 5, 0},      0},
      {"phase_geometry_slip_epochs", FigureKind::kEpochs,       Get<&SignalReport::phase_geometry_slips>, {"PG slips", 9, 0}, 0},
      {"observations_per_restart",   FigureKind::kObservations, Get<&SignalReport::obs_per_restart>,      {"Obs/rst", 9, 1},  1},
      {"snr_mean_dbhz",              FigureKind::kDbHz,         Get<&SignalReport::snr_dbhz>,             {"SNR", 5, 1},      2},
      {"snr_mean_below_30deg_dbhz",  FigureKind::kDbHz,         Get<&SignalReport::snr_below30_dbhz>,     {"<=30", 6, 1},     2},
      {"snr_mean_above_30deg_dbhz",  FigureKind::kDbHz,         Get<&SignalReport::snr_above30_dbhz>,     {">30", 5, 1},      2},
  };
}
// clang-format on

}  // namespace orsolva_host
