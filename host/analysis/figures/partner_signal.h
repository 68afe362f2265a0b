// The signal whose phase takes the ionosphere off another signal's code.
//
// P_s - L_s - c (L_s - L_p) with c = 2 mu_s / (mu_p - mu_s) is free of range, clocks and first-order
// ionosphere (Estey and Meertens 1999, GPS Solutions 3(1), eq. 4 and 5, for any two bands). Phase noise comes
// in sqrt((1 + c)^2 + c^2) times: 5 for L1 with L2, 154 for B1C with B1I 14 MHz from it. Partner bands are
// listed by system and band, first the one that every satellite with the band sends, so that one signal has
// one partner on all satellites; none amplifies more than eight times.
// SBAS has none: its two carriers are steered from the ground, each on its own.
#ifndef ORSOLVA_ANALYSIS_FIGURES_PARTNER_SIGNAL_H
#define ORSOLVA_ANALYSIS_FIGURES_PARTNER_SIGNAL_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

/// Bands in the order in which they are taken; "" where there is none.
const char* PartnerBands(char system, char band);

/// c, from (1575.42 MHz / f)^2 of both signals.
inline double PartnerCoefficient(double mu, double partner_mu) { return 2 * mu / (partner_mu - mu); }

struct Partner {
  std::size_t place = 0;  ///< in the track
  int rank = 0;           ///< 0 the best
};

/// The best partner of a signal among those with a phase at an epoch.
std::optional<Partner> FindPartner(const SatelliteTrack& track, std::size_t place, std::int64_t epoch);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_PARTNER_SIGNAL_H
