#include "qc/process.h"

#include <algorithm>
#include <cstring>

#include "qc/base/config_text.h"
#include "qc/navigation_loading.h"
#include "qc/station_position.h"
#include "results/output_records.h"
#include "results/result_analysis.h"
#include "toolkit/trace.h"

namespace orsolva {

namespace {

constexpr double kTooEarlyTolerance = 0.001;  // of the interval

/// Index of the first or last epoch with a usable time, -1 without one.
std::int32_t FirstUsable(const ObsBodyData_QC_gbt& obs) {
  for (std::int32_t i = 0; i < obs.epoch_num; ++i) {
    if (UsableTime(obs.epochs[i].time)) return i;
  }
  return -1;
}

std::int32_t LastUsable(const ObsBodyData_QC_gbt& obs) {
  for (std::int32_t i = obs.epoch_num - 1; i >= 0; --i) {
    if (UsableTime(obs.epochs[i].time)) return i;
  }
  return -1;
}

void Widen(BatchSummary& summary, const Time_gbt& t) {
  if (TimeDifference(t, summary.FirstTime) < 0.0) summary.FirstTime = t;
  if (TimeDifference(t, summary.LastTime) > 0.0) summary.LastTime = t;
}

}  // namespace

PostProcessGnssQc::PostProcessGnssQc() { std::memset(SatUsable, 1, sizeof(SatUsable)); }

void PostProcessGnssQc::Configure(const QcConfig& config) {
  Config = config;
  if (!(Config.ElevationMask > 0.0)) Config.ElevationMask = kLeastElevationMask;
  for (const QcSysConfig& sys : Config.Sys) {
    for (int k = 0; k < 64; ++k) {
      const int number = gnssqctoolkit::QcSatelliteIndex({sys.SysCode, k + 1});
      if (sys.IncludeSat[k] == 0 && number > 0) SatUsable[number - 1] = 0;
    }
  }
  Config.SystemMask = Config.EnabledSystems();
  std::memcpy(Position, Config.Position, sizeof(Position));
}

void PostProcessGnssQc::SetCombination(const std::uint8_t* flags) {
  CombinationMask = 0;
  for (int i = 0; i < 5; ++i) {
    if (flags[i] != 0) CombinationMask |= 1U << i;
  }
  if (gnssqctoolkit::TraceEnabled()) {
    gnssqctoolkit::Trace(4, "%s", ConfigText(Config, CombinationMask).c_str());
  }
}

bool PostProcessGnssQc::LoadNavigationSet(const NavBodyData_QC_gbt& nav) {
  return LoadNavigation(nav, Eph, SatUsable);
}

GNSSQC_STATE PostProcessGnssQc::TakeBatch(const ObsBodyData_QC_gbt& obs) {
  if (obs.epoch_num < 1 || obs.epochs == nullptr) return GNSSQC_NO_DATA;
  BatchCodes codes;
  codes.Collect(obs);
  ResetBatch();
  BatchSummary summary;
  if (!Ingest(obs, codes, summary)) return GNSSQC_NO_DATA;
  if (Config.EnablePosition == 0) {
    const std::uint32_t first_sequence = EpochCount - summary.EpochCount + 1;
    if (!StationPosition(ObsData, Eph, SatUsable, first_sequence, summary.EpochCount, Position)) {
      return GNSSQC_NO_POSITION;
    }
    Config.EnablePosition = 1;
  }
  RunMeasures();
  ResetBatch();
  return GNSSQC_OK;
}

bool PostProcessGnssQc::Ingest(const ObsBodyData_QC_gbt& obs, BatchCodes& codes, BatchSummary& summary) {
  if (obs.epoch_num < 1) return false;
  const std::int32_t first = FirstUsable(obs);
  if (first < 0) return false;
  ObsData.BatchFirst = obs.epochs[first].time;
  ObsData.BatchLast = obs.epochs[LastUsable(obs)].time;
  const bool counting = ObsData.CodeListsEmpty();
  const bool interval_known = FindInterval(obs, summary);
  summary.FirstTime = ObsData.BatchFirst;
  summary.LastTime = ObsData.BatchFirst;
  for (std::int32_t i = first; i < obs.epoch_num; ++i) {
    const ObsEpoch_QC_gbt& epoch = obs.epochs[i];
    if (!UsableTime(epoch.time)) continue;
    Widen(summary, epoch.time);
    if (TooEarly(epoch.time)) continue;
    LastAccepted = epoch.time;
    ++summary.EpochCount;
    ++EpochCount;
    Epochs.Push(epoch.time);
    ObsData.StoreEpoch(epoch, EpochCount, Config.SystemMask, counting ? &codes : nullptr);
  }
  WidenRun(summary);
  ObsData.FillCodeLists(codes);
  return interval_known;
}

bool PostProcessGnssQc::FindInterval(const ObsBodyData_QC_gbt& obs, BatchSummary& summary) {
  bool known = true;
  if (Config.Interval < 1e-12) {
    known = DetectInterval(obs.epochs, obs.epoch_num, summary.Interval);
    if (!known) summary.Interval = 0.0;
  } else {
    summary.Interval = Config.Interval;
  }
  Interval = summary.Interval;
  return known;
}

bool PostProcessGnssQc::TooEarly(const Time_gbt& t) const {
  if (IsUnset(LastAccepted)) return false;
  return TimeDifference(t, LastAccepted) < Interval - kTooEarlyTolerance * Interval;
}

void PostProcessGnssQc::WidenRun(const BatchSummary& summary) {
  if (IsUnset(FirstTime) || TimeDifference(FirstTime, summary.FirstTime) > 0.0) FirstTime = summary.FirstTime;
  if (IsUnset(LastTime) || TimeDifference(LastTime, summary.LastTime) < 0.0) LastTime = summary.LastTime;
}

void PostProcessGnssQc::RunMeasures() {
  InitialiseMeasures();
  EleList.SetStation(Eph, Position, Config.ElevationMask);
  EleList.AskForFlagsOnly(observer_ == nullptr || !observer_->LooksAtDirections());
  std::size_t satellite_epochs = 0, signals = 0;
  for (const int number : ObsData.PresentSatellites()) {
    observed_[number - 1] = true;
    satellite_epochs += ObsData.Sats[number - 1].Epochs.size();
    signals += ObsData.Sats[number - 1].Signals.size();
  }
  IonMp.Reserve(satellite_epochs, signals);
  for (const int number : ObsData.PresentSatellites()) {
    if (static_cast<std::int8_t>(SatUsable[number - 1]) > 0) MeasureSatellite(number);
  }
  EleList.Clear();
  IonMp.ProcessAllEpochs(Position, Eph, Interval, observer_);
}

void PostProcessGnssQc::InitialiseMeasures() {
  if (ObsData.CodeListsEmpty()) return;
  if (!IonMp.Initialised()) {
    Config.NarrowBands(IonMp.Initialise(Config, ObsData.CodeLists, Eph.GlonassChannels(), Interval).data());
  }
  if (!Snr.Ready) Snr.BuildTemplates(ObsData.CodeLists);
}

void PostProcessGnssQc::MeasureSatellite(int number) {
  const QcSatData& satellite = ObsData.Sats[number - 1];
  EleList.OpenSatellite(satellite.Satellite, ObsData.BatchFirst, ObsData.BatchLast);
  for (std::size_t i = 0; i < satellite.Epochs.size(); ++i) MeasureEpoch(number, i);
}

void PostProcessGnssQc::MeasureEpoch(int number, std::size_t i) {
  const StoredEpoch& stored = ObsData.Sats[number - 1].Epochs[i];
  ElevationFlags flags;
  if (!EleList.EpochElevationFlags(stored.Time, flags)) return;
  Snr.AddExpected(
      number, expected_.Advance(number, stored.Time, stored.Sequence, flags.AboveCutoff, Interval, EleList));
  QcEpochData epoch;
  ObsData.Sats[number - 1].Load(i, epoch);
  Snr.AddEpoch(number, epoch, flags.AboveCutoff, flags.Above30);
  IonMp.AddSatelliteEpoch(number, epoch, flags.AboveCutoff);
  if (observer_ != nullptr) ReportEpoch(number, epoch, flags);
}

void PostProcessGnssQc::ReportEpoch(int number, const QcEpochData& epoch, const ElevationFlags& flags) {
  SatelliteEpochDetail detail;
  detail.number = number;
  const gnssqctoolkit::SatelliteId& satellite = ObsData.Sats[number - 1].Satellite;
  detail.satellite = {satellite.system, satellite.prn};
  detail.time = epoch.Time;
  detail.elevation_rad = flags.ElevationRad;
  detail.above_cutoff = flags.AboveCutoff;
  detail.above_30 = flags.Above30;
  if (!observer_->LooksAtDirections()) return observer_->OnSatelliteEpoch(detail);
  double azimuth_elevation[2];
  if (EleList.ExactDirection(epoch.Time, azimuth_elevation)) {
    detail.azimuth_rad = azimuth_elevation[0];
    detail.elevation_rad = azimuth_elevation[1];
  }
  Signal_QC_gbt signals[kBandSlots * kSignalsPerSlot];
  for (const QcSlotSignals& slot : epoch.Slots) {
    std::copy(slot.Signals, slot.Signals + slot.Count, signals + detail.signal_count);
    detail.signal_count += slot.Count;
  }
  detail.signals = signals;
  observer_->OnSatelliteEpoch(detail);
}

ResultSources PostProcessGnssQc::Sources() const {
  return {Config,
          IonMp,
          Snr,
          ObsData.CodeLists,
          SatUsable,
          CombinationMask,
          FirstTime,
          LastTime,
          EpochCount,
          Interval,
          {Position[0], Position[1], Position[2]}};
}

bool PostProcessGnssQc::WholePeriodResult(result_qct& record) const {
  return FillAllPeriodResult(Sources(), record);
}

void PostProcessGnssQc::RoundInterval() { Interval = RoundToMillisecond(Interval); }

void PostProcessGnssQc::EachCodeResult(total_code_qc_result& record) const {
  FillEachCodeResult(Sources(), record);
}

void PostProcessGnssQc::ResetBatch() {
  ObsData.ResetBatch();
  IonMp.ResetBatch();
}

void PostProcessGnssQc::Release() {
  Snr.Release();
  IonMp.Release();
  ResetBatch();
  Eph.Release();
  ObsData.Release();
  EleList.Clear();
  Epochs.Clear();
}

}  // namespace orsolva
