#include "host/formats/sbf/signals.h"

namespace orsolva_host::sbf {
namespace {

struct RangeRow {
  int first;  ///< SVID
  int last;
  char system;
  int offset;  ///< SVID minus the number in RINEX
};

constexpr RangeRow kRanges[] = {
    {1, 37, 'G', 0},      {38, 61, 'R', 37},    {63, 68, 'R', 38},    {71, 106, 'E', 70},
    {120, 140, 'S', 100}, {141, 180, 'C', 140}, {181, 190, 'J', 180}, {191, 197, 'I', 190},
    {198, 215, 'S', 157}, {216, 222, 'I', 208}, {223, 245, 'C', 182},
};

struct SignalRow {
  int number;
  Signal signal;
};

constexpr SignalRow kSignals[] = {
    {0, {'G', {'1', 'C'}}},    // L1CA
    {1, {'G', {'1', 'W'}}},    // L1P
    {2, {'G', {'2', 'W'}}},    // L2P
    {3, {'G', {'2', 'L'}}},    // L2C
    {4, {'G', {'5', 'Q'}}},    // L5
    {5, {'G', {'1', 'L'}}},    // L1C
    {6, {'J', {'1', 'C'}}},    // L1CA
    {7, {'J', {'2', 'L'}}},    // L2C
    {8, {'R', {'1', 'C'}}},    // L1CA
    {9, {'R', {'1', 'P'}}},    // L1P
    {10, {'R', {'2', 'P'}}},   // L2P
    {11, {'R', {'2', 'C'}}},   // L2CA
    {12, {'R', {'3', 'Q'}}},   // L3
    {13, {'C', {'1', 'P'}}},   // B1C
    {14, {'C', {'5', 'P'}}},   // B2a
    {15, {'I', {'5', 'A'}}},   // L5
    {17, {'E', {'1', 'C'}}},   // E1 (L1BC)
    {kE6, {'E', {'6', 'C'}}},  // E6 (E6BC)
    {20, {'E', {'5', 'Q'}}},   // E5a
    {21, {'E', {'7', 'Q'}}},   // E5b
    {22, {'E', {'8', 'Q'}}},   // E5 AltBOC
    {24, {'S', {'1', 'C'}}},   // L1CA
    {25, {'S', {'5', 'I'}}},   // L5
    {26, {'J', {'5', 'Q'}}},   // L5
    {28, {'C', {'2', 'I'}}},   // B1I
    {29, {'C', {'7', 'I'}}},   // B2I
    {30, {'C', {'6', 'I'}}},   // B3I
    {32, {'J', {'1', 'L'}}},   // L1C
    {33, {'J', {'1', 'Z'}}},   // L1S
    {34, {'C', {'7', 'D'}}},   // B2b
};

}  // namespace

std::optional<SatelliteId> SatelliteOf(int svid) {
  for (const RangeRow& row : kRanges) {
    if (svid < row.first || svid > row.last) continue;
    return SatelliteId{row.system, static_cast<std::uint8_t>(svid - row.offset)};
  }
  return std::nullopt;
}

int SvidOf(SatelliteId satellite) {
  for (const RangeRow& row : kRanges) {
    const int svid = satellite.number + row.offset;
    if (row.system == satellite.system && svid >= row.first && svid <= row.last) return svid;
  }
  return 0;
}

std::optional<Signal> SignalOf(int number) {
  for (const SignalRow& row : kSignals) {
    if (row.number == number) return row.signal;
  }
  return std::nullopt;
}

std::optional<int> SignalNumberOf(char system, SignalCode code) {
  for (const SignalRow& row : kSignals) {
    if (row.signal.system == system && row.signal.code == code) return row.number;
  }
  return std::nullopt;
}

}  // namespace orsolva_host::sbf
