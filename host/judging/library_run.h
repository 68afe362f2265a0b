// One run of the library over the epochs of a source. What it refuses is kept as a reason, not thrown: the
// rest of a report does not depend on it.
#ifndef ORSOLVA_JUDGING_LIBRARY_RUN_H
#define ORSOLVA_JUDGING_LIBRARY_RUN_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/judging/epoch_source.h"
#include "host/judging/settings.h"
#include "host/judging/shared_navigation.h"
#include "host/report/detail_collector.h"
#include "host/report/detail_sink.h"
#include "host/report/navigation_coverage.h"
#include "host/report/report.h"
#include "host/report/run_events.h"
#include "host/rinex/diagnostics.h"
#include "orsolva/session.hpp"

namespace orsolva_host {

class LibraryRun {
 public:
  /// @param detail  notified of every epoch that the library measures; may be null
  LibraryRun(const EpochSource& source, const JudgingSettings& settings, Diagnostics& diagnostics,
             DetailSink* detail);

  /// @param first  of the epochs that follow
  /// @throws RunError when memory is missing
  void Start(const ReadNavigation& navigation, const Time_gbt& first, double interval_s);
  /// Adds records that have come since; none may be given twice. Without effect where the run was refused.
  void AddNavigation(const NavigationSet& set);
  /// Takes a batch in time order. @throws RunError on an internal error of the library
  void Feed(const ObsEpoch_QC_gbt* epochs, std::size_t count);
  /// Whether batches to come may be of any size: the first one taken decides which codes are measured.
  bool KnowsItsCodes() const { return batches_taken_ > 0 || absence_.has_value(); }
  /// Ends the run. @param run  what was read and set; the library's facts are added
  /// @return a report with the library's figures, or with run.library_absence
  /// @throws RunError when memory is missing
  Report Finish(ReportRun run);
  /// What happened to the satellites, after Finish; absent when the library did not judge.
  std::optional<RunEvents> Events() const;

 private:
  void Refuse(std::string id, std::string text);
  void RefuseNavigation(const char* found);
  void RefuseUnfed();
  void KeepPosition();
  bool AnyCovered() const;
  bool Judge(Report& report);

  const EpochSource& source_;
  const JudgingSettings& settings_;
  Diagnostics& diagnostics_;
  DetailCollector events_{DetailCollector::Keep::kFindings};
  DetailFanOut sinks_;
  orsolva::QcDetailObserver* observer_ = &events_;  ///< of the library; sinks_ where there are several
  std::unique_ptr<CoverageCounter> coverage_;
  orsolva::Session session_;
  config_qct config_ = {};
  Time_gbt first_ = {};
  double interval_s_ = 0;
  int batches_taken_ = 0;
  orsolva::StatusCode last_status_ = orsolva::StatusCode::kOk;
  std::optional<LibraryAbsence> absence_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_LIBRARY_RUN_H
