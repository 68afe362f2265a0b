// Which signals a satellite must transmit because of others that it was seen with. This needs no table of
// satellites, which would be out of date with the next launch:
//   GPS      every satellite: C/A and P(Y) on L1 and P(Y) on L2 (IS-GPS-200). One with L5 (Block IIF and
//            later) has L2C, one with L1C (Block III) has L2C and L5 (IS-GPS-200, -705, -800).
//   Galileo  one with two bands has E1, E5a, E5b, E5 and E6 (OS SIS ICD; E20, which sends E1 alone, is
//            exempt).
//   BDS      every satellite: B1I and B3I. One with B1C or B2a (MEO and IGSO of BDS-3) has both, and B2b
//            (BDS-SIS-ICD-B1C, -B2a, -B2b, -B3I).
//
// Nothing follows for the other systems: GLONASS, for one, has satellites whose L2 failed.
#ifndef ORSOLVA_ANALYSIS_FIGURES_TRANSMITTED_SIGNALS_H
#define ORSOLVA_ANALYSIS_FIGURES_TRANSMITTED_SIGNALS_H

#include <vector>

#include "host/observation/signal_code.h"

namespace orsolva_host::analysis {

/// @param seen  signals that the satellite was observed with
bool MustTransmit(char system, const std::vector<SignalCode>& seen, SignalCode code);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_TRANSMITTED_SIGNALS_H
