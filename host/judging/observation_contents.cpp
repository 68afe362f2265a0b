#include "host/judging/observation_contents.h"

#include <cstddef>
#include <utility>

namespace orsolva_host {

void ObservationTally::Add(const ObservationEpoch& epoch) {
  ++contents_.epochs;
  if ((epoch.events & kPowerFailure) != 0) ++contents_.power_failures;
  for (const SatelliteObservation& satellite : epoch.satellites) {
    SystemContents& system = contents_.systems[satellite.id.system];
    system.satellites.insert(satellite.id.number);
    ++system.observations;
    for (std::size_t i = 0; i < satellite.signal_count; ++i)
      ++system.signals[NameOf(epoch.signals[satellite.first_signal + i].code)];
  }
  // Duplicate epochs and those that go back in time are no steps; the reader names them.
  if (last_ns_ && epoch.time_ns <= *last_ns_) return;
  last_ns_ = epoch.time_ns;
  span_.Add(epoch);
  check_.AddEpoch(epoch);
}

ObservationContents ObservationTally::Contents(const StationDescription& stated) const {
  ObservationContents contents = contents_;
  if (contents.epochs == 0) return contents;
  analysis::AnalysisResult result;
  span_.FillIn(result.span);
  check_.FillIn(stated, result);
  contents.span = std::move(result.span);
  contents.contradictions = std::move(result.contradictions);
  return contents;
}

}  // namespace orsolva_host
