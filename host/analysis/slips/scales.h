// How badly range and ionosphere of a satellite have been predicted lately.
//
// Scales are robust spreads of the prediction errors of the last 20 and next 4 steps without the step itself
// and its neighbours, because a slip there must not hide itself. Two predictors compete for range and for
// ionosphere: the median rate (best in quiet times) and the mean of both neighbours (best in storms); a step
// takes the one with the smaller scale.
//
// Medians and spreads of two dozen steps hardly move from one to the next: what is settled for a step serves
// the two after it as well, unless one of them is a candidate, ends a hole or is of another kind.
#ifndef ORSOLVA_ANALYSIS_SLIPS_SCALES_H
#define ORSOLVA_ANALYSIS_SLIPS_SCALES_H

#include <cstdint>

#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

/// What is the same for all satellites.
struct Surroundings {
  double interval_s = kUsualInterval_s;  ///< nominal
  /// What the ionosphere of a satellite of two bands changes by from step to step now, one sigma, m at
  /// 1575.42 MHz; NaN where nobody knows. Satellites that cannot measure their own take this.
  double ionosphere_m = kAbsent;
};

/// Scales of range and ionosphere before the step's own elevation and kind widen them, m.
struct SettledScales {
  double range_m = kAbsent;  ///< NaN where they were taken over from a step before
  double ionosphere_m = kAbsent;
};

/// Gives medians, predictor and scales to the step that is to be decided next. Must be called once per
/// step, in order: it moves the windows on.
SettledScales SettleScales(SatelliteTrack& track, std::int64_t step, const Surroundings& around);

/// The same from the steps as they are now, without moving the windows, and provisionally for the two steps
/// after it: before a candidate is looked at together with those, and after a repair among them.
void RefreshScales(SatelliteTrack& track, std::int64_t step, const Surroundings& around);

/// The same while the step is as it was when it was settled: only the two steps after it remain to be served.
/// @param settled  what SettleScales returned
void RefreshScales(SatelliteTrack& track, std::int64_t step, const SettledScales& settled,
                   const Surroundings& around);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_SCALES_H
