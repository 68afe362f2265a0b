#include "host/judging/analysis_run.h"

#include <algorithm>
#include <utility>

#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

/// Of the user, else of the header, else of the file name; 0: none says one.
double StatedInterval(const JudgingSettings& settings, const ObservationHeader& header,
                      const StationDescription& description) {
  if (settings.interval_s) return *settings.interval_s;
  return header.interval_s ? *header.interval_s : description.name.interval_s.value_or(0);
}

analysis::AnalysisOptions OptionsOf(const JudgingSettings& settings, const ObservationHeader& header,
                                    const StationDescription& description,
                                    std::shared_ptr<const PreciseOrbits> precise, bool series) {
  analysis::AnalysisOptions options;
  options.series = series;
  options.elevation_cutoff_deg = settings.elevation_cutoff_deg;
  options.window_s = settings.window_s;
  options.detector.position = header.position;
  if (settings.position.source == PositionSource::kOption)
    options.detector.position = settings.position.xyz_m;
  options.stated_interval_s = StatedInterval(settings, header, description);
  options.detector.glonass_channels = header.glonass_channels;
  options.detector.precise_orbits = std::move(precise);
  return options;
}

StationDescription Described(const JudgingSettings& settings, const EpochSource& source) {
  StationDescription description = source.Described();
  if (settings.position.source == PositionSource::kOption)
    description.given_position_m = settings.position.xyz_m;
  if (settings.selection.sampling_s) description.name.interval_s.reset();
  return description;
}

std::size_t PlaceOf(char letter) { return static_cast<std::size_t>(letter - 'A'); }

}  // namespace

AnalysisRun::AnalysisRun(const JudgingSettings& settings, const EpochSource& source,
                         const BroadcastRecords& records, std::shared_ptr<const PreciseOrbits> precise,
                         EventSink* events, SeriesSink* series)
    : description_(Described(settings, source)),
      analysis_(OptionsOf(settings, source.Header(), description_, std::move(precise), series != nullptr),
                records),
      events_(events),
      series_(series) {
  for (const char letter : settings.systems) chosen_[PlaceOf(letter)].set();
  for (const ExcludedSatellite& out : settings.excluded) {
    chosen_[PlaceOf(kSystemTable[out.system_slot].letter)].reset(static_cast<std::size_t>(out.number));
  }
  all_chosen_ = settings.systems.size() == kAllSystems.size() && settings.excluded.empty();
}

bool AnalysisRun::IsChosen(SatelliteId satellite) const {
  const std::size_t place = PlaceOf(satellite.system);
  return place < chosen_.size() && chosen_[place][satellite.number];
}

void AnalysisRun::Add(ObservationEpoch& epoch) {
  if (!all_chosen_) {
    auto& satellites = epoch.satellites;
    const auto out = [this](const SatelliteObservation& s) { return !IsChosen(s.id); };
    satellites.erase(std::remove_if(satellites.begin(), satellites.end(), out), satellites.end());
  }
  analysis_.Add(epoch);
  PassEvents();
  PassSeries();
}

AnalysisReport AnalysisRun::Finish(std::vector<DescriptionChange> changes) {
  analysis_.Finish();
  PassEvents();
  PassSeries();
  description_.changes = std::move(changes);
  report_.figures = analysis_.Result(description_);
  return std::move(report_);
}

void AnalysisRun::PassSeries() {
  if (series_ == nullptr) return;
  for (const analysis::SeriesRow& row : analysis_.TakeSeries()) series_->Add(row);
}

void AnalysisRun::PassEvents() {
  for (analysis::Event& event : analysis_.TakeEvents()) {
    if (events_ != nullptr) events_->Add(event);
    if (report_.events.size() < kMaxEventsKept) {
      report_.events.push_back(std::move(event));
    } else {
      ++report_.further_events;
    }
  }
}

}  // namespace orsolva_host
