#include "host/judging/judging_pool.h"

#include <exception>
#include <utility>

#include "host/judging/judge_file.h"
#include "host/judging/run_error.h"
#include "host/output/byte_sink.h"

namespace orsolva_host {
namespace {

/// An error with the notices about lost data, which often explain it; not with the one that says the same.
std::string WithUnrepaired(const std::exception& error, const Diagnostics& diagnostics) {
  const auto* run_error = dynamic_cast<const RunError*>(&error);
  std::string text = ErrorText(error);
  for (const Notice& n : diagnostics.Notices()) {
    if (n.recovered || (run_error != nullptr && n.text == run_error->Notice())) continue;
    text += "\n  " + NoticeText(n.file, n.line, n.text, n.count);
  }
  return text;
}

/// Settings of a file among so many.
JudgingSettings SettingsFor(JudgingSettings settings, std::size_t files, unsigned threads) {
  const std::size_t at_once = ThreadsFor(threads, files);
  const bool to_spare = 2 * at_once <= MostThreads(threads);
  settings.analysis_on_own_thread = settings.analysis_on_own_thread && to_spare;
  return settings;
}

}  // namespace

JudgingPool::JudgingPool(std::vector<std::string> files, JudgingSettings settings,
                         std::vector<std::string> navigation, PoolOptions options)
    : files_(std::move(files)),
      settings_(SettingsFor(std::move(settings), files_.size(), options.threads)),
      navigation_(std::move(navigation), settings_.limits),
      options_(std::move(options)),
      monitor_{.count_bytes = options_.count_bytes},
      outcomes_(files_.size()),
      pool_(files_.size(), ThreadsFor(options_.threads, files_.size()),
            [this](std::size_t file) { ProcessFile(file); }) {}

/// Called from any thread.
void JudgingPool::ProcessFile(std::size_t file) {
  FileOutcome& outcome = outcomes_[file];
  Diagnostics diagnostics;
  try {
    const std::unique_ptr<FileHooks> hooks = options_.hooks ? options_.hooks(file) : nullptr;
    const RunObservers observers{hooks ? hooks->Detail() : nullptr, &monitor_,
                                 hooks ? hooks->Events() : nullptr, hooks ? hooks->Series() : nullptr};
    const JoinedFiles files = options_.joined.empty() ? JoinedFiles{files_[file]} : options_.joined[file];
    Report report = JudgeFiles(files, settings_, navigation_, diagnostics, observers);
    if (hooks) hooks->Finish(report);
    if (!report.read_error.empty()) {
      outcome.error = report.read_error + " The report covers what was read before it.";
    }
    outcome.report = std::move(report);
  } catch (const Stopped&) {
    outcome.stopped = true;
  } catch (const ClosedPipe&) {
    outcome.nobody_reads = true;
  } catch (const WriteError& error) {
    outcome.error = error.what();
  } catch (const std::exception& error) {
    outcome.error = WithUnrepaired(error, diagnostics);
  }
}

bool JudgingPool::Wait(std::size_t file, std::chrono::milliseconds longest) {
  try {
    return pool_.Wait(file, longest);
  } catch (const std::exception& error) {
    // Even the error could not be kept, as may happen without memory.
    outcomes_[file] = {std::nullopt, ErrorText(error), false};
    return true;
  }
}

FileOutcome JudgingPool::Take(std::size_t file) {
  constexpr std::chrono::milliseconds kTick(100), kNow(0);
  while (!Wait(file, kTick)) {
    // After Cancel a file that has not begun never will. One may have ended since it was looked at.
    const bool over = monitor_.stop.load() && pool_.WaitForEnd(kNow);
    if (over && !Wait(file, kNow)) return {std::nullopt, {}, true};
  }
  return std::exchange(outcomes_[file], {});
}

void JudgingPool::Cancel() {
  monitor_.stop.store(true);
  pool_.Stop();
}

PoolProgress JudgingPool::Progress() {
  return {pool_.Done(), monitor_.epochs.load(std::memory_order_relaxed),
          monitor_.bytes.load(std::memory_order_relaxed)};
}

}  // namespace orsolva_host
