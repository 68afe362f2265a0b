#include "tests/live/serving/sample_board.h"
#include "host/live/windows/minute_store.h"

#include <cmath>
#include <utility>

namespace orsolva_host::live {
namespace {

constexpr std::int64_t kGpsMinusUtc_ns = 18 * kSecond_ns;
constexpr int kMinutesOfDay = 1440;

SignalSums MinuteOf(int minute, int seed, double strength_db) {
  const double wave = std::sin(0.01 * minute + seed);
  SignalSums sums;
  sums.expected = 600;
  sums.observed = static_cast<Count>(594 + std::lround(5 * wave));
  sums.snr_values = sums.observed;
  sums.snr_milli_db = std::lround(1000.0 * (strength_db + wave)) * static_cast<std::int64_t>(sums.snr_values);
  sums.snr_low_values = sums.observed / 3;
  sums.snr_low_milli_db =
      std::lround(1000.0 * (strength_db - 6)) * static_cast<std::int64_t>(sums.snr_low_values);
  sums.multipath_values = sums.observed;
  sums.multipath_square_um2 =
      static_cast<Count>(std::lround(1e6 * (0.09 + 0.03 * wave))) * sums.multipath_values;
  sums.slips = minute % 97 == seed ? 2 : 0;
  return sums;
}

WindowSums SumsOfMinute(int minute, int seed) {
  WindowSums sums;
  sums.epochs_expected = 60;
  const bool lost = minute / 30 == 7 + seed;
  if (lost) return sums;
  sums.epochs_present = 60;
  sums.messages = 310;
  sums.satellite_epochs = static_cast<Count>(60 * (30 + minute / 90 % 5));
  sums.signals[{'G', "1C"}] = MinuteOf(minute, seed, 44);
  sums.signals[{'G', "2W"}] = MinuteOf(minute, seed, 38);
  sums.signals[{'E', "1X"}] = MinuteOf(minute, seed + 1, 45);
  sums.signals[{'R', "1C"}] = MinuteOf(minute, seed + 2, 43);
  sums.signals[{'C', "2I"}] = MinuteOf(minute, seed + 3, 42);
  for (const auto& [key, signal] : sums.signals) sums.slip_events += signal.slips;
  return sums;
}

void AddMinutes(StationState& station, int seed, std::int64_t now_gps_ns) {
  const std::int64_t end = now_gps_ns / kMinute_ns * kMinute_ns;
  constexpr std::int64_t kLengths_s[] = {60, 3600, 86400};
  for (std::size_t i = 0; i < station.windows.size(); ++i) {
    station.windows[i] = {kLengths_s[i], end - kLengths_s[i] * kSecond_ns, end, {}};
  }
  for (int minute = 0; minute < kMinutesOfDay; ++minute) {
    Minute made = {end - (kMinutesOfDay - minute) * kMinute_ns, SumsOfMinute(minute, seed)};
    for (Window& window : station.windows) {
      if (made.begin_gps_ns >= window.from_gps_ns) window.sums += made.sums;
    }
    for (const auto& [key, sums] : made.sums.signals) station.totals[key].sums += sums;
    station.minutes.push_back(std::make_shared<const Minute>(std::move(made)));
  }
}

void AddStream(StationState& station, std::int64_t now_utc_ns) {
  station.source = "ntrip://caster.example.org:2101/" + station.name;
  station.phase = StreamPhase::kJudging;
  station.connected = true;
  station.published_utc_ns = now_utc_ns;
  station.connected_since_utc_ns = now_utc_ns - 90'000 * kSecond_ns;
  station.connections_total = 3;
  station.bytes_total = 123'456'789;
  station.frames_total = 446'400;
  station.crc_errors_total = 2;
  station.skipped_bytes_total = 17;
  for (const int type : {1006, 1019, 1077, 1087, 1097, 1127}) {
    station.messages[type] = {86'400, 0, 0.4, type < 1070 ? 10.0 : 1.0};
  }
  station.epochs_total = 86'395;
  station.epochs_lost_total = 5;
  station.interval_s = 1;
  station.epoch_gps_ns = now_utc_ns / kSecond_ns * kSecond_ns + kGpsMinusUtc_ns;
  station.latency.counts = {0, 20'000, 60'000, 6'000, 300, 50, 40, 5, 0, 0, 0};
  station.latency.sum_s = 21'600;
  station.latency_s = 0.31;
  station.judging_us_per_epoch = 82.5;
}

void AddReceiver(StationState& station, int seed) {
  station.identity = {seed, "LEIAR25.R4      LEIT", "725001", "SEPT POLARX5", "5.5.0", "3001376", {}};
  station.position_llh = {{47.0 + seed, 7.0 + 2.5 * seed, 400.0}};
  station.systems = {{'G', {9, 10, 9, 25.0}},
                     {'R', {7, 7, 7, 40.0}},
                     {'E', {8, 8, 8, 12.0}},
                     {'C', {10, 11, 10, 33.0}},
                     {'S', {2, std::nullopt, 0, std::nullopt}}};
}

void Raise(LiveBoard& board, StationState& station, Alarm alarm) {
  LiveEvent event;
  event.time_utc_ns = alarm.since_utc_ns;
  event.station = station.name;
  event.kind = alarm.kind;
  event.subject = alarm.subject;
  event.state = LiveEvent::State::kRaised;
  event.severity = alarm.severity;
  event.seen = alarm.seen;
  event.advice = alarm.advice;
  alarm.event_id = board.Add(event).id;
  station.alarms.push_back(std::move(alarm));
}

void Publish(LiveBoard& board, StationState station) {
  board.Publish(std::make_shared<const StationState>(std::move(station)));
}

void AddDisconnected(LiveBoard& board, std::int64_t now_utc_ns) {
  StationState station = SampleStation("GONE", 2, now_utc_ns);
  station.phase = StreamPhase::kWaiting;
  station.connected = false;
  station.connected_since_utc_ns = 0;
  station.problem = "The caster refused user or password (401).";
  station.latency_s.reset();
  Raise(board, station,
        {"data_gap", "", Severity::kBad, now_utc_ns - 300 * kSecond_ns, "No complete epoch for 300 s.",
         "Look at the base's power and its line.", 0});
  Publish(board, std::move(station));
}

void AddAlarmed(LiveBoard& board, std::int64_t now_utc_ns) {
  StationState station = SampleStation("WETZ", 1, now_utc_ns);
  Raise(board, station,
        {"snr_drop", "G 1", Severity::kBad, now_utc_ns - 100 * kSecond_ns,
         "Band 1 is 6.2 dB below the station's own mean over 9 satellites.",
         "One band alone: look for a transmitter nearby.", 0});
  Raise(board, station,
        {"latency", "", Severity::kWarning, now_utc_ns - 50 * kSecond_ns, "Median latency 3.4 s.",
         "Compare with other streams and check the host's clock.", 0});
  Publish(board, std::move(station));
}

void AddWaiting(LiveBoard& board, std::int64_t now_utc_ns) {
  StationState station;
  station.name = "NEWB";
  station.source = "tcp://base.example.org:9000";
  station.phase = StreamPhase::kWaitingForNavigation;
  station.connected = true;
  station.published_utc_ns = now_utc_ns;
  station.bytes_total = 20'000;
  Publish(board, std::move(station));
}

void AddHostile(LiveBoard& board, std::int64_t now_utc_ns) {
  StationState station = SampleStation("</script><img src=x onerror=window.hacked=1>\xff\"\\", 3, now_utc_ns);
  station.identity.receiver = "<b onmouseover=window.hacked=1>RX</b>\xfe";
  Raise(board, station,
        {"multipath", "G 1C", Severity::kWarning, now_utc_ns, "<img src=x onerror=window.hacked=1>", "&amp;",
         0});
  Publish(board, std::move(station));
}

}  // namespace

StationState SampleStation(const std::string& name, int seed, std::int64_t now_utc_ns) {
  StationState station;
  station.name = name;
  AddStream(station, now_utc_ns);
  AddReceiver(station, seed);
  AddMinutes(station, seed, now_utc_ns + kGpsMinusUtc_ns);
  return station;
}

void FillSampleBoard(LiveBoard& board, std::int64_t now_utc_ns) {
  Publish(board, SampleStation("BERN", 0, now_utc_ns));
  AddAlarmed(board, now_utc_ns);
  AddDisconnected(board, now_utc_ns);
  AddWaiting(board, now_utc_ns);
  AddHostile(board, now_utc_ns);
}

}  // namespace orsolva_host::live
