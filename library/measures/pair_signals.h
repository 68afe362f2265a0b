// Constants of one code pair of one satellite, and the observations of a code.
#ifndef ORSOLVA_MEASURES_PAIR_SIGNALS_H
#define ORSOLVA_MEASURES_PAIR_SIGNALS_H

#include <cstdint>

#include "measures/multipath_coefficients.h"
#include "toolkit/satellite.h"
#include "toolkit/time.h"

namespace orsolva {

/// Times closer than this are equal in the measures: 1e-7 s in single precision, widened.
inline constexpr double kTimeTolerance = 1.0000000116860974e-07;
/// Gaps this long end every arc, s.
inline constexpr double kArcGap = 600.0;

/// Pseudorange and phase of one code.
struct CodeObservation {
  std::uint32_t Code = 0;
  double Phase = 0.0;        ///< cycles
  double Pseudorange = 0.0;  ///< m
};

/// Bands and carriers of a pair. A wavelength that is not known (GLONASS channel missing) is 0.
struct PairSignals {
  int System = 0;
  int CodeSlot = 0;  ///< band slot of the measured code, 1 to 6
  int CodeBand = 0;
  int PartnerBand = 0;
  double CodeWavelength = 0.0;     ///< m
  double PartnerWavelength = 0.0;  ///< m
  bool HasMultipath = false;       ///< the carriers lie on two bands
  MpCoefficientSet Multipath;
  bool HasJumpThreshold = false;
  double JumpThreshold = 0.0;  ///< m
};

/// Fills in what follows from bands and wavelengths: the multipath combination and the limit of its residual.
void FillMultipathConstants(PairSignals& signals);

/// @param glonass_channels  32 channels by slot number, -999 = unknown
PairSignals MakePairSignals(const gnssqctoolkit::SatelliteId& satellite, std::uint32_t code,
                            std::uint32_t partner, const std::int32_t* glonass_channels);

/// True for a time other than the zero time, which means none.
inline bool IsSet(const gnssqctoolkit::AbsoluteTime& time) {
  return time.Seconds != 0 || time.Fraction != 0.0;
}

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_PAIR_SIGNALS_H
