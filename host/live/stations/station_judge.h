// One station from the bytes of its stream to what is published of it. It belongs to one thread, knows no
// socket and no clock: times are handed in.
#ifndef ORSOLVA_LIVE_STATIONS_STATION_JUDGE_H
#define ORSOLVA_LIVE_STATIONS_STATION_JUDGE_H

#include <array>
#include <cstdint>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/frame.h"
#include "host/live/alarms/message_watch.h"
#include "host/live/alarms/station_alarms.h"
#include "host/live/file_writer.h"
#include "host/live/live_board.h"
#include "host/live/settings.h"
#include "host/live/stations/ephemeris_book.h"
#include "host/live/stations/station_runs.h"
#include "host/live/windows/epoch_counter.h"
#include "host/live/windows/minute_store.h"
#include "host/live/windows/sky_view.h"
#include "host/live/windows/step_interval.h"
#include "host/live/windows/strength_watch.h"
#include "host/live/windows/tracked_signals.h"

namespace orsolva_host::live {

class StationJudge {
 public:
  /// @param shown_source  without secrets
  /// @param replay        times of arrival are those of the epochs; Take and Tick ignore theirs
  /// @param files         writes reports and outlives what it is given; null: they are written at once
  StationJudge(const StationSettings& settings, std::string shown_source, bool replay, LiveBoard& board,
               FileWriter* files = nullptr);

  // Times now_ns are those of the host on the GPS time scale.

  void Connecting(std::int64_t now_ns);
  void Connected(std::int64_t now_ns);
  /// @param problem  a sentence without secrets @param for_good  no further attempt follows
  void Disconnected(const std::string& problem, bool for_good, std::int64_t now_ns);
  void Take(std::string_view bytes, std::int64_t now_ns);
  /// Time has passed; to be called about once a second.
  void Tick(std::int64_t now_ns);
  /// Judges what is open. Nothing may follow but Publish.
  void Finish(std::int64_t now_ns);
  void Publish(std::int64_t now_ns);

  /// Ephemerides from elsewhere; may be called from another thread. @param records  made from the messages
  void TakeEphemerides(const std::vector<rtcm::EphemerisMessage>& messages, const BroadcastRecords& records);

  /// Why there are none from elsewhere; may be called from another thread. @param problem  without secrets
  void EphemeridesFailed(const std::string& problem);

  /// The same of a file that is kept up to date, by the station's thread.
  void UseFile(const std::vector<rtcm::EphemerisMessage>& messages, const BroadcastRecords& records,
               std::int64_t now_ns);

  /// Those kept from the start before, by the station's thread.
  void UseEphemerides(const std::vector<rtcm::EphemerisMessage>& messages, const BroadcastRecords& records,
                      std::int64_t now_ns) {
    AddEphemerides(messages, records, EphemerisBook::Origin::kStream, now_ns);
  }

  /// Something could not be kept or written; judging goes on. May be called from another thread.
  void NotWritten(const std::string& why, std::int64_t now_ns) { Note(kNotWritten, why, now_ns); }

  /// The time of the latest epoch.
  std::optional<std::int64_t> LatestEpoch() const { return latest_ns_; }
  /// Whether `data_gap` and the like were raised at any time; for the exit code of a replay.
  bool AnyAlarm() const { return any_alarm_; }
  /// Of the station's thread, for the state. @param us  processor time per epoch
  void SetCost(double us) { state_.judging_us_per_epoch = us; }
  Count Epochs() const { return state_.epochs_total; }
  const EphemerisBook& Ephemerides() const { return book_; }
  /// Position of the antenna that is used, degrees and metres; absent while it is not known.
  std::optional<std::array<double, 3>> PlaceForCaster() const {
    if (!sky_.Position()) return std::nullopt;
    return sky_.Geodetic();
  }

 private:
  struct Foreign {
    std::mutex mutex;
    std::vector<rtcm::EphemerisMessage> messages;
    BroadcastRecords records;
    std::string problem;  ///< to be noted
  };

