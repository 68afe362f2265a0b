#include "host/judging/judging_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/judging/run_error.h"
#include "host/output/byte_sink.h"
#include "host/report/json_writer.h"
#include "tests/host/judging/simulated_files.h"

namespace {

using namespace orsolva_host;
using orsolva_test::SettingsOfSimulatedHour;
using orsolva_test::SimulatedFiles;

TEST(JudgingPool, GivesOutcomesInTheOrderOfTheFilesForAnyNumberOfThreads) {
  const SimulatedFiles files;
  const std::vector<std::string> paths = {files.Path("b.rnx"), files.Path("broken.rnx"), files.Path("a.rnx")};
  for (const unsigned threads : {1U, 3U}) {
    JudgingPool pool(paths, SettingsOfSimulatedHour(), {files.Path("nav.rnx")}, {threads, true, {}, {}});
    ASSERT_EQ(pool.Size(), 3U);
    for (std::size_t file = 0; file < 3; ++file) {
      const FileOutcome outcome = pool.Take(file);
      EXPECT_FALSE(outcome.stopped);
      EXPECT_EQ(outcome.report.has_value(), file != 1) << outcome.error;
      EXPECT_EQ(outcome.error.empty(), file != 1);
      if (!outcome.report) continue;
      EXPECT_EQ(outcome.report->run.observation_file, paths[file]);
    }
    const PoolProgress progress = pool.Progress();
    EXPECT_EQ(progress.files_done, 3U);
    EXPECT_EQ(progress.epochs, 240U);
    std::uintmax_t bytes = 0;
    for (const std::string& path : paths) bytes += std::filesystem::file_size(path);
    EXPECT_EQ(progress.bytes, bytes);
  }
}

TEST(JudgingPool, FindsTheNavigationBesideEachFileWhenNoneIsNamed) {
  const SimulatedFiles files;
  const std::string long_name = files.Path("SIMU00ORS_R_20201770000_01H_30S_MO.rnx");
  std::filesystem::rename(files.Path("a.rnx"), long_name);
  std::filesystem::rename(files.Path("nav.rnx"), files.Path("SIMU00ORS_R_20201770000_01H_MN.rnx"));
  JudgingPool pool({long_name}, SettingsOfSimulatedHour(), {});
  const FileOutcome outcome = pool.Take(0);
  ASSERT_TRUE(outcome.report.has_value()) << outcome.error;
  EXPECT_EQ(outcome.report->run.navigation_files,
            std::vector<std::string>{files.Path("SIMU00ORS_R_20201770000_01H_MN.rnx")});
}

TEST(JudgingPool, AnErrorIsNotFollowedByTheNoticeThatSaysTheSame) {
  const SimulatedFiles files;
  std::ifstream all(files.Path("nav.rnx"));
  std::ofstream one(files.Path("one.rnx"));
  // The records of one satellite, which give no position.
  bool header = true, kept = false;
  for (std::string line; std::getline(all, line);) {
    if (!header && line[0] != ' ') kept = line.compare(0, 3, "G01") == 0;
    if (header || kept) one << line << '\n';
    header = header && line.find("END OF HEADER") == std::string::npos;
  }
  one.close();
  JudgingSettings settings = SettingsOfSimulatedHour();
  settings.position.source = PositionSource::kComputed;
  settings.strict = true;
  JudgingPool pool({files.Path("a.rnx")}, settings, {files.Path("one.rnx")});
  EXPECT_EQ(
      pool.Take(0).error,
      files.Path("a.rnx") +
          ": No position could be computed from the observations. Check that the navigation files cover "
          "the epochs, or give the position with --position header or --position X,Y,Z.");
}

TEST(NoticeText, HasALineAndACountOnlyWhereTheySaySomething) {
  EXPECT_EQ(NoticeText("a.rnx", 0, "cut off", 1), "a.rnx: cut off");
  EXPECT_EQ(NoticeText("a.rnx", 7, "cut off", 2), "a.rnx:7: cut off (2 times)");
}

/// Waits in the run of the first file until it is let go.
class Gate : public FileHooks {
 public:
  Gate(std::atomic<bool>& reached, std::atomic<bool>& open) {
    reached.store(true);
    while (!open.load()) std::this_thread::yield();
  }
};

TEST(JudgingPool, CancelEndsFilesUnderWayAndBeginsNoOthers) {
  const SimulatedFiles files;
  std::atomic<bool> reached{false}, open{false};
  PoolOptions options;
  options.threads = 1;
  options.hooks = [&](std::size_t) { return std::make_unique<Gate>(reached, open); };
  JudgingPool pool({files.Path("a.rnx"), files.Path("b.rnx")}, SettingsOfSimulatedHour(),
                   {files.Path("nav.rnx")}, options);
  while (!reached.load()) std::this_thread::yield();
  pool.Cancel();
  open.store(true);
  const FileOutcome outcome = pool.Take(0);
  EXPECT_TRUE(outcome.stopped);
  EXPECT_FALSE(outcome.report.has_value());
  EXPECT_TRUE(pool.WaitForEnd(std::chrono::seconds(60)));
  EXPECT_EQ(pool.Progress().files_done, 1U);
  EXPECT_TRUE(pool.Take(1).stopped);
}

/// Records the report it is given, or refuses it.
class Receiver : public FileHooks {
 public:
  Receiver(std::string& json, bool refuse) : json_(json), refuse_(refuse) {}
  void Finish(const Report& report) override {
    if (refuse_) throw WriteError("no room");
    json_ = WriteJson(report);
  }

 private:
  std::string& json_;
  bool refuse_;
};

TEST(JudgingPool, HooksGetTheReportAndTheirErrorsAreTheFiles) {
  const SimulatedFiles files;
  std::vector<std::string> json(2);
  PoolOptions options;
  options.hooks = [&json](std::size_t file) { return std::make_unique<Receiver>(json[file], file == 1); };
  JudgingPool pool({files.Path("a.rnx"), files.Path("b.rnx")}, SettingsOfSimulatedHour(),
                   {files.Path("nav.rnx")}, options);
  const FileOutcome good = pool.Take(0);
  ASSERT_TRUE(good.report.has_value()) << good.error;
  EXPECT_EQ(json[0], WriteJson(*good.report));
  const FileOutcome refused = pool.Take(1);
  EXPECT_FALSE(refused.report.has_value());
  EXPECT_EQ(refused.error, "no room");
}

TEST(JudgingPool, WhatMakingHooksThrowsIsTheErrorOfTheFile) {
  const SimulatedFiles files;
  PoolOptions options;
  options.hooks = [](std::size_t) -> std::unique_ptr<FileHooks> { throw WriteError("no folder"); };
  JudgingPool pool({files.Path("a.rnx")}, SettingsOfSimulatedHour(), {files.Path("nav.rnx")}, options);
  EXPECT_EQ(pool.Take(0).error, "no folder");
}

}  // namespace
