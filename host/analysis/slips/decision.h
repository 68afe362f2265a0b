// Decides what happened in a step of a satellite: nothing, a slip, a disturbance that is none, or a break.
//
// Every explanation costs half a chi2 of the steps around it plus minus the logarithm of its prior
// probability, in nats; the cheapest wins (Bayesian choice as in de Lacy et al. 2012, GPS Solutions 16).
#ifndef ORSOLVA_ANALYSIS_SLIPS_DECISION_H
#define ORSOLVA_ANALYSIS_SLIPS_DECISION_H

#include <algorithm>
#include <cstdint>
#include <vector>

#include "host/analysis/slips/hole_window.h"
#include "host/analysis/slips/integer_search.h"
#include "host/analysis/slips/prediction.h"
#include "host/analysis/slips/satellite_track.h"
#include "host/analysis/slips/scales.h"
#include "host/analysis/slips/step_departure.h"
#include "host/analysis/slips/wide_lane.h"

namespace orsolva_host::analysis {

/// A slip vector and what it costs as an explanation of a step.
struct Explanation {
  Cycles cycles = {};
  double total = 0;        ///< nats: half the window's chi2, half the wide lane's misfit, prior
  double window_chi2 = 0;  ///< of the steps k-2 to k+2 with the slip repaired
  bool any = false;        ///< some signal slips
};

/// Everything known about a step while it is decided.
struct StepCase {
  SatelliteTrack* track = nullptr;
  std::int64_t step = 0;
  StepTest test;
  WideLaneEvidence wide_lanes;
  std::vector<std::array<double, kMaxSignals>> views;  ///< test vectors by central and one-sided predictions
  std::array<char, kMaxSignals> band;
  double slip_prior = kSlipPrior;
  double chi2 = 0;
  bool gap = false;
  bool lost_lock = false;
  std::vector<Explanation> ranked;  ///< cheapest first; "no slip" is among them
  Explanation none;
};

class Decision {
 public:
  explicit Decision(double interval_s) : interval_s_(interval_s), around_{interval_s} {}

  /// @param metres  see Surroundings
  void SetIonosphere(double metres) { around_.ionosphere_m = metres; }

  /// Decides the oldest open step, which needs as many later epochs as are to come or kLead of them; found
  /// events are added to the track. Files full of holes would need a search at every step: a satellite earns
  /// a twentieth of a search per step and keeps at most 100; without one, holes are left unresolved, and a
  /// hundred further on breaks are no longer searched.
  void DecideNext(SatelliteTrack& track);

 private:
  struct SteadySlip {
    Cycles cycles = {};
    int count = 0;
    double least_m = 1e300;
    void Add(double size_cycles, double size_m) {
      cycles[static_cast<std::size_t>(count++)] = size_cycles;
      least_m = std::min(least_m, size_m);
    }
  };

  /// Whether range, ionosphere and noise of the step hide one cycle on all signals at once, of all slips of
  /// whole cycles the one that shows least, in one case of six or more: what it gains, less one standard
  /// deviation of it, is less than a slip has to.
  bool IsWeak(const SatelliteTrack& track, const StepTest& test) const;
  bool IsCandidate(const SatelliteTrack& track, std::int64_t step, const StepTest& test, double chi2) const;
  std::int64_t RankMostTelling(SatelliteTrack& track, std::int64_t step);
  double GainOfRepair() const;
  bool Explain();
  void Rank(SatelliteTrack& track, std::int64_t step);
  void MakeCase(SatelliteTrack& track, std::int64_t step);
  void MakeViews();
  void RankSlips();
  Explanation Weighed(const Cycles& cycles, double enough);
  void RankExplanations();
  void CompareEqualParts();
  double RepairedDeparture(const StepDeparture& departure, const Cycles& cycles);
  double WindowChi2(const SatelliteTrack& track, std::int64_t first, std::int64_t last,
                    double enough = 1e300);
  double RepairedWindow(const Cycles& cycles, double enough);
  double PriorOf(const Cycles& cycles) const;
  double FitOf(const Cycles& cycles) const;
  bool CloseGap();
  double Margin() const;  ///< of the best explanation over the next, nats
  bool IsSureHole() const;
  void CloseBesideRepair(SatelliteTrack& track, std::int64_t step);
  bool OnlyReturningSlip(const Cycles& cycles) const;
  bool IsBlind() const;
  double BlindSlipPrior() const;
  bool IsPlainHalf() const;
  bool IsStormy() const;
  bool IsStormySky() const;
  double LeastGain() const;
  SteadySlip SteadyPart(const Cycles& cycles) const;
  bool RestsOnRangeAlone(const SteadySlip& slip) const;
  bool IsSureSlip(const Explanation& best) const;
  bool IsNoSlip();
  bool TakeSlip();
  bool TakeOther(const Explanation* integer);
  bool TakeOutlier(std::int64_t epoch);
  static double Interpolated(const SatelliteTrack& track, const SignalTrack& signal, std::int64_t epoch);
  static Cycles Departures(const SatelliteTrack& track, std::int64_t epoch);
  static bool IsSameMetres(const SatelliteTrack& track, const Cycles& off);
  void AddOutlier(std::int64_t epoch, const Cycles& off, double score);
  void LeaveUnresolved(SatelliteTrack& track, std::int64_t step);
  bool TakeUnstable(const Cycles& cycles);
  int BrokenSteps(std::size_t signal) const;
  void MarkBroken(const Cycles& cycles);
  Cycles Returning() const;
  EventKind HoleKind() const;  ///< of a hole that is left open
  static bool IsOff(const SatelliteTrack& track, std::size_t signal, std::int64_t step);
  static void Readmit(SatelliteTrack& track, std::int64_t step);
  void AddEvent(EventKind kind, const Cycles* sizes, double score, double margin, bool sure);
  void AddEventWithoutEvidence(EventKind kind, const Cycles* sizes, double score, double margin, bool sure);
  static bool IsHopeless(const SatelliteTrack& track, const StepTest& test);
  void GiveUp(SatelliteTrack& track, std::int64_t step, double chi2, const char* why);
  void Carry(SatelliteTrack& track, std::int64_t step) const;

  double interval_s_;
  Surroundings around_;
  StepCase case_;
  StepCase other_case_;
  StepTest scratch_;
  SlipCandidates candidates_;
  std::size_t no_slip_ = 0;    ///< its place among the candidates
  std::vector<double> costs_;  ///< of the candidates by the step alone, twice nats
  CheapestFirst cheapest_;
  IntegerSearch search_;
  HoleWindow hole_window_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_DECISION_H
