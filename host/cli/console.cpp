#include "host/cli/console.h"

#include <cstdio>
#include <filesystem>

#include "host/judging/run_error.h"
#include "host/rinex/diagnostics.h"
#include "host/terminal/progress_line.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

std::uint64_t SizeOf(const std::vector<std::string>& files) {
  std::uint64_t bytes = 0;
  for (const std::string& file : files) {
    std::error_code ignored;
    const auto size = std::filesystem::file_size(file, ignored);
    if (!ignored) bytes += size;
  }
  return bytes;
}

void LogDetails(const Report& report) {
  for (const std::string& navigation : report.run.navigation_files) {
    std::fprintf(stderr, "  navigation: %s\n", Printable(navigation).c_str());
  }
  for (const ReportNotice& n : report.notices) {
    std::fprintf(stderr, "  notice: %s\n", NoticeText(Printable(n.file), n.line, n.text, n.count).c_str());
  }
}

}  // namespace

Console::Console(const std::vector<std::string>& files, const std::vector<std::string>& read, bool quiet,
                 bool verbose)
    : files_(files), quiet_(quiet), verbose_(verbose), status_(!quiet) {
  if (status_.Visible()) bytes_of_ = SizeOf(read);
}

void Console::ShowProgress(const PoolProgress& progress) {
  if (!status_.Visible()) return;
  ProgressState state;
  state.files = files_.size();
  state.files_done = progress.files_done;
  state.epochs = progress.epochs;
  state.bytes = progress.bytes;
  state.bytes_of = bytes_of_;
  state.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
  status_.Show(ProgressLine(state));
}

void Console::LogResult(std::size_t file, const FileOutcome& outcome) {
  if (outcome.stopped) return;
  status_.Clear();
  if (!outcome.error.empty()) {
    // The cause of a failure that many files share is said once, at the end.
    if (files_.size() > 1) {
      failed_.push_back({files_[file], outcome.error});
    } else {
      PrintError(outcome.error);
    }
  }
  if (quiet_) return;
  if (files_.size() > 1 || verbose_) {
    const char* state = outcome.report ? "processed" : "failed";
    const bool graded = outcome.report && outcome.report->profile_verdict;
    const std::string grade = graded ? ", " + Printable(outcome.report->profile_verdict->grade) : "";
    std::fprintf(stderr, "[%zu/%zu] %s: %s%s\n", file + 1, files_.size(), Printable(files_[file]).c_str(),
                 state, grade.c_str());
  }
  if (verbose_ && outcome.report) LogDetails(*outcome.report);
}

void Console::Finish() {
  status_.Clear();
  for (const ErrorGroup& group : GroupedByCause(failed_)) PrintError(TextOf(group));
  failed_.clear();
}

}  // namespace orsolva_host
