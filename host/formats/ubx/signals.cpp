#include "host/formats/ubx/signals.h"

namespace orsolva_host::ubx {
namespace {

struct SystemRow {
  std::uint8_t gnss_id;
  char system;
  int first;   ///< svId
  int last;    ///< svId
  int offset;  ///< svId minus the number in RINEX
};

constexpr SystemRow kSystems[] = {
    {0, 'G', 1, 32, 0}, {1, 'S', 120, 158, 100}, {2, 'E', 1, 36, 0}, {3, 'C', 1, 63, 0},
    {5, 'J', 1, 10, 0}, {6, 'R', 1, 32, 0},      {7, 'I', 1, 14, 0},
};

struct SignalRow {
  std::uint8_t gnss_id;
  std::uint8_t sig_id;
  SignalCode code;
};

constexpr SignalRow kSignals[] = {
    {0, 0, {'1', 'C'}},  // GPS L1C/A
    {0, 3, {'2', 'L'}},  // L2 CL
    {0, 4, {'2', 'S'}},  // L2 CM
    {0, 6, {'5', 'I'}},  // L5 I
    {0, 7, {'5', 'Q'}},  // L5 Q
    {1, 0, {'1', 'C'}},  // SBAS L1C/A
    {2, 0, {'1', 'C'}},  // Galileo E1 C
    {2, 1, {'1', 'B'}},  // E1 B
    {2, 3, {'5', 'I'}},  // E5 aI
    {2, 4, {'5', 'Q'}},  // E5 aQ
    {2, 5, {'7', 'I'}},  // E5 bI
    {2, 6, {'7', 'Q'}},  // E5 bQ
    {3, 0, {'2', 'I'}},  // BDS B1I D1
    {3, 1, {'2', 'I'}},  // B1I D2
    {3, 2, {'7', 'I'}},  // B2I D1
    {3, 3, {'7', 'I'}},  // B2I D2
    {3, 5, {'1', 'P'}},  // B1 Cp (pilot)
    {3, 6, {'1', 'D'}},  // B1 Cd (data)
    {3, 7, {'5', 'P'}},  // B2 ap (pilot)
    {3, 8, {'5', 'D'}},  // B2 ad (data)
    {5, 0, {'1', 'C'}},  // QZSS L1C/A
    {5, 1, {'1', 'Z'}},  // L1S
    {5, 4, {'2', 'S'}},  // L2 CM
    {5, 5, {'2', 'L'}},  // L2 CL
    {5, 8, {'5', 'I'}},  // L5 I
    {5, 9, {'5', 'Q'}},  // L5 Q
    {6, 0, {'1', 'C'}},  // GLONASS L1 OF
    {6, 2, {'2', 'C'}},  // L2 OF
    {7, 0, {'5', 'A'}},  // NavIC L5 A
};

}  // namespace

std::optional<SatelliteId> SatelliteOf(int gnss_id, int sv_id) {
  for (const SystemRow& row : kSystems) {
    if (row.gnss_id != gnss_id || sv_id < row.first || sv_id > row.last) continue;
    return SatelliteId{row.system, static_cast<std::uint8_t>(sv_id - row.offset)};
  }
  return std::nullopt;
}

std::optional<SatelliteNumbers> NumbersOf(SatelliteId satellite) {
  for (const SystemRow& row : kSystems) {
    const int sv_id = satellite.number + row.offset;
    if (row.system != satellite.system || sv_id < row.first || sv_id > row.last) continue;
    return SatelliteNumbers{row.gnss_id, static_cast<std::uint8_t>(sv_id)};
  }
  return std::nullopt;
}

std::optional<SignalCode> SignalOf(int gnss_id, int sig_id) {
  for (const SignalRow& row : kSignals) {
    if (row.gnss_id == gnss_id && row.sig_id == sig_id) return row.code;
  }
  return std::nullopt;
}

std::optional<std::uint8_t> SigIdOf(char system, SignalCode code) {
  for (const SystemRow& of : kSystems) {
    if (of.system != system) continue;
    for (const SignalRow& row : kSignals) {
      if (row.gnss_id == of.gnss_id && row.code == code) return row.sig_id;
    }
  }
  return std::nullopt;
}

}  // namespace orsolva_host::ubx
