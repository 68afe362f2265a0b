// Every figure of a run: per satellite and code combination, per system, the best combination of each system
// and the systems merged into one.
//
// Counts and sums are pooled, never rates: completeness is the sum of the observed epochs over the sum of the
// expected ones, an RMS the square root of the count-weighted mean square. A zero denominator gives 0, and in
// every choice the first candidate keeps a tie.
#ifndef ORSOLVA_RESULTS_RESULT_MODEL_H
#define ORSOLVA_RESULTS_RESULT_MODEL_H

#include <cstdint>

#include "orsolva/records.h"
#include "qc/base/config.h"
#include "qc/base/epoch_data.h"
#include "qc/base/epoch_time.h"
#include "results/code_combinations.h"
#include "toolkit/lists.h"

namespace orsolva {

/// Numbers of a system slot: one row per PRN.
inline constexpr int kPrnsPerSlot = 64;

/// Multipath and slips of one band slot.
class QcMpIodResult {
 public:
  virtual ~QcMpIodResult() = default;

  std::uint8_t BandSlot = 0;  ///< that of the first code
  std::uint8_t BandSlot1 = 0;
  std::uint8_t Code1 = 0;
  std::uint8_t BandSlot2 = 0;
  std::uint8_t Code2 = 0;
  double MpRms = 0.0;  ///< m; the sum of squares while satellites are being pooled
  std::uint64_t MpCount = 0;
  std::uint64_t SlipCount = 0;
  std::uint64_t JumpCount = 0;
  const TimeList* SlipTimes = nullptr;  ///< the run's own list, null when there is none
  const TimeList* JumpTimes = nullptr;
  double IodRms = 0.0;  ///< cycles
};

/// SNR of one band slot.
class QcSnrResult {
 public:
  virtual ~QcSnrResult() = default;

  std::uint8_t Code = 0;
  std::uint64_t AboveMaskCount = 0;
  std::uint64_t BelowMaskCount = 0;
  double AboveMaskMean = 0.0;  ///< dB-Hz; the sum while satellites are being pooled, as the other group means
  double BelowMaskMean = 0.0;
  double Mean = 0.0;
  double StdDev = 0.0;
  std::uint64_t Above30Count = 0;
  std::uint64_t Below30Count = 0;
  double Above30Mean = 0.0;
  double Below30Mean = 0.0;
};

/// All figures of one satellite or one system for one combination of codes.
class QcResultCore {
 public:
  // Not inline: a result holds thousands of them, and compilers would lay out each one's zeros in line.
  QcResultCore();
  QcResultCore(const QcResultCore&) = default;
  QcResultCore& operator=(const QcResultCore&) = default;
  virtual ~QcResultCore() = default;

  std::int32_t System = 0;  ///< system code, 0 = not set
  std::uint64_t ExpectedEpochs = 0;
  std::uint64_t ObservedEpochs = 0;
  double Completeness = 0.0;
  std::uint64_t SlipEpochs = 0;
  std::uint64_t JumpEpochs = 0;
  double ObsPerSlip = 0.0;
  QcMpIodResult Mp[kBandSlots];
  QcSnrResult Snr[kBandSlots];
};

/// One system slot: every satellite and combination, and the system's figures per combination.
class QcSysAllResult {
 public:
  virtual ~QcSysAllResult() = default;

  std::int32_t System = 0;
  QcCodeCombination Combinations;
  QcCodeCombination AltCombinations;
  QcResultCore PerSat[kPrnsPerSlot][kMaxCombinations];
  QcResultCore PerComb[kMaxCombinations];
};

/// The chosen combination of one system slot.
class QcSysOptimalResult {
 public:
  virtual ~QcSysOptimalResult() = default;

  std::int32_t System = 0;
  gnssqctoolkit::IList Codes;
  QcResultCore PerSat[kPrnsPerSlot];
  QcResultCore Sys;
};

/// The whole run. Megabytes: keep it on the heap.
class QcResult {
 public:
  QcResult();
  virtual ~QcResult() = default;

  double DurationHours = 0.0;
  double Interval = 0.0;  ///< s, rounded to 1 ms
  std::int32_t EpochCount = 0;
  std::int32_t LostEpochs = 0;
  Time_gbt StartTime{};
  Time_gbt EndTime{};
  double StationXyz[3] = {0.0, 0.0, 0.0};  ///< ECEF, m
  QcSysAllResult All[kSystemSlots];
  QcSysOptimalResult Optimal[kSystemSlots];
  std::uint32_t SatUsed[kSystemSlots][kPrnsPerSlot];
};

/// Observed epochs per jump epoch.
///
/// Kept for compatibility: the division is one of whole numbers, 1000 epochs with 3 jumps give 333. Without
/// jumps it is the number of observed epochs.
double ObservationsPerSlip(std::uint64_t observed_epochs, std::uint64_t jump_epochs);

/// Adds a satellite's combination to the figures of its system, which hold sums until FinishPool.
/// @param combinations  all kMaxCombinations figures of the satellite
/// @param index         the combination that is added
void PoolSatellite(const QcResultCore* combinations, int index, QcResultCore& pool);

/// Turns the sums of a pool into means, RMS and rates.
void FinishPool(QcResultCore& pool);

/// Number of the most complete combination of a slot, the first of equal ones; -1 for a slot without any.
int BestCombination(const QcSysAllResult& all);

/// Number of the combination whose figures a satellite shows: the chosen one, or its own most complete when
/// it has observed nothing with that.
/// @param combinations  all kMaxCombinations figures of the satellite
int SatelliteChoice(const QcResultCore* combinations, int chosen);

/// Chooses the best combination of a slot and the figures of its satellites.
/// @return false, with `optimal` left alone, when the slot has no combination
bool ChooseOptimal(const QcSysAllResult& all, QcSysOptimalResult& optimal);

/// Merges the figures of one system into the combined ones. The ionospheric statistic is not merged.
void MergeSystem(const QcResultCore& system, QcResultCore& total);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_RESULT_MODEL_H
