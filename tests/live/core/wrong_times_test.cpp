// Streams whose times or messages are wrong for a while.
#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "host/formats/rtcm/frame.h"
#include "host/formats/rtcm/rtcm_writer.h"
#include "host/live/live_board.h"
#include "host/live/stations/station_judge.h"
#include "host/live/windows/minute_store.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;

constexpr std::int64_t kDay_ns = 24 * kHour_ns;
/// 2020-06-23 00:00:00, a Tuesday: two days later is the same week.
constexpr std::int64_t kStart_ns = 1'592'870'400 * kSecond_ns;

/// Six satellites of GPS with one signal.
ObservationEpoch EpochAt(std::int64_t time_ns) {
  ObservationEpoch epoch;
  epoch.time_ns = time_ns;
  for (int number = 1; number <= 6; ++number) {
    SignalObservation signal;
    signal.code = {'1', 'C'};
    signal.pseudorange_m = 21e6 + 1e5 * number;
    signal.phase_cycles = signal.pseudorange_m / 0.1903;
    signal.snr_dbhz = 45;
    epoch.satellites.push_back({{'G', static_cast<std::uint8_t>(number)}, epoch.signals.size(), 1});
    epoch.signals.push_back(signal);
  }
  return epoch;
}

/// A connection that is judged as its bytes come.
struct Station {
  Station() : judge(Named(), "simulated", false, board) { judge.Connected(kStart_ns); }
  static StationSettings Named() {
    StationSettings settings;
    settings.name = "S";
    return settings;
  }
  void Send(std::int64_t epoch_ns, std::int64_t now_ns) {
    for (const std::string& message : writer.Write(EpochAt(epoch_ns)))
      judge.Take(rtcm::FrameOf(message), now_ns);
    judge.Tick(now_ns);
  }
  StationState State(std::int64_t now_ns) {
    judge.Publish(now_ns);
    return *board.Station("S");
  }

  LiveBoard board;
  StationJudge judge;
  rtcm::MsmWriter writer{7, 0};
};

TEST(WrongTimes, AfterThirtyEpochsBehindAFutureTheWindowsFollowThem) {
  Station station;
  std::int64_t at_s = 0;
  for (; at_s < 150; ++at_s) station.Send(kStart_ns + at_s * kSecond_ns, kStart_ns + at_s * kSecond_ns);
  for (; at_s < 250; ++at_s)
    station.Send(kStart_ns + at_s * kSecond_ns + 2 * kDay_ns, kStart_ns + at_s * kSecond_ns);
  for (; at_s < 1000; ++at_s) station.Send(kStart_ns + at_s * kSecond_ns, kStart_ns + at_s * kSecond_ns);
  const std::int64_t now_ns = kStart_ns + at_s * kSecond_ns;
  const StationState state = station.State(now_ns);
  EXPECT_EQ(state.epochs_dropped_total, 30U);
  EXPECT_EQ(state.epochs_total, 970U);
  ASSERT_FALSE(state.minutes.empty());
  EXPECT_EQ(state.windows[0].to_gps_ns, kStart_ns + 960 * kSecond_ns);
  EXPECT_EQ(state.windows[0].sums.epochs_present, 60U);
  // From 280 s on; the last whole minute ends at 960 s.
  EXPECT_EQ(state.windows[1].sums.epochs_present, 680U);
  EXPECT_EQ(state.windows[2].sums.epochs_present, 680U);
}

TEST(WrongTimes, AFineIntervalAndALongGapAreCountedByTheMinute) {
  Station station;
  std::int64_t now_ns = kStart_ns;
  for (int i = 0; i < 5; ++i, now_ns += kSecond_ns / 1000) station.Send(now_ns, now_ns);
  const auto begin = std::clock();
  for (int day = 1; day <= 5; ++day) station.Send(now_ns + day * (kDay_ns - kSecond_ns), now_ns);
  const double taken_s = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
  const StationState state = station.State(now_ns);
  const Count lost = static_cast<Count>(5 * (kDay_ns - kSecond_ns) / (kSecond_ns / 1000)) - 4;
  EXPECT_EQ(state.epochs_lost_total, lost);
  EXPECT_EQ(state.windows[2].sums.epochs_expected, 86'400'000U);
  EXPECT_LT(taken_s, 1.0);  // one by one they are 432 million
}

/// 1077 with its type and nothing else.
std::string DamagedMessage() { return std::string("\x43\x50", 2); }

TEST(WrongTimes, ANewDecoderKeepsTheCountOfDamagedMessages) {
  Station station;
  station.judge.Take(rtcm::FrameOf(DamagedMessage()), kStart_ns);
  EXPECT_EQ(station.State(kStart_ns).messages.at(1077).damaged, 1U);
  station.judge.Disconnected("gone", false, kStart_ns);
  station.judge.Connected(kStart_ns + kSecond_ns);  // without an epoch so far: dates may differ
  EXPECT_EQ(station.State(kStart_ns).messages.at(1077).damaged, 1U);
  station.judge.Take(rtcm::FrameOf(DamagedMessage()), kStart_ns + kSecond_ns);
  const StationState state = station.State(kStart_ns);
  EXPECT_EQ(state.messages.at(1077).damaged, 2U);
  EXPECT_EQ(state.messages.at(1077).total, 2U);
}

}  // namespace
