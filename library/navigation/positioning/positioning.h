// Single point positioning over a batch: epochs spread over it, one least-squares solution each, their
// median.
#ifndef ORSOLVA_NAVIGATION_POSITIONING_POSITIONING_H
#define ORSOLVA_NAVIGATION_POSITIONING_POSITIONING_H

#include <cstdint>
#include <vector>

#include "navigation/ephemerides/ephemeris.h"
#include "navigation/positioning/positioning_epoch.h"
#include "navigation/positioning/spp.h"

namespace gnssqctoolkit {

/// How many epochs of a batch are positioned at most.
inline constexpr int kMaxPositioningEpochs = 100;

/// Indices of at most kMaxPositioningEpochs epochs spread evenly over `count`, ascending.
std::vector<int> SpreadEpochs(int count);

/// Position of the station: component-wise median over the epochs that have a solution, each solution started
/// from the one before.
/// @param position  ECEF, m; untouched on failure
/// @return false when no epoch has a solution
bool PositionFromEpochs(const std::vector<PositioningEpoch>& epochs, const Ephemeris& ephemeris,
                        const SPPOption& option, double position[3]);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_POSITIONING_POSITIONING_H
