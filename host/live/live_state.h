// What the service knows of its stations, as plain data: made by the threads that judge, read by servers.
//
// Times that end in _utc_ns are of the host's clock, nanoseconds since 1970-01-01 UTC; those that end in
// _gps_ns are of the stream, the same on the GPS time scale. Absent values are std::nullopt: nothing was
// measured. Counts named total count from the start of the service and never fall; a new start begins at 0.
#ifndef ORSOLVA_LIVE_LIVE_STATE_H
#define ORSOLVA_LIVE_LIVE_STATE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orsolva_host::live {

using Count = std::uint64_t;

/// What a signal of a system gave in a time, as sums: those of a longer time are sums of these, exactly.
///
/// Strength and multipath are summed as whole numbers, in units that hold every value as the stream gives it
/// or far below its noise, so that the order of adding changes nothing.
struct SignalSums {
  Count expected = 0;  ///< nominal epochs times satellites that are healthy, above the cut-off, and have been
                       ///< observed with the signal (code and phase) within the last 24 hours
  Count observed = 0;  ///< those of them with code and phase
  Count snr_values = 0;           ///< above the cut-off
  std::int64_t snr_milli_db = 0;  ///< sum of C/N0, 0.001 dB-Hz
  Count snr_low_values = 0;       ///< from the cut-off to below 30 degrees
  std::int64_t snr_low_milli_db = 0;
  Count multipath_values = 0;      ///< above the cut-off
  Count multipath_square_um2 = 0;  ///< sum of squares about the moving mean, each block rounded to 1e-6 m^2
  Count slips = 0;        ///< events with this signal: whole or half cycles, within tracking or over a gap
  Count jumps = 0;        ///< the phase is broken by an unknown size
  Count lock_losses = 0;  ///< flags of the receiver: its lock time fell

  SignalSums& operator+=(const SignalSums& other);
  friend bool operator==(const SignalSums&, const SignalSums&) = default;

  std::optional<double> Completeness() const;  ///< observed / expected, 0 to 1
  std::optional<double> SnrDbhz() const;       ///< mean
  std::optional<double> SnrLowDbhz() const;    ///< mean below 30 degrees
  std::optional<double> SnrHighDbhz() const;   ///< mean from 30 degrees on
  std::optional<double> MultipathM() const;    ///< RMS about a moving mean of 630 s; absent below 50 values
};

/// A system letter (G R E C J I S) and a signal as RINEX names it ("1C").
struct SignalKey {
  char system = 'G';
  std::string signal;

  friend bool operator==(const SignalKey& a, const SignalKey& b) = default;
  friend bool operator<(const SignalKey& a, const SignalKey& b) {
    return a.system != b.system ? a.system < b.system : a.signal < b.signal;
  }
};

/// Sums of a time.
struct WindowSums {
  Count epochs_expected = 0;   ///< nominal epochs: present and lost
  Count epochs_present = 0;    ///< with at least one observation
  Count messages = 0;          ///< frames with a correct CRC
  Count crc_errors = 0;        ///< wrong CRC where a frame had to begin
  Count slip_events = 0;       ///< satellites with a slip or jump, an epoch and satellite once
  Count satellite_epochs = 0;  ///< satellites observed, summed over epochs
  std::map<SignalKey, SignalSums> signals;

  WindowSums& operator+=(const WindowSums& other);
  friend bool operator==(const WindowSums&, const WindowSums&) = default;
};

/// A whole minute of GPS time. It does not change once it is published but for events decided a few epochs
/// late, for which a new one takes its place.
struct Minute {
  std::int64_t begin_gps_ns = 0;
  WindowSums sums;
};

/// The last whole minutes up to the same time: 1, 60 or 1440 of them, fewer after a start.
struct Window {
  std::int64_t length_s = 0;                    ///< 60, 3600 or 86400
  std::int64_t from_gps_ns = 0, to_gps_ns = 0;  ///< from <= t < to; both 0 before the first whole minute
  WindowSums sums;
};

enum class Severity : std::uint8_t { kWarning, kBad };
/// "warning" or "bad".
const char* NameOf(Severity severity);

/// "data_gap", "latency", "slip_burst", "snr_drop", "completeness", "multipath", "satellites_few",
/// "ephemeris_old", "messages_missing", "position_moved", "identity_changed" or "crc_errors".
extern const std::vector<std::string> kAlarmKinds;

/// An alarm that is raised now. A kind may be raised for several subjects at once.
struct Alarm {
  std::string kind;     ///< of kAlarmKinds
  std::string subject;  ///< what of the station: "" (all), a system "E", a band "E 1", a signal "G 2W", a
                        ///< message type "1045"
  Severity severity = Severity::kBad;
  std::int64_t since_utc_ns = 0;  ///< raised; of a replay the time of the stream as UTC
  std::string seen;               ///< a sentence with the figures that raised it, the latest
  std::string advice;             ///< what to do, a sentence or two
  std::uint64_t event_id = 0;     ///< of the event that raised it
};

/// The kind of an event: a report or ephemerides could not be written.
inline constexpr char kNotWritten[] = "not_written";

