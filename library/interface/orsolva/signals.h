/* Names for the numbers at the boundary: systems, signals, limits and slots. For C and C++.
 *
 * The numbers are the library's own and never change. The same list as a page, with what the columns mean:
 * docs/host/signals.md. Both are written from the signal tables of the library by
 * tests/unit/toolkit/signals_page_test.cpp, which also holds them. */
#ifndef ORSOLVA_INTERFACE_SIGNALS_H
#define ORSOLVA_INTERFACE_SIGNALS_H

/** Satellites of an epoch record. */
#define ORSOLVA_MAX_SATELLITES 80
/** Signals of a satellite at one epoch. */
#define ORSOLVA_MAX_SIGNALS 8
/** Satellite numbers of a system: 1 to 64. */
#define ORSOLVA_MAX_NUMBERS 64
/** Band slots of a figure. */
#define ORSOLVA_BAND_SLOTS 6
/** Signal codes of a block of the per-code result. */
#define ORSOLVA_MAX_CODES 8
/** System slots of the configuration's flags: GPS, GLONASS, BDS, Galileo, QZSS. */
#define ORSOLVA_SYSTEMS 5
/** System slots of the results: those of ORSOLVA_SYSTEMS and BD3. */
#define ORSOLVA_SYSTEM_SLOTS 6
/** The slot BD3: BDS satellites numbered ORSOLVA_FIRST_BDS3 and above. */
#define ORSOLVA_BD3_SLOT 5
/** First satellite number of BDS-3. */
#define ORSOLVA_FIRST_BDS3 18

/** System codes: Satellite_gbt::sys, qc_core_summary::system, code_qc_block::system. */
enum orsolva_system {
  ORSOLVA_GPS = 1,
  ORSOLVA_GLONASS = 2,
  ORSOLVA_BDS = 4,
  ORSOLVA_GALILEO = 8,
  ORSOLVA_QZSS = 16
};

/* clang-format off */

/** Signal numbers: Signal_QC_gbt::code, code_qc_entry::code. Named by system and RINEX 3 observation code
 * without its first letter. */
