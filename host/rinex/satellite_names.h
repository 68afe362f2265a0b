// Systems and satellites as RINEX names them, and their codes at the library's boundary.
#ifndef ORSOLVA_RINEX_SATELLITE_NAMES_H
#define ORSOLVA_RINEX_SATELLITE_NAMES_H

#include <string>
#include <string_view>

#include "orsolva/signals.h"

namespace orsolva_host {

constexpr int kGps = ORSOLVA_GPS;
constexpr int kGlonass = ORSOLVA_GLONASS;
constexpr int kBds = ORSOLVA_BDS;
constexpr int kGalileo = ORSOLVA_GALILEO;
constexpr int kQzss = ORSOLVA_QZSS;

/// A supported system, in the order of the library's flags and result slots.
struct SystemRow {
  int code;  ///< at the library's boundary
  char letter;
  const char* name;
  const char* short_name;
  int satellites;  ///< numbers 1 to this
};

constexpr int kSystems = ORSOLVA_SYSTEMS;
extern const SystemRow kSystemTable[kSystems];

/// Index of a system in kSystemTable by its letter; -1 if not supported.
int SystemSlot(char letter);
/// Index of a system in kSystemTable by its code; -1 if not supported.
int SystemSlotOfCode(int code);

/// Reads "G04", "G 4" or "G4". Any letter A to Z is accepted, so that unsupported systems are
/// distinguished from damage. @return false when the text is not a satellite
bool ParseSatellite(std::string_view text, char& letter, int& number);

/// "GPS" for 'G', also of the systems that the library does not know; the letter of any other.
std::string NameOfSystem(char letter);

/// "G04"
std::string SatelliteName(char letter, int number);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_SATELLITE_NAMES_H
