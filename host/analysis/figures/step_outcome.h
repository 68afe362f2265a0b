// What a decided step means for each signal of a satellite: the ground of every figure made of phases.
#ifndef ORSOLVA_ANALYSIS_FIGURES_STEP_OUTCOME_H
#define ORSOLVA_ANALYSIS_FIGURES_STEP_OUTCOME_H

#include <array>
#include <cstdint>

#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

enum class Continuity : std::uint8_t {
  kAway,        ///< no phase at the epoch
  kBegins,      ///< no phase from which it could go on
  kContinuous,  ///< goes on as before, perhaps over a hole
  kRepaired,    ///< slipped by cycles that are certain and were taken off: the track goes on
  kBroken,      ///< slipped by cycles that are not certain, jumped, or returned from a hole left open
  kUnstable,    ///< left out by the detector
};

struct SignalOutcome {
  Continuity continuity = Continuity::kAway;
  bool returns = false;  ///< the epoch before had no phase of it, but one of its arc had
  bool tested = false;   ///< a slip would have been seen
  bool flagged = false;  ///< loss of lock, by the receiver

  bool GoesOn() const { return continuity == Continuity::kContinuous || continuity == Continuity::kRepaired; }
  bool Breaks() const {
    return continuity == Continuity::kBegins || continuity == Continuity::kBroken ||
           continuity == Continuity::kUnstable;
  }
};

/// A decided step with what became of its signals.
struct StepOutcome {
  const SatelliteTrack* track = nullptr;
  std::int64_t step = 0;
  const StepState* state = nullptr;
  bool begins_arc = false;         ///< the epoch before the step is the first of the satellite's arc
  double elevation_deg = kAbsent;  ///< at the end of the step
  bool up = true;                  ///< from the cut-off up
  bool tested = false;             ///< some signal is
  std::array<SignalOutcome, kMostSignals> signals;  ///< in the order of the track
};

/// NaN where unknown.
double ElevationDegrees(const StepState& step);

/// Whether an observation belongs to the figures from the cut-off up. Without an elevation it does.
inline bool IsUp(double elevation_deg, double cutoff_deg) { return !(elevation_deg < cutoff_deg); }

/// @param step  the one just decided, its events still in the track
void ReadOutcome(const SatelliteTrack& track, std::int64_t step, double cutoff_deg, StepOutcome& outcome);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_STEP_OUTCOME_H
