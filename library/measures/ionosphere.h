// Ionospheric delay changes and cycle slips of one satellite and code pair.
#ifndef ORSOLVA_MEASURES_IONOSPHERE_H
#define ORSOLVA_MEASURES_IONOSPHERE_H

#include <cstdint>

#include "measures/multipath.h"
#include "qc/epoch_time.h"
#include "toolkit/time.h"

namespace orsolva {

class IodDetect {
 public:
  virtual ~IodDetect() = default;

  TimeList SlipTimes;  ///< epochs at which the phase-minus-geometry test found a slip
  std::uint32_t SlipCount = 0;
  std::uint32_t Code = 0;
  std::uint32_t Partner = 0;
  gnssqctoolkit::AbsoluteTime GeometryFreeEpoch;
  double GeometryFree = 0.0;  ///< m
  gnssqctoolkit::AbsoluteTime CurrentEpoch;
  gnssqctoolkit::AbsoluteTime PreviousEpoch;   ///< zero when none
  gnssqctoolkit::AbsoluteTime EphemerisEpoch;  ///< reference of the record behind the stored value
  double LastPseudorange = 0.0;                ///< m
  double LastPhase = 0.0;                      ///< cycles
  double PhaseMinusGeometry = 0.0;             ///< m
  double Difference = 0.0;                     ///< m
  bool SlipFlag = false;
  double WideLaneMean = 0.0;      ///< cycles
  double WideLaneVariance = 0.0;  ///< cycles^2
  std::int32_t WideLaneCount = 0;
  std::int32_t LongestArcCount = 0;
  double LongestArcVariance = 0.0;

  /// The statistic the results report: variance of the longest wide-lane arc, the open one counted in when it
  /// is at least as long as the longest closed one.
  double IonosphereStatistic() const {
    return WideLaneCount >= LongestArcCount ? WideLaneVariance : LongestArcVariance;
  }
};

/// Results of one satellite: per band slot up to ten pairs in ascending (code, partner) order.
struct SatIodDetect {
  std::uint8_t Count[kBandSlots] = {};
  const IodDetect* Pairs[kBandSlots][kPairsPerBand] = {};
};

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_IONOSPHERE_H