  std::int64_t UtcOf(std::int64_t gps_ns) const;
  std::uint64_t Report(LiveEvent event);
  void Note(const char* kind, std::string seen, std::int64_t now_ns);
  void TakeMessage(std::string_view message, std::int64_t now_ns);
  void NewDecoder(std::optional<std::int64_t> near_ns);
  void TakeOwnEphemerides(std::int64_t now_ns);
  void TakeForeignEphemerides(std::int64_t now_ns);
  std::set<char> AddEphemerides(const std::vector<rtcm::EphemerisMessage>& messages,
                                const BroadcastRecords& records, EphemerisBook::Origin origin,
                                std::int64_t now_ns);
  void NoteStation(std::int64_t now_ns);
  bool IsInOrder(std::int64_t gps_ns, std::int64_t now_ns);
  void ForgetFuture(std::int64_t now_ns);
  void TakeEpoch(ObservationEpoch& epoch, std::int64_t now_ns);
  void FindInterval(std::int64_t gps_ns);
  void CountLost(std::int64_t gps_ns);
  void CountEpoch(const ObservationEpoch& epoch, std::int64_t now_ns);
  void Judge(ObservationEpoch& epoch, std::int64_t now_ns);
  void PassDecided(std::int64_t now_ns);
  void EndMinute(std::int64_t next_ns, std::int64_t now_ns);
  void JudgeMinute(std::int64_t now_ns);
  void EndRun(bool whole, std::int64_t now_ns);
  void PublishHour(const orsolva_host::Report& report, std::int64_t now_ns);
  void WriteReport(const orsolva_host::Report& report, std::int64_t begin_ns, std::int64_t now_ns);
  void RunFailed(const std::exception& error, std::int64_t now_ns);
  void FindPosition(const ObservationEpoch& epoch);
  std::map<char, double> EphemerisAges(std::int64_t now_ns) const;
  void FillInSystems(StationState& state, std::int64_t now_ns);

  StationSettings settings_;
  bool replay_;
  LiveBoard* board_;
  FileWriter* files_;
  StationState state_;  ///< the parts that are kept as they are published
  Foreign foreign_;

  rtcm::FrameScanner frames_;
  rtcm::FrameCounts earlier_frames_;                 ///< of connections before
  std::map<int, Count> earlier_damaged_;             ///< of decoders before, by type
  Count minute_frames_ = 0, minute_crc_errors_ = 0;  ///< totals when the minute began
  std::unique_ptr<rtcm::Decoder> decoder_;
  std::int64_t decoder_since_ns_ = 0;
  rtcm::StationDescription described_;
  std::optional<std::array<double, 3>> stated_position_m_;

  MinuteStore minutes_;
  TrackedSignals signals_;
  EpochCounter counter_;
  StrengthWatch strengths_;
  SkyView sky_;
  EphemerisBook book_;
  std::optional<std::int64_t> first_ephemeris_ns_;
  std::map<char, std::int64_t> last_ephemeris_ns_;  ///< by system, on arrival
  MessageWatch messages_;
  StationAlarms alarms_;
  StationRuns runs_;

  std::optional<std::int64_t> began_ns_;            ///< first time handed in
  std::optional<std::int64_t> latest_ns_;           ///< time of the latest epoch
  std::int64_t arrived_ns_ = 0;                     ///< of the latest epoch
  std::int64_t last_look_ns_ = 0;                   ///< at messages
  StepInterval steps_;                              ///< between epochs
  int out_of_order_ = 0;                            ///< epochs in a row
  ObservationEpoch latest_epoch_;                   ///< of the last whole minute
  std::vector<double> latencies_s_;                 ///< of the minute at hand
  std::vector<std::array<double, 3>> solutions_m_;  ///< the latest, one a minute; or for the position
  bool any_alarm_ = false;
  bool finished_ = false;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_STATION_JUDGE_H
