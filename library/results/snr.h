// Signal-to-noise statistics of one satellite and signal code: mean and spread over all epochs, and means
// split at the elevation cut-off and at 30 degrees. Values are dB-Hz as the host delivers them.
#ifndef ORSOLVA_RESULTS_SNR_H
#define ORSOLVA_RESULTS_SNR_H

#include <cstdint>

#include "qc/base/epoch_data.h"
#include "results/completeness.h"
#include "toolkit/lists.h"

namespace orsolva {

/// A running mean.
struct SnrGroup {
  std::uint32_t Count = 0;
  double Sum = 0.0;
  double Mean = 0.0;

  void Add(double snr_dbhz);
};

/// SNR of one code of one satellite.
class SnrChannelList {
 public:
  virtual ~SnrChannelList() = default;

  std::uint8_t Code = 0;
  std::uint32_t Count = 0;
  double Sum = 0.0;
  double Mean = 0.0;
  SnrGroup AboveMask;  ///< above the elevation cut-off
  SnrGroup BelowMask;
  SnrGroup Above30;  ///< above 30 degrees
  SnrGroup Below30;
  gnssqctoolkit::IList Samples;  ///< quarter units, 0 to 255

  /// One value; a value that is not above 1e-12 is not counted at all.
  void Add(double snr_dbhz, bool above_cutoff, bool above_30);
  /// Spread of the samples about the mean (n - 1 in the denominator), 0 for fewer than two samples.
  double StdDev() const;
};

/// All codes of one satellite, channel for channel those of SatCompleteObsList.
class SnrSatList {
 public:
  virtual ~SnrSatList() = default;

  std::uint8_t CodeCount[kBandSlots] = {};
  SnrChannelList Channels[kBandSlots][kCodesPerSlot];

  /// Counts one epoch for which an elevation was found, above the cut-off or not.
  void AddEpoch(const QcEpochData& epoch, bool above_cutoff, bool above_30);
};

/// A value in quarter units as the narrow sample store holds it.
///
/// Kept for compatibility: the store is eight bits wide, so 64 dB-Hz and more wrap around; only the standard
/// deviation sees it.
std::int32_t QuantiseSnr(double snr_dbhz);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_SNR_H
