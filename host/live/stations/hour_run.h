// The run of the library and the analysis over an hour of GPS time, as `orsolva qc` makes it of a file of the
// hour: the same records, the same epochs, the same report.
//
// A run lasts an hour so that its memory is bounded and its records are young. Records that come during the
// hour join those of the library; of the analysis they serve the satellites that had records when it began.
#ifndef ORSOLVA_LIVE_STATIONS_HOUR_RUN_H
#define ORSOLVA_LIVE_STATIONS_HOUR_RUN_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/judging/analysis_run.h"
#include "host/judging/epoch_source.h"
#include "host/judging/library_run.h"
#include "host/judging/nominal_interval.h"
#include "host/judging/settings.h"
#include "host/judging/shared_navigation.h"
#include "host/live/live_state.h"
#include "host/report/event_sink.h"
#include "host/report/report.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host::live {

/// The header of a stream; its epochs are pushed.
class PushedSource : public EpochSource {
 public:
  PushedSource(std::string name, ObservationHeader header)
      : name_(std::move(name)), header_(std::move(header)) {}
  const std::string& Name() const override { return name_; }
  const ObservationHeader& Header() const override { return header_; }
  bool Next(ObsEpoch_QC_gbt&, ObservationEpoch&) override { return false; }
  const std::optional<FileError>& Failure() const override { return failure_; }

 private:
  std::string name_;
  ObservationHeader header_;
  std::optional<FileError> failure_;
};

class HourRun {
 public:
  /// @param navigation  known at the beginning @param events  gets those of the analysis as they are decided
  HourRun(const JudgingSettings& settings, std::string name, ObservationHeader header,
          std::shared_ptr<const ReadNavigation> navigation, EventSink& events);

  void Add(ObservationEpoch& epoch);
  /// Hands the epochs since the last call to the library, with records that came since.
  void EndMinute(const ReadNavigation& more);
  /// Multipath judged since the last call; see StationAnalysis::TakeMultipath. Also after Finish.
  std::vector<analysis::MultipathBlock> TakeMultipath() { return analysis_.TakeMultipath(); }
  /// Ends the run; no epoch may follow. Absent where no epoch was judged.
  std::optional<Report> Finish();

 private:
  static constexpr std::size_t kFirstBatch =
      600;  ///< at most; the library takes the signals of the run from it
  static constexpr std::size_t kLaterBatches = 20;  ///< an epoch of a batch takes 22 kB

  void Feed();
  ReportRun Facts() const;

  JudgingSettings settings_;
  PushedSource source_;
  std::shared_ptr<const ReadNavigation> navigation_;
  Diagnostics diagnostics_;
  LibraryRun library_;
  AnalysisRun analysis_;
  std::vector<ObsEpoch_QC_gbt> batch_;  ///< of which the first batched_ are filled
  std::size_t batched_ = 0;
  NominalInterval interval_;
  bool started_ = false;
  std::uint64_t epochs_ = 0;
  Time_gbt first_ = {}, last_ = {};
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_HOUR_RUN_H
