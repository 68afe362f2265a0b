#include "host/cli/check_files.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <string_view>

#include "host/cli/console.h"
#include "host/cli/exit_codes.h"
#include "host/cli/parquet_tables.h"
#include "host/cli/request_check.h"
#include "host/judging/inputs.h"
#include "host/judging/judging_pool.h"
#include "host/judging/report_sinks.h"
#include "host/judging/run_error.h"
#include "host/output/byte_sink.h"
#include "host/output/whole_file.h"
#include "host/platform/platform.h"
#include "host/report/earlier_report.h"
#include "host/report/history_profile.h"
#include "host/report/profile.h"
#include "host/rinex/byte_source.h"
#include "host/terminal/appearance.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

/// What the exit code depends on.
struct Tally {
  bool failed = false;
  bool verdict_failed = false;

  void Add(const FileOutcome& outcome) {
    failed = failed || !outcome.error.empty() || !outcome.report;
    if (outcome.report && outcome.report->profile_verdict)
      verdict_failed = verdict_failed || !outcome.report->profile_verdict->passed;
  }
  int ExitCode() const {
    if (failed) return kRunFailed;
    return verdict_failed ? kVerdictFailed : kGood;
  }
};

/// Fills in what depends on the terminal and on the profile.
void CompleteSettings(QcRequest& request) {
  if (!request.compare.empty()) request.settings.compare_with = ReadReports(request.compare);
  constexpr std::string_view kHistory = "history:";
  if (request.profile.compare(0, kHistory.size(), kHistory) == 0) {
    request.settings.history = ReadHistory(request.profile.substr(kHistory.size()));
    request.outputs.profile_title = "the history of each station";
  } else if (!request.profile.empty()) {
    request.settings.profile = LoadProfile(request.profile);
    request.outputs.profile_title = request.settings.profile->title;
  }
  request.outputs.style.colour = UseColours(request.color);
  request.outputs.style.width = TextWidth(request.width);
}

/// Waits for the end of a file and shows the progress meanwhile. @return false when the user interrupts
bool Await(JudgingPool& pool, std::size_t file, Console& console) {
  constexpr std::chrono::milliseconds kTick(100);
  while (!pool.Wait(file, kTick)) {
    if (InterruptExitCode() != 0) return false;
    console.ShowProgress(pool.Progress());
  }
  return InterruptExitCode() == 0;
}

/// After an interrupt a run may wait for input that never comes, such as a pipe nobody writes to. Then the
/// program ends without it.
void LeaveIfStuck(JudgingPool& pool, Console& console) {
  constexpr std::chrono::milliseconds kPatience(2000);
  pool.Cancel();
  console.Finish();
  if (pool.WaitForEnd(kPatience)) return;
  RemoveUnfinishedFiles();
  std::_Exit(InterruptExitCode());
}

std::vector<std::string> AllFilesOf(const RunInputs& inputs) {
  std::vector<std::string> files;
  for (const JoinedFiles& joined : inputs.joined) files.insert(files.end(), joined.begin(), joined.end());
  return files.empty() ? inputs.observations : files;
}

int ProcessFiles(const QcRequest& request, const RunInputs& inputs) {
  const std::vector<std::string>& files = inputs.observations;
  Console console(files, AllFilesOf(inputs), request.outputs.quiet, request.verbose);
  ReportSinks sinks(request.outputs, files);
  const PoolOptions options{request.jobs, console.ShowsProgress(), inputs.joined,
                            [&sinks](std::size_t file) { return sinks.HooksOf(file); }};
  JudgingPool pool(files, request.settings, inputs.navigation, options);
  Tally tally;
  for (std::size_t file = 0; file < files.size(); ++file) {
    if (!Await(pool, file, console)) {
      LeaveIfStuck(pool, console);
      return InterruptExitCode();
    }
    const FileOutcome outcome = pool.Take(file);
    if (outcome.nobody_reads) throw ClosedPipe();
    console.LogResult(file, outcome);
    sinks.Add(file, outcome);
    tally.Add(outcome);
  }
  console.Finish();
  sinks.Finish();
  return tally.ExitCode();
}

/// A mistyped name of navigation is one mistake, whatever the number of files that it was meant for.
void RequireNavigation(const RunInputs& inputs) {
  for (const std::string& path : inputs.navigation) {
    std::error_code ignored;
    const auto type = std::filesystem::status(path, ignored).type();
    if (path != "-" && type == std::filesystem::file_type::not_found) FailToOpen(path, ENOENT);
  }
}

/// Whether anything but Parquet tables is asked for.
bool AsksForReports(const OutputSettings& outputs) {
  const bool any_file = std::any_of(outputs.files.begin(), outputs.files.end(),
                                    [](const std::string& path) { return !path.empty(); });
  return any_file || !outputs.folder.empty() || !outputs.network.empty();
}

/// The exit code of two runs over the same files.
int Worse(int one, int other) {
  for (const int code : {kInterrupted, kTerminated, kRunFailed, kVerdictFailed}) {
    if (one == code || other == code) return code;
  }
  return kGood;
}

int Run(QcRequest& request) {
  RunInputs inputs = InputsOf(request.paths, request.navigation);
  JoinObservations(JoinRuleOf(request.join), inputs);
  if (inputs.observations.empty()) {
    throw RunError(
        "no observation file among the arguments, only navigation files: name what is to be checked.");
  }
  ValidateRequest(request, inputs);
  RequireNavigation(inputs);
  RecordInterrupts();
  CompleteSettings(request);
  if (request.parquet.empty()) return ProcessFiles(request, inputs);
  const int written = WriteParquet(request, inputs);
  if (InterruptExitCode() != 0 || !AsksForReports(request.outputs)) return written;
  return Worse(written, ProcessFiles(request, inputs));
}

}  // namespace

int CheckFiles(QcRequest& request) {
  try {
    return Run(request);
  } catch (const ValidationError& error) {
    PrintError(error.what());
  } catch (const ProfileError& error) {
    PrintError(error.what());
  } catch (const EarlierReportError& error) {
    PrintError(error.what());
  } catch (const ClosedPipe&) {
    return EndAsByClosedPipe();
  } catch (const std::exception& error) {
    PrintError(ErrorText(error));
    return kRunFailed;
  }
  return kWrongUsage;
}

}  // namespace orsolva_host