enum orsolva_signal {
/* numbers: kept by tests/unit/toolkit/signals_page_test.cpp */
  ORSOLVA_GPS_1C = 1,
  ORSOLVA_GPS_1S = 2,
  ORSOLVA_GPS_1L = 3,
  ORSOLVA_GPS_1X = 4,
  ORSOLVA_GPS_1P = 5,
  ORSOLVA_GPS_1W = 6,
  ORSOLVA_GPS_1Y = 7,
  ORSOLVA_GPS_1M = 8,
  ORSOLVA_GPS_1N = 9,
  ORSOLVA_GPS_2C = 10,
  ORSOLVA_GPS_2D = 11,
  ORSOLVA_GPS_2S = 12,
  ORSOLVA_GPS_2L = 13,
  ORSOLVA_GPS_2X = 14,
  ORSOLVA_GPS_2P = 15,
  ORSOLVA_GPS_2W = 16,
  ORSOLVA_GPS_2Y = 17,
  ORSOLVA_GPS_2M = 18,
  ORSOLVA_GPS_2N = 19,
  ORSOLVA_GPS_5I = 20,
  ORSOLVA_GPS_5Q = 21,
  ORSOLVA_GPS_5X = 22,
  ORSOLVA_GLONASS_1C = 30,
  ORSOLVA_GLONASS_1P = 31,
  ORSOLVA_GLONASS_4A = 32,
  ORSOLVA_GLONASS_4B = 33,
  ORSOLVA_GLONASS_4X = 34,
  ORSOLVA_GLONASS_2C = 35,
  ORSOLVA_GLONASS_2P = 36,
  ORSOLVA_GLONASS_6A = 37,
  ORSOLVA_GLONASS_6B = 38,
  ORSOLVA_GLONASS_6X = 39,
  ORSOLVA_GLONASS_3I = 40,
  ORSOLVA_GLONASS_3Q = 41,
  ORSOLVA_GLONASS_3X = 42,
  ORSOLVA_BDS_2I = 150,
  ORSOLVA_BDS_2Q = 151,
  ORSOLVA_BDS_2X = 152,
  ORSOLVA_BDS_1D = 153,
  ORSOLVA_BDS_1P = 154,
  ORSOLVA_BDS_1X = 155,
  ORSOLVA_BDS_1S = 156,
  ORSOLVA_BDS_1L = 157,
  ORSOLVA_BDS_1Z = 158,
  ORSOLVA_BDS_1A = 159,
  ORSOLVA_BDS_1N = 160,
  ORSOLVA_BDS_5D = 161,
  ORSOLVA_BDS_5P = 162,
  ORSOLVA_BDS_5X = 163,
  ORSOLVA_BDS_7I = 164,
  ORSOLVA_BDS_7Q = 165,
  ORSOLVA_BDS_7X = 166,
  ORSOLVA_BDS_7D = 167,
  ORSOLVA_BDS_7P = 168,
  ORSOLVA_BDS_7Z = 169,
  ORSOLVA_BDS_8D = 170,
  ORSOLVA_BDS_8P = 171,
  ORSOLVA_BDS_8X = 172,
  ORSOLVA_BDS_6I = 173,
  ORSOLVA_BDS_6Q = 174,
  ORSOLVA_BDS_6X = 175,
  ORSOLVA_BDS_6A = 179,
  ORSOLVA_BDS_6D = 176,
  ORSOLVA_BDS_6P = 177,
  ORSOLVA_BDS_6Z = 178,
  ORSOLVA_GALILEO_1A = 60,
  ORSOLVA_GALILEO_1B = 61,
  ORSOLVA_GALILEO_1C = 62,
  ORSOLVA_GALILEO_1X = 63,
  ORSOLVA_GALILEO_1Z = 64,
  ORSOLVA_GALILEO_5I = 65,
  ORSOLVA_GALILEO_5Q = 66,
  ORSOLVA_GALILEO_5X = 67,
  ORSOLVA_GALILEO_7I = 68,
  ORSOLVA_GALILEO_7Q = 69,
  ORSOLVA_GALILEO_7X = 70,
  ORSOLVA_GALILEO_8I = 71,
  ORSOLVA_GALILEO_8Q = 72,
  ORSOLVA_GALILEO_8X = 73,
  ORSOLVA_GALILEO_6A = 74,
  ORSOLVA_GALILEO_6B = 75,
  ORSOLVA_GALILEO_6C = 76,
  ORSOLVA_GALILEO_6X = 77,
  ORSOLVA_GALILEO_6Z = 78,
  ORSOLVA_QZSS_1C = 120,
  ORSOLVA_QZSS_1E = 121,
  ORSOLVA_QZSS_1S = 122,
  ORSOLVA_QZSS_1L = 123,
  ORSOLVA_QZSS_1X = 124,
  ORSOLVA_QZSS_1Z = 125,
  ORSOLVA_QZSS_1B = 126,
  ORSOLVA_QZSS_2S = 127,
  ORSOLVA_QZSS_2L = 128,
  ORSOLVA_QZSS_2X = 129,
  ORSOLVA_QZSS_5I = 130,
  ORSOLVA_QZSS_5Q = 131,
  ORSOLVA_QZSS_5X = 132,
  ORSOLVA_QZSS_5D = 133,
  ORSOLVA_QZSS_5P = 134,
  ORSOLVA_QZSS_5Z = 135,
  ORSOLVA_QZSS_6S = 136,
  ORSOLVA_QZSS_6L = 137,
  ORSOLVA_QZSS_6X = 138,
  ORSOLVA_QZSS_6E = 139,
  ORSOLVA_QZSS_6Z = 140,
/* end of the numbers */
  ORSOLVA_NO_SIGNAL = 0
};

/* clang-format on */

#ifdef __cplusplus

#include <cstdint>

