// The analysis over the epochs of a source, for one thread.
#ifndef ORSOLVA_JUDGING_ANALYSIS_RUN_H
#define ORSOLVA_JUDGING_ANALYSIS_RUN_H

#include <array>
#include <bitset>
#include <memory>
#include <vector>

#include "host/analysis/station_analysis.h"
#include "host/judging/epoch_source.h"
#include "host/judging/settings.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/observation_epoch.h"
#include "host/observation/precise_orbits.h"
#include "host/observation/station_description.h"
#include "host/report/event_sink.h"
#include "host/report/report.h"
#include "host/report/series_sink.h"

namespace orsolva_host {

class AnalysisRun {
 public:
  /// @param source   for its header and name
  /// @param records  may hold nothing
  /// @param precise  used where they cover a time; may be null
  /// @param events   gets every event as soon as it is decided; may be null
  /// @param series   gets figures over time as they are complete; null: none are made
  AnalysisRun(const JudgingSettings& settings, const EpochSource& source, const BroadcastRecords& records,
              std::shared_ptr<const PreciseOrbits> precise, EventSink* events, SeriesSink* series);

  /// Takes the next epoch. @param epoch  satellites that are not chosen are taken out of its list
  void Add(ObservationEpoch& epoch);
  /// See StationAnalysis::AddRecords.
  void AddRecords(const BroadcastRecords& records) { analysis_.AddRecords(records); }
  /// See StationAnalysis::KeepMultipath.
  void KeepMultipath() { analysis_.KeepMultipath(); }
  std::vector<analysis::MultipathBlock> TakeMultipath() { return analysis_.TakeMultipath(); }
  /// Decides what is still open. @return the figures, with the first kMaxEventsKept events
  /// @param changes  of antenna, receiver and marker within the data
  AnalysisReport Finish(std::vector<DescriptionChange> changes);

 private:
  bool IsChosen(SatelliteId satellite) const;
  void PassEvents();
  void PassSeries();

  StationDescription description_;
  analysis::StationAnalysis analysis_;
  EventSink* events_;
  SeriesSink* series_;
  std::array<std::bitset<256>, 26> chosen_;  ///< by letter and number, whatever a byte holds
  bool all_chosen_ = false;
  AnalysisReport report_;
};

/// A report keeps so many events; all of them go to the sink. A receiver in a scintillating sky gives a few
/// thousand a day.
constexpr std::size_t kMaxEventsKept = 20'000;

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_ANALYSIS_RUN_H
