// The signals meant by the observation codes of RINEX 2.
#ifndef ORSOLVA_RINEX_VERSION2_CODES_H
#define ORSOLVA_RINEX_VERSION2_CODES_H

#include <string_view>

namespace orsolva_host {

/// Signals as RINEX 3 names them (band and tracking letter). Empty: none.
struct Version2Signals {
  std::string_view first;   ///< the signal a value belongs to
  std::string_view second;  ///< the signal it belongs to when the first has no pseudoranges
};

/// @param letter  of the system
/// @param code    such as "C1", "L2" or "SA"
/// @param lettered  the file has codes with tracking letters (RINEX 2.12), such as "LA", for the code's band
///
/// Pseudoranges have one signal. Phase, Doppler and signal strength of GPS and GLONASS name only the band:
/// on the first band they belong to C1, otherwise to P1, on the second to P2, otherwise to C2, as receivers
/// track them. Where the band has lettered codes, the plain ones belong to P1 and P2.
Version2Signals SignalsOfVersion2(char letter, std::string_view code, bool lettered);

/// The band of a code with a tracking letter: 1 for A and B, 2 for C and D; 0 for others.
int BandOfLettered(std::string_view code);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_VERSION2_CODES_H
