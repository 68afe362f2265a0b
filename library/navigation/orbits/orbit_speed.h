// Upper bound of the speed of a satellite along its broadcast orbit, from which callers know for how long a
// direction stays where it is without computing the orbit again.
//
// Bounds hold for records that look like those of a navigation satellite; for any other the bound is
// infinite.
#ifndef ORSOLVA_NAVIGATION_ORBITS_ORBIT_SPEED_H
#define ORSOLVA_NAVIGATION_ORBITS_ORBIT_SPEED_H

#include "navigation/orbits/orbits.h"

namespace gnssqctoolkit {

/// The bounds hold this long before and after the reference time, s.
inline constexpr double kBoundedKeplerAge = 86400.0;
inline constexpr double kBoundedGlonassAge = 1850.0;

/// Upper bound of the speed, m/s, with which the position of a Kepler orbit in the Earth-fixed frame changes
/// with the reception time; infinity for elements out of the ordinary. Where it is finite the orbit has a
/// position at every time up to kBoundedKeplerAge from `toe`.
/// @param toe  reference time of the elements
double KeplerSpeedLimit(const KeplerModel& model, const AbsoluteTime& toe, const ClockElements& clock,
                        const KeplerElements& elements);

/// The same for an integrated state vector, up to kBoundedGlonassAge from its reference time.
double GlonassSpeedLimit(const GloEph_gbt& record);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_ORBITS_ORBIT_SPEED_H
