// Code multipath, white code noise and wide-lane scatter of each signal.
//
// Notation: P code, L phase (m), mu = (1575.42 MHz / f)^2; s the signal, p its partner (partner_signal.h).
//
//   multipath
//     M = P_s - L_s - c (L_s - L_p), c = 2 mu_s / (mu_p - mu_s): multipath and noise of the code plus a
//     constant (Estey and Meertens 1999, GPS Solutions 3(1)). Its RMS is given about the mean of a window of
//     630 s (moving_scatter.h) and about the mean of each arc, pooled over arcs.
//   code noise
//     1.4826 median |M_k - M_(k-1)| / sqrt 2 over consecutive epochs: the part that changes at the interval
//     of the data; at 30 s that holds quick multipath, too.
//   wide lane
//     (f_s L_s - f_p L_p) / (f_s - f_p) - (f_s P_s + f_p P_p) / (f_s + f_p) (Melbourne 1985, Wuebbena 1985),
//     pooled scatter about the mean of each arc, in wide-lane cycles and m: mostly code noise.
//
// Phases are the detector's: slips that are certain are taken off and the arc goes on. It ends with a slip of
// either phase that is not certain, a jump, a hole left open, a hole of more than 600 s, and where a better
// partner appears in its first 630 s. Shorter arcs count for the noise alone.
//
// A satellite whose signals have one band has no such partner. P - L then holds twice the ionosphere: code
// noise alone is given, from second differences, 1.4826 median |D2| / sqrt 6, and no multipath.
//
// Population: from the cut-off up, by elevation over all. Figures of fewer than kMinValues values are
// absent.
#ifndef ORSOLVA_ANALYSIS_FIGURES_CODE_MULTIPATH_H
#define ORSOLVA_ANALYSIS_FIGURES_CODE_MULTIPATH_H

#include <array>
#include <cstdint>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/log_histogram.h"
#include "host/analysis/figures/moving_scatter.h"
#include "host/analysis/figures/partner_signal.h"
#include "host/analysis/figures/per_satellite.h"
#include "host/analysis/figures/scatter.h"
#include "host/analysis/figures/step_outcome.h"

namespace orsolva_host::analysis {

/// Sums of one signal, or of several pooled.
class MultipathSums {
 public:
  static constexpr Count kMinValues = 50;

  /// What one partner was used for.
  struct ByPartner {
    SignalCode partner;
    std::int64_t values = 0;
    PooledScatter wide_lane;       ///< cycles
    double wide_lane_squares = 0;  ///< m^2
  };

  void Add(const MultipathSums& other);
  ByPartner& With(SignalCode partner);
  const std::vector<ByPartner>& Partners() const { return partners_; }
  MultipathFigures Figures() const;

  ScatterByElevation moving;
  PooledScatter arcs;
  LogHistogram<-10, 10> noise;  ///< sizes of differences, as one epoch's noise, m

 private:
  std::vector<ByPartner> partners_;
};

class CodeMultipath {
 public:
  explicit CodeMultipath(double cutoff_deg) : cutoff_deg_(cutoff_deg) {}

  void SetInterval(double interval_s);
  void AddStep(const StepOutcome& outcome);

  /// From now on judged blocks are kept until TakeBlocks.
  void KeepBlocks() { keeps_blocks_ = true; }
  /// Ends the runs that a hole has ended. @param decided_ns  time before which all steps are decided
  void EndBefore(std::int64_t decided_ns);
  /// Ends all runs: no step follows.
  void EndAll();
  /// Calls action(SatelliteId, SignalCode, const JudgedBlock&) for the blocks judged since the last call.
  template <typename Action>
  void TakeBlocks(Action action) {
    satellites_.ForEach([&](SatelliteId id, Satellite& satellite) {
      for (Signal& signal : satellite.signals) {
        for (const JudgedBlock& block : signal.blocks.Take()) action(id, signal.code, block);
      }
    });
  }

  void FillIn(AnalysisResult& result) const;

 private:
  /// A run of one signal with one partner.
  struct Run {
    bool open = false;
    bool lone = false;  ///< without a partner
    SignalCode partner;
    std::size_t partner_place = 0;  ///< in the track
    int rank = 0;
    double coefficient = 0;
    double wide_lane_m = 0;                      ///< wavelength
    std::array<double, 4> wide_lane_terms = {};  ///< of own and partner's phase, own and partner's code, 1/m
    double origin_m = 0;                         ///< first value, taken off all
    std::int64_t last_ns = 0;
    double last_m = kAbsent;
    double last_change_m = kAbsent;
    Scatter arc;
    Scatter wide_lane;
  };
  struct Signal {
    SignalCode code;
    Run run;
    MovingScatter moving;  ///< of the run; empty where none is open
    MultipathSums sums;
    JudgedBlocks blocks;
  };
  struct Satellite {
    std::vector<Signal> signals;  ///< by number
  };
  /// An epoch of a satellite.
  struct Place {
    const StepOutcome& outcome;  ///< of the step that ends here, or of the one that begins here
    std::int64_t epoch;
    std::int64_t time_ns;
    double elevation_deg;
    bool up;

    const SignalTrack& Signal(std::size_t place) const { return outcome.track->signals[place]; }
  };

  static void EndBroken(const StepOutcome& outcome, Satellite& satellite);
  static void FindPartners(const SatelliteTrack& track, Satellite& satellite);
  void AddPhases(const Place& at, Satellite& satellite) const;
  void AddPhase(const Place& at, std::size_t place, Satellite& satellite) const;
  static void Begin(const Place& at, std::size_t place, Run& run);
  void AddNoise(const Place& at, double value, Signal& signal) const;
  static bool CountsWideLane(const Place& at, std::size_t place, const Satellite& satellite);
  static void AddWideLane(const Place& at, std::size_t place, Run& run);
  static void End(Signal& signal);

  double cutoff_deg_;
  bool keeps_blocks_ = false;
  std::int64_t longest_step_ns_ = 0;  ///< between consecutive epochs
  PerSatellite<Satellite> satellites_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_CODE_MULTIPATH_H
