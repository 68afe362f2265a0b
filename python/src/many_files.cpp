#include "python/src/many_files.h"

#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "host/judging/inputs.h"
#include "host/judging/judging_pool.h"
#include "host/judging/run_error.h"
#include "python/src/judging_calls.h"
#include "python/src/settings.h"
#include "python/src/waiting.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

using ReportPtr = std::shared_ptr<FinishedReport>;

/// Keeps what the report of one file needs.
class Hooks : public KeptRun {
 public:
  /// @param kept  gets it at the end
  Hooks(const Keep& keep, ReportPtr& kept) : KeptRun(keep), kept_(kept) {}
  void Finish(const Report& /*report*/) override { kept_ = Finished(); }

 private:
  ReportPtr& kept_;
};

/// Files on several threads; outcomes one by one, in order.
class ManyFiles {
 public:
  ManyFiles(const std::vector<std::string>& paths, const std::vector<std::string>& navigation,
            const std::string& join, const nb::dict& arguments, const nb::dict& kept, unsigned jobs,
            nb::object progress)
      : inputs_(InputsOf(paths, navigation)), keep_(KeepFrom(kept)), progress_(std::move(progress)) {
    JoinObservations(JoinRuleOf(join), inputs_);
    if (inputs_.observations.empty()) throw RunError("no observation file among the paths.");
    const JudgingSettings settings = SettingsFrom(arguments);
    kept_.resize(Size());
    PoolOptions options;
    options.threads = jobs;
    options.joined = inputs_.joined;
    options.hooks = [this](std::size_t file) { return std::make_unique<Hooks>(keep_, kept_[file]); };
    pool_ = std::make_unique<JudgingPool>(inputs_.observations, settings, inputs_.navigation, options);
  }
  ~ManyFiles() {
    const nb::gil_scoped_release release;
    pool_.reset();
  }
  ManyFiles(const ManyFiles&) = delete;
  ManyFiles& operator=(const ManyFiles&) = delete;

  std::size_t Size() const { return inputs_.observations.size(); }
  /// (file, report or None, error). @throws nanobind::stop_iteration after the last
  nb::tuple Next();

 private:
  RunInputs inputs_;
  Keep keep_;
  std::vector<ReportPtr> kept_;  ///< by file, until it is handed over; of the thread that judges it
  nb::object progress_;
  std::unique_ptr<JudgingPool> pool_;
  std::mutex mutex_;
  std::size_t next_ = 0;
};

nb::tuple ManyFiles::Next() {
  std::size_t file = 0;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (next_ == Size()) throw nb::stop_iteration();
    file = next_++;
  }
  RunMonitor none;
  const auto wait = [&](int milliseconds) {
    const bool done = pool_->Wait(file, std::chrono::milliseconds(milliseconds));
    none.epochs.store(pool_->Progress().epochs);
    return done;
  };
  try {
    WaitFor(wait, none, progress_);
  } catch (...) {
    pool_->Cancel();
    throw;
  }
  FileOutcome outcome = pool_->Take(file);
  ReportPtr report;
  if (outcome.report) {
    report = std::move(kept_[file]);
    report->report = std::move(*outcome.report);
  }
  return nb::make_tuple(inputs_.observations[file], report, outcome.stopped ? "stopped" : outcome.error);
}

}  // namespace

void BindManyFiles(nb::module_& module) {
  nb::class_<ManyFiles>(module, "ManyFiles", "Files on several threads; orsolva.qc_many is the way to it.")
      .def(nb::init<const std::vector<std::string>&, const std::vector<std::string>&, const std::string&,
                    const nb::dict&, const nb::dict&, unsigned, nb::object>(),
           nb::arg("paths"), nb::arg("navigation"), nb::arg("join"), nb::arg("arguments"), nb::arg("kept"),
           nb::arg("jobs"), nb::arg("progress").none())
      .def("__len__", &ManyFiles::Size)
      .def("next", &ManyFiles::Next);
}

}  // namespace orsolva_python
