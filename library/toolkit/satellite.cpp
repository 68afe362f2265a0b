#include "toolkit/satellite.h"

#include <cstdio>

namespace gnssqctoolkit {
namespace {

/// Numbers of a system: satellite number = prn + offset for prn in first..last.
struct NumberRange {
  std::uint8_t system;
  std::int32_t first;
  std::int32_t last;
  std::int32_t offset;
};

// Kept for compatibility: the test of prn above 64 comes before these rows, so QZSS 193 to 202 and SBAS keys
// never get a number, and IRNSS 1 to 7 share the numbers of BDS 16 to 22.
constexpr NumberRange kNumberRanges[] = {
    {kGps, 1, 35, 0},      {kGlonass, 1, 32, 35}, {kBds, 1, 64, 67},     {kGalileo, 1, 37, 131},
    {kQzss, 193, 202, 72}, {kIrnss, 1, 7, 82},    {kSbas, 120, 142, 49},
};

// Kept for compatibility: not the mirror of the rows above for SBAS (169 to 191) and IRNSS (202 to 208).
constexpr NumberRange kKeyRanges[] = {
    {kGps, 1, 35, 0},      {kGlonass, 36, 67, 35}, {kBds, 68, 131, 67},     {kGalileo, 132, 168, 131},
    {kSbas, 169, 191, 49}, {kQzss, 192, 201, 191}, {kIrnss, 202, 208, 201},
};

/// 0 geostationary, 1 medium orbit, 2 inclined geosynchronous; PRN 1 first, ten per row.
constexpr std::int32_t kBdsOrbitClasses[64] = {
    0, 0, 0, 0, 0, 2, 2, 2, 2, 2,  //
    1, 1, 2, 1, 1, 2, 1, 1, 1, 1,  //
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  //
    2, 1, 1, 1, 1, 1, 1, 2, 2, 2,  //
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  //
    1, 1, 1, 1, 1, 2, 1, 1, 0, 0,  //
    0, 0, 1, 1,
};

char SystemLetter(std::uint8_t system) {
  switch (system) {
    case kGps:
      return 'G';
    case kGlonass:
      return 'R';
    case kBds:
      return 'C';
    case kGalileo:
      return 'E';
    case kQzss:
      return 'J';
    case kIrnss:
      return 'I';
    case kSbas:
      return 'S';
    default:
      return '\0';
  }
}

}  // namespace

int SatelliteIndex(const SatelliteId& satellite) {
  if (satellite.prn < 1 || satellite.prn > 64) return 0;
  for (const NumberRange& range : kNumberRanges) {
    if (range.system != satellite.system) continue;
    return satellite.prn >= range.first && satellite.prn <= range.last ? satellite.prn + range.offset : 0;
  }
  return 0;
}

int QcSatelliteIndex(const SatelliteId& satellite) {
  if (satellite.system != kQzss) return SatelliteIndex(satellite);
  return satellite.prn >= 1 && satellite.prn <= 10 ? satellite.prn + 191 : 0;
}

bool SatelliteFromIndex(int number, SatelliteId& satellite) {
  satellite = SatelliteId{};
  for (const NumberRange& range : kKeyRanges) {
    if (number < range.first || number > range.last) continue;
    satellite = {range.system, number - range.offset};
    return true;
  }
  return false;
}

const char* SatelliteIdText(const SatelliteId& satellite) {
  thread_local char text[16] = "";
  const char letter = SystemLetter(satellite.system);
  if (letter != '\0') std::snprintf(text, sizeof text, "%c%02d", letter, static_cast<int>(satellite.prn));
  return text;
}

int BdsOrbitClass(int prn) { return prn >= 1 && prn <= 64 ? kBdsOrbitClasses[prn - 1] : -1; }

}  // namespace gnssqctoolkit
