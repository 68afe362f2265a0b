// Takes what a run finds into the minutes of a station, and slips by epoch for the alarm of bursts.
#ifndef ORSOLVA_LIVE_STATIONS_RUN_COLLECTOR_H
#define ORSOLVA_LIVE_STATIONS_RUN_COLLECTOR_H

#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <vector>

#include "host/analysis/station_analysis.h"
#include "host/live/live_state.h"
#include "host/live/windows/minute_store.h"
#include "host/report/event_sink.h"

namespace orsolva_host::live {

class RunCollector : public EventSink {
 public:
  explicit RunCollector(MinuteStore& minutes) : minutes_(&minutes) {}

  /// A slip or jump of a satellite, with each of its signals.
  void Add(const analysis::Event& event) override;

  /// Multipath of the analysis, into the minutes in which its blocks lie.
  void AddMultipath(const std::vector<analysis::MultipathBlock>& blocks);

  /// An epoch with so many satellites was taken.
  void AddEpoch(std::int64_t gps_ns, int satellites) { epochs_.push_back({gps_ns, satellites, {}}); }
  struct Slips {
    std::int64_t gps_ns = 0;
    int satellites = 0;
    std::set<SatelliteId> slipped;  ///< each once, however many of its signals slip by how many cycles
  };
  /// The oldest epoch whose events are all decided; absent while there is none.
  std::optional<Slips> NextDecided();

 private:
  MinuteStore* minutes_;
  std::deque<Slips> epochs_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_RUN_COLLECTOR_H
