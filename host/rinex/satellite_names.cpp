#include "host/rinex/satellite_names.h"

#include <fmt/format.h>

#include "host/rinex/decimal.h"

namespace orsolva_host {

const SystemRow kSystemTable[kSystems] = {
    {kGps, 'G', "GPS", "GPS", 35},   {kGlonass, 'R', "GLONASS", "GLO", 32},
    {kBds, 'C', "BDS", "BDS", 64},   {kGalileo, 'E', "Galileo", "GAL", 37},
    {kQzss, 'J', "QZSS", "QZS", 10},
};

int SystemSlot(char letter) {
  for (int slot = 0; slot < kSystems; ++slot) {
    if (kSystemTable[slot].letter == letter) return slot;
  }
  return -1;
}

int SystemSlotOfCode(int code) {
  for (int slot = 0; slot < kSystems; ++slot) {
    if (kSystemTable[slot].code == code) return slot;
  }
  return -1;
}

bool ParseSatellite(std::string_view text, char& letter, int& number) {
  if (text.size() < 2 || text[0] < 'A' || text[0] > 'Z') return false;
  std::int64_t value = 0;
  if (ParseInteger(text.substr(1, 2), value) != FieldState::kNumber || value < 1 || value > 99) return false;
  letter = text[0];
  number = static_cast<int>(value);
  return true;
}

std::string NameOfSystem(char letter) {
  const int slot = SystemSlot(letter);
  if (slot >= 0) return kSystemTable[slot].name;
  return letter == 'S' ? "SBAS" : letter == 'I' ? "NavIC" : std::string(1, letter);
}

std::string SatelliteName(char letter, int number) { return fmt::format("{}{:02}", letter, number); }

}  // namespace orsolva_host
