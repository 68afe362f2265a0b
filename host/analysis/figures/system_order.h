// The order in which systems are listed.
#ifndef ORSOLVA_ANALYSIS_FIGURES_SYSTEM_ORDER_H
#define ORSOLVA_ANALYSIS_FIGURES_SYSTEM_ORDER_H

#include <cstddef>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

constexpr std::size_t kSystemPlaces = 7;

/// GPS, GLONASS, Galileo, BDS, QZSS, NavIC, SBAS from 0, by letter. RINEX has no other letters; they would
/// share the last place.
constexpr std::size_t SystemPlace(char system) {
  switch (system) {
    case 'G':
      return 0;
    case 'R':
      return 1;
    case 'E':
      return 2;
    case 'C':
      return 3;
    case 'J':
      return 4;
    case 'I':
      return 5;
    default:
      return kSystemPlaces - 1;
  }
}

/// By system in the order of SystemPlace, then by number.
inline bool IsListedBefore(SatelliteId a, SatelliteId b) {
  const std::size_t place = SystemPlace(a.system), other = SystemPlace(b.system);
  return place != other ? place < other : a < b;
}

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_SYSTEM_ORDER_H
