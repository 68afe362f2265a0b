// The groups of figures about the receiver as a whole, each given what it needs.
#ifndef ORSOLVA_ANALYSIS_FIGURES_RECEIVER_GROUPS_H
#define ORSOLVA_ANALYSIS_FIGURES_RECEIVER_GROUPS_H

#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/description_check.h"
#include "host/analysis/figures/position.h"
#include "host/analysis/figures/receiver_clock_figures.h"
#include "host/observation/station_description.h"

namespace orsolva_host::analysis {

class ReceiverGroups {
 public:
  void Begin(double interval_s) { clock_.Start(interval_s); }
  /// @return the receiver clock of the epoch's solution, m; NaN without one
  double AddRanges(const ObservationEpoch& epoch, const Station& station,
                   const std::vector<ModelledSatellite>& satellites) {
    const double clock_m = position_.AddRanges(epoch, station, satellites);
    clock_.AddOffset(epoch.time_ns, clock_m);
    return clock_m;
  }
  /// Of the epoch added last that has one.
  const Position::Solution& LastSolution() const { return position_.Last(); }
  void AddEpoch(const ObservationEpoch& epoch, const ReceiverStep& step) {
    position_.AddStep(step);
    clock_.AddStep(epoch.time_ns, step);
    description_.AddEpoch(epoch);
  }
  void AddEvent(const Event& event) { clock_.AddEvent(event); }

  /// @param result  with the figures of its span
  void FillIn(const StationDescription& stated, AnalysisResult& result) const {
    position_.FillIn(stated.position_m, stated.given_position_m, result.position);
    clock_.FillIn(result.receiver_clock);
    description_.FillIn(stated, result);
  }

 private:
  Position position_;
  ReceiverClockSums clock_;
  DescriptionCheck description_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_RECEIVER_GROUPS_H
