// How far range and ionosphere of a step depart from what the steps around make of them, weighed with how far
// they departed together at earlier steps.
//
// In a storm slips that differ by the same cycles on all bands lie close together: one cycle on both of L1
// and L2 is 10.7 cm in the ionosphere-free phase and 5.4 cm between the bands. The test of prediction.h takes
// the errors of range, ionosphere and phase for independent and counts phase noise in each, which doubts the
// ionosphere-free phase most. Here the covariance is that of what the last steps show.
#ifndef ORSOLVA_ANALYSIS_SLIPS_STEP_DEPARTURE_H
#define ORSOLVA_ANALYSIS_SLIPS_STEP_DEPARTURE_H

#include <cstdint>
#include <optional>

#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

/// The weights of a departure, settled for one step of a satellite with two bands and a modelled range.
class StepDeparture {
 public:
  /// @return absent with fewer than 8 earlier departures, or where neighbours of the step are missing
  static std::optional<StepDeparture> Settle(const SatelliteTrack& track, std::int64_t step);

  /// Squared departure of the step in units of its covariance, with the rates that the track has now.
  double Chi2(const SatelliteTrack& track) const;

 private:
  StepDeparture() = default;

  std::int64_t step_ = 0;
  // Of the inverse of the covariance, 1/m^2.
  double range_ = 0;
  double both_ = 0;
  double ionosphere_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_STEP_DEPARTURE_H
