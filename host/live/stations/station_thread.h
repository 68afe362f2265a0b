// A station's thread: reads its source, reconnects, replays, and publishes.
#ifndef ORSOLVA_LIVE_STATIONS_STATION_THREAD_H
#define ORSOLVA_LIVE_STATIONS_STATION_THREAD_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "host/live/file_writer.h"
#include "host/live/live_board.h"
#include "host/live/settings.h"
#include "host/live/sources/back_off.h"
#include "host/live/sources/byte_budget.h"
#include "host/live/sources/byte_stream.h"
#include "host/live/stations/ephemeris_file.h"
#include "host/live/stations/station_judge.h"

namespace orsolva_host::live {

/// Set by another thread; wakes who waits.
class StopFlag {
 public:
  void Stop();
  bool Stopped() const { return stopped_.load(std::memory_order_relaxed); }
  /// @return whether it was stopped meanwhile
  bool WaitFor(std::chrono::milliseconds time);

 private:
  std::atomic<bool> stopped_{false};
  std::mutex mutex_;
  std::condition_variable changed_;
};

class StationThread {
 public:
  /// @param spec  of settings.source, which is valid @param files  finishes before this is destroyed
  StationThread(StationSettings settings, SourceSpec spec, LiveBoard& board, FileWriter& files);
  /// Stops and joins.
  ~StationThread();

  void Start();
  void Stop() { stop_.Stop(); }
  void Join();
  /// Whether it has ended by itself: a replay is over, or standard input.
  bool Ended() const { return ended_.load(); }
  bool AnyAlarm() const { return any_alarm_.load(); }
  /// Why a replay could not be read; empty when it could. After the end.
  const std::string& Failure() const { return failure_; }

 private:
  void Run();
  void Replay();
  void Follow();
  void FollowOnce(ByteStream& stream, BackOff& back_off);
  void FollowNavigation(const SourceSpec& spec);
  ReadOutcome ReadNavigation(ByteStream& stream, ByteBudget& budget, BackOff& back_off, bool& any_byte);
  void PublishNow();
  void MeasureCost();
  void KeepEphemerides();
  void ReadKeptEphemerides();
  void ReadEphemerisFile();
  void ReadChangedFile();
  ConnectionOptions OptionsOf(MountWishes& wishes) const;
  std::string KeptPath() const;

  std::string failure_;
  StationSettings settings_;
  SourceSpec spec_;
  StationJudge judge_;
  FileWriter* files_;
  StopFlag stop_;
  std::thread thread_, navigation_thread_;
  std::atomic<bool> ended_{false}, any_alarm_{false};
  bool refused_ = false;  ///< the last connection, by the other side
  MountWishes wishes_;    ///< of the stream's mount point
  ByteBudget budget_;
  std::optional<FileWatch> ephemeris_file_;  ///< where the second source of ephemerides is a file
  std::chrono::steady_clock::time_point next_publish_, next_keep_, next_look_;
  std::int64_t cost_from_us_ = 0;
  Count cost_epochs_ = 0;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_STATION_THREAD_H
