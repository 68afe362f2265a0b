#include "results/result_analysis.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orsolva {
namespace {

using gnssqctoolkit::kMaxSatellites;
using gnssqctoolkit::SatelliteFromIndex;
using gnssqctoolkit::SatelliteId;

constexpr double kMillisecondsPerSecond = 1000.0;
constexpr double kSecondsPerHour = 3600.0;
/// Raises a whole number that rounding has left just below itself, before it is truncated.
constexpr double kTruncationGuard = 1e-16;
constexpr int kStationaryOrbit = 0;

/// System slots of the merged systems: GPS to QZSS, bit s of a mask for slot s.
constexpr int kMergedSlots = 5;

/// Truncates; what lies outside the range gives its nearer end, a value that is no number 0.
std::int64_t ClampToInt32(double value) {
  if (std::isnan(value)) return 0;
  if (value <= std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
  if (value >= std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int64_t>(value);
}

std::int32_t LostEpochs(double span, double interval, std::uint32_t epochs) {
  if (!(interval > 0.0)) return 0;
  const std::int64_t nominal = ClampToInt32(std::floor(span / interval + 1.0) + kTruncationGuard);
  return static_cast<std::int32_t>(
      ClampToInt32(static_cast<double>(nominal - static_cast<std::int64_t>(epochs))));
}

bool IsBds3(const SatelliteId& satellite) {
  return satellite.system == gnssqctoolkit::kBds && satellite.prn >= gnssqctoolkit::kFirstBds3;
}

bool IsStationary(const SatelliteId& satellite) {
  return gnssqctoolkit::BdsOrbitClass(satellite.prn) == kStationaryOrbit;
}

/// Each usable code of a satellite as a combination of its own.
QcCodeCombination SingleCodes(const gnssqctoolkit::IList& codes) {
  QcCodeCombination out;
  for (const std::int32_t code : codes) {
    if (out.Count >= kMaxCombinations) break;
    out.Lists[out.Count++].Push(code);
  }
  return out;
}

/// Evaluates the combinations of a satellite and adds them to its system. All of them are evaluated before
/// the first is added, because a satellite without epochs on one is pooled with its best other.
void EvaluateAndPool(const SatelliteView& view, const QcCodeCombination& combinations, QcSysAllResult& slot) {
  QcResultCore* figures = slot.PerSat[view.Stores().Satellite.prn - 1];
  for (int k = 0; k < combinations.Count; ++k) EvaluateCombination(view, combinations.Lists[k], figures[k]);
  for (int k = 0; k < combinations.Count; ++k) PoolSatellite(figures, k, slot.PerComb[k]);
}

void FillSatUsed(const std::uint8_t* usable, QcResult& result) {
  for (int number = 1; number <= kMaxSatellites; ++number) {
    SatelliteId satellite;
    if (!SatelliteFromIndex(number, satellite)) continue;
    const int slot = IsBds3(satellite) ? static_cast<int>(kSlotBd3) : SystemSlotOf(satellite.system);
    if (slot < 0) continue;
    const auto flag = static_cast<std::int8_t>(usable[number - 1]);
    result.SatUsed[slot][satellite.prn - 1] = static_cast<std::uint32_t>(static_cast<std::int32_t>(flag));
  }
}

}  // namespace

double RoundToMillisecond(double seconds) {
  return std::round(seconds * kMillisecondsPerSecond) / kMillisecondsPerSecond;
}

SatelliteStores StoresOf(const ResultSources& sources, const SatelliteId& satellite, int number) {
  return {satellite, sources.Snr.CompleteSats[number - 1], sources.Snr.SnrSats[number - 1],
          sources.IonMp.Multipath(number), sources.IonMp.Ionosphere(number)};
}

QcConfig QcResultAnalysis::ResultConfig(const QcConfig& config) const {
  QcConfig merged = config;
  if (config.AutoDetectFreq == 0) return merged;
  QcSysConfig& bds = merged.Sys[kSlotBds];
  QcSysConfig& bd3 = merged.Sys[kSlotBd3];
  for (int f = 0; f < kBandSlots; ++f) {
    const bool enabled = bds.FreqEnable[f] != 0 || bd3.FreqEnable[f] != 0;
    bds.FreqEnable[f] = enabled ? 1 : 0;
    bd3.FreqEnable[f] = enabled ? 1 : 0;
  }
  return merged;
}

void QcResultAnalysis::BuildCodeCombinations(const ResultSources& sources, const QcConfig& config,
                                             QcResult& result) const {
  for (int s = 0; s < kMergedSlots; ++s) {
    const int system = 1 << s;
    const auto target = s == kSlotBds ? CombinationTarget::kBds2 : CombinationTarget::kSystem;
    result.All[s].Combinations =
        BuildCombinations(config.Sys[s], system, target, sources.CodeLists[CodeListSlotOf(system)]);
  }
  // The combinations of the newer BDS satellites follow the flags of their own row, while their usable bands
  // are counted by the BDS row: with the BD3 row switched off they have usable bands but no combination.
  const QcSysConfig& own_row = config.Sys[kSlotBd3];
  const gnssqctoolkit::IList& codes = sources.CodeLists[CodeListSlotOf(gnssqctoolkit::kBds)];
  QcSysAllResult& bd3 = result.All[kSlotBd3];
  bd3.Combinations = BuildCombinations(own_row, gnssqctoolkit::kBds, CombinationTarget::kBds3, codes);
  bd3.AltCombinations =
      BuildCombinations(own_row, gnssqctoolkit::kBds, CombinationTarget::kBds3Stationary, codes);
}

SatelliteCombinations QcResultAnalysis::CombinationsOf(const SatelliteStores& stores, const QcConfig& config,
                                                       const QcResult& result) const {
  const SatelliteId& satellite = stores.Satellite;
  const int s = SystemSlotOf(satellite.system);
  if (s < 0 || satellite.prn < 1 || satellite.prn > kPrnsPerSlot) return {};
  const UsableCodes usable = FindUsableCodes(config.Sys[s], stores);
  if (usable.BandCount == 0) return {};
  // Kept for compatibility: the satellite's k-th code is pooled with the system's k-th combination.
  if (usable.BandCount == 1) return {SingleCodes(usable.Codes), false, false};
  if (!IsBds3(satellite)) return {result.All[s].Combinations, false, false};
  const QcSysAllResult& bd3 = result.All[kSlotBd3];
  const bool stationary = IsStationary(satellite);
  return {stationary ? bd3.AltCombinations : bd3.Combinations, !stationary, true};
}

void QcResultAnalysis::AnalyseSatellite(const SatelliteStores& stores, const QcConfig& config,
                                        QcResult& result) const {
  const SatelliteId& satellite = stores.Satellite;
  const int s = SystemSlotOf(satellite.system);
  if (s < 0 || satellite.prn < 1 || satellite.prn > kPrnsPerSlot) return;
  result.All[s].System = satellite.system;
  const SatelliteCombinations own = CombinationsOf(stores, config, result);
  if (own.OfBds3) result.All[kSlotBd3].System = gnssqctoolkit::kBds;
  EvaluateAndPool(SatelliteView(stores, own.Shifted), own.Combinations, result.All[s]);
}

void QcResultAnalysis::AnalyseSatellites(const ResultSources& sources, const QcConfig& config,
                                         QcResult& result) const {
  for (int number = 1; number <= kMaxSatellites; ++number) {
    SatelliteId satellite;
    if (!SatelliteFromIndex(number, satellite) || SystemSlotOf(satellite.system) < 0) continue;
    AnalyseSatellite(StoresOf(sources, satellite, number), config, result);
  }
  for (QcSysAllResult& slot : result.All) {
    for (QcResultCore& pool : slot.PerComb) FinishPool(pool);
  }
}

void QcResultAnalysis::FinishRun(const ResultSources& sources, QcResult& result) const {
  if (IsUnset(result.StartTime) || IsUnset(result.EndTime)) {
    result.StartTime = sources.FirstTime;
    result.EndTime = sources.LastTime;
  }
  const double span = RoundToMillisecond(TimeDifference(result.EndTime, result.StartTime));
  result.Interval = RoundToMillisecond(sources.Interval);
  result.EpochCount = static_cast<std::int32_t>(std::min<std::uint32_t>(sources.EpochCount, INT32_MAX));
  result.LostEpochs = LostEpochs(span, result.Interval, sources.EpochCount);
  result.DurationHours = span / kSecondsPerHour;
  for (int i = 0; i < 3; ++i) result.StationXyz[i] = sources.Position[i];
  FillSatUsed(sources.SatUsable, result);
}

void QcResultAnalysis::ChooseAndCombine(std::uint32_t systems, QcResult& result, QcResultCore& total) const {
  for (int s = 0; s < kSystemSlots; ++s) ChooseOptimal(result.All[s], result.Optimal[s]);
  for (int s = 0; s < kMergedSlots; ++s) {
    // Only a slot with an optimal result carries its system; merging an empty one would round again.
    const auto system = static_cast<std::uint32_t>(result.Optimal[s].System);
    if ((systems & system) != 0) MergeSystem(result.Optimal[s].Sys, total);
  }
}

void QcResultAnalysis::Analyse(const ResultSources& sources, QcResult& result, QcResultCore& total) const {
  const QcConfig config = ResultConfig(sources.Config);
  BuildCodeCombinations(sources, config, result);
  AnalyseSatellites(sources, config, result);
  FinishRun(sources, result);
  ChooseAndCombine(sources.Config.SystemMask & sources.CombinationMask, result, total);
}

}  // namespace orsolva
