#include "results/output_records.h"

#include <cstring>
#include <memory>

#include "results/code_result.h"
#include "results/result_analysis.h"

namespace orsolva {
namespace {

using gnssqctoolkit::kMaxSatellites;
using gnssqctoolkit::SatelliteFromIndex;
using gnssqctoolkit::SatelliteId;

/// System slots with blocks of codes; BDS-3 has none of its own.
constexpr int kCodeSlots = 5;

void FillSummary(const QcResultCore& core, qc_core_summary& summary) {
  summary.system = core.System;
  summary.expected_epochs = core.ExpectedEpochs;
  summary.observed_epochs = core.ObservedEpochs;
  summary.slip_epochs = core.SlipEpochs;
  summary.jump_epochs = core.JumpEpochs;
  summary.completeness = core.Completeness > 1.0 ? 1.0 : core.Completeness;
  for (int b = 0; b < kBandSlots; ++b) {
    summary.mp[b] = core.Mp[b].MpRms;
    summary.snr[b] = core.Snr[b].AboveMaskMean;
    summary.snr_30[b][0] = core.Snr[b].Below30Mean;
    summary.snr_30[b][1] = core.Snr[b].Above30Mean;
    summary.iod[b] = core.Mp[b].IodRms;
  }
  summary.obs_per_slip = core.ObsPerSlip;
}

void FillRecord(const QcResult& result, const QcResultCore& total, result_qct& record) {
  record.start_time = result.StartTime;
  record.end_time = result.EndTime;
  for (int i = 0; i < 3; ++i) record.station_xyz[i] = result.StationXyz[i];
  record.duration = result.DurationHours;
  record.lost_epochs = result.LostEpochs;
  for (int s = 0; s < kSystemSlots; ++s) {
    FillSummary(result.Optimal[s].Sys, record.sys[s]);
    for (int i = 0; i < kPrnsPerSlot; ++i) {
      FillSummary(result.Optimal[s].PerSat[i], record.sat[s][i]);
      record.sat_used[s][i] = result.SatUsed[s][i];
    }
  }
  FillSummary(total, record.total);
}

void FillSatelliteBlocks(const ResultSources& sources, const QcConfig& config, total_code_qc_result& record) {
  for (int number = 1; number <= kMaxSatellites; ++number) {
    SatelliteId satellite;
    if (!SatelliteFromIndex(number, satellite)) continue;
    const int slot = SystemSlotOf(satellite.system);
    if (slot < 0) continue;
    FillSatelliteBlock(config.Sys[slot], StoresOf(sources, satellite, number),
                       record.sat[slot][satellite.prn - 1]);
  }
}

void FillSystemBlocks(const ResultSources& sources, const QcConfig& config, total_code_qc_result& record) {
  for (int slot = 0; slot < kCodeSlots; ++slot) {
    const int system = 1 << slot;
    const gnssqctoolkit::IList& observed = sources.CodeLists[CodeListSlotOf(system)];
    if (config.AutoDetectFreq != 0) {
      StartSystemBlock(system, observed, record.sys[slot]);
    } else {
      StartSystemBlock(system, RegroupCodes(config.Sys[slot], system, observed), record.sys[slot]);
    }
    for (const code_qc_block& satellite : record.sat[slot]) AbsorbSatellite(satellite, record.sys[slot]);
  }
}

}  // namespace

bool FillAllPeriodResult(const ResultSources& sources, result_qct& record) {
  const auto result = std::make_unique<QcResult>();
  QcResultCore total;
  QcResultAnalysis().Analyse(sources, *result, total);
  FillRecord(*result, total, record);
  return record.lost_epochs >= 0 && record.total.completeness >= 0.0 && record.total.completeness <= 1.0;
}

void FillEachCodeResult(const ResultSources& sources, total_code_qc_result& record) {
  std::memset(&record, 0, sizeof(record));
  const QcConfig config = QcResultAnalysis().ResultConfig(sources.Config);
  FillSatelliteBlocks(sources, config, record);
  FillSystemBlocks(sources, config, record);
}

}  // namespace orsolva
