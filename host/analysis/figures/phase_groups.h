// The groups of figures made of decided steps, fed together.
#ifndef ORSOLVA_ANALYSIS_FIGURES_PHASE_GROUPS_H
#define ORSOLVA_ANALYSIS_FIGURES_PHASE_GROUPS_H

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/carrier_noise.h"
#include "host/analysis/figures/code_multipath.h"
#include "host/analysis/figures/ionosphere_rate.h"
#include "host/analysis/figures/slip_sums.h"
#include "host/analysis/figures/step_outcome.h"
#include "host/analysis/figures/tracking_sums.h"
#include "host/analysis/figures/windows.h"

namespace orsolva_host::analysis {

class PhaseGroups {
 public:
  explicit PhaseGroups(double cutoff_deg);

  /// Before the first epoch.
  void Begin(double interval_s);
  /// @param number  in the stream
  void AddEpoch(const ObservationEpoch& epoch, std::int64_t number);
  /// A step just decided.
  void AddStep(const SatelliteTrack& track, std::int64_t step);
  void AddEvent(const Event& event);

  /// Those whose figures over time are taken.
  CodeMultipath& Multipath() { return multipath_; }
  IonosphereRate& Ionosphere() { return ionosphere_; }

  void FillIn(AnalysisResult& result) const;
  /// Those of them that are sums over the stream.
  StreamSums Sums() const;

 private:
  OutcomeReader outcomes_;
  SlipSums slips_;
  TrackingSums tracking_;
  CodeMultipath multipath_;
  CarrierNoise noise_;
  IonosphereRate ionosphere_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_PHASE_GROUPS_H
