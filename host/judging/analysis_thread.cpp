#include "host/judging/analysis_thread.h"

#include <cstddef>
#include <system_error>
#include <utility>

namespace orsolva_host {
namespace {

// Reading is faster than the analysis, which works on while the library measures a batch of 2,880 epochs: in
// less room the reader would wait, and the library with it. An epoch of five systems takes 8 KB.
constexpr std::size_t kMaxBlocks = 16;

}  // namespace

AnalysisThread::AnalysisThread(std::unique_ptr<AnalysisRun> run, bool own_thread)
    : run_(std::move(run)), queue_(kMaxBlocks) {
  if (!own_thread) return;
  try {
    thread_ = std::thread([this] { Work(); });
  } catch (const std::system_error&) {
    // The calls do the work.
  }
}

AnalysisThread::~AnalysisThread() {
  queue_.Abandon();
  if (thread_.joinable()) thread_.join();
}

void AnalysisThread::Work() noexcept {
  try {
    ObservationEpoch epoch;
    for (std::uint64_t taken = 0; queue_.Take(epoch); ++taken) {
      TakeRecords(taken);
      run_->Add(epoch);
    }
    if (!queue_.Abandoned()) report_ = run_->Finish(std::move(changes_));
  } catch (...) {
    thrown_ = std::current_exception();
    queue_.Abandon();
  }
}

/// Waits for the end of the thread. @throws what it threw
void AnalysisThread::Join() {
  thread_.join();
  if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
}

void AnalysisThread::Add(ObservationEpoch& epoch) {
  if (!thread_.joinable()) return run_->Add(epoch);
  if (!queue_.Put(epoch)) Join();
  ++put_;
}

void AnalysisThread::AddRecords(std::shared_ptr<const BroadcastRecords> records) {
  if (!thread_.joinable()) return run_->AddRecords(*records);
  const std::lock_guard<std::mutex> lock(records_mutex_);
  records_.push_back({put_, std::move(records)});
}

/// Gives the analysis what was added before an epoch.
void AnalysisThread::TakeRecords(std::uint64_t epoch) {
  const std::lock_guard<std::mutex> lock(records_mutex_);
  for (; !records_.empty() && records_.front().epoch <= epoch; records_.pop_front()) {
    run_->AddRecords(*records_.front().records);
  }
}

void AnalysisThread::End(std::vector<DescriptionChange> changes) {
  changes_ = std::move(changes);
  queue_.Close();
}

AnalysisReport AnalysisThread::Result() {
  if (thread_.joinable()) {
    Join();
    return std::move(report_);
  }
  return run_->Finish(std::move(changes_));
}

}  // namespace orsolva_host
