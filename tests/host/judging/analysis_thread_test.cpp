// The analysis on a thread of its own gives what it gives on the caller's, and ends as it does.
#include "host/judging/analysis_thread.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/judging/judge_file.h"
#include "host/judging/judging_pool.h"
#include "host/output/byte_sink.h"
#include "host/report/event_table.h"
#include "host/report/json_writer.h"
#include "tests/host/judging/simulated_files.h"

namespace {

using namespace orsolva_host;
using orsolva_test::SettingsOfSimulatedHour;
using orsolva_test::SimulatedFiles;

/// Lists the events it gets, with the thread they come from, or refuses them.
class ListedEvents : public EventSink {
 public:
  explicit ListedEvents(bool refuse = false) : refuse_(refuse) {}
  void Add(const analysis::Event& event) override {
    thread = std::this_thread::get_id();
    if (refuse_) throw WriteError("no room");
    text += EventLine(event, TableForm::kCsv);
  }
  std::string text;
  std::thread::id thread;

 private:
  bool refuse_;
};

JudgingSettings SettingsWith(bool own_thread) {
  JudgingSettings settings = SettingsOfSimulatedHour();
  settings.analysis_on_own_thread = own_thread;
  return settings;
}

/// A file whose reading is disturbed before an epoch.
class DisturbedSource : public EpochSource {
 public:
  DisturbedSource(const std::string& path, int epoch, std::function<void()> disturb)
      : whole_(OpenObservations(path, {}, diagnostics_)), epochs_left_(epoch), disturb_(std::move(disturb)) {}
  const std::string& Name() const override { return whole_->Name(); }
  const ObservationHeader& Header() const override { return whole_->Header(); }
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) override {
    if (epochs_left_-- == 0) disturb_();
    return whole_->Next(epoch, full);
  }
  const std::optional<FileError>& Failure() const override { return whole_->Failure(); }

 private:
  Diagnostics diagnostics_;
  std::unique_ptr<EpochSource> whole_;
  int epochs_left_;
  std::function<void()> disturb_;
};

/// A file with which records come before an epoch.
class SourceWithRecords : public DisturbedSource {
 public:
  SourceWithRecords(const std::string& path, int epoch, std::shared_ptr<const ReadNavigation> records)
      : DisturbedSource(path, epoch, [this] { come_ = true; }), records_(std::move(records)) {}
  std::vector<std::shared_ptr<const ReadNavigation>> NewNavigation() override {
    if (!std::exchange(come_, false)) return {};
    return {records_};
  }

 private:
  std::shared_ptr<const ReadNavigation> records_;
  bool come_ = false;
};

TEST(AnalysisThread, TakesRecordsBeforeTheEpochThatTheyCameWith) {
  const SimulatedFiles files;
  SharedNavigation all({files.Path("nav.rnx")}, {});
  const auto records = all.Get();
  // Satellites with records from the beginning, and the same with one record each until the others come.
  auto few = std::make_shared<ReadNavigation>(*records);
  std::set<SatelliteId> seen;
  std::erase_if(few->broadcast.kepler, [&](const auto& r) { return !seen.insert(r.satellite).second; });
  std::string json[2], csv[2];
  for (const bool own_thread : {false, true}) {
    SourceWithRecords source(files.Path("a.rnx"), 40, records);
    SharedNavigation navigation{std::shared_ptr<const ReadNavigation>(few)};
    Diagnostics diagnostics;
    ListedEvents events;
    json[own_thread] = WriteJson(
        JudgeEpochs(source, SettingsWith(own_thread), navigation, diagnostics, {nullptr, nullptr, &events}));
    csv[own_thread] = events.text;
  }
  EXPECT_EQ(json[true], json[false]);
  EXPECT_EQ(csv[true], csv[false]);
}

TEST(AnalysisThread, GivesTheReportAndTheEventsOfOneThread) {
  const SimulatedFiles files;
  const std::string path = files.WithAHole();
  std::string json[2];
  ListedEvents events[2];
  for (const bool own_thread : {false, true}) {
    SharedNavigation navigation({files.Path("nav.rnx")}, {});
    Diagnostics diagnostics;
    json[own_thread] = WriteJson(JudgeFile(path, SettingsWith(own_thread), navigation, diagnostics,
                                           {nullptr, nullptr, &events[own_thread]}));
  }
  EXPECT_EQ(json[true], json[false]);
  ASSERT_FALSE(events[false].text.empty());
  EXPECT_EQ(events[true].text, events[false].text);
  EXPECT_EQ(events[false].thread, std::this_thread::get_id());
  EXPECT_NE(events[true].thread, std::this_thread::get_id());
}

