// The steps around the end of a hole while slips in it are tried.
//
// No rate leads over a hole, so a slip in it changes no prediction around: the tests are made once, and only
// phases differ from slip to slip.
#ifndef ORSOLVA_ANALYSIS_SLIPS_HOLE_WINDOW_H
#define ORSOLVA_ANALYSIS_SLIPS_HOLE_WINDOW_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "host/analysis/slips/prediction.h"
#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

class HoleWindow {
 public:
  /// @param step  that leads over the hole; the window reaches from two steps before it to two after it
  void Settle(const SatelliteTrack& track, std::int64_t step, double interval_s);

  /// Sum of chi2 over the window with metres taken off the signals from the end of the hole on: the same bits
  /// as from repaired phases.
  /// @param enough  above which the sum is of no interest and need not be finished
  double Chi2Without(const SatelliteTrack& track, const SignalMetres& metres, double enough);

 private:
  static constexpr std::int64_t kReach = 2;

  std::int64_t step_ = 0;
  std::array<double, kReach> before_ = {};  ///< chi2 of the steps before the hole
  std::size_t before_count_ = 0;
  std::array<StepTest, kReach + 1> tests_;  ///< of the hole and the steps after it
  std::array<std::int64_t, kReach + 1> steps_ = {};
  std::size_t count_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_HOLE_WINDOW_H
