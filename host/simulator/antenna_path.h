// Where the antenna is: at rest, on a straight line or on a circle in the horizontal plane of its position.
#ifndef ORSOLVA_SIMULATOR_ANTENNA_PATH_H
#define ORSOLVA_SIMULATOR_ANTENNA_PATH_H

#include <array>

#include "host/simulator/scenario.h"
#include "host/simulator/surroundings.h"

namespace orsolva_host {

/// Metres east and north of the position at rest.
std::array<double, 2> PathOffset(const AntennaPath& path, double time_s);

/// @param start   the site at rest
/// @param time_s  after the start of the span
Site SiteOnPath(const Site& start, const AntennaPath& path, double time_s);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_ANTENNA_PATH_H
