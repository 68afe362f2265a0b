#include "python/src/judging_calls.h"

#include "python/src/detail_table.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;

using Judging = std::function<Report(const RunObservers&)>;

std::shared_ptr<FinishedReport> Judged(const Judging& judge, Keep keep, RunMonitor& monitor) {
  auto finished = std::make_shared<FinishedReport>();
  DetailFanOut sinks;
  DetailTable detail;
  if (keep.page) {
    finished->page = std::make_unique<DetailCollector>();
    sinks.Add(finished->page.get());
  }
  if (keep.detail) sinks.Add(detail.Sink());
  RunObservers observers;
  observers.detail = sinks.Empty() ? nullptr : &sinks;
  observers.series = keep.page ? &finished->series : nullptr;
  observers.monitor = &monitor;
  finished->report = judge(observers);
  if (keep.detail) finished->detail = detail.Result();
  return finished;
}

}  // namespace

std::shared_ptr<FinishedReport> JudgedFile(const std::string& path, const JudgingSettings& settings,
                                           SharedNavigation& navigation, Keep keep, RunMonitor& monitor) {
  Diagnostics diagnostics;
  return Judged(
      [&](const RunObservers& observers) {
        return JudgeFile(path, settings, navigation, diagnostics, observers);
      },
      keep, monitor);
}

std::shared_ptr<FinishedReport> JudgedEpochs(EpochSource& source, const JudgingSettings& settings,
                                             SharedNavigation& navigation, Diagnostics& diagnostics,
                                             Keep keep, RunMonitor& monitor) {
  return Judged(
      [&](const RunObservers& observers) {
        return JudgeEpochs(source, settings, navigation, diagnostics, observers);
      },
      keep, monitor);
}

}  // namespace orsolva_python
