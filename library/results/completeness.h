// Completeness: at how many of the epochs at which a satellite should have been tracked was a signal
// observed?
//
// One availability flag per signal code and counted epoch (an epoch with the satellite above the elevation
// cut-off); observed and expected epochs are counts, completeness is their ratio.
#ifndef ORSOLVA_RESULTS_COMPLETENESS_H
#define ORSOLVA_RESULTS_COMPLETENESS_H

#include <cstdint>

#include "qc/base/epoch_data.h"
#include "toolkit/lists.h"

namespace orsolva {

/// Codes that share a band slot of one satellite.
inline constexpr int kCodesPerSlot = 3;

/// Availability of one signal code of one satellite.
class ChannelCompleteObsList {
 public:
  virtual ~ChannelCompleteObsList() = default;

  std::uint8_t Code = 0;       ///< 0 = empty
  gnssqctoolkit::IList Flags;  ///< 1 = observed and valid
  std::uint32_t ValidCount = 0;

  /// One counted epoch more.
  void Append(bool valid);
  /// Number of non-zero flags.
  std::uint64_t Observed() const;
};

/// All codes of one satellite.
class SatCompleteObsList {
 public:
  virtual ~SatCompleteObsList() = default;

  std::uint64_t ExpectedEpochs = 0;  ///< nominal epochs above the elevation cut-off
  std::uint8_t CodeCount[kBandSlots] = {};
  ChannelCompleteObsList Channels[kBandSlots][kCodesPerSlot];

  /// Counts one epoch above the cut-off: a flag for every code.
  void AddEpoch(const QcEpochData& epoch);
};

/// Pseudorange, phase and SNR are all there (1e-12 or more).
bool IsCompleteObservation(const Signal_QC_gbt& signal);

/// observed / expected, 0 when nothing is expected.
double CompletenessRatio(std::uint64_t observed, std::uint64_t expected);

/// Whether a code of this band is left out of the completeness of a combination of several codes.
///
/// Kept for compatibility: BDS 18 belongs to neither generation here and keeps all its codes.
bool IsDroppedFromCombination(int system, int prn, int band);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_COMPLETENESS_H
