// What single point positioning takes of an epoch.
#ifndef ORSOLVA_NAVIGATION_POSITIONING_POSITIONING_EPOCH_H
#define ORSOLVA_NAVIGATION_POSITIONING_POSITIONING_EPOCH_H

#include <cstdint>
#include <vector>

#include "toolkit/satellite.h"
#include "toolkit/time.h"

namespace gnssqctoolkit {

/// One pseudorange of an epoch.
struct PositioningObservation {
  SatelliteId Satellite;
  std::int32_t Code = 0;     ///< signal code, for the carrier wavelength
  double Pseudorange = 0.0;  ///< m
};

/// One epoch, one pseudorange per satellite.
struct PositioningEpoch {
  AbsoluteTime Time;
  std::vector<PositioningObservation> Observations;
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_POSITIONING_POSITIONING_EPOCH_H
