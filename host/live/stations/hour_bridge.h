// Cycle slips in the steps that lead from one hour to the next.
//
// A run of an hour knows nothing of the hour before, so that its figures are those of a file of the hour. The
// bridge is a slip detector that has seen the end of the hour before. It covers the beginning of an hour: its
// events take the place of those of the new run there, until every gap that may still be tested has ended.
#ifndef ORSOLVA_LIVE_STATIONS_HOUR_BRIDGE_H
#define ORSOLVA_LIVE_STATIONS_HOUR_BRIDGE_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "host/analysis/slips/slip_detector.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/observation_epoch.h"
#include "host/report/event_sink.h"

namespace orsolva_host::live {

/// The latest epochs. Their memory is used again.
class RecentEpochs {
 public:
  static constexpr std::size_t kKept = 48;  ///< a detector's start, and what its scales look back on

  void Add(const ObservationEpoch& epoch);
  void Clear() { count_ = next_ = 0; }
  std::size_t Size() const { return count_; }
  /// @param place  0: the oldest
  const ObservationEpoch& At(std::size_t place) const;

 private:
  std::vector<ObservationEpoch> epochs_;
  std::size_t count_ = 0;
  std::size_t next_ = 0;  ///< place of the next one
};

class HourBridge {
 public:
  /// @param before   epochs of the hour before; not empty
  /// @param from_ns  time of the first epoch of the new hour
  HourBridge(const analysis::DetectorOptions& options, const BroadcastRecords& records,
             const RecentEpochs& before, std::int64_t from_ns);

  /// Whether steps from the hour before to an epoch may be tested: it lies within the longest gap.
  static bool CanSpan(const RecentEpochs& before, std::int64_t next_ns);

  /// Takes an epoch of the new hour. @param events  gets those that are covered
  void Add(const ObservationEpoch& epoch, EventSink& events);
  void AddRecords(const BroadcastRecords& records) { detector_.Orbits().Add(records); }
  /// Decides what is open. No epoch may follow.
  void Finish(EventSink& events);

  /// Whether an event of the time is the bridge's.
  bool Covers(std::int64_t time_ns) const { return from_ns_ <= time_ns && time_ns < until_ns_; }
  /// Whether everything that is covered has been decided.
  bool IsOver() const;

 private:
  void Pass(EventSink& events);

  analysis::SlipDetector detector_;
  std::int64_t from_ns_;
  std::int64_t until_ns_ = std::numeric_limits<std::int64_t>::max();  ///< known once it is reached
  int epochs_ = 0;                                                    ///< of the new hour
  int epochs_after_ = 0;                                              ///< from until_ns_ on
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_HOUR_BRIDGE_H
