// Signal codes: the library-wide numbers of observation codes, their bands, slots and wavelengths.
#ifndef ORSOLVA_TOOLKIT_SIGNALS_H
#define ORSOLVA_TOOLKIT_SIGNALS_H

#include <cstdint>

namespace gnssqctoolkit {

/// A row of a system's signal table.
struct SignalRow {
  std::int32_t code;
  std::uint8_t band;
  std::uint8_t priority;   ///< rank within the band, 1 = first choice
  char obs[3];             ///< observation code, band digit and tracking letter
  std::uint8_t frequency;  ///< frequency slot, 1-based, under which results of the band are kept
};

/// The table of a system and its number of rows; null and 0 for an unknown system.
const SignalRow* SignalTable(int system, int& rows);
/// The first row of a code in its system's table; null when it has none.
const SignalRow* FindSignal(int system, int code);
/// Band of a code, 0 when unknown.
int SignalBand(int system, int code);
/// Frequency slot (1-based) of a code, 0 when unknown.
int SignalFrequency(int system, int code);
/// Carrier wavelength in metres; 0.0 for an unknown code or band or a GLONASS channel below -7.
/// @param glonass_channel  frequency channel k of the satellite, used for GLONASS bands 1 and 2
double Wavelength(int system, int code, int glonass_channel);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_SIGNALS_H
