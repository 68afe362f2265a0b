// One observation file, or any other source of epochs, through the library and the analysis to a report, in
// one pass. This is the way in for programs that are not the command: it reads no arguments and writes
// nothing.
//
//   SharedNavigation navigation({"brdc.rnx"}, settings.limits);
//   Diagnostics diagnostics;
//   const Report report = JudgeFile("station.crx.gz", settings, navigation, diagnostics);
#ifndef ORSOLVA_JUDGING_JUDGE_FILE_H
#define ORSOLVA_JUDGING_JUDGE_FILE_H

#include <string>

#include "host/judging/epoch_source.h"
#include "host/judging/joined_files.h"
#include "host/judging/run_error.h"
#include "host/judging/run_monitor.h"
#include "host/judging/settings.h"
#include "host/judging/shared_navigation.h"
#include "host/report/detail_sink.h"
#include "host/report/event_sink.h"
#include "host/report/report.h"
#include "host/report/series_sink.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// What takes part in one run; each may be null.
struct RunObservers {
  DetailSink* detail = nullptr;   ///< notified of every epoch while the run goes on
  RunMonitor* monitor = nullptr;  ///< counts, and may cancel the run
  /// Gets every event of the analysis. With JudgingSettings::analysis_on_own_thread it is called by that
  /// thread while the caller and `detail` go on, and no more once the run has ended.
  EventSink* events = nullptr;
  /// Gets figures over time as `events` does; without it none are made.
  SeriesSink* series = nullptr;
};

/// Takes the epochs through the analysis one by one and, meanwhile, through the library in batches of 2,880;
/// the first batch decides which signals the library judges. Where the library refuses, as without
/// navigation, the report says why and has the rest. With settings.profile the report has a verdict.
/// @param navigation   the files named; with none, those next to the source are looked for
/// @param diagnostics  those of the source; all notices of the run are added
/// @throws FileError, RunError, EarlierReportError, Stopped, and what the sink throws
Report JudgeEpochs(EpochSource& source, const JudgingSettings& settings, SharedNavigation& navigation,
                   Diagnostics& diagnostics, const RunObservers& observers = {});

/// The same for observation files judged as one span, which OpenJoined joins.
Report JudgeFiles(const JoinedFiles& files, const JudgingSettings& settings, SharedNavigation& navigation,
                  Diagnostics& diagnostics, const RunObservers& observers = {});

/// The same for an observation file; "-" is standard input.
Report JudgeFile(const std::string& observation_file, const JudgingSettings& settings,
                 SharedNavigation& navigation, Diagnostics& diagnostics, const RunObservers& observers = {});

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_JUDGE_FILE_H
