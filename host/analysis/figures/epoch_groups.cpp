#include "host/analysis/figures/epoch_groups.h"

namespace orsolva_host::analysis {

void EpochGroups::AddEpoch(const ObservationEpoch& epoch, const Station* station) {
  roster_.Take(epoch);
  span_.Add(epoch);
  counts_.Add(epoch, roster_);
  if (span_.IntervalChange() != 1) {
    sky_->Rescale(span_.IntervalChange());
    completeness_.Rescale(span_.IntervalChange());
  }
  sky_->Add(epoch, roster_, station, span_.NominalStep());
  completeness_.Add(epoch, roster_, *sky_, span_.NominalStep());
  strength_.Add(epoch, roster_, *sky_);
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) mask_.Add(sky_->ElevationDegrees(i));
}

void EpochGroups::FillIn(AnalysisResult& result) const {
  span_.FillIn(result.span);
  counts_.FillIn(roster_, result);
  sky_->FillIn(roster_, result);
  completeness_.FillIn(roster_, *sky_, result);
  mask_.FillIn(result.mask);
  strength_.FillIn(roster_, result);
}

}  // namespace orsolva_host::analysis
