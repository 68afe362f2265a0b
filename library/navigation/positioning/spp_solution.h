// Settings and solution of single point positioning.
#ifndef ORSOLVA_NAVIGATION_POSITIONING_SPP_SOLUTION_H
#define ORSOLVA_NAVIGATION_POSITIONING_SPP_SOLUTION_H

#include <cstdint>

#include "orsolva/records.h"
#include "toolkit/constants.h"

namespace gnssqctoolkit {

class SPPOption {
 public:
  SPPOption() {
    for (std::int32_t& use : SatUse) use = 1;
  }
  virtual ~SPPOption() = default;

  std::int32_t Mode = 0;
  std::int32_t Flags = 0;
  double Reserved[2][9] = {};
  double ErrRatio = 100.0;  ///< standard deviation of code over that of phase
  double ErrA = 0.006;      ///< m, part of the phase error that does not depend on elevation
  double ErrB = 0.004;      ///< m, part that grows with 1 / sin(elevation) in the variance
  double ErrC = 0.0;
  double ErrDoppler = 1.0;
  std::int32_t IonoOpt = 1;                        ///< 1 = broadcast model, else none
  std::int32_t TropOpt = 2;                        ///< 2 = Saastamoinen, else none
  double ElevationMask = kDefaultElevationCutoff;  ///< rad
  std::uint32_t NavSys = 15;                       ///< mask of system codes: GPS, GLONASS, BDS, Galileo
  std::int32_t SatUse[208];  ///< by satellite number - 1: 0 left out, 1 used, else tested
  double MaxGdop = 30.0;
};

class SPPResult {
 public:
  virtual ~SPPResult() = default;

  Time_gbt Time = {0, 0.0};  ///< receiver time corrected by the GPS clock term
  double Rr[6] = {};         ///< ECEF position (m) and velocity (always 0)
  /// Covariance of the position, m^2: Q00, Q11, Q22, Q10, Q22, Q20.
  // Kept for compatibility: the fifth entry repeats Q22 where Q21 would be expected.
  float Qr[6] = {};
  float Qv[6] = {};         ///< always 0
  double Dtr[6] = {};       ///< receiver clock terms (s): GPS, GLONASS, BDS, Galileo, two unused
  std::uint8_t Status = 0;  ///< 1 with a valid solution
  std::uint8_t SatNum = 0;  ///< satellites used
  double Age = 0.0;
  double Dop[4] = {};  ///< GDOP, PDOP, HDOP, VDOP
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_POSITIONING_SPP_SOLUTION_H
