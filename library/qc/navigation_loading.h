// Loading the broadcast navigation set of a run.
#ifndef ORSOLVA_QC_NAVIGATION_LOADING_H
#define ORSOLVA_QC_NAVIGATION_LOADING_H

#include <cstdint>

#include "navigation/ephemerides/ephemeris.h"
#include "orsolva/records.h"

namespace orsolva {

/// Mark of a satellite whose records are all unhealthy; not above 0 when read as a signed byte.
inline constexpr std::uint8_t kUnhealthySatellite = 255;

/// Adds the healthy records (health word 0) to the stores, fills the GLONASS channel table, and marks every
/// satellite whose records are all unhealthy. A null pointer with a count means no records.
///
/// @param sat_usable  208 values by satellite number - 1; only the marks of unhealthy satellites are written
/// @return false when the set holds no record at all, healthy or not
bool LoadNavigation(const NavBodyData_QC_gbt& nav, gnssqctoolkit::Ephemeris& ephemeris,
                    std::uint8_t* sat_usable);

}  // namespace orsolva

#endif  // ORSOLVA_QC_NAVIGATION_LOADING_H
