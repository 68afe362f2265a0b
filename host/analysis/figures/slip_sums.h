// Cycle slips, tested steps and loss-of-lock flags by signal, satellite and system.
//
// A step leads from one epoch of a satellite to its next; a slip is counted at the end of its step. Slips are
// those within continuous tracking. What is found after a hole is an interruption (tracking_sums.h). A
// satellite slips once per step, however many of its signals do; a jump counts for every signal that was
// tested in its step, for none can be cleared.
//
// Tested is a step at whose end a slip of the signal would have been seen: phase at both ends, or carried
// over a hole that was closed; not left out as unstable; and something to hold it against, another phase of
// the satellite or a predicted range. Everything else observed is untested, but for the first phase of an
// arc, which ends no step. Carriers of SBAS at 5 s and longer are untested throughout (detector_constants.h).
//
// Weakly tested, of these, is a step in which one cycle on all signals of the satellite at once, the slip of
// whole cycles that shows least, would be missed in one case of six or more: storms, old clocks and low
// elevations hide it. Other slips would have been seen. With d the wavelengths and C the covariance of the
// step (prediction.h) it gains g = d' C^-1 d / 2 in the mean; g - sqrt(2 g) is below the priors and the least
// gain of detector_constants.h.
//
// Observations per slip: tested steps over slips of every size (sure, unsure, half cycles, unknown). It and
// slips per 1,000 are absent with fewer than kMinTestedSteps tested steps: a signal that is soon left out as
// unstable has slips and hardly a tested step.
//
// Population: from the cut-off up, and below it apart. Observations without an elevation count as up.
#ifndef ORSOLVA_ANALYSIS_FIGURES_SLIP_SUMS_H
#define ORSOLVA_ANALYSIS_FIGURES_SLIP_SUMS_H

#include <array>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/per_satellite.h"
#include "host/analysis/figures/step_outcome.h"

namespace orsolva_host::analysis {

struct SlipCounts {
  Count sure = 0, unsure = 0, half_cycles = 0, unknown_size = 0;
  Count tested = 0, untested = 0;
  Count weak = 0;  ///< of those tested
  Count flags = 0, flags_with_slip = 0;

  void Add(const SlipCounts& other);
  bool Any() const { return tested + untested > 0; }
};

class SlipSums {
 public:
  static constexpr Count kMinTestedSteps = 100;

  explicit SlipSums(double cutoff_deg) : cutoff_deg_(cutoff_deg) {}

  void SetInterval(double interval_s) { interval_s_ = interval_s; }
  /// An epoch of the stream, for satellites that are never tested.
  void AddEpoch(const ObservationEpoch& epoch);
  void AddStep(const StepOutcome& outcome);
  void AddEvent(const Event& event);

  void FillIn(AnalysisResult& result) const;

 private:
  struct Signal {
    SignalCode code;
    std::array<SlipCounts, 2> counts;  // below the cut-off, from it up
  };
  struct Satellite {
    std::array<SlipCounts, 2> counts;
    Count clock_events = 0;
    std::vector<Signal> signals;  ///< by number
    QuietRun quiet;

    void EndRun();
    /// Made for a satellite that is never tested; any other has its signals from its steps.
    Signal& SignalOf(SignalCode code);
  };

  double cutoff_deg_;
  double interval_s_ = 0;
  PerSatellite<Satellite> satellites_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_SLIP_SUMS_H
