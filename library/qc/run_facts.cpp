#include "qc/run_facts.h"

#include <algorithm>
#include <limits>
#include <set>

#include "navigation/positioning/positioning.h"
#include "qc/elevations.h"
#include "results/chosen_combinations.h"
#include "results/code_combinations.h"
#include "toolkit/constants.h"
#include "toolkit/leap_seconds.h"
#include "toolkit/signals.h"

namespace orsolva {
namespace {

using gnssqctoolkit::SatelliteId;

template <class Store>
int RecordCount(const Store& store, const SatelliteId& satellite) {
  const auto* records = store.Satellite(satellite);
  return records == nullptr ? 0 : records->Count();
}

int RecordCount(const gnssqctoolkit::Ephemeris& ephemeris, const SatelliteId& satellite) {
  return RecordCount(ephemeris.Gps(), satellite) + RecordCount(ephemeris.Glonass(), satellite) +
         RecordCount(ephemeris.Bds(), satellite) + RecordCount(ephemeris.Galileo(), satellite) +
         RecordCount(ephemeris.Qzss(), satellite);
}

SatelliteUse UseOf(const PostProcessGnssQc& process, const SatelliteFacts& facts, int number) {
  if ((process.Config.SystemMask & facts.sys) == 0) return SatelliteUse::kSystemDisabled;
  const auto usable = static_cast<std::int8_t>(process.SatUsable[number - 1]);
  if (usable < 0) return SatelliteUse::kUnhealthy;
  if (usable == 0) return SatelliteUse::kExcluded;
  if (!facts.observed) return SatelliteUse::kNotObserved;
  if (facts.records == 0) return SatelliteUse::kNoRecord;
  if (!process.HadElevation(number)) return SatelliteUse::kNoElevation;
  const bool above = process.Snr.CompleteSats[number - 1].ExpectedEpochs > 0;
  return above ? SatelliteUse::kUsed : SatelliteUse::kBelowCutoff;
}

void FillSatellites(const PostProcessGnssQc& process, const ChosenCombinations& chosen, RunFacts& facts) {
  for (int number = 1; number <= gnssqctoolkit::kMaxSatellites; ++number) {
    SatelliteId satellite;
    if (!gnssqctoolkit::SatelliteFromIndex(number, satellite) || SystemSlotOf(satellite.system) < 0) continue;
    SatelliteFacts one;
    one.sys = satellite.system;
    one.prn = satellite.prn;
    one.observed = process.Observed(number);
    one.records = RecordCount(process.Eph, satellite);
    one.use = UseOf(process, one, number);
    one.combination = chosen.Satellites[number - 1];
    facts.satellites.push_back(one);
  }
}

void FillSystems(const PostProcessGnssQc& process, const ChosenCombinations& chosen, RunFacts& facts) {
  const std::uint32_t merged = process.Config.SystemMask & process.CombinationMask;
  for (int slot = 0; slot < kSystemSlots; ++slot) {
    const QcSysConfig& config = process.Config.Sys[slot];
    SystemFacts& system = facts.systems[slot];
    system.sys = config.SysCode;
    system.enabled = config.Enable != 0;
    system.merged = slot != kSlotBd3 && (merged & system.sys) != 0;
    std::copy_n(config.FreqEnable, kBandSlots, system.bands);
    const gnssqctoolkit::IList& codes = process.ObsData.CodeLists[CodeListSlotOf(system.sys)];
    system.code_count = std::min(codes.Count(), kCodesPerSystem);
    for (int i = 0; i < system.code_count; ++i) system.codes[i] = static_cast<std::uint8_t>(codes.At(i));
    system.combination = chosen.Systems[slot];
  }
}

void FillMultipathThresholds(RunThresholds& thresholds) {
  for (int system = gnssqctoolkit::kGps; system <= gnssqctoolkit::kQzss; system *= 2) {
    int rows = 0;
    const gnssqctoolkit::SignalRow* table = gnssqctoolkit::SignalTable(system, rows);
    std::set<int> bands;
    for (int i = 0; i < rows; ++i) bands.insert(table[i].band);
    for (const int band : bands) {
      BandThreshold row;
      row.sys = static_cast<std::uint8_t>(system);
      row.band = band;
      MpJumpThreshold(system, band, row.threshold_m);
      thresholds.multipath.push_back(row);
    }
  }
}

void FillRecordAges(RunThresholds& thresholds) {
  for (int slot = 0; slot < kSlotBd3; ++slot) {
    RecordAge& row = thresholds.record_ages[slot];
    row.sys = static_cast<std::uint8_t>(1 << slot);
    row.elevations_s = gnssqctoolkit::AgeOf(gnssqctoolkit::kDefaultMaxAges, row.sys);
    row.measures_s = gnssqctoolkit::AgeOf(gnssqctoolkit::kPassMaxAges, row.sys);
  }
}

RunThresholds Thresholds(double elevation_cutoff_rad) {
  RunThresholds thresholds;
  thresholds.elevation_cutoff_rad = elevation_cutoff_rad;
  thresholds.elevation_split_rad = kElevationSplit;
  thresholds.geometry_free_rate_cm_min = kIonosphereRate;
  thresholds.geometry_free_least_m = kLeastGeometryFreeThreshold;
  thresholds.geometry_free_gap_s = kLongestGeometryFreeGap;
  thresholds.phase_geometry_gap_s = kSlipGap;
  for (const SlipThresholdRow& row : kSlipThresholds) {
    thresholds.phase_geometry.push_back({row.LongestGap, row.Threshold});
  }
  thresholds.arc_gap_s = kArcGap;
  FillMultipathThresholds(thresholds);
  FillRecordAges(thresholds);
  return thresholds;
}

RunLimits Limits() {
  RunLimits limits;
  limits.satellites_per_epoch = static_cast<int>(kSatellitesPerEpoch);
  limits.signals_per_satellite = static_cast<int>(kSignalsPerSatellite);
  limits.signals_per_slot = kSignalsPerSlot;
  limits.codes_per_system = kCodesPerSystem;
  limits.code_epochs = kCodeCollectionEpochs;
  limits.band_slots = kBandSlots;
  limits.combinations = kMaxCombinations;
  limits.pairs_per_band = kPairsPerBand;
  limits.records_per_satellite = gnssqctoolkit::kMaxRecordsPerSatellite;
  limits.positioning_epochs = gnssqctoolkit::kMaxPositioningEpochs;
  limits.gps_minus_bds_s = gnssqctoolkit::kGpsMinusBds;
  limits.leap_seconds = gnssqctoolkit::kLeapSeconds[0].seconds;
  return limits;
}

}  // namespace

RunFacts CollectRunFacts(const PostProcessGnssQc& process) {
  RunFacts facts;
  facts.valid = true;
  facts.averaging_window_epochs = process.IonMp.WindowLength();
  facts.interval_s = process.Interval;
  facts.epochs = process.EpochCount;
  facts.position_known = process.Config.EnablePosition != 0;
  facts.thresholds = Thresholds(process.Config.ElevationMask);
  facts.limits = Limits();
  const ChosenCombinations chosen(process.Sources());
  facts.total = chosen.Total;
  FillSystems(process, chosen, facts);
  FillSatellites(process, chosen, facts);
  return facts;
}

}  // namespace orsolva
