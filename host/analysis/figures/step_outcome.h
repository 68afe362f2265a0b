// What a decided step means for each signal of a satellite: the ground of every figure made of phases.
#ifndef ORSOLVA_ANALYSIS_FIGURES_STEP_OUTCOME_H
#define ORSOLVA_ANALYSIS_FIGURES_STEP_OUTCOME_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/analysis/figures/per_satellite.h"
#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

/// Signals of a satellite, bits by place in its track.
using SignalMask = std::uint32_t;
static_assert(kMaxSignals <= 32, "a mask has a bit for each signal");

constexpr bool Has(SignalMask mask, std::size_t place) { return (mask >> place & 1) != 0; }

/// Takes a place out of a mask that is not 0.
inline std::size_t TakeFirst(SignalMask& mask) {
  const auto place = static_cast<std::size_t>(std::countr_zero(mask));
  mask &= mask - 1;
  return place;
}

/// A decided step with what became of its signals. Each signal with a phase is in one of the first five
/// masks.
struct StepOutcome {
  SignalMask begins = 0;      ///< no phase from which it could go on
  SignalMask continuous = 0;  ///< goes on as before, perhaps over a hole
  SignalMask repaired = 0;    ///< slipped by cycles that are certain and were taken off: the track goes on
  SignalMask broken = 0;      ///< slipped by cycles not certain, jumped, or returned from a hole left open
  SignalMask unstable = 0;    ///< left out by the detector
  SignalMask returns = 0;     ///< the epoch before had no phase of it, but one of its arc had
  SignalMask tested = 0;      ///< a slip would have been seen
  SignalMask weak = 0;        ///< tested, but one cycle on all signals at once would not have been seen
  SignalMask flagged = 0;     ///< loss of lock, by the receiver

  const SatelliteTrack* track = nullptr;
  std::int64_t step = 0;
  const StepState* state = nullptr;
  double elevation_deg = kAbsent;  ///< at the end of the step
  bool up = true;                  ///< from the cut-off up
  bool begins_arc = false;         ///< the epoch before the step is the first of the satellite's arc
  bool rearranged = false;         ///< places in the track are not those of the satellite's step before
  /// All phases continuous, tested and not weakly, without a flag, and there at both ends.
  bool quiet = false;
  std::array<std::uint8_t, kMaxSignals> number = {};  ///< of each signal, by place; a satellite's stay

  SignalMask Present() const { return begins | continuous | repaired | broken | unstable; }
  SignalMask GoesOn() const { return continuous | repaired; }
  SignalMask Breaks() const { return begins | broken | unstable; }
};

/// NaN where unknown.
double ElevationDegrees(const StepState& step);

/// Whether an observation belongs to the figures from the cut-off up. Without an elevation it does.
inline bool IsUp(double elevation_deg, double cutoff_deg) { return !(elevation_deg < cutoff_deg); }

class OutcomeReader {
 public:
  explicit OutcomeReader(double cutoff_deg) : cutoff_deg_(cutoff_deg) {}

  /// @param step  the one just decided, its events still in the track
  /// @return valid until the next call
  const StepOutcome& Read(const SatelliteTrack& track, std::int64_t step);

 private:
  /// Numbers of a satellite's signals in the order in which they were seen first.
  struct Numbers {
    std::vector<SignalCode> codes;
    std::size_t tracked = 0;
    std::array<std::uint8_t, kMaxSignals> number = {};

    void Take(const SatelliteTrack& track);
  };

  double cutoff_deg_;
  StepOutcome outcome_;
  PerSatellite<Numbers> numbers_;
};

/// Steps in a row that are all the same but for their time: what they add up to is added when they end.
struct QuietRun {
  SignalMask present = 0;
  bool up = true;
  bool running = false;
  std::uint32_t steps = 0;
  std::int64_t last_ns = 0;
  std::array<std::uint8_t, kMaxSignals> number = {};

  /// Whether the step is one more of the run, which then holds it.
  bool Extends(const StepOutcome& outcome) {
    if (!running || !outcome.quiet || outcome.continuous != present || outcome.up != up || outcome.rearranged)
      return false;
    ++steps;
    last_ns = outcome.state->time_ns;
    return true;
  }
  /// A run may begin with a step that was counted by itself.
  void Begin(const StepOutcome& outcome) {
    running = outcome.quiet;
    present = outcome.continuous;
    up = outcome.up;
    steps = 0;
    number = outcome.number;
  }
};

/// Gives every signal of the track its state in a list by number; needed where signals are rearranged.
template <typename T>
void Arrange(std::vector<T>& states, const StepOutcome& outcome) {
  const std::vector<SignalTrack>& signals = outcome.track->signals;
  for (std::size_t j = 0; j < signals.size() && j < kMaxSignals; ++j) {
    const std::size_t number = outcome.number[j];
    if (number >= states.size()) states.resize(number + 1);
    states[number].code = signals[j].code;
  }
}

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_STEP_OUTCOME_H
