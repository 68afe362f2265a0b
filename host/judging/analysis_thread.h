// The analysis of a run on a thread of its own, while reader and library go on. Epochs, events and figures
// are the same as on one thread, and in the same order.
#ifndef ORSOLVA_JUDGING_ANALYSIS_THREAD_H
#define ORSOLVA_JUDGING_ANALYSIS_THREAD_H

#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "host/judging/analysis_run.h"
#include "host/judging/epoch_queue.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/observation_epoch.h"
#include "host/observation/station_description.h"
#include "host/report/report.h"

namespace orsolva_host {

class AnalysisThread {
 public:
  /// @param run         its sinks are used by the thread, from now until Result returns or this is destroyed
  /// @param own_thread  else, and where the system gives no thread, the calls below do the work
  AnalysisThread(std::unique_ptr<AnalysisRun> run, bool own_thread);
  /// Drops the epochs that still wait.
  ~AnalysisThread();
  AnalysisThread(const AnalysisThread&) = delete;
  AnalysisThread& operator=(const AnalysisThread&) = delete;

  /// @param epoch  the next one; satellites that are not chosen may be taken out of its list
  /// @throws what the analysis of an epoch before, or the sink, threw
  void Add(ObservationEpoch& epoch);
  /// The caller will be away for a few hundred epochs at a time only: fewer need to wait.
  void ExpectSmallBatches() { queue_.Limit(kBlocksOfSmallBatches); }
  /// Gives records that count from the next epoch on. See StationAnalysis::AddRecords.
  void AddRecords(std::shared_ptr<const BroadcastRecords> records);
  /// No epoch follows: the figures are computed while the caller goes on.
  /// @param changes  of antenna, receiver and marker within the data
  void End(std::vector<DescriptionChange> changes);
  /// After End: waits for the figures.
  /// @throws what the analysis or the sink threw
  AnalysisReport Result();

 private:
  static constexpr std::size_t kBlocksOfSmallBatches = 5;

  void Work() noexcept;
  void Join();
  void TakeRecords(std::uint64_t epoch);

  struct Records {
    std::uint64_t epoch = 0;  ///< before which they are given
    std::shared_ptr<const BroadcastRecords> records;
  };

  std::unique_ptr<AnalysisRun> run_;
  EpochQueue queue_;
  std::uint64_t put_ = 0;  ///< epochs; of the caller
  std::mutex records_mutex_;
  std::deque<Records> records_;  ///< that no epoch needed yet
  // Of the thread until it is joined; changes_ is complete before the queue is closed.
  std::vector<DescriptionChange> changes_;
  AnalysisReport report_;
  std::exception_ptr thrown_;
  std::thread thread_;  ///< last: it uses what is above
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_ANALYSIS_THREAD_H
