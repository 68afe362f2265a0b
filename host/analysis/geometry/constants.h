// Constants of the analysis on top of those that the whole host shares. SI units.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_CONSTANTS_H
#define ORSOLVA_ANALYSIS_GEOMETRY_CONSTANTS_H

#include "host/observation/physical_constants.h"

namespace orsolva_host::analysis {

using orsolva_host::kEarthRotation_rad_s;
using orsolva_host::kEarthRotationBds_rad_s;
using orsolva_host::kGravityGalileo_m3_s2;
using orsolva_host::kGravityGlonass_m3_s2;
using orsolva_host::kGravityGps_m3_s2;
using orsolva_host::kLightSpeed_m_s;
using orsolva_host::kPi;

constexpr double kJ2Glonass = 1.08262575e-3;  // GLONASS ICD 5.1, PZ-90.11
constexpr double kEarthRadiusGlonass_m = 6378136.0;
/// Codes outside are no codes: satellites are 19,000 to 43,000 km away, and a receiver clock may be off by
/// tens of milliseconds (3,000 km each ten).
constexpr double kMinRange_m = 1e7;
constexpr double kMaxRange_m = 6e7;
constexpr bool IsRange(double metres) { return metres > kMinRange_m && metres < kMaxRange_m; }

constexpr double kSineOfTenDegrees = 0.17364817766693033;

constexpr double kReferenceCarrier_hz = 1575.42e6;  // ionosphere is counted in metres of delay there

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_CONSTANTS_H
