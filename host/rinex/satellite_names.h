// Systems and satellites as RINEX names them, and their codes at the library's boundary.
#ifndef ORSOLVA_RINEX_SATELLITE_NAMES_H
#define ORSOLVA_RINEX_SATELLITE_NAMES_H

#include <string>
#include <string_view>

namespace orsolva_host {

constexpr int kGps = 1;
constexpr int kGlonass = 2;
constexpr int kBds = 4;
constexpr int kGalileo = 8;
constexpr int kQzss = 16;

/// A system that is judged, in the order of the library's flags and result slots.
struct SystemRow {
  int code;  ///< at the library's boundary
  char letter;
  const char* name;
  const char* short_name;
  int satellites;  ///< numbers 1 to this
};

constexpr int kSystems = 5;
extern const SystemRow kSystemTable[kSystems];

/// Place of a system in kSystemTable by its letter; -1 for one that is not judged.
int SystemSlot(char letter);
/// Place of a system in kSystemTable by its code; -1 for one that is not judged.
int SystemSlotOfCode(int code);

/// Reads "G04", "G 4" or "G4". Any letter A to Z is taken, so that unjudged systems can be told from damage.
/// @return false when the text is no satellite
bool ParseSatellite(std::string_view text, char& letter, int& number);

/// "G04"
std::string SatelliteName(char letter, int number);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_SATELLITE_NAMES_H