/// An entry of the log of events. Ids begin at 1 and rise by 1 over all stations.
struct LiveEvent {
  std::uint64_t id = 0;
  std::int64_t time_utc_ns = 0;  ///< of the host; of a replay the time of the stream as UTC
  std::string station;
  std::string kind;     ///< of kAlarmKinds, or "connected", "disconnected", "hour", "ended", kNotWritten
                        ///< (a file), "no_ephemerides" (of the second source), "not_judged" (a run failed;
                        ///< another follows)
  std::string subject;  ///< as in Alarm
  /// Of alarms whether it is raised or cleared; kNote for the other kinds.
  enum class State : std::uint8_t { kRaised, kCleared, kNote } state = State::kNote;
  Severity severity = Severity::kWarning;
  std::string seen;    ///< a sentence
  std::string advice;  ///< empty where cleared
  std::string json;    ///< the whole event as one line of JSON, without its end; what --events writes
};
/// "raised", "cleared" or "note".
const char* NameOf(LiveEvent::State state);

/// What a stream is doing.
enum class StreamPhase : std::uint8_t {
  kConnecting,
  kWaiting,               ///< for a time before the next attempt
  kWaitingForNavigation,  ///< data come; fewer than four satellites have ephemerides
  kJudging,
  kEnded,  ///< a replay is over, or the source is refused for good
};
/// "connecting", "waiting", "waiting for navigation", "judging" or "ended".
const char* NameOf(StreamPhase phase);

/// Seconds from the epoch's time to its arrival, counted in bins.
struct LatencyHistogram {
  static constexpr std::array<double, 10> kUpper_s = {0.1, 0.2, 0.5, 1, 2, 3, 5, 10, 30, 60};
  std::array<Count, kUpper_s.size() + 1> counts =
      {};  ///< of each bin alone; at or below its limit; the last: above
  double sum_s = 0;
};

/// What the stream says of its station (1005 to 1008, 1033).
struct StationIdentity {
  std::optional<int> id;  ///< DF003
  std::string antenna;    ///< IGS name with radome; texts are empty when they were not sent
  std::string antenna_serial;
  std::string receiver;
  std::string firmware;
  std::string receiver_serial;
  std::optional<std::array<double, 3>> position_m;  ///< reference point, Earth-centred, Earth-fixed
};

/// Of a message type.
struct MessageState {
  Count total = 0;
  Count damaged = 0;                 ///< of them too short or impossible
  std::optional<double> age_s;       ///< since the last one, by the time of the stream
  std::optional<double> interval_s;  ///< mean over the last minute in which there were some
};

/// Of a system.
struct SystemState {
  int observed = 0;             ///< satellites in the latest epoch
  std::optional<int> expected;  ///< healthy and above the cut-off in it; absent without orbits or position
  int with_ephemeris = 0;       ///< satellites of the latest epoch with a record young enough
  std::optional<double> ephemeris_age_s;  ///< since an ephemeris of the system was received
};

/// Counters of a signal since the start, for metrics.
struct SignalTotals {
  SignalSums sums;
};

/// A station as its thread last published it. Immutable afterwards.
struct StationState {
  std::string name;
  std::string source;   ///< as given, without user, password or query: "ntrip://caster:2101/MOUNT"
  bool replay = false;  ///< of a file: the times of its alarms are those of the stream
  StreamPhase phase = StreamPhase::kConnecting;
  bool connected = false;
  std::string problem;  ///< why it is not connected, a sentence; empty while it is
  std::int64_t published_utc_ns = 0;
  std::int64_t connected_since_utc_ns = 0;  ///< 0 while it is not
  Count connections_total = 0;              ///< established

  Count bytes_total = 0;
  Count frames_total = 0;  ///< with a correct CRC
  Count crc_errors_total = 0;
  Count skipped_bytes_total = 0;
  std::map<int, MessageState> messages;  ///< by type

  Count epochs_total = 0;                    ///< judged, each once
  Count epochs_lost_total = 0;               ///< nominal epochs between two of the stream that did not come
  Count epochs_dropped_total = 0;            ///< duplicate or behind in time
  std::optional<double> interval_s;          ///< nominal
  std::optional<std::int64_t> epoch_gps_ns;  ///< the latest
  LatencyHistogram latency;                  ///< of a live stream; empty for a replay
  std::optional<double> latency_s;           ///< median of the last whole minute

  StationIdentity identity;
  std::optional<std::array<double, 3>>
      position_m;  ///< that the judging uses: given, of the stream, or computed
  std::optional<std::array<double, 3>>
      position_llh;  ///< the same: latitude and longitude in degrees, height in m
  std::map<char, SystemState> systems;
  std::map<SignalKey, SignalTotals> totals;

  std::array<Window, 3> windows;  ///< of a minute, an hour and a day
  /// The whole minutes of the last day, oldest first. Lost minutes are there with expected epochs alone.
  std::vector<std::shared_ptr<const Minute>> minutes;
  std::vector<Alarm> alarms;  ///< bad ones first, then by time

  std::optional<double>
      judging_us_per_epoch;  ///< mean processor time of the station's thread over the last minute
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_LIVE_STATE_H
