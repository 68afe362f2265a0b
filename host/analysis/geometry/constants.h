// Physical constants of the analysis, SI units.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_CONSTANTS_H
#define ORSOLVA_ANALYSIS_GEOMETRY_CONSTANTS_H

namespace orsolva_host::analysis {

constexpr double kPi = 3.1415926535897932;
constexpr double kLightSpeed_m_s = 299792458.0;
constexpr double kEarthRotation_rad_s = 7.2921151467e-5;  // IS-GPS-200, 20.3.3.4.3; GLONASS and Galileo alike
constexpr double kEarthRotationBds_rad_s = 7.2921150e-5;  // BDS-SIS-ICD, CGCS2000
constexpr double kGravityGps_m3_s2 = 3.986005e14;         // IS-GPS-200
constexpr double kGravityGalileo_m3_s2 = 3.986004418e14;  // Galileo OS SIS ICD; BDS-SIS-ICD alike
constexpr double kGravityGlonass_m3_s2 = 3.986004418e14;  // GLONASS ICD 5.1, PZ-90.11
constexpr double kJ2Glonass = 1.08262575e-3;
constexpr double kEarthRadiusGlonass_m = 6378136.0;
constexpr double kReferenceCarrier_hz = 1575.42e6;  // ionosphere is counted in metres of delay there

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_CONSTANTS_H
