// The runs of a station, one after the other: when one begins, what it is given, and what it found.
#ifndef ORSOLVA_LIVE_STATIONS_STATION_RUNS_H
#define ORSOLVA_LIVE_STATIONS_STATION_RUNS_H

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "host/formats/rtcm/station.h"
#include "host/live/settings.h"
#include "host/live/stations/ephemeris_book.h"
#include "host/live/stations/hour_bridge.h"
#include "host/live/stations/hour_run.h"
#include "host/live/stations/run_collector.h"
#include "host/live/windows/minute_store.h"
#include "host/live/windows/sky_view.h"
#include "host/observation/observation_epoch.h"
#include "host/report/event_sink.h"
#include "host/report/report.h"

namespace orsolva_host::live {

class StationRuns : public EventSink {
 public:
  /// All must outlive this.
  StationRuns(const StationSettings& settings, EphemerisBook& book, SkyView& sky, MinuteStore& minutes)
      : settings_(settings), book_(book), sky_(sky), collector_(minutes) {}
  StationRuns(const StationRuns&) = delete;  // runs keep its address
  StationRuns& operator=(const StationRuns&) = delete;

  bool Running() const { return run_ != nullptr; }
  /// Time of the first epoch of the run, or of the latest one.
  std::int64_t BeginTime() const { return begin_ns_; }

  /// Whether a run may begin with an epoch: four satellites have ephemerides, and all that are observed, or a
  /// minute was waited for the others. @param first_ephemeris_ns  when one came first
  bool IsReady(const ObservationEpoch& epoch, std::optional<std::int64_t> first_ephemeris_ns);
  /// @param stated_position_m  of the stream
  void Begin(const ObservationEpoch& epoch, const rtcm::StationDescription& described,
             const std::optional<std::array<double, 3>>& stated_position_m);
  /// @throws std::exception when the run fails
  void Add(ObservationEpoch& epoch);
  /// An event of the run, unless the bridge covers its time.
  void Add(const analysis::Event& event) override;
  /// @throws std::exception when the run fails
  void EndMinute();
  /// Ends the run, if there is one. @throws std::exception when the run fails
  std::optional<Report> End();
  /// After a failure: another run is tried a minute later.
  void Abandon(std::int64_t now_ns);

  /// The times of the stream were wrong: a run may begin at any time. @pre not Running
  void ForgetTimes();

  /// Takes the ephemerides of the book over into the sky, once there are those of four satellites.
  void RefreshSky();
  /// The oldest epoch whose slips are all decided; absent while there is none.
  std::optional<RunCollector::Slips> NextDecided() { return collector_.NextDecided(); }

 private:
  JudgingSettings SettingsOf(const std::optional<std::array<double, 3>>& stated_position_m) const;

  const StationSettings& settings_;
  EphemerisBook& book_;
  SkyView& sky_;
  RunCollector collector_;
  std::unique_ptr<HourRun> run_;
  RecentEpochs recent_;                 ///< of the run, or of the one before
  std::unique_ptr<HourBridge> bridge_;  ///< at the beginning of an hour that follows another
  std::int64_t begin_ns_ = 0;
  std::int64_t no_run_before_ns_ = 0;  ///< after one that failed
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_STATION_RUNS_H
