// Takes what a run finds into the minutes of a station, and slips by epoch for the alarm of bursts.
#ifndef ORSOLVA_LIVE_STATIONS_RUN_COLLECTOR_H
#define ORSOLVA_LIVE_STATIONS_RUN_COLLECTOR_H

#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <vector>

#include "host/live/live_state.h"
#include "host/live/windows/minute_store.h"
#include "host/report/detail_sink.h"
#include "host/report/event_sink.h"

namespace orsolva_host::live {

class RunCollector : public EventSink, public DetailSink {
 public:
  explicit RunCollector(MinuteStore& minutes) : minutes_(&minutes) {}

  /// A slip or jump of a satellite, with each of its signals.
  void Add(const analysis::Event& event) override;

  void Begin(const Time_gbt&, double) override {}
  /// Hands the multipath of a batch over to the minutes.
  void EndBatch() override { FlushMinute(); }
  void Finish(const total_code_qc_result&) override {}
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail&) override {}
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override;

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
  /// Of a signal of the library.
  struct PairSums {
    std::uint8_t system = 0;
    std::uint32_t code = 0;
    Count values = 0;
    Count square_um2 = 0;
  };
  PairSums& SumsOf(const orsolva::PairEpochDetail& detail);
  void FlushMinute();

  MinuteStore* minutes_;
  std::int64_t minute_ns_ = -1;  ///< beginning of the one at hand
  std::vector<PairSums> pairs_;  ///< its multipath
  std::deque<Slips> epochs_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_RUN_COLLECTOR_H
