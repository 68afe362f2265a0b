// Physical constants, each with the public document that fixes its value.
#ifndef ORSOLVA_TOOLKIT_CONSTANTS_H
#define ORSOLVA_TOOLKIT_CONSTANTS_H

namespace gnssqctoolkit {

// clang-format off
inline constexpr double kSpeedOfLight          = 299792458.0;            ///< m/s; SI, IS-GPS-200 20.3.4.3
inline constexpr double kGmGps                 = 3.986005e14;            ///< m^3/s^2; IS-GPS-200, table 20-IV
inline constexpr double kGmBdsGalileo          = 3.986004418e14;         ///< m^3/s^2; BDS ICD (CGCS2000), Galileo OS SIS ICD 5.1.1
inline constexpr double kGmGlonass             = 3.9860044e14;           ///< m^3/s^2; GLONASS ICD 5.1 (PZ-90)
inline constexpr double kEarthRotationGps      = 7.2921151467e-5;        ///< rad/s; GPS, Galileo, Sagnac; IS-GPS-200, table 20-IV
inline constexpr double kEarthRotationBds      = 7.292115e-5;            ///< rad/s; BDS ICD (CGCS2000)
inline constexpr double kEarthRotationGlonass  = 7.292115e-5;            ///< rad/s; GLONASS ICD 5.1 (PZ-90)
inline constexpr double kEarthRotationGlonassSquared = 5.3174941173225e-09;  ///< rad^2/s^2
inline constexpr double kEarthRotationGlonassDouble  = 0.0001458423;         ///< rad/s
inline constexpr double kGlonassJ2Factor       = 2.633267117769225e+25;  ///< m^5/s^2; 1.5 J2 GM Re^2, J2 1.0826257e-3, Re 6378136 m
inline constexpr double kEarthRadius           = 6378137.0;              ///< m; WGS-84 equatorial radius
inline constexpr double kEarthEccentricitySquared = 0.0066943799901413165;   ///< WGS-84
inline constexpr double kHalfWeek              = 302400.0;               ///< s
inline constexpr double kWeek                  = 604800.0;               ///< s
inline constexpr double kBdsGeoTilt            = -0.08726646259971647;   ///< rad, -5 degrees; BDS ICD, GEO satellite coordinates
inline constexpr double kRadiansPerDegree      = 0.017453292519943295;   ///< rad/degree
// clang-format on

/// BDS time is this many seconds behind GPS time (BDS ICD 3.3: zero at 2006-01-01 UTC).
inline constexpr double kGpsMinusBds = 14.0;

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_CONSTANTS_H
