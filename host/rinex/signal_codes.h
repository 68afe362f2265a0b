// RINEX observation codes (band digit and tracking letter) and the signal code numbers of the library, by its
// table in orsolva/signals.h.
#ifndef ORSOLVA_RINEX_SIGNAL_CODES_H
#define ORSOLVA_RINEX_SIGNAL_CODES_H

#include <string_view>

namespace orsolva_host {

/// The signal number of an observation code, 0 when the library has none.
///
/// BDS B1I is "1I", "1Q", "1X" in RINEX 3.02 and "2I", "2Q", "2X" in all others; "1X" is B1C from 3.03 on.
/// @param name     two characters, band and tracking letter
/// @param version  of the file, for example 3.04
int SignalNumber(int system, std::string_view name, double version);

/// The observation code of a signal number; empty when unknown.
std::string_view SignalName(int system, int number);
/// The band slot of a signal number; 0 when unknown.
int SignalBandSlot(int system, int number);

/// Name of the band of a band slot, such as "L1" or "E5a"; empty for a slot not in use.
std::string_view BandName(int system, int band_slot);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_SIGNAL_CODES_H
