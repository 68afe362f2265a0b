// The change of the receiver clock from epoch to epoch, common to all satellites and systems.
#ifndef ORSOLVA_ANALYSIS_SLIPS_RECEIVER_CLOCK_H
#define ORSOLVA_ANALYSIS_SLIPS_RECEIVER_CLOCK_H

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/analysis/geometry/satellite_orbit.h"
#include "host/analysis/numeric/sorted_window.h"

namespace orsolva_host::analysis {

/// What a satellite's own phase changed by against the common clock in its last 20 steps, m/s: its clock's
/// drift.
class ClockOffsets {
 public:
  /// @param rate_m_s  NaN where the step holds something that is no drift: it takes a place all the same, so
  ///                  that what was learned long ago is forgotten
  void Push(std::int64_t epoch, double rate_m_s);
  /// Forgets the step that led to an epoch of the stream, where it is still kept.
  void Drop(std::int64_t epoch);
  /// Median; NaN where fewer than five steps are known. One step, or two, may be a slip.
  double Rate() const;

 private:
  static constexpr int kSteps = 20;
  SortedWindow<kSteps> rates_;
  std::array<std::int64_t, kSteps> epochs_ = {};  ///< of what was pushed, in a ring
  int pushed_ = 0;                                ///< modulo kSteps
};

/// Phase change of a satellite over the last epoch step.
struct ClockSample {
  double metres = 0;  ///< ionosphere-free phase change less the modelled range change
  double sigma = 1;   ///< relative; smaller counts more
  Vector3 line_of_sight = {};
  ClockOffsets* offsets = nullptr;
  std::int64_t epoch = 0;  ///< of the stream, to which the step leads
  double dt_s = 1;         ///< length of the step
  double offset_m = 0;     ///< what their median makes of the step, set by SolveClock
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
/// tenths, and half as large again as any other. The offsets' mean, robust in the same way, is nothing: what
/// all satellites have is the receiver's. With six satellites and a spread above 3 cm a shift of the antenna
/// is solved too, and taken when it leaves a third of the spread. Offsets of the samples are moved on, except
/// by what is left beyond 20 cm: that is a slip or a step of a clock, no drift.
std::optional<ClockChange> SolveClock(std::vector<ClockSample>& samples);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_RECEIVER_CLOCK_H
