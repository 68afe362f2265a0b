// The figures of one satellite for one combination of codes.
#ifndef ORSOLVA_RESULTS_SATELLITE_FIGURES_H
#define ORSOLVA_RESULTS_SATELLITE_FIGURES_H

#include <cstdint>
#include <optional>

#include "measures/ionosphere.h"
#include "measures/multipath.h"
#include "qc/base/config.h"
#include "results/completeness.h"
#include "results/result_model.h"
#include "results/snr.h"
#include "toolkit/lists.h"
#include "toolkit/satellite.h"

namespace orsolva {

/// The statistics of one satellite, by reference.
struct SatelliteStores {
  gnssqctoolkit::SatelliteId Satellite;
  const SatCompleteObsList& Complete;
  const SnrSatList& Snr;
  const SatMp& Multipath;
  const SatIodDetect& Ionosphere;
};

/// A satellite's channels by the band slots of the signal tables.
///
/// The completeness and SNR channels of the BDS-3 satellites have slots of their own. For them the
/// channels are read shifted: slot 6 shows the channels of slot 5, slot 5 those of slot 2, and slot 2 none.
/// Only the reading is shifted, never the statistics, so results can be asked for any number of times.
class SatelliteView {
 public:
  SatelliteView(const SatelliteStores& stores, bool shifted);
  virtual ~SatelliteView() = default;

  const SatelliteStores& Stores() const { return stores_; }
  /// Completeness of a code; null without a channel.
  const ChannelCompleteObsList* FindComplete(int code) const;
  /// Fills the SNR figures of a code; false, with nothing touched, without a channel.
  bool FillSnr(int code, QcSnrResult& result) const;

 private:
  /// Stored slot index (0 to 5) shown at the code's slot, -1 for none.
  int SourceSlot(int code) const;

  const SatelliteStores& stores_;
  int source_[kBandSlots] = {0, 1, 2, 3, 4, 5};
  /// Spread of a channel's samples, which walks all of them: done once, when a combination asks for it.
  double StdDev(int slot, int channel) const;
  mutable std::optional<double> std_dev_[kBandSlots][kCodesPerSlot];
};

/// Epochs at which every code of the combination was observed; 0 when one of them has no channel or no flags.
/// Of a combination of several codes those of IsDroppedFromCombination are left out first.
std::uint64_t ObservedTogether(const SatelliteView& view, const gnssqctoolkit::IList& codes);

/// All figures of a satellite for a combination, into an empty core.
void EvaluateCombination(const SatelliteView& view, const gnssqctoolkit::IList& codes, QcResultCore& core);

/// The usable codes of a satellite: in an enabled band and observed at least once.
struct UsableCodes {
  int BandCount = 0;           ///< distinct band slots
  gnssqctoolkit::IList Codes;  ///< by channel
};
UsableCodes FindUsableCodes(const QcSysConfig& config, const SatelliteStores& stores);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_SATELLITE_FIGURES_H
