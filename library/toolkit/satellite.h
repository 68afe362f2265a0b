// Satellite systems, satellite keys and the dense satellite numbers that index per-satellite stores.
#ifndef ORSOLVA_TOOLKIT_SATELLITE_H
#define ORSOLVA_TOOLKIT_SATELLITE_H

#include <cstdint>

namespace gnssqctoolkit {

/// System codes, one bit each; sets of systems are bit masks.
enum GnssSystem : std::uint8_t {
  kGps = 1,
  kGlonass = 2,
  kBds = 4,
  kGalileo = 8,
  kQzss = 16,
  kIrnss = 32,
  kSbas = 64,
};

/// Highest satellite number.
inline constexpr int kMaxSatellites = 208;
/// BDS numbers below this are BDS-2 satellites in every rule that distinguishes the generations.
inline constexpr int kFirstBds3 = 18;

/// A satellite: system code and number within the system.
struct SatelliteId {
  std::uint8_t system = 0;
  std::int32_t prn = 0;
};

/// Number 1 to 208 used by positioning, 0 for a key that has none.
int SatelliteIndex(const SatelliteId& satellite);
/// Number 1 to 208 used by everything else: SatelliteIndex with QZSS 1 to 10 at 192 to 201.
int QcSatelliteIndex(const SatelliteId& satellite);
/// The key of a number; false, with the key cleared, outside 1 to 208.
bool SatelliteFromIndex(int number, SatelliteId& satellite);
/// "G07" and the like, in one buffer per thread that the next call overwrites; an unknown system leaves it.
const char* SatelliteIdText(const SatelliteId& satellite);
/// Orbit class of a BDS satellite in the measures and results: 0 geostationary, 1 medium, 2 inclined
/// geosynchronous, -1 outside 1 to 64.
int BdsOrbitClass(int prn);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_SATELLITE_H
