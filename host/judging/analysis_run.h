// The analysis over the epochs of a source.
#ifndef ORSOLVA_JUDGING_ANALYSIS_RUN_H
#define ORSOLVA_JUDGING_ANALYSIS_RUN_H

#include <array>
#include <bitset>

#include "host/analysis/station_analysis.h"
#include "host/judging/settings.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/observation_epoch.h"
#include "host/report/event_sink.h"
#include "host/report/report.h"
#include "host/rinex/observation_header.h"

namespace orsolva_host {

class AnalysisRun {
 public:
  /// @param records  may hold nothing
  /// @param sink     gets every event as soon as it is decided; may be null
  AnalysisRun(const JudgingSettings& settings, const ObservationHeader& header,
              const BroadcastRecords& records, EventSink* sink);

  /// Takes the next epoch. @param epoch  satellites that are not chosen are taken out of its list
  void Add(ObservationEpoch& epoch);
  /// Decides what is still open. @return the figures, with the first kMostEventsKept events
  AnalysisReport Finish();

 private:
  void PassEvents();

  analysis::StationAnalysis analysis_;
  EventSink* sink_;
  std::array<std::bitset<100>, 26> chosen_;  ///< by letter and number
  bool all_chosen_ = false;
  AnalysisReport report_;
};

/// A report keeps so many events; all of them go to the sink. A receiver in a scintillating sky gives a few
/// thousand a day.
constexpr std::size_t kMostEventsKept = 20'000;

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_ANALYSIS_RUN_H
