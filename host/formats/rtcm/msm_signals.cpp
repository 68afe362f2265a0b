#include "host/formats/rtcm/msm_signals.h"

#include <array>
#include <cstddef>

namespace orsolva_host::rtcm {
namespace {

struct SignalRow {
  char system;
  int place;
  SignalCode code;
};

// As two independent decoders agree (tests/formats/rtcm/oracles.py); the standard itself was not at hand.
constexpr SignalRow kSignalTable[] = {
    {'G', 2, {'1', 'C'}},  {'G', 3, {'1', 'P'}},  {'G', 4, {'1', 'W'}},  {'G', 8, {'2', 'C'}},
    {'G', 9, {'2', 'P'}},  {'G', 10, {'2', 'W'}}, {'G', 15, {'2', 'S'}}, {'G', 16, {'2', 'L'}},
    {'G', 17, {'2', 'X'}}, {'G', 22, {'5', 'I'}}, {'G', 23, {'5', 'Q'}}, {'G', 24, {'5', 'X'}},
    {'G', 30, {'1', 'S'}}, {'G', 31, {'1', 'L'}}, {'G', 32, {'1', 'X'}},

    {'R', 2, {'1', 'C'}},  {'R', 3, {'1', 'P'}},  {'R', 8, {'2', 'C'}},  {'R', 9, {'2', 'P'}},

    {'E', 2, {'1', 'C'}},  {'E', 3, {'1', 'A'}},  {'E', 4, {'1', 'B'}},  {'E', 5, {'1', 'X'}},
    {'E', 6, {'1', 'Z'}},  {'E', 8, {'6', 'C'}},  {'E', 9, {'6', 'A'}},  {'E', 10, {'6', 'B'}},
    {'E', 11, {'6', 'X'}}, {'E', 12, {'6', 'Z'}}, {'E', 14, {'7', 'I'}}, {'E', 15, {'7', 'Q'}},
    {'E', 16, {'7', 'X'}}, {'E', 18, {'8', 'I'}}, {'E', 19, {'8', 'Q'}}, {'E', 20, {'8', 'X'}},
    {'E', 22, {'5', 'I'}}, {'E', 23, {'5', 'Q'}}, {'E', 24, {'5', 'X'}},

    {'S', 2, {'1', 'C'}},  {'S', 22, {'5', 'I'}}, {'S', 23, {'5', 'Q'}}, {'S', 24, {'5', 'X'}},

    {'J', 2, {'1', 'C'}},  {'J', 9, {'6', 'S'}},  {'J', 10, {'6', 'L'}}, {'J', 11, {'6', 'X'}},
    {'J', 15, {'2', 'S'}}, {'J', 16, {'2', 'L'}}, {'J', 17, {'2', 'X'}}, {'J', 22, {'5', 'I'}},
    {'J', 23, {'5', 'Q'}}, {'J', 24, {'5', 'X'}}, {'J', 30, {'1', 'S'}}, {'J', 31, {'1', 'L'}},
    {'J', 32, {'1', 'X'}},

    {'C', 2, {'2', 'I'}},  {'C', 3, {'2', 'Q'}},  {'C', 4, {'2', 'X'}},  {'C', 8, {'6', 'I'}},
    {'C', 9, {'6', 'Q'}},  {'C', 10, {'6', 'X'}}, {'C', 14, {'7', 'I'}}, {'C', 15, {'7', 'Q'}},
    {'C', 16, {'7', 'X'}}, {'C', 22, {'5', 'D'}}, {'C', 23, {'5', 'P'}}, {'C', 24, {'5', 'X'}},
    {'C', 25, {'7', 'D'}}, {'C', 30, {'1', 'D'}}, {'C', 31, {'1', 'P'}}, {'C', 32, {'1', 'X'}},

    {'I', 8, {'9', 'A'}},  {'I', 22, {'5', 'A'}},
};

constexpr int kPlaces = 33;
constexpr int kLetters = 26;
using CodesByPlace = std::array<std::array<SignalCode, kPlaces>, kLetters>;

/// The same rows by letter and place; a band of 0 where there is none.
constexpr CodesByPlace ByPlace() {
  CodesByPlace codes = {};
  for (auto& row : codes) row.fill({'\0', '\0'});
  for (const SignalRow& row : kSignalTable) {
    codes[static_cast<std::size_t>(row.system - 'A')][static_cast<std::size_t>(row.place)] = row.code;
  }
  return codes;
}
constexpr CodesByPlace kCodesByPlace = ByPlace();

struct SatelliteRow {
  char system;
  int places;
  int offset;  ///< of the number that RINEX gives to place 0
};

constexpr SatelliteRow kSatelliteTable[] = {{'G', 63, 0}, {'R', 63, 0}, {'E', 50, 0}, {'S', 39, 19},
                                            {'J', 10, 0}, {'C', 63, 0}, {'I', 14, 0}};

}  // namespace

std::optional<SignalCode> MsmSignal(char system, int place) {
  if (system < 'A' || system > 'Z' || place < 0 || place >= kPlaces) return std::nullopt;
  const SignalCode code =
      kCodesByPlace[static_cast<std::size_t>(system - 'A')][static_cast<std::size_t>(place)];
  return code.band == '\0' ? std::nullopt : std::optional(code);
}

int MsmPlace(char system, SignalCode code) {
  for (const SignalRow& row : kSignalTable) {
    if (row.system == system && row.code == code) return row.place;
  }
  return 0;
}

std::optional<SatelliteId> MsmSatelliteAt(char system, int place) {
  for (const SatelliteRow& row : kSatelliteTable) {
    if (row.system != system || place < 1 || place > row.places) continue;
    return SatelliteId{system, static_cast<std::uint8_t>(place + row.offset)};
  }
  return std::nullopt;
}

int MsmPlace(SatelliteId satellite) {
  for (const SatelliteRow& row : kSatelliteTable) {
    const int place = satellite.number - row.offset;
    if (row.system == satellite.system && place >= 1 && place <= row.places) return place;
  }
  return 0;
}

}  // namespace orsolva_host::rtcm
