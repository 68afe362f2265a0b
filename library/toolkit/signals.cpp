#include "toolkit/signals.h"

#include <array>

#include "toolkit/constants.h"
#include "toolkit/satellite.h"
#include "toolkit/signal_tables.h"

namespace gnssqctoolkit {
namespace {

constexpr int kSystems = 7;
constexpr int kCodes = 256;
constexpr int kBands = 64;
constexpr int kLowestGlonassChannel = -7;

struct Table {
  const SignalRow* rows;
  int count;
};

template <int N>
constexpr Table MakeTable(const SignalRow (&rows)[N]) {
  return {rows, N};
}

/// In the order of the system codes' bits.
constexpr std::array<Table, kSystems> kTables = {
    MakeTable(kGpsSignals),  MakeTable(kGlonassSignals), MakeTable(kBdsSignals),  MakeTable(kGalileoSignals),
    MakeTable(kQzssSignals), MakeTable(kIrnssSignals),   MakeTable(kSbasSignals),
};

/// Place of a system in the tables, -1 when unknown.
constexpr int SystemPlace(int system) {
  switch (system) {
    case kGps:
      return 0;
    case kGlonass:
      return 1;
    case kBds:
      return 2;
    case kGalileo:
      return 3;
    case kQzss:
      return 4;
    case kIrnss:
      return 5;
    case kSbas:
      return 6;
    default:
      return -1;
  }
}

/// One-based row of every code in its system's table, 0 without one; equals a linear search.
constexpr auto kRowOfCode = [] {
  std::array<std::array<std::uint8_t, kCodes>, kSystems> index{};
  for (int place = 0; place < kSystems; ++place) {
    for (int row = kTables[place].count; row > 0; --row) {
      index[place][kTables[place].rows[row - 1].code] = static_cast<std::uint8_t>(row);
    }
  }
  return index;
}();

constexpr auto kWavelengthOfBand = [] {
  std::array<std::array<double, kBands>, kSystems> index{};
  for (const WavelengthRow& row : kWavelengths) index[SystemPlace(row.system)][row.band] = row.wavelength_m;
  return index;
}();

/// Carriers of the FDMA bands 1 and 2 (GLONASS ICD 5.1, section 3.3.1.1).
double GlonassWavelength(int band, int channel) {
  if (channel < kLowestGlonassChannel) return 0.0;
  if (band == 1) return kSpeedOfLight / (1.602e9 + 562500.0 * channel);
  if (band == 2) return kSpeedOfLight / (1.246e9 + 437500.0 * channel);
  return kWavelengthOfBand[SystemPlace(kGlonass)][band];
}

}  // namespace

const SignalRow* SignalTable(int system, int& rows) {
  const int place = SystemPlace(system);
  rows = place < 0 ? 0 : kTables[place].count;
  return place < 0 ? nullptr : kTables[place].rows;
}

const SignalRow* FindSignal(int system, int code) {
  const int place = SystemPlace(system);
  if (place < 0 || code < 0 || code >= kCodes) return nullptr;
  const int row = kRowOfCode[place][code];
  return row == 0 ? nullptr : kTables[place].rows + (row - 1);
}

int SignalBand(int system, int code) {
  const SignalRow* row = FindSignal(system, code);
  return row == nullptr ? 0 : row->band;
}

int SignalFrequency(int system, int code) {
  const SignalRow* row = FindSignal(system, code);
  return row == nullptr ? 0 : row->frequency;
}

double Wavelength(int system, int code, int glonass_channel) {
  // Kept for compatibility: IRNSS codes are looked up in the QZSS table, so no code of IRNSS has a
  // wavelength.
  const int searched = system == kIrnss ? static_cast<int>(kQzss) : system;
  const SignalRow* row = FindSignal(searched, code);
  if (row == nullptr) return 0.0;
  if (searched == kGlonass) return GlonassWavelength(row->band, glonass_channel);
  return kWavelengthOfBand[SystemPlace(searched)][row->band];
}

}  // namespace gnssqctoolkit
