#include "python/src/judging_calls.h"

#include <nanobind/stl/string.h>

#include "host/judging/selection_texts.h"
#include "python/src/errors.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

std::string TextOf(const nb::dict& arguments, const char* name) {
  return arguments.contains(name) ? nb::cast<std::string>(arguments[name]) : std::string();
}

bool IsOn(const nb::dict& arguments, const char* name) {
  return arguments.contains(name) && nb::cast<bool>(arguments[name]);
}

}  // namespace

Keep KeepFrom(const nb::dict& arguments) {
  Keep keep;
  keep.page = IsOn(arguments, "page");
  keep.series = IsOn(arguments, "series");
  keep.events = IsOn(arguments, "events");
  keep.detail = IsOn(arguments, "detail");
  DetailSelection& rows = keep.detail_selection;
  std::string wrong = ParseSatellites(TextOf(arguments, "detail_satellites"), rows.satellites);
  if (!wrong.empty()) throw ArgumentError("detail_satellites: " + wrong);
  wrong = ParseSignals(TextOf(arguments, "detail_signals"), rows.signals);
  if (!wrong.empty()) throw ArgumentError("detail_signals: " + wrong);
  return keep;
}

KeptRun::KeptRun(const Keep& keep) : keep_(keep), detail_table_(keep.detail_selection) {
  if (keep.page) {
    finished_->page = std::make_unique<DetailCollector>();
    detail_.Add(finished_->page.get());
    series_.Add(&finished_->page_series);
  }
  if (keep.detail) detail_.Add(detail_table_.Sink());
  if (keep.series) series_.Add(&series_columns_);
}

RunObservers KeptRun::Observers(RunMonitor& monitor) {
  RunObservers observers;
  observers.detail = Detail();
  observers.monitor = &monitor;
  observers.events = Events();
  observers.series = Series();
  return observers;
}

std::shared_ptr<FinishedReport> KeptRun::Finished() {
  if (keep_.detail) finished_->detail = detail_table_.TakeRows();
  if (keep_.series) finished_->series = series_columns_.Result();
  if (keep_.events) finished_->all_events = std::move(events_.list);
  return finished_;
}

std::shared_ptr<FinishedReport> JudgedFiles(const JoinedFiles& files, const JudgingSettings& settings,
                                            SharedNavigation& navigation, const Keep& keep,
                                            RunMonitor& monitor) {
  Diagnostics diagnostics;
  KeptRun kept(keep);
  Report report = JudgeFiles(files, settings, navigation, diagnostics, kept.Observers(monitor));
  std::shared_ptr<FinishedReport> finished = kept.Finished();
  finished->report = std::move(report);
  return finished;
}

std::shared_ptr<FinishedReport> JudgedEpochs(EpochSource& source, const JudgingSettings& settings,
                                             SharedNavigation& navigation, Diagnostics& diagnostics,
                                             const Keep& keep, DetailSink* batches, RunMonitor& monitor) {
  KeptRun kept(keep);
  if (batches != nullptr) kept.Add(batches);
  Report report = JudgeEpochs(source, settings, navigation, diagnostics, kept.Observers(monitor));
  std::shared_ptr<FinishedReport> finished = kept.Finished();
  finished->report = std::move(report);
  return finished;
}

}  // namespace orsolva_python
