// What a run over files says on standard error.
#include "host/cli/console.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/host/folder.h"
#include "tests/host/terminal/pseudo_terminal.h"

namespace {

using namespace orsolva_host;

FileOutcome Processed(const std::string& grade = "") {
  FileOutcome outcome;
  outcome.report.emplace();
  if (!grade.empty()) {
    outcome.report->profile_verdict.emplace();
    outcome.report->profile_verdict->grade = grade;
  }
  return outcome;
}

FileOutcome Failed(const std::string& error) {
  FileOutcome outcome;
  outcome.error = error;
  return outcome;
}

/// What logging these outcomes, one per file, prints.
std::string Logged(const std::vector<std::string>& files, const std::vector<FileOutcome>& outcomes,
                   bool quiet, bool verbose) {
  testing::internal::CaptureStderr();
  Console console(files, files, quiet, verbose);
  for (std::size_t i = 0; i < outcomes.size(); ++i) console.LogResult(i, outcomes[i]);
  console.Finish();
  return testing::internal::GetCapturedStderr();
}

TEST(Console, NumbersManyFilesAndGivesTheirGrades) {
  EXPECT_EQ(Logged({"a.rnx", "b.rnx", "c.rnx"},
                   {Processed(), Processed("fair"), Failed("c.rnx: no observations")}, false, false),
            "[1/3] a.rnx: processed\n"
            "[2/3] b.rnx: processed, fair\n"
            "[3/3] c.rnx: failed\n"
            "orsolva: c.rnx: no observations\n");
}

TEST(Console, SaysNothingOfASingleFileThatWasProcessed) {
  EXPECT_EQ(Logged({"a.rnx"}, {Processed()}, false, false), "");
  EXPECT_EQ(Logged({"a.rnx"}, {Processed()}, false, true), "[1/1] a.rnx: processed\n");
}

TEST(Console, SaysOnlyErrorsWhenQuiet) {
  EXPECT_EQ(Logged({"a.rnx", "b.rnx"}, {Processed(), Failed("b.rnx: not there")}, true, true),
            "orsolva: b.rnx: not there\n");
}

TEST(Console, SaysNothingOfAFileThatWasStopped) {
  FileOutcome stopped = Failed("stopped");
  stopped.stopped = true;
  EXPECT_EQ(Logged({"a.rnx", "b.rnx"}, {stopped, stopped}, false, true), "");
}

TEST(Console, NamesNavigationAndNoticesOnRequest) {
  FileOutcome outcome = Processed();
  outcome.report->run.navigation_files = {"brdc\033.rnx"};
  outcome.report->notices.emplace_back();
  outcome.report->notices[0].file = "a.rnx";
  outcome.report->notices[0].text = "a line is too long";
  const std::string text = Logged({"a.rnx"}, {outcome}, false, true);
  EXPECT_EQ(text.find("[1/1] a.rnx: processed\n  navigation: brdc?.rnx\n  notice: "), 0U) << text;
  EXPECT_NE(text.find("a line is too long"), std::string::npos) << text;
}

TEST(Console, WipesTheProgressBeforeALine) {
  const orsolva_test::Folder folder;
  const std::vector<std::string> files = {folder / "a.rnx", "b.rnx"};
  std::ofstream(files[0]) << std::string(100, 'x');
  orsolva_test::PseudoTerminal terminal(STDERR_FILENO, 80);
  Console console(files, files, false, false);
  ASSERT_TRUE(console.ShowsProgress());
  console.ShowProgress({1, 20, 50});
  const std::string progress = terminal.Written();
  EXPECT_EQ(progress.find("\r\033[K[##########----------]  50 %  1/2 files  20 epochs"), 0U) << progress;
  console.LogResult(1, Processed());
  EXPECT_EQ(terminal.Written(), "\r\033[K[2/2] b.rnx: processed\n");
}

TEST(Console, ShowsNoProgressWhenQuiet) {
  const std::vector<std::string> files = {"a.rnx"};
  orsolva_test::PseudoTerminal terminal(STDERR_FILENO, 80);
  Console console(files, files, true, false);
  EXPECT_FALSE(console.ShowsProgress());
  console.ShowProgress({0, 20, 50});
  EXPECT_EQ(terminal.Written(), "");
}

}  // namespace
