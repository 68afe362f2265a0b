// Physical constants of everything above: analysis, simulator. SI units.
#ifndef ORSOLVA_OBSERVATION_PHYSICAL_CONSTANTS_H
#define ORSOLVA_OBSERVATION_PHYSICAL_CONSTANTS_H

namespace orsolva_host {

inline constexpr double kPi = 3.1415926535897932;
inline constexpr double kLightSpeed_m_s = 299792458.0;

inline constexpr double kEarthRotation_rad_s =
    7.2921151467e-5;  // IS-GPS-200, 20.3.3.4.3; Galileo and QZSS alike
inline constexpr double kEarthRotationBds_rad_s =
    7.2921150e-5;                                         // BDS-SIS-ICD, CGCS2000; GLONASS ICD 5.1 alike
inline constexpr double kGravityGps_m3_s2 = 3.986005e14;  // IS-GPS-200; QZSS alike
inline constexpr double kGravityGalileo_m3_s2 = 3.986004418e14;  // Galileo OS SIS ICD; BDS-SIS-ICD alike
inline constexpr double kGravityGlonass_m3_s2 = 3.986004418e14;  // GLONASS ICD 5.1, PZ-90.11
/// As GLONASS ICD 5.1, appendix A.3.1.2, rounds it for the integration of broadcast state vectors.
inline constexpr double kGravityGlonassRounded_m3_s2 = 3.9860044e14;

}  // namespace orsolva_host

#endif  // ORSOLVA_OBSERVATION_PHYSICAL_CONSTANTS_H
