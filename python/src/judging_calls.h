// Runs that keep what a report needs afterwards.
#ifndef ORSOLVA_PYTHON_JUDGING_CALLS_H
#define ORSOLVA_PYTHON_JUDGING_CALLS_H

#include <nanobind/nanobind.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/judging/epoch_source.h"
#include "host/judging/judge_file.h"
#include "host/judging/judging_pool.h"
#include "host/judging/settings.h"
#include "host/judging/shared_navigation.h"
#include "python/src/detail_table.h"
#include "python/src/report_binding.h"
#include "python/src/series_columns.h"

namespace orsolva_python {

/// What is kept besides the figures.
struct Keep {
  bool page = true;     ///< what the page and the table of arcs need
  bool series = false;  ///< figures over time
  bool events = false;  ///< every event, not only the first ones
  bool detail = false;  ///< a row per epoch, satellite and signal
  orsolva_host::DetailSelection detail_selection;
};

/// @param arguments  by name, of the types that orsolva/_settings.py makes sure of
/// @throws ArgumentError that names the argument
Keep KeepFrom(const nanobind::dict& arguments);

/// The observers of one run and what they keep. It outlives the run.
class KeptRun : public orsolva_host::FileHooks {
 public:
  explicit KeptRun(const Keep& keep);

  orsolva_host::DetailSink* Detail() override { return detail_.Empty() ? nullptr : &detail_; }
  orsolva_host::EventSink* Events() override { return keep_.events ? &events_ : nullptr; }
  orsolva_host::SeriesSink* Series() override { return series_.Empty() ? nullptr : &series_; }
  /// Takes a further observer, before the run.
  void Add(orsolva_host::DetailSink* sink) { detail_.Add(sink); }
  orsolva_host::RunObservers Observers(orsolva_host::RunMonitor& monitor);

  /// After the run, once. The report itself is the caller's to add.
  std::shared_ptr<FinishedReport> Finished();

 private:
  /// Every event of a run.
  struct EventList : orsolva_host::EventSink {
    std::vector<orsolva_host::analysis::Event> list;
    void Add(const orsolva_host::analysis::Event& event) override { list.push_back(event); }
  };

  Keep keep_;
  std::shared_ptr<FinishedReport> finished_ = std::make_shared<FinishedReport>();
  DetailTable detail_table_;
  orsolva_host::DetailFanOut detail_;
  EventList events_;
  SeriesColumns series_columns_;
  orsolva_host::SeriesFanOut series_;
};

/// @param files  one, or several of one span in the order of their beginnings
/// @throws as orsolva_host::JudgeFiles
std::shared_ptr<FinishedReport> JudgedFiles(const orsolva_host::JoinedFiles& files,
                                            const orsolva_host::JudgingSettings& settings,
                                            orsolva_host::SharedNavigation& navigation, const Keep& keep,
                                            orsolva_host::RunMonitor& monitor);

/// @param diagnostics  those of the source
/// @param batches      notified of every epoch as well; may be null
/// @throws as orsolva_host::JudgeEpochs
std::shared_ptr<FinishedReport> JudgedEpochs(orsolva_host::EpochSource& source,
                                             const orsolva_host::JudgingSettings& settings,
                                             orsolva_host::SharedNavigation& navigation,
                                             orsolva_host::Diagnostics& diagnostics, const Keep& keep,
                                             orsolva_host::DetailSink* batches,
                                             orsolva_host::RunMonitor& monitor);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_JUDGING_CALLS_H
