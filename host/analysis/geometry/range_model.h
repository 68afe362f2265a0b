// What range, troposphere and satellite clock are expected to be at an epoch.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_RANGE_MODEL_H
#define ORSOLVA_ANALYSIS_GEOMETRY_RANGE_MODEL_H

#include <cstdint>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/station.h"

namespace orsolva_host::analysis {

struct ModelledRange {
  bool valid = false;
  double metres = 0;  ///< range + troposphere - c dts; without the receiver clock and the ionosphere
  double sin_elevation = 0;
  Vector3 line_of_sight = {};  ///< unit vector from the station to the satellite
  bool precise = false;        ///< by the precise orbit
  bool healthy = true;         ///< as the record says
  double group_delay_m = 0;    ///< see KeplerRecord::group_delay_s
};

/// @param time_ns        tag of the epoch
/// @param pseudorange_m  any valid code of the satellite; it gives the time of transmission whatever the
/// receiver clock is, up to a millisecond and beyond (1 ms of clock is up to 0.8 m of range)
///
/// The Earth's turn while the signal travels is taken off (Sagnac). Invalid where the record gives no
/// position.
ModelledRange RangeAt(SatelliteRecords& records, std::size_t record, const Station& station,
                      std::int64_t time_ns, double pseudorange_m);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_RANGE_MODEL_H
