// What navigation adds to the physical constants.
#ifndef ORSOLVA_NAVIGATION_ORBITS_CONSTANTS_H
#define ORSOLVA_NAVIGATION_ORBITS_CONSTANTS_H

#include "toolkit/constants.h"

namespace gnssqctoolkit {

inline constexpr double kPi = 3.1415926535897932;

/// A pseudorange of smaller magnitude (m) counts as absent.
inline constexpr double kAbsentRange = 1e-12;

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_ORBITS_CONSTANTS_H
