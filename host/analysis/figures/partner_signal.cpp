#include "host/analysis/figures/partner_signal.h"

#include <cstring>

namespace orsolva_host::analysis {
namespace {

struct Row {
  char system;
  char band;
  const char* partners;
};

// Bands as RINEX numbers them (4.01, tables 10 to 16).
constexpr Row kRows[] = {
    {'G', '1', "25"},    // L1: L2 on every satellite, L5 since Block IIF
    {'G', '2', "1"},     //
    {'G', '5', "1"},     //
    {'R', '1', "263"},   // G1: G2 on every satellite
    {'R', '2', "14"},    //
    {'R', '3', "14"},    // G3
    {'R', '4', "263"},   // G1a
    {'R', '6', "41"},    // G2a
    {'E', '1', "5786"},  // E1: E5a, E5b, E5, E6
    {'E', '5', "1"},     //
    {'E', '6', "1"},     //
    {'E', '7', "1"},     //
    {'E', '8', "1"},     //
    {'C', '1', "5876"},  // B1C, of BDS-3: B2a, B2, B2b, B3
    {'C', '2', "6758"},  // B1I: B3 on every satellite
    {'C', '5', "12"},    // B2a
    {'C', '6', "21"},    // B3
    {'C', '7', "21"},    // B2I, B2b
    {'C', '8', "12"},    //
    {'J', '1', "526"},   // L1: L5, L2, L6
    {'J', '2', "1"},     //
    {'J', '5', "1"},     //
    {'J', '6', "1"},     //
    {'I', '1', "59"},    // L1: L5, S
    {'I', '5', "91"},    //
    {'I', '9', "51"},    //
};

/// Of several signals of a partner band the one that most satellites send.
bool IsUsual(SignalCode code) {
  return code.band == '1' ? code.attribute == 'C' : code.band == '2' && code.attribute == 'W';
}

}  // namespace

const char* PartnerBands(char system, char band) {
  for (const Row& row : kRows) {
    if (row.system == system && row.band == band) return row.partners;
  }
  return "";
}

std::optional<Partner> FindPartner(const SatelliteTrack& track, std::size_t place, std::int64_t epoch) {
  const char* bands = PartnerBands(track.satellite.system, track.signals[place].code.band);
  std::optional<Partner> best;
  for (std::size_t j = 0; j < track.signals.size() && j < kMaxSignals; ++j) {
    const SignalTrack& s = track.signals[j];
    const char* band = std::strchr(bands, s.code.band);
    if (band == nullptr || s.unstable || !s.IsReal(epoch)) continue;
    const int rank = 2 * static_cast<int>(band - bands) + (IsUsual(s.code) ? 0 : 1);
    if (!best || rank < best->rank) best = Partner{j, rank};
  }
  return best;
}

}  // namespace orsolva_host::analysis
