// The groups of figures made of epochs as they are, fed together.
#ifndef ORSOLVA_ANALYSIS_FIGURES_EPOCH_GROUPS_H
#define ORSOLVA_ANALYSIS_FIGURES_EPOCH_GROUPS_H

#include <optional>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/completeness.h"
#include "host/analysis/figures/observation_counts.h"
#include "host/analysis/figures/receiver_mask.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/sky.h"
#include "host/analysis/figures/span.h"
#include "host/analysis/figures/strength.h"

namespace orsolva_host::analysis {

class EpochGroups {
 public:
  /// @param stated_interval_s  such as a header states; 0: none
  EpochGroups(double stated_interval_s, double cutoff_deg)
      : cutoff_deg_(cutoff_deg), span_(stated_interval_s) {}

  /// Before the first epoch. @param orbits  may hold nothing; must outlive this
  void UseOrbits(BroadcastStore& orbits) { sky_.emplace(orbits, cutoff_deg_); }
  /// @param interval_s  of the stream's first epochs
  void Begin(double interval_s) { span_.Begin(interval_s); }

  /// @param station  null where its position is not known
  void AddEpoch(const ObservationEpoch& epoch, const Station* station);

  const SignalRoster& Roster() const { return roster_; }
  const Sky& TheSky() const { return *sky_; }

  void FillIn(AnalysisResult& result) const;

 private:
  double cutoff_deg_;
  SignalRoster roster_;
  Span span_;
  ObservationCounts counts_;
  std::optional<Sky> sky_;
  Completeness completeness_;
  ReceiverMask mask_;
  Strength strength_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_EPOCH_GROUPS_H
