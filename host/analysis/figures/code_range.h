// The code of a satellite that goes with a clock: of the bands that the clock belongs to, without ionosphere.
//
//   P = g P1 + (1 - g) P2,  g = f1^2 / (f1^2 - f2^2)       (IS-GPS-200, 20.3.3.3.3.3)
//
// Broadcast clocks belong to L1 and L2 P(Y) (GPS, QZSS), E1 and E5b (Galileo I/NAV), B3I (BDS, for which g
// TGD1 is taken off: BDS-SIS-ICD, 5.2.4.10), L1 (GLONASS, whose delay between bands stays in its clock);
// precise clocks to the same pairs, but E1 and E5a for Galileo (IGS convention). Where the pair is not there
// the next of the table is taken; E1 and E5a then leave a difference of group delays of decimetres, C/A
// instead of P(Y) some decimetres.
#ifndef ORSOLVA_ANALYSIS_FIGURES_CODE_RANGE_H
#define ORSOLVA_ANALYSIS_FIGURES_CODE_RANGE_H

#include "host/analysis/geometry/range_model.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

struct CodeRange {
  double two_bands_m = kAbsent;  ///< without ionosphere
  double one_band_m = kAbsent;   ///< of the first band, as observed
};

/// @param range  of the satellite, for its source and group delay
CodeRange CodeRangeOf(const ObservationEpoch& epoch, const SatelliteObservation& satellite,
                      const ModelledRange& range);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_CODE_RANGE_H
