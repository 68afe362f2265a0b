// The signal tables of all systems and the stored carrier wavelengths.
//
// Observation codes (band digit and tracking letter) and carrier frequencies are those of the RINEX 3.05 and
// 4.00 documents, observation code tables. Code numbers, band numbers, priorities and frequency slots are the
// library's own. A table is searched from its first row; the first row of a code counts.
#ifndef ORSOLVA_TOOLKIT_SIGNAL_TABLES_H
#define ORSOLVA_TOOLKIT_SIGNAL_TABLES_H

#include <cstdint>

#include "toolkit/satellite.h"
#include "toolkit/signals.h"

namespace gnssqctoolkit {

// clang-format off

inline constexpr SignalRow kGpsSignals[] = {
    // code band priority obs frequency
    {  1,  1,  1, "1C", 1},
    {  2,  1,  7, "1S", 1},
    {  3,  1,  8, "1L", 1},
    {  4,  1,  9, "1X", 1},
    {  5,  1,  2, "1P", 1},
    {  6,  1,  4, "1W", 1},
    {  7,  1,  3, "1Y", 1},
    {  8,  1,  5, "1M", 1},
    {  9,  1,  6, "1N", 1},
    { 10,  2,  4, "2C", 2},
    { 11,  2,  7, "2D", 2},
    { 12,  2,  8, "2S", 2},
    { 13,  2,  9, "2L", 2},
    { 14,  2, 10, "2X", 2},
    { 15,  2,  1, "2P", 2},
    { 16,  2,  3, "2W", 2},
    { 17,  2,  2, "2Y", 2},
    { 18,  2,  5, "2M", 2},
    { 19,  2,  6, "2N", 2},
    { 20,  5,  1, "5I", 3},
    { 21,  5,  2, "5Q", 3},
    { 22,  5,  3, "5X", 3},
};

inline constexpr SignalRow kGlonassSignals[] = {
    // code band priority obs frequency
    { 30,  1,  2, "1C", 1},
    { 31,  1,  1, "1P", 1},
    { 32,  4,  1, "4A", 4},
    { 33,  4,  2, "4B", 4},
    { 34,  4,  3, "4X", 4},
    { 35,  2,  2, "2C", 2},
    { 36,  2,  1, "2P", 2},
    { 37,  6,  1, "6A", 5},
    { 38,  6,  2, "6B", 5},
    { 39,  6,  3, "6X", 5},
    { 40,  3,  1, "3I", 3},
    { 41,  3,  2, "3Q", 3},
    { 42,  3,  3, "3X", 3},
};

// Kept for compatibility: codes 150 to 152 have two rows and the first one counts.
// Kept for compatibility: bands 8, 6 and 36 share slot 3.
inline constexpr SignalRow kBdsSignals[] = {
    // code band priority obs frequency
    {150, 21,  1, "2I", 1},
    {151, 21,  2, "2Q", 1},
    {152, 21,  3, "2X", 1},
    {150, 21,  1, "1I", 1},
    {151, 21,  2, "1Q", 1},
    {152, 21,  3, "1X", 1},
    {153,  1,  1, "1D", 4},
    {154,  1,  2, "1P", 4},
    {155,  1,  3, "1X", 4},
    {156,  1,  4, "1S", 4},
    {157,  1,  5, "1L", 4},
    {158,  1,  6, "1Z", 4},
    {159,  1,  7, "1A", 4},
    {160,  1,  8, "1N", 4},
    {161,  5,  1, "5D", 5},
    {162,  5,  2, "5P", 5},
    {163,  5,  3, "5X", 5},
    {164, 27,  1, "7I", 2},
    {165, 27,  2, "7Q", 2},
    {166, 27,  3, "7X", 2},
    {167,  7,  4, "7D", 6},
    {168,  7,  5, "7P", 6},
    {169,  7,  6, "7Z", 6},
    {170,  8,  1, "8D", 3},
    {171,  8,  2, "8P", 3},
    {172,  8,  3, "8X", 3},
    {173,  6,  1, "6I", 3},
    {174,  6,  2, "6Q", 3},
    {175,  6,  3, "6X", 3},
    {179,  6,  7, "6A", 3},
    {176, 36,  4, "6D", 3},
    {177, 36,  5, "6P", 3},
    {178, 36,  6, "6Z", 3},
};

inline constexpr SignalRow kGalileoSignals[] = {
    // code band priority obs frequency
    { 60,  1,  2, "1A", 1},
    { 61,  1,  3, "1B", 1},
    { 62,  1,  1, "1C", 1},
    { 63,  1,  4, "1X", 1},
    { 64,  1,  5, "1Z", 1},
    { 65,  5,  1, "5I", 2},
    { 66,  5,  2, "5Q", 2},
    { 67,  5,  3, "5X", 2},
    { 68,  7,  1, "7I", 3},
    { 69,  7,  2, "7Q", 3},
    { 70,  7,  3, "7X", 3},
    { 71,  8,  1, "8I", 4},
    { 72,  8,  2, "8Q", 4},
    { 73,  8,  3, "8X", 4},
    { 74,  6,  1, "6A", 5},
    { 75,  6,  2, "6B", 5},
    { 76,  6,  3, "6C", 5},
    { 77,  6,  4, "6X", 5},
    { 78,  6,  5, "6Z", 5},
};

inline constexpr SignalRow kQzssSignals[] = {
    // code band priority obs frequency
    {120,  1,  1, "1C", 1},
    {121,  1,  2, "1E", 1},
    {122,  1,  3, "1S", 1},
    {123,  1,  4, "1L", 1},
    {124,  1,  5, "1X", 1},
    {125,  1,  6, "1Z", 1},
    {126,  1,  7, "1B", 1},
    {127,  2,  1, "2S", 2},
    {128,  2,  2, "2L", 2},
    {129,  2,  3, "2X", 2},
    {130,  5,  1, "5I", 3},
    {131,  5,  2, "5Q", 3},
    {132,  5,  3, "5X", 3},
    {133,  5,  4, "5D", 3},
    {134,  5,  5, "5P", 3},
    {135,  5,  6, "5Z", 3},
    {136,  6,  1, "6S", 4},
    {137,  6,  2, "6L", 4},
    {138,  6,  3, "6X", 4},
    {139,  6,  4, "6E", 4},
    {140,  6,  5, "6Z", 4},
};

inline constexpr SignalRow kIrnssSignals[] = {
    // code band priority obs frequency
    {200,  5,  1, "5A", 1},
    {201,  5,  2, "5B", 1},
    {202,  5,  3, "5C", 1},
    {203,  5,  4, "5X", 1},
    {204,  9,  1, "9A", 2},
    {205,  9,  2, "9B", 2},
    {206,  9,  3, "9C", 2},
    {207,  9,  4, "9X", 2},
};

inline constexpr SignalRow kSbasSignals[] = {
    // code band priority obs frequency
    { 90,  1,  1, "1C", 1},
    { 91,  5,  1, "5I", 3},
    { 92,  5,  2, "5Q", 3},
    { 93,  5,  3, "5X", 3},
};

/// Stored wavelength of a band.
struct WavelengthRow {
  std::uint8_t system;
  std::uint8_t band;
  double wavelength_m;
};

// GLONASS bands 1 and 2 depend on the frequency channel; see the lookup.
inline constexpr WavelengthRow kWavelengths[] = {
    {kGps,      1, 0.19029367279836487},      // 1575.42 MHz
    {kGps,      2, 0.24421021342456825},      // 1227.60 MHz
    {kGps,      5, 0.25482804879085386},      // 1176.45 MHz
    {kGlonass,  3, 0.24940617541232504},      // 1202.025 MHz
    {kGlonass,  4, 0.187253837769637},        // 1600.995 MHz
    {kGlonass,  6, 0.24020676730285404},      // 1248.06 MHz
    {kBds,      1, 0.19029367279836487},      // 1575.42 MHz
    {kBds,      5, 0.25482804879085386},      // 1176.45 MHz
    {kBds,      6, 0.2363324646044209},       // 1268.52 MHz
    {kBds,     36, 0.2363324646044209},       // 1268.52 MHz
    {kBds,      7, 0.2483493695843067},       // 1207.14 MHz
    {kBds,     27, 0.2483493695843067},       // 1207.14 MHz
    {kBds,      8, 0.251547000952345},        // 1191.795 MHz
    {kBds,     21, 0.19203948631027648},      // 1561.098 MHz
    {kGalileo,  1, 0.19029367279836487},      // 1575.42 MHz
    {kGalileo,  5, 0.25482804879085386},      // 1176.45 MHz
    {kGalileo,  6, 0.23444180488758554},      // 1278.75 MHz
    {kGalileo,  7, 0.2483493695843067},       // 1207.14 MHz
    {kGalileo,  8, 0.251547000952345},        // 1191.795 MHz
    {kQzss,     1, 0.19029367279836487},      // 1575.42 MHz
    {kQzss,     2, 0.24421021342456825},      // 1227.60 MHz
    {kQzss,     5, 0.25482804879085386},      // 1176.45 MHz
    {kQzss,     6, 0.23444180488758554},      // 1278.75 MHz
    {kSbas,     1, 0.19029367279836487},      // 1575.42 MHz
    {kSbas,     5, 0.25482804879085386},      // 1176.45 MHz
};

// clang-format on

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_SIGNAL_TABLES_H
