// Dual-frequency code multipath of one satellite and code pair.
// Notation: f carrier frequency (Hz), P code range (m), L carrier phase (cycles), lambda wavelength (m).
#ifndef ORSOLVA_MEASURES_MULTIPATH_H
#define ORSOLVA_MEASURES_MULTIPATH_H

#include <cstdint>

#include "measures/detail.h"
#include "qc/epoch_data.h"
#include "qc/epoch_time.h"
#include "toolkit/lists.h"
#include "toolkit/time.h"

namespace orsolva {

inline constexpr int kPairsPerBand = 10;

/// Averaging state and accumulated residuals of one satellite and code pair.
class AbsoluteMp {
 public:
  virtual ~AbsoluteMp() = default;

  gnssqctoolkit::AbsoluteTime LastEpoch;  ///< last epoch that produced a value; zero before the first
  TimeList RestartTimes;                  ///< restarts by a jump or slip while counting
  std::uint32_t Code = 0;
  std::uint32_t Partner = 0;
  double SumOfSquares = 0.0;  ///< m^2
  std::int64_t Count = 0;
  // The moving windows of values and residuals: owned by the implementer of this floor (see multipath.cpp).
};

/// Results of one satellite: per band slot up to ten pairs in ascending (code, partner) order.
struct SatMp {
  std::uint8_t Count[kBandSlots] = {};
  const AbsoluteMp* Pairs[kBandSlots][kPairsPerBand] = {};
};

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_MULTIPATH_H
