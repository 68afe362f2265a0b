#include "host/analysis/figures/observation_counts.h"

#include <cmath>

#include "host/analysis/figures/result_rows.h"
#include "host/observation/carriers.h"

namespace orsolva_host::analysis {
namespace {

void AddTo(std::optional<Count>& sum, Count more) { sum = sum.value_or(0) + more; }

/// Whether all satellites of a system share the carrier, and it is known.
bool HasOneCarrier(char system, SignalCode code) {
  const bool divided = system == 'R' && (code.band == '1' || code.band == '2');
  return !divided && CarrierFrequency(system, code.band, 0) > 0;
}

}  // namespace

void ObservationCounts::Add(const ObservationEpoch& epoch, const SignalRoster& roster) {
  signals_.resize(roster.Signals().size());
  satellites_.resize(roster.Satellites().size());
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) {
    const SatelliteObservation& satellite = epoch.satellites[i];
    bool observed = false;
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      const SignalObservation& o = epoch.signals[satellite.first_signal + k];
      SignalCounts& counts = signals_[roster.SignalAt(satellite.first_signal + k)];
      const bool has_code = !std::isnan(o.pseudorange_m);
      const bool has_phase = !std::isnan(o.phase_cycles);
      counts.codes += has_code;
      counts.phases += has_phase;
      counts.dopplers += !std::isnan(o.doppler_hz);
      counts.strengths += !std::isnan(o.snr_dbhz);
      observed = observed || has_code || has_phase;
    }
    if (!observed) continue;
    SatelliteCounts& counts = satellites_[roster.SatelliteAt(i)];
    if (counts.epochs++ == 0) counts.first_ns = epoch.time_ns;
    counts.last_ns = epoch.time_ns;
  }
}

void ObservationCounts::FillIn(const SignalRoster& roster, AnalysisResult& result) const {
  for (std::size_t i = 0; i < satellites_.size(); ++i) {
    const SatelliteCounts& counts = satellites_[i];
    if (counts.epochs == 0) continue;
    const SatelliteId id = roster.Satellites()[i];
    SatelliteFigures& row = SatelliteRow(result, id);
    row.observed_epochs = counts.epochs;
    row.first_ns = counts.first_ns;
    row.last_ns = counts.last_ns;
    AddTo(SystemRow(result, id.system).satellites_observed, 1);
  }
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    const SignalCounts& counts = signals_[i];
    if (counts.codes + counts.phases + counts.dopplers + counts.strengths == 0) continue;
    const ListedSignal& signal = roster.Signals()[i];
    const SatelliteId id = roster.Satellites()[signal.satellite];
    SignalFigures& sums = SystemSignalRow(result, id.system, signal.code);
    AddTo(sums.satellites, 1);
    for (SignalFigures* row : {&sums, &SatelliteSignalRow(result, id, signal.code)}) {
      if (HasOneCarrier(id.system, signal.code))
        row->frequency_hz = CarrierFrequency(id.system, signal.code.band, 0);
      AddTo(row->codes, counts.codes);
      AddTo(row->phases, counts.phases);
      AddTo(row->dopplers, counts.dopplers);
      AddTo(row->strengths, counts.strengths);
    }
  }
}

}  // namespace orsolva_host::analysis
