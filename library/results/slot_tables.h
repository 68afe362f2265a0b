// Band slots under which completeness and SNR are kept, by system and frequency band.
#ifndef ORSOLVA_RESULTS_SLOT_TABLES_H
#define ORSOLVA_RESULTS_SLOT_TABLES_H

#include <cstdint>

namespace orsolva {

/// Which BDS bands a slot table holds.
enum class BdsGeneration : std::uint8_t { kBds2, kBds3, kBoth };

/// Generation of a BDS satellite: numbers 18 and above are BDS-3.
BdsGeneration BdsGenerationOf(int prn);

/// Band slot (1 to 6) of the completeness and SNR channels of a band; 0 for a band without channels.
///
/// Kept for compatibility: these are not the slots of the signal tables. Galileo bands 8 and 7 are at 3 and
/// 4 here and at 4 and 3 there; BDS-3 bands 5 and 7 are at 2 and 5 here and at 5 and 6 there.
/// @param generation  looked at for BDS only
int ChannelSlot(int system, int band, BdsGeneration generation);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_SLOT_TABLES_H
