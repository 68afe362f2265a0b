// Physical constants, each with the public document that fixes its value.
#ifndef ORSOLVA_TOOLKIT_CONSTANTS_H
#define ORSOLVA_TOOLKIT_CONSTANTS_H

namespace gnssqctoolkit {

/// m/s. IS-GPS-200, 20.3.4.3.
inline constexpr double kSpeedOfLight = 299792458.0;

/// m^3/s^2, GPS and QZSS orbits. IS-GPS-200, table 20-IV.
inline constexpr double kGmGps = 3.986005e14;
/// m^3/s^2, BDS and Galileo orbits. BDS ICD (CGCS2000), Galileo OS SIS ICD 5.1.1.
inline constexpr double kGmBdsGalileo = 3.986004418e14;
/// m^3/s^2, GLONASS orbits. GLONASS ICD 5.1 (PZ-90).
inline constexpr double kGmGlonass = 3.9860044e14;

/// rad/s, GPS and Galileo orbits and the Sagnac term. IS-GPS-200, table 20-IV.
inline constexpr double kEarthRotationGps = 7.2921151467e-5;
/// rad/s, BDS orbits. BDS ICD (CGCS2000).
inline constexpr double kEarthRotationBds = 7.292115e-5;
/// rad/s, GLONASS orbits. GLONASS ICD 5.1 (PZ-90).
inline constexpr double kEarthRotationGlonass = 7.292115e-5;
/// rad^2/s^2, stored rather than computed.
inline constexpr double kEarthRotationGlonassSquared = 5.3174941173225e-09;
/// rad/s, stored rather than computed.
inline constexpr double kEarthRotationGlonassDouble = 0.0001458423;
/// m^5/s^2, 1.5 J2 GM Re^2 with J2 = 1.0826257e-3 and Re = 6378136 m. GLONASS ICD 5.1 (PZ-90).
inline constexpr double kGlonassJ2Factor = 2.633267117769225e+25;

/// m, equatorial radius. WGS-84.
inline constexpr double kEarthRadius = 6378137.0;
/// First eccentricity squared. WGS-84.
inline constexpr double kEarthEccentricitySquared = 0.0066943799901413165;

/// s.
inline constexpr double kHalfWeek = 302400.0;
inline constexpr double kWeek = 604800.0;

/// rad, -5 degrees: tilt of the frame of BDS geostationary orbits. BDS ICD, table of user algorithms.
inline constexpr double kBdsGeoTilt = -0.08726646259971647;
inline constexpr double kRadiansPerDegree = 0.017453292519943295;
/// rad, 10 degrees: the elevation cut-off of a run and of positioning by default.
inline constexpr double kDefaultElevationCutoff = 0.17453292519943295;

/// s, BDS time is this much behind GPS time. BDS ICD, 3.3: BDS time starts at 2006-01-01 UTC.
inline constexpr double kGpsMinusBds = 14.0;

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_CONSTANTS_H
