// The position of a station from the codes of a few epochs.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_STATION_POSITION_H
#define ORSOLVA_ANALYSIS_GEOMETRY_STATION_POSITION_H

#include <optional>
#include <vector>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

/// Single point position of one epoch: codes of the two carriers farthest apart without ionosphere (else one
/// code), one receiver clock per system, weights by elevation, outliers weighted down. Good to some metres,
/// which is enough: 1 m makes 4 mm in 30 s.
/// @return absent with too few satellites or where the iteration finds no place on Earth
std::optional<Vector3> PointPosition(const ObservationEpoch& epoch, BroadcastStore& records,
                                     const Vector3& guess);

/// The header's position where it is within 6 m of the median of the epochs' positions, or where there is
/// none of those; else the median.
std::optional<Vector3> StationPosition(const std::vector<ObservationEpoch>& epochs, BroadcastStore& records,
                                       const std::optional<Vector3>& header);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_STATION_POSITION_H