namespace orsolva {

/// A system that is judged, by its code.
enum class System : std::uint8_t {
  kGps = ORSOLVA_GPS,
  kGlonass = ORSOLVA_GLONASS,
  kBds = ORSOLVA_BDS,
  kGalileo = ORSOLVA_GALILEO,
  kQzss = ORSOLVA_QZSS
};

/// The systems in the order of the flags of a configuration and of the results.
inline constexpr System kAllSystems[ORSOLVA_SYSTEMS] = {System::kGps, System::kGlonass, System::kBds,
                                                        System::kGalileo, System::kQzss};

/// The slot of a system in the configuration and the results, 0 to 4; -1 for a value that is no system.
constexpr int SlotOf(System system) {
  for (int slot = 0; slot < ORSOLVA_SYSTEMS; ++slot) {
    if (kAllSystems[slot] == system) return slot;
  }
  return -1;
}

// clang-format off

/// A signal by its number.
enum class Signal : std::uint8_t {
/* names: kept by tests/unit/toolkit/signals_page_test.cpp */
  kGps1C = ORSOLVA_GPS_1C,
  kGps1S = ORSOLVA_GPS_1S,
  kGps1L = ORSOLVA_GPS_1L,
  kGps1X = ORSOLVA_GPS_1X,
  kGps1P = ORSOLVA_GPS_1P,
  kGps1W = ORSOLVA_GPS_1W,
  kGps1Y = ORSOLVA_GPS_1Y,
  kGps1M = ORSOLVA_GPS_1M,
  kGps1N = ORSOLVA_GPS_1N,
  kGps2C = ORSOLVA_GPS_2C,
  kGps2D = ORSOLVA_GPS_2D,
  kGps2S = ORSOLVA_GPS_2S,
  kGps2L = ORSOLVA_GPS_2L,
  kGps2X = ORSOLVA_GPS_2X,
  kGps2P = ORSOLVA_GPS_2P,
  kGps2W = ORSOLVA_GPS_2W,
  kGps2Y = ORSOLVA_GPS_2Y,
  kGps2M = ORSOLVA_GPS_2M,
  kGps2N = ORSOLVA_GPS_2N,
  kGps5I = ORSOLVA_GPS_5I,
  kGps5Q = ORSOLVA_GPS_5Q,
  kGps5X = ORSOLVA_GPS_5X,
  kGlonass1C = ORSOLVA_GLONASS_1C,
  kGlonass1P = ORSOLVA_GLONASS_1P,
  kGlonass4A = ORSOLVA_GLONASS_4A,
  kGlonass4B = ORSOLVA_GLONASS_4B,
  kGlonass4X = ORSOLVA_GLONASS_4X,
  kGlonass2C = ORSOLVA_GLONASS_2C,
  kGlonass2P = ORSOLVA_GLONASS_2P,
  kGlonass6A = ORSOLVA_GLONASS_6A,
  kGlonass6B = ORSOLVA_GLONASS_6B,
  kGlonass6X = ORSOLVA_GLONASS_6X,
  kGlonass3I = ORSOLVA_GLONASS_3I,
  kGlonass3Q = ORSOLVA_GLONASS_3Q,
  kGlonass3X = ORSOLVA_GLONASS_3X,
  kBds2I = ORSOLVA_BDS_2I,
  kBds2Q = ORSOLVA_BDS_2Q,
  kBds2X = ORSOLVA_BDS_2X,
  kBds1D = ORSOLVA_BDS_1D,
  kBds1P = ORSOLVA_BDS_1P,
  kBds1X = ORSOLVA_BDS_1X,
  kBds1S = ORSOLVA_BDS_1S,
  kBds1L = ORSOLVA_BDS_1L,
  kBds1Z = ORSOLVA_BDS_1Z,
  kBds1A = ORSOLVA_BDS_1A,
  kBds1N = ORSOLVA_BDS_1N,
  kBds5D = ORSOLVA_BDS_5D,
  kBds5P = ORSOLVA_BDS_5P,
  kBds5X = ORSOLVA_BDS_5X,
  kBds7I = ORSOLVA_BDS_7I,
  kBds7Q = ORSOLVA_BDS_7Q,
  kBds7X = ORSOLVA_BDS_7X,
  kBds7D = ORSOLVA_BDS_7D,
  kBds7P = ORSOLVA_BDS_7P,
  kBds7Z = ORSOLVA_BDS_7Z,
  kBds8D = ORSOLVA_BDS_8D,
  kBds8P = ORSOLVA_BDS_8P,
  kBds8X = ORSOLVA_BDS_8X,
  kBds6I = ORSOLVA_BDS_6I,
  kBds6Q = ORSOLVA_BDS_6Q,
  kBds6X = ORSOLVA_BDS_6X,
  kBds6A = ORSOLVA_BDS_6A,
  kBds6D = ORSOLVA_BDS_6D,
  kBds6P = ORSOLVA_BDS_6P,
  kBds6Z = ORSOLVA_BDS_6Z,
  kGalileo1A = ORSOLVA_GALILEO_1A,
  kGalileo1B = ORSOLVA_GALILEO_1B,
  kGalileo1C = ORSOLVA_GALILEO_1C,
  kGalileo1X = ORSOLVA_GALILEO_1X,
  kGalileo1Z = ORSOLVA_GALILEO_1Z,
  kGalileo5I = ORSOLVA_GALILEO_5I,
  kGalileo5Q = ORSOLVA_GALILEO_5Q,
  kGalileo5X = ORSOLVA_GALILEO_5X,
  kGalileo7I = ORSOLVA_GALILEO_7I,
  kGalileo7Q = ORSOLVA_GALILEO_7Q,
  kGalileo7X = ORSOLVA_GALILEO_7X,
  kGalileo8I = ORSOLVA_GALILEO_8I,
  kGalileo8Q = ORSOLVA_GALILEO_8Q,
  kGalileo8X = ORSOLVA_GALILEO_8X,
  kGalileo6A = ORSOLVA_GALILEO_6A,
  kGalileo6B = ORSOLVA_GALILEO_6B,
  kGalileo6C = ORSOLVA_GALILEO_6C,
  kGalileo6X = ORSOLVA_GALILEO_6X,
  kGalileo6Z = ORSOLVA_GALILEO_6Z,
  kQzss1C = ORSOLVA_QZSS_1C,
  kQzss1E = ORSOLVA_QZSS_1E,
  kQzss1S = ORSOLVA_QZSS_1S,
  kQzss1L = ORSOLVA_QZSS_1L,
  kQzss1X = ORSOLVA_QZSS_1X,
  kQzss1Z = ORSOLVA_QZSS_1Z,
  kQzss1B = ORSOLVA_QZSS_1B,
  kQzss2S = ORSOLVA_QZSS_2S,
  kQzss2L = ORSOLVA_QZSS_2L,
  kQzss2X = ORSOLVA_QZSS_2X,
  kQzss5I = ORSOLVA_QZSS_5I,
  kQzss5Q = ORSOLVA_QZSS_5Q,
  kQzss5X = ORSOLVA_QZSS_5X,
  kQzss5D = ORSOLVA_QZSS_5D,
  kQzss5P = ORSOLVA_QZSS_5P,
  kQzss5Z = ORSOLVA_QZSS_5Z,
  kQzss6S = ORSOLVA_QZSS_6S,
  kQzss6L = ORSOLVA_QZSS_6L,
  kQzss6X = ORSOLVA_QZSS_6X,
  kQzss6E = ORSOLVA_QZSS_6E,
  kQzss6Z = ORSOLVA_QZSS_6Z,
/* end of the names */
};

/// What a signal number stands for.
struct SignalInfo {
  System system;
  Signal signal;
  int band_slot;            ///< 1 to 6: figures of the band are at [band_slot - 1]
  const char* observation;  ///< RINEX 3 observation code without its first letter, such as "1C"
  const char* band;         ///< such as "L1" or "E5a"
  double frequency_mhz;     ///< carrier; of GLONASS G1 and G2 that of channel 0
  double channel_step_mhz;  ///< between GLONASS frequency channels, otherwise 0
};

/// Every signal of the five systems. BDS numbers 150 to 152 have two rows, their current names first: RINEX 3.02
/// called them 1I, 1Q and 1X.
inline constexpr SignalInfo kSignals[] = {
/* rows: kept by tests/unit/toolkit/signals_page_test.cpp */
    {System::kGps, Signal::kGps1C, 1, "1C", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps1S, 1, "1S", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps1L, 1, "1L", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps1X, 1, "1X", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps1P, 1, "1P", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps1W, 1, "1W", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps1Y, 1, "1Y", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps1M, 1, "1M", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps1N, 1, "1N", "L1", 1575.420, 0.0},
    {System::kGps, Signal::kGps2C, 2, "2C", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2D, 2, "2D", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2S, 2, "2S", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2L, 2, "2L", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2X, 2, "2X", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2P, 2, "2P", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2W, 2, "2W", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2Y, 2, "2Y", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2M, 2, "2M", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps2N, 2, "2N", "L2", 1227.600, 0.0},
    {System::kGps, Signal::kGps5I, 3, "5I", "L5", 1176.450, 0.0},
    {System::kGps, Signal::kGps5Q, 3, "5Q", "L5", 1176.450, 0.0},
    {System::kGps, Signal::kGps5X, 3, "5X", "L5", 1176.450, 0.0},
    {System::kGlonass, Signal::kGlonass1C, 1, "1C", "G1", 1602.0, 0.5625},
    {System::kGlonass, Signal::kGlonass1P, 1, "1P", "G1", 1602.0, 0.5625},
    {System::kGlonass, Signal::kGlonass4A, 4, "4A", "G1a", 1600.995, 0.0},
    {System::kGlonass, Signal::kGlonass4B, 4, "4B", "G1a", 1600.995, 0.0},
    {System::kGlonass, Signal::kGlonass4X, 4, "4X", "G1a", 1600.995, 0.0},
    {System::kGlonass, Signal::kGlonass2C, 2, "2C", "G2", 1246.0, 0.4375},
    {System::kGlonass, Signal::kGlonass2P, 2, "2P", "G2", 1246.0, 0.4375},
    {System::kGlonass, Signal::kGlonass6A, 5, "6A", "G2a", 1248.060, 0.0},
    {System::kGlonass, Signal::kGlonass6B, 5, "6B", "G2a", 1248.060, 0.0},
    {System::kGlonass, Signal::kGlonass6X, 5, "6X", "G2a", 1248.060, 0.0},
    {System::kGlonass, Signal::kGlonass3I, 3, "3I", "G3", 1202.025, 0.0},
    {System::kGlonass, Signal::kGlonass3Q, 3, "3Q", "G3", 1202.025, 0.0},
    {System::kGlonass, Signal::kGlonass3X, 3, "3X", "G3", 1202.025, 0.0},
    {System::kBds, Signal::kBds2I, 1, "2I", "B1I", 1561.098, 0.0},
    {System::kBds, Signal::kBds2Q, 1, "2Q", "B1I", 1561.098, 0.0},
    {System::kBds, Signal::kBds2X, 1, "2X", "B1I", 1561.098, 0.0},
    {System::kBds, Signal::kBds2I, 1, "1I", "B1I", 1561.098, 0.0},
    {System::kBds, Signal::kBds2Q, 1, "1Q", "B1I", 1561.098, 0.0},
    {System::kBds, Signal::kBds2X, 1, "1X", "B1I", 1561.098, 0.0},
    {System::kBds, Signal::kBds1D, 4, "1D", "B1C, B1A", 1575.420, 0.0},
    {System::kBds, Signal::kBds1P, 4, "1P", "B1C, B1A", 1575.420, 0.0},
    {System::kBds, Signal::kBds1X, 4, "1X", "B1C, B1A", 1575.420, 0.0},
    {System::kBds, Signal::kBds1S, 4, "1S", "B1C, B1A", 1575.420, 0.0},
    {System::kBds, Signal::kBds1L, 4, "1L", "B1C, B1A", 1575.420, 0.0},
    {System::kBds, Signal::kBds1Z, 4, "1Z", "B1C, B1A", 1575.420, 0.0},
    {System::kBds, Signal::kBds1A, 4, "1A", "B1C, B1A", 1575.420, 0.0},
    {System::kBds, Signal::kBds1N, 4, "1N", "B1C, B1A", 1575.420, 0.0},
    {System::kBds, Signal::kBds5D, 5, "5D", "B2a", 1176.450, 0.0},
    {System::kBds, Signal::kBds5P, 5, "5P", "B2a", 1176.450, 0.0},
    {System::kBds, Signal::kBds5X, 5, "5X", "B2a", 1176.450, 0.0},
    {System::kBds, Signal::kBds7I, 2, "7I", "B2I", 1207.140, 0.0},
    {System::kBds, Signal::kBds7Q, 2, "7Q", "B2I", 1207.140, 0.0},
    {System::kBds, Signal::kBds7X, 2, "7X", "B2I", 1207.140, 0.0},
    {System::kBds, Signal::kBds7D, 6, "7D", "B2b", 1207.140, 0.0},
    {System::kBds, Signal::kBds7P, 6, "7P", "B2b", 1207.140, 0.0},
    {System::kBds, Signal::kBds7Z, 6, "7Z", "B2b", 1207.140, 0.0},
    {System::kBds, Signal::kBds8D, 3, "8D", "B2a+b", 1191.795, 0.0},
    {System::kBds, Signal::kBds8P, 3, "8P", "B2a+b", 1191.795, 0.0},
    {System::kBds, Signal::kBds8X, 3, "8X", "B2a+b", 1191.795, 0.0},
    {System::kBds, Signal::kBds6I, 3, "6I", "B3", 1268.520, 0.0},
    {System::kBds, Signal::kBds6Q, 3, "6Q", "B3", 1268.520, 0.0},
    {System::kBds, Signal::kBds6X, 3, "6X", "B3", 1268.520, 0.0},
    {System::kBds, Signal::kBds6A, 3, "6A", "B3", 1268.520, 0.0},
    {System::kBds, Signal::kBds6D, 3, "6D", "B3A", 1268.520, 0.0},
    {System::kBds, Signal::kBds6P, 3, "6P", "B3A", 1268.520, 0.0},
    {System::kBds, Signal::kBds6Z, 3, "6Z", "B3A", 1268.520, 0.0},
    {System::kGalileo, Signal::kGalileo1A, 1, "1A", "E1", 1575.420, 0.0},
    {System::kGalileo, Signal::kGalileo1B, 1, "1B", "E1", 1575.420, 0.0},
    {System::kGalileo, Signal::kGalileo1C, 1, "1C", "E1", 1575.420, 0.0},
    {System::kGalileo, Signal::kGalileo1X, 1, "1X", "E1", 1575.420, 0.0},
    {System::kGalileo, Signal::kGalileo1Z, 1, "1Z", "E1", 1575.420, 0.0},
    {System::kGalileo, Signal::kGalileo5I, 2, "5I", "E5a", 1176.450, 0.0},
    {System::kGalileo, Signal::kGalileo5Q, 2, "5Q", "E5a", 1176.450, 0.0},
    {System::kGalileo, Signal::kGalileo5X, 2, "5X", "E5a", 1176.450, 0.0},
    {System::kGalileo, Signal::kGalileo7I, 3, "7I", "E5b", 1207.140, 0.0},
    {System::kGalileo, Signal::kGalileo7Q, 3, "7Q", "E5b", 1207.140, 0.0},
    {System::kGalileo, Signal::kGalileo7X, 3, "7X", "E5b", 1207.140, 0.0},
    {System::kGalileo, Signal::kGalileo8I, 4, "8I", "E5", 1191.795, 0.0},
    {System::kGalileo, Signal::kGalileo8Q, 4, "8Q", "E5", 1191.795, 0.0},
    {System::kGalileo, Signal::kGalileo8X, 4, "8X", "E5", 1191.795, 0.0},
    {System::kGalileo, Signal::kGalileo6A, 5, "6A", "E6", 1278.750, 0.0},
    {System::kGalileo, Signal::kGalileo6B, 5, "6B", "E6", 1278.750, 0.0},
    {System::kGalileo, Signal::kGalileo6C, 5, "6C", "E6", 1278.750, 0.0},
    {System::kGalileo, Signal::kGalileo6X, 5, "6X", "E6", 1278.750, 0.0},
    {System::kGalileo, Signal::kGalileo6Z, 5, "6Z", "E6", 1278.750, 0.0},
    {System::kQzss, Signal::kQzss1C, 1, "1C", "L1", 1575.420, 0.0},
    {System::kQzss, Signal::kQzss1E, 1, "1E", "L1", 1575.420, 0.0},
    {System::kQzss, Signal::kQzss1S, 1, "1S", "L1", 1575.420, 0.0},
    {System::kQzss, Signal::kQzss1L, 1, "1L", "L1", 1575.420, 0.0},
    {System::kQzss, Signal::kQzss1X, 1, "1X", "L1", 1575.420, 0.0},
    {System::kQzss, Signal::kQzss1Z, 1, "1Z", "L1", 1575.420, 0.0},
    {System::kQzss, Signal::kQzss1B, 1, "1B", "L1", 1575.420, 0.0},
    {System::kQzss, Signal::kQzss2S, 2, "2S", "L2", 1227.600, 0.0},
    {System::kQzss, Signal::kQzss2L, 2, "2L", "L2", 1227.600, 0.0},
    {System::kQzss, Signal::kQzss2X, 2, "2X", "L2", 1227.600, 0.0},
    {System::kQzss, Signal::kQzss5I, 3, "5I", "L5", 1176.450, 0.0},
    {System::kQzss, Signal::kQzss5Q, 3, "5Q", "L5", 1176.450, 0.0},
    {System::kQzss, Signal::kQzss5X, 3, "5X", "L5", 1176.450, 0.0},
    {System::kQzss, Signal::kQzss5D, 3, "5D", "L5", 1176.450, 0.0},
    {System::kQzss, Signal::kQzss5P, 3, "5P", "L5", 1176.450, 0.0},
    {System::kQzss, Signal::kQzss5Z, 3, "5Z", "L5", 1176.450, 0.0},
    {System::kQzss, Signal::kQzss6S, 4, "6S", "L6", 1278.750, 0.0},
    {System::kQzss, Signal::kQzss6L, 4, "6L", "L6", 1278.750, 0.0},
    {System::kQzss, Signal::kQzss6X, 4, "6X", "L6", 1278.750, 0.0},
    {System::kQzss, Signal::kQzss6E, 4, "6E", "L6", 1278.750, 0.0},
    {System::kQzss, Signal::kQzss6Z, 4, "6Z", "L6", 1278.750, 0.0},
/* end of the rows */
};

// clang-format on

/// @return the row of a signal number; null when the system has none
constexpr const SignalInfo* FindSignal(System system, int number) {
  for (const SignalInfo& row : kSignals) {
    if (row.system == system && static_cast<int>(row.signal) == number) return &row;
  }
  return nullptr;
}

/// @param system       one of the five
/// @param observation  observation code as RINEX 3.03 and later name it; BDS "1I" and "1Q" are found as well
/// @return the row of an observation code; null when the system has none
constexpr const SignalInfo* FindSignal(System system, const char* observation) {
  const SignalInfo* found = nullptr;
  for (const SignalInfo& row : kSignals) {
    const char* name = row.observation;
    const bool same = name[0] == observation[0] && name[1] == observation[1] && observation[2] == '\0';
    // The last row of a name counts: BDS "1X" is B1C.
    if (row.system == system && same) found = &row;
  }
  return found;
}

}  // namespace orsolva

#endif /* __cplusplus */

#endif /* ORSOLVA_INTERFACE_SIGNALS_H */
