// What holds of a satellite state whatever the records and the asked time hold.
#ifndef ORSOLVA_TESTS_SUPPORT_STATE_LAW_H
#define ORSOLVA_TESTS_SUPPORT_STATE_LAW_H

#include <cmath>

#include "navigation/orbits/satellite_state.h"

namespace orsolva_test {

/// A state that was formed is finite; one that was not is cleared.
inline bool IsFiniteOrCleared(bool formed, const gnssqctoolkit::SatelliteState& state) {
  const double* p = state.Position;
  if (formed) {
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]) && std::isfinite(state.Clock) &&
           std::isfinite(state.Variance);
  }
  return p[0] == 0.0 && p[1] == 0.0 && p[2] == 0.0 && state.Clock == 0.0 && state.Variance == 0.0 &&
         state.Health == -1;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_STATE_LAW_H
