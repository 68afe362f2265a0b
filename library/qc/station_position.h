// The station position a batch gives by single point positioning.
#ifndef ORSOLVA_QC_STATION_POSITION_H
#define ORSOLVA_QC_STATION_POSITION_H

#include <cstdint>

#include "navigation/ephemerides/ephemeris.h"
#include "qc/observations.h"

namespace orsolva {

/// Positions about a hundred epochs spread over the stored batch.
///
/// @param sat_usable      208 values read as signed bytes; only satellites above 0 take part
/// @param first_sequence  sequence number of the batch's first accepted epoch
/// @param epochs          how many epochs the batch has accepted
/// @param position        ECEF, m; untouched on failure
bool StationPosition(QcGNSSObsData& observations, const gnssqctoolkit::Ephemeris& ephemeris,
                     const std::uint8_t* sat_usable, std::uint32_t first_sequence, std::uint32_t epochs,
                     double position[3]);

}  // namespace orsolva

#endif  // ORSOLVA_QC_STATION_POSITION_H
