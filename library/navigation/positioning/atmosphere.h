// Delays of the atmosphere on a code range, in metres, for single point positioning.
#ifndef ORSOLVA_NAVIGATION_POSITIONING_ATMOSPHERE_H
#define ORSOLVA_NAVIGATION_POSITIONING_ATMOSPHERE_H

#include "navigation/orbits/geometry.h"
#include "toolkit/time.h"

namespace gnssqctoolkit {

/// Delay of the ionosphere on GPS L1 by the broadcast model (IS-GPS-200, 20.3.3.5.2.5).
/// @param azimuth_elevation  rad
/// @param coefficients       alpha 0 to 3, beta 0 to 3; all zero = the default set
/// @return 0 for a receiver below -1000 m or a satellite not above the horizon
double KlobucharDelay(const AbsoluteTime& t, const GeodeticPosition& receiver,
                      const double azimuth_elevation[2], const double coefficients[8]);

/// Delay of the troposphere with the standard atmosphere at the receiver's height (Saastamoinen 1972).
/// @param relative_humidity  0 to 1
/// @return 0 for a receiver below -100 m or above 10 km, or a satellite not above the horizon
double SaastamoinenDelay(const GeodeticPosition& receiver, double elevation_rad, double relative_humidity);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_POSITIONING_ATMOSPHERE_H
