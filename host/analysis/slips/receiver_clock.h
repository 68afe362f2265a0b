// The change of the receiver clock from epoch to epoch, common to all satellites and systems.
#ifndef ORSOLVA_ANALYSIS_SLIPS_RECEIVER_CLOCK_H
#define ORSOLVA_ANALYSIS_SLIPS_RECEIVER_CLOCK_H

#include <optional>
#include <vector>

#include "host/analysis/geometry/satellite_orbit.h"
#include "host/analysis/numeric/sorted_window.h"

namespace orsolva_host::analysis {

/// What a satellite's own phase changed by against the common clock in its last 20 steps, m/s: its clock's
/// drift.
using ClockOffsets = SortedWindow<20>;

/// Phase change of a satellite over the last epoch step.
struct ClockSample {
  double metres = 0;  ///< ionosphere-free phase change less the modelled range change
  double sigma = 1;   ///< relative; smaller counts more
  Vector3 line_of_sight = {};
  ClockOffsets* offsets = nullptr;
  double dt_s = 1;      ///< length of the step
  double offset_m = 0;  ///< what their median makes of the step, set by SolveClock
};

struct ClockChange {
  double metres = 0;
  Vector3 shift_m = {};  ///< of the antenna, where it moved
  bool moved = false;
  double shift_doubt_m = 0;  ///< one sigma along a line of sight, where it moved
};

/// Robust mean over the satellites: median, then twice the weighted mean of what lies within three spreads
/// once each satellite's own offset is taken off. Known when at least four satellites are there and at least
/// half of them lie within 6 cm, or else the largest cluster within 4 cm is of four satellites and three
/// tenths, and half as large again as any other. The offsets' weighted mean is nothing: what all satellites
/// have is the receiver's. With six satellites and a spread above 3 cm a shift of the antenna is solved too,
/// and taken when it leaves a third of the spread. Offsets of the samples are moved on.
std::optional<ClockChange> SolveClock(std::vector<ClockSample>& samples);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_RECEIVER_CLOCK_H