/// Runs the source to its end, which must be an error of the kind given.
template <class Error>
void ExpectEnd(EpochSource& source, const SimulatedFiles& files, const RunObservers& observers,
               bool own_thread) {
  SharedNavigation navigation({files.Path("nav.rnx")}, {});
  Diagnostics diagnostics;
  EXPECT_THROW(JudgeEpochs(source, SettingsWith(own_thread), navigation, diagnostics, observers), Error);
}

TEST(AnalysisThread, AnErrorOfTheSinkIsTheErrorOfTheRun) {
  const SimulatedFiles files;
  const std::string path = files.WithAHole();
  for (const bool own_thread : {false, true}) {
    ListedEvents refusing(true);
    DisturbedSource source(path, -1, {});
    ExpectEnd<WriteError>(source, files, {nullptr, nullptr, &refusing}, own_thread);
    EXPECT_NE(refusing.thread, std::thread::id());
  }
}

TEST(AnalysisThread, ACancelledRunEndsWithoutFurtherEvents) {
  const SimulatedFiles files;
  const std::string path = files.WithAHole();
  for (const bool own_thread : {false, true}) {
    RunMonitor monitor;
    auto events = std::make_unique<ListedEvents>();
    DisturbedSource source(path, 100, [&] { monitor.stop.store(true); });
    ExpectEnd<Stopped>(source, files, {nullptr, &monitor, events.get()}, own_thread);
    EXPECT_EQ(monitor.epochs.load(), 101U);
    events.reset();  // a sanitizer finds who still uses it
  }
}

TEST(AnalysisThread, ARunThatFailsWhileReadingEndsWithoutFigures) {
  const SimulatedFiles files;
  const std::string path = files.WithAHole();
  for (const bool own_thread : {false, true}) {
    auto events = std::make_unique<ListedEvents>();
    DisturbedSource source(path, 50, [] { throw std::runtime_error("unplugged"); });
    ExpectEnd<std::runtime_error>(source, files, {nullptr, nullptr, events.get()}, own_thread);
    EXPECT_TRUE(events->text.empty());  // the hole comes later
    events.reset();
  }
}

/// Remembers whether the events came on the thread of the run.
class ThreadHooks : public FileHooks {
 public:
  explicit ThreadHooks(bool& own_thread) : own_thread_(own_thread) {}
  EventSink* Events() override { return &events_; }
  void Finish(const Report&) override { own_thread_ = events_.thread != std::this_thread::get_id(); }

 private:
  bool& own_thread_;
  ListedEvents events_;
};

/// Whether files judged at the same time have threads of their own for the analysis.
bool HaveOwnThreads(std::size_t count, unsigned threads) {
  const SimulatedFiles files;
  const std::vector<std::string> paths(count, files.WithAHole());
  const auto own = std::make_unique<bool[]>(count);
  PoolOptions options;
  options.threads = threads;
  options.hooks = [&](std::size_t file) { return std::make_unique<ThreadHooks>(own[file]); };
  JudgingPool pool(paths, SettingsOfSimulatedHour(), {files.Path("nav.rnx")}, options);
  for (std::size_t file = 0; file < count; ++file) EXPECT_TRUE(pool.Take(file).report.has_value());
  for (std::size_t file = 1; file < count; ++file) EXPECT_EQ(own[file], own[0]);
  return own[0];
}

TEST(AnalysisThread, APoolUsesNoMoreThreadsThanItIsGiven) {
  EXPECT_FALSE(HaveOwnThreads(1, 1));
  EXPECT_TRUE(HaveOwnThreads(1, 2));
  EXPECT_FALSE(HaveOwnThreads(2, 2));
  EXPECT_FALSE(HaveOwnThreads(2, 3));
  EXPECT_TRUE(HaveOwnThreads(2, 4));
}

}  // namespace
