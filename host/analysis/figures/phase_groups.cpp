#include "host/analysis/figures/phase_groups.h"

#include <utility>

namespace orsolva_host::analysis {

PhaseGroups::PhaseGroups(double cutoff_deg)
    : outcomes_(cutoff_deg),
      slips_(cutoff_deg),
      tracking_(cutoff_deg),
      multipath_(cutoff_deg),
      ionosphere_(cutoff_deg) {}

void PhaseGroups::Begin(double interval_s) {
  slips_.SetInterval(interval_s);
  tracking_.SetInterval(interval_s);
  multipath_.SetInterval(interval_s);
  noise_.SetInterval(interval_s);
  ionosphere_.SetInterval(interval_s);
}

void PhaseGroups::AddEpoch(const ObservationEpoch& epoch, std::int64_t number) {
  slips_.AddEpoch(epoch);
  tracking_.AddEpoch(epoch, number);
  ionosphere_.AddEpoch(epoch.time_ns);
}

void PhaseGroups::AddStep(const SatelliteTrack& track, std::int64_t step) {
  const StepOutcome& outcome = outcomes_.Read(track, step);
  slips_.AddStep(outcome);
  tracking_.AddStep(outcome);
  multipath_.AddStep(outcome);
  noise_.AddStep(outcome);
  ionosphere_.AddStep(outcome);
}

void PhaseGroups::AddEvent(const Event& event) {
  slips_.AddEvent(event);
  ionosphere_.AddEvent(event);
}

StreamSums PhaseGroups::Sums() const {
  AnalysisResult result;
  slips_.FillIn(result);
  tracking_.FillIn(result);
  multipath_.FillIn(result);
  return StreamSums(std::move(result));
}

void PhaseGroups::FillIn(AnalysisResult& result) const {
  slips_.FillIn(result);
  tracking_.FillIn(result);
  multipath_.FillIn(result);
  noise_.FillIn(result);
  ionosphere_.FillIn(result);
}

}  // namespace orsolva_host::analysis
