// Orbit type of BDS satellites by number, as the orbit computation sees it.
#ifndef ORSOLVA_NAVIGATION_ORBITS_BDS_ORBIT_TYPE_H
#define ORSOLVA_NAVIGATION_ORBITS_BDS_ORBIT_TYPE_H

#include <cstdint>

namespace gnssqctoolkit {

inline constexpr int kBdsTypeUnknown = 0;  ///< such a satellite has no position at all
inline constexpr int kBdsTypeGeo = 1;
inline constexpr int kBdsTypeInclined = 16;
inline constexpr int kBdsTypeMedium = 17;

/// Type of a BDS satellite; kBdsTypeUnknown outside 1 to 64.
/// Kept for compatibility: the table differs from BdsOrbitClass of the measures for some satellites, and
/// numbers in service today (47 to 58 among them) are unknown to it.
int BdsOrbitType(std::int32_t prn);

/// True when a record is computed with the rotation of geostationary satellites.
/// @param record_type  orbit type of the record: 1 GEO, 2 not GEO, anything else decided by number
bool BdsIsGeo(std::uint8_t record_type, std::int32_t prn);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_ORBITS_BDS_ORBIT_TYPE_H
