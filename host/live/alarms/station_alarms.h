// Which figures raise which alarms of a station; docs/user/live.md has the table.
#ifndef ORSOLVA_LIVE_ALARMS_STATION_ALARMS_H
#define ORSOLVA_LIVE_ALARMS_STATION_ALARMS_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/live/alarms/alarm_set.h"
#include "host/live/alarms/limits.h"
#include "host/live/alarms/message_watch.h"
#include "host/live/live_state.h"
#include "host/live/windows/epoch_counter.h"
#include "host/live/windows/strength_watch.h"

namespace orsolva_host::live {

/// Times are on the GPS time scale; events get them as UTC.
class StationAlarms {
 public:
  static constexpr int kMinSatellites = 5;  ///< that a burst, a lack or a drop is judged by

  StationAlarms(std::string station, const Limits& limits, AlarmSet::Report report)
      : limits_(limits), alarms_(std::move(station), std::move(report)) {}

  // data_gap

  /// Seconds without an epoch from which it is a gap.
  double GapLimit(double interval_s) const;
  /// @param silent_s  since the last epoch, or since the start  @param problem  why there is no connection
  void Silence(double silent_s, double interval_s, bool any_epoch, const std::string& problem,
               std::int64_t now_ns);
  void EpochCame(std::int64_t now_ns);

  // by epoch

  void Satellites(const EpochCounter::Presence& all, const std::map<char, EpochCounter::Presence>& by_system,
                  double interval_s, std::int64_t now_ns);
  void Strengths(const std::vector<BandDeparture>& bands, double interval_s, std::int64_t now_ns);
  /// @param slipped  satellites with a slip or jump in one epoch, of those tracked in it
  void Slips(int slipped, int tracked, double interval_s, std::int64_t now_ns);

  // by minute

  void Latency(std::optional<double> median_s, std::int64_t now_ns);
  void Frames(Count frames, Count crc_errors, std::int64_t now_ns);
  /// @param hour  the last hour @param minutes  whole ones that are in it
  void Hour(const WindowSums& hour, std::size_t minutes, std::int64_t now_ns);
  /// @param age_s  by system, since the last ephemeris came or the start
  void Ephemerides(const std::map<char, double>& age_s, std::int64_t now_ns);
  void Messages(const MessageWatch& watch, std::int64_t now_ns);
  /// Computed position less that of the stream, m; absent while there is none.
  void Distance(std::optional<double> distance_m, std::int64_t now_ns);

  // what the stream says of its station

  void PositionChanged(double distance_m, std::int64_t now_ns);
  void IdentityChanged(const std::string& what, const std::string& before, const std::string& after,
                       std::int64_t now_ns);
  /// Clears changes that are older than an hour.
  void AgeChanges(std::int64_t now_ns);

  bool InGap() const { return alarms_.IsRaised(AlarmKind::kDataGap); }
  std::vector<Alarm> Raised() const { return alarms_.Raised(); }

 private:
  static constexpr std::size_t kMinMinutes = 10;  ///< of an hour that is held against limits

  void HourOfSignal(const SignalKey& key, const SignalSums& sums, std::int64_t now_ns);

  Limits limits_;
  AlarmSet alarms_;
  std::map<std::pair<AlarmKind, std::string>, std::int64_t> changed_ns_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_ALARMS_STATION_ALARMS_H
