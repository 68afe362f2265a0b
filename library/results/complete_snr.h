// Completeness and SNR of every satellite and signal code, fed epoch by epoch.
#ifndef ORSOLVA_RESULTS_COMPLETE_SNR_H
#define ORSOLVA_RESULTS_COMPLETE_SNR_H

#include <cstdint>

#include "qc/base/config.h"
#include "qc/base/epoch_data.h"
#include "results/completeness.h"
#include "results/snr.h"
#include "toolkit/satellite.h"

namespace orsolva {

class CompleteSnr {
 public:
  virtual ~CompleteSnr() = default;

  bool Ready = false;
  SnrSatList SnrSats[gnssqctoolkit::kMaxSatellites];
  SatCompleteObsList CompleteSats[gnssqctoolkit::kMaxSatellites];

  /// Builds the channel templates of every satellite from the observed code lists (kCodeListSlots of them).
  void BuildTemplates(const gnssqctoolkit::IList* code_lists);

  /// Counts one epoch of one satellite (number 1 to 208) for which an elevation was found.
  void AddEpoch(int number, const QcEpochData& epoch, bool above_cutoff, bool above_30);

  /// Adds nominal epochs at which the satellite was above the cut-off.
  void AddExpected(int number, std::uint64_t epochs);

  /// Frees everything; Ready becomes false.
  void Release();
};

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_COMPLETE_SNR_H
