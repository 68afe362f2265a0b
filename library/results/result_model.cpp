#include "results/result_model.h"

#include <cmath>

#include "results/completeness.h"

namespace orsolva {
namespace {

/// Completeness below this counts as none when a satellite's own best combination is looked for.
constexpr double kNoCompleteness = 1e-16;

double AsDouble(std::uint64_t count) { return static_cast<double>(count); }

/// The first index with the largest value.
template <class Value>
int FirstLargest(int count, Value value) {
  int best = 0;
  for (int i = 1; i < count; ++i) {
    if (value(i) > value(best)) best = i;
  }
  return best;
}

void TakeIfUnset(std::uint8_t from, std::uint8_t& to) {
  if (to == 0) to = from;
}

void TakePairIfUnset(const QcMpIodResult& from, QcMpIodResult& to) {
  TakeIfUnset(from.BandSlot, to.BandSlot);
  TakeIfUnset(from.BandSlot1, to.BandSlot1);
  TakeIfUnset(from.Code1, to.Code1);
  TakeIfUnset(from.BandSlot2, to.BandSlot2);
  TakeIfUnset(from.Code2, to.Code2);
}

void PoolMultipath(const QcMpIodResult& sat, QcMpIodResult& pool) {
  TakePairIfUnset(sat, pool);
  pool.MpCount += sat.MpCount;
  pool.SlipCount += sat.SlipCount;
  pool.JumpCount += sat.JumpCount;
  pool.MpRms += sat.MpRms * sat.MpRms * AsDouble(sat.MpCount);
  // Kept for compatibility: the ionospheric statistic of a system is that of the last satellite pooled.
  pool.IodRms = sat.IodRms;
}

void PoolSnr(const QcSnrResult& sat, QcSnrResult& pool) {
  TakeIfUnset(sat.Code, pool.Code);
  pool.AboveMaskCount += sat.AboveMaskCount;
  pool.BelowMaskCount += sat.BelowMaskCount;
  pool.Above30Count += sat.Above30Count;
  pool.Below30Count += sat.Below30Count;
  pool.AboveMaskMean += sat.AboveMaskMean * AsDouble(sat.AboveMaskCount);
  pool.BelowMaskMean += sat.BelowMaskMean * AsDouble(sat.BelowMaskCount);
  pool.Above30Mean += sat.Above30Mean * AsDouble(sat.Above30Count);
  pool.Below30Mean += sat.Below30Mean * AsDouble(sat.Below30Count);
  const std::uint64_t n = sat.AboveMaskCount + sat.BelowMaskCount;
  if (n > 1) pool.StdDev += sat.StdDev * sat.StdDev * AsDouble(n - 1);
}

void DivideByCount(std::uint64_t count, double& sum) {
  if (count != 0) sum /= AsDouble(count);
}

void FinishMultipath(QcMpIodResult& pool) {
  pool.MpRms = pool.MpCount == 0 ? 0.0 : std::sqrt(pool.MpRms / AsDouble(pool.MpCount));
}

void FinishSnr(QcSnrResult& pool) {
  const std::uint64_t n = pool.AboveMaskCount + pool.BelowMaskCount;
  // Kept for compatibility: the pooled spread is divided by n, that of one satellite by n - 1.
  pool.Mean = n == 0 ? 0.0 : (pool.AboveMaskMean + pool.BelowMaskMean) / AsDouble(n);
  pool.StdDev = n == 0 ? 0.0 : std::sqrt(pool.StdDev / AsDouble(n));
  DivideByCount(pool.AboveMaskCount, pool.AboveMaskMean);
  DivideByCount(pool.BelowMaskCount, pool.BelowMaskMean);
  DivideByCount(pool.Above30Count, pool.Above30Mean);
  DivideByCount(pool.Below30Count, pool.Below30Mean);
}

/// The mean of two values weighted by their counts, into a; a stays when both counts are 0.
void MergeMean(double b, std::uint64_t b_count, std::uint64_t a_count, double& a) {
  if (a_count == 0 && b_count == 0) return;
  a = (a * AsDouble(a_count) + b * AsDouble(b_count)) / AsDouble(a_count + b_count);
}

void MergeMultipath(const QcMpIodResult& b, QcMpIodResult& a) {
  a.SlipCount += b.SlipCount;
  a.JumpCount += b.JumpCount;
  TakePairIfUnset(b, a);
  if (a.MpCount != 0 || b.MpCount != 0) {
    a.MpRms = std::sqrt((a.MpRms * a.MpRms * AsDouble(a.MpCount) + b.MpRms * b.MpRms * AsDouble(b.MpCount)) /
                        AsDouble(a.MpCount + b.MpCount));
  }
  a.MpCount += b.MpCount;
}

void MergeSnr(const QcSnrResult& b, QcSnrResult& a) {
  TakeIfUnset(b.Code, a.Code);
  MergeMean(b.AboveMaskMean, b.AboveMaskCount, a.AboveMaskCount, a.AboveMaskMean);
  MergeMean(b.BelowMaskMean, b.BelowMaskCount, a.BelowMaskCount, a.BelowMaskMean);
  MergeMean(b.Above30Mean, b.Above30Count, a.Above30Count, a.Above30Mean);
  MergeMean(b.Below30Mean, b.Below30Count, a.Below30Count, a.Below30Mean);
  // Kept for compatibility: a weighted mean of the two spreads, not the spread of the merged values.
  MergeMean(b.StdDev, b.AboveMaskCount + b.BelowMaskCount, a.AboveMaskCount + a.BelowMaskCount, a.StdDev);
  a.AboveMaskCount += b.AboveMaskCount;
  a.BelowMaskCount += b.BelowMaskCount;
  a.Above30Count += b.Above30Count;
  a.Below30Count += b.Below30Count;
  const std::uint64_t n = a.AboveMaskCount + a.BelowMaskCount;
  if (n == 0) return;
  a.Mean = (a.AboveMaskMean * AsDouble(a.AboveMaskCount) + a.BelowMaskMean * AsDouble(a.BelowMaskCount)) /
           AsDouble(n);
}

}  // namespace

QcResultCore::QcResultCore() = default;

QcResult::QcResult() {
  for (auto& slot : SatUsed) {
    for (std::uint32_t& used : slot) used = 1;
  }
}

double ObservationsPerSlip(std::uint64_t observed_epochs, std::uint64_t jump_epochs) {
  return AsDouble(jump_epochs == 0 ? observed_epochs : observed_epochs / jump_epochs);
}

void PoolSatellite(const QcResultCore* combinations, int index, QcResultCore& pool) {
  const QcResultCore& sat = combinations[index];
  pool.System = sat.System;
  pool.ExpectedEpochs += sat.ExpectedEpochs;
  const int best =
      FirstLargest(kMaxCombinations, [combinations](int i) { return combinations[i].ObservedEpochs; });
  pool.ObservedEpochs += sat.ObservedEpochs != 0 ? sat.ObservedEpochs : combinations[best].ObservedEpochs;
  pool.SlipEpochs += sat.SlipEpochs;
  pool.JumpEpochs += sat.JumpEpochs;
  for (int b = 0; b < kBandSlots; ++b) {
    PoolMultipath(sat.Mp[b], pool.Mp[b]);
    PoolSnr(sat.Snr[b], pool.Snr[b]);
  }
}

void FinishPool(QcResultCore& pool) {
  pool.Completeness = CompletenessRatio(pool.ObservedEpochs, pool.ExpectedEpochs);
  pool.ObsPerSlip = ObservationsPerSlip(pool.ObservedEpochs, pool.JumpEpochs);
  for (int b = 0; b < kBandSlots; ++b) {
    FinishMultipath(pool.Mp[b]);
    FinishSnr(pool.Snr[b]);
  }
}

int BestCombination(const QcSysAllResult& all) {
  const int count = all.Combinations.Count;
  if (count == 0) return -1;
  return FirstLargest(count, [&all](int i) { return all.PerComb[i].Completeness; });
}

int SatelliteChoice(const QcResultCore* combinations, int chosen) {
  if (!(combinations[chosen].Completeness < kNoCompleteness)) return chosen;
  return FirstLargest(kMaxCombinations, [combinations](int i) { return combinations[i].Completeness; });
}

bool ChooseOptimal(const QcSysAllResult& all, QcSysOptimalResult& optimal) {
  const int chosen = BestCombination(all);
  if (chosen < 0) return false;
  for (int i = 0; i < kPrnsPerSlot; ++i) {
    optimal.PerSat[i] = all.PerSat[i][SatelliteChoice(all.PerSat[i], chosen)];
  }
  optimal.Sys = all.PerComb[chosen];
  optimal.Codes = all.Combinations.Lists[chosen];
  optimal.System = all.System;
  return true;
}

void MergeSystem(const QcResultCore& system, QcResultCore& total) {
  if (total.System < 1) total.System = system.System;
  total.ExpectedEpochs += system.ExpectedEpochs;
  total.ObservedEpochs += system.ObservedEpochs;
  total.SlipEpochs += system.SlipEpochs;
  total.JumpEpochs += system.JumpEpochs;
  if (total.ExpectedEpochs != 0) {
    total.Completeness = CompletenessRatio(total.ObservedEpochs, total.ExpectedEpochs);
  }
  total.ObsPerSlip = ObservationsPerSlip(total.ObservedEpochs, total.JumpEpochs);
  for (int b = 0; b < kBandSlots; ++b) {
    MergeMultipath(system.Mp[b], total.Mp[b]);
    MergeSnr(system.Snr[b], total.Snr[b]);
  }
}

}  // namespace orsolva
