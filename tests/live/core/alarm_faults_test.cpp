// Every alarm by a fault that must raise it: within the stated delay, and no other alarm with it. The delays
// measured here are the table of docs/internals/live.md.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/formats/rtcm/bits.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/rtcm/station.h"
#include "host/live/stations/station_judge.h"
#include "tests/live/core/judged_stream.h"
#include "tests/support/kept_table.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;
using namespace orsolva_test;

/// A row of the table.
struct Delay {
  std::string alarm;
  std::string fault;
  double stated_s = 0;
  double measured_s = 0;
};

std::vector<Delay> delays;

/// @param at_s  when the fault began
void HoldDelay(const Judged& judged, const Delay& stated, const std::string& subject, double at_s) {
  const auto found = judged.At(stated.alarm, subject, LiveEvent::State::kRaised, at_s);
  ASSERT_TRUE(found) << stated.alarm << " " << subject << "\n" << judged.Text();
  Delay row = stated;
  row.measured_s = *found - at_s;
  EXPECT_LE(row.measured_s, row.stated_s) << stated.alarm << " " << subject;
  EXPECT_TRUE(judged.At(stated.alarm, subject) == found) << stated.alarm << " before its fault";
  delays.push_back(row);
}

void HoldNoOther(const Judged& judged, const std::vector<std::string>& alarms) {
  for (const LiveEvent& event : judged.events) {
    const bool expected = event.state == LiveEvent::State::kNote ||
                          std::find(alarms.begin(), alarms.end(), event.kind) != alarms.end();
    EXPECT_TRUE(expected) << event.json;
  }
}

void HoldCleared(const Judged& judged, const std::string& kind, const std::string& subject) {
  EXPECT_TRUE(judged.At(kind, subject, LiveEvent::State::kCleared)) << kind << " " << subject << "\n"
                                                                    << judged.Text();
}

/// Gaps, drops, slips and satellites that stay away.
void FaultsOfTheSky() {
  const TestFolder folder;
  Scenario scenario = Short(1.2);
  Fault one_band = FaultOf(FaultKind::kSnrDrop, 2100, 60, 8);
  one_band.target.signal = "1C";
  Fault galileo = FaultOf(FaultKind::kOutage, 3000, 120, 0);
  galileo.target.system = 'E';
  scenario.faults = {FaultOf(FaultKind::kMissingEpoch, 1200, 60, 0),
                     FaultOf(FaultKind::kSnrDrop, 1800, 60, 8), one_band,
                     FaultOf(FaultKind::kSlip, 2500, 0, 10), galileo};
  Judged judged;
  JudgeStream(StreamOf(scenario, folder / "data"), {}, nullptr, judged);
  HoldDelay(judged, {"data_gap", "no epoch for a minute", 7}, "", 1200);
  HoldDelay(judged, {"snr_drop", "all bands fall by 8 dB", 11}, "L1/E1/B1C", 1800);
  HoldDelay(judged, {"slip_burst", "all satellites slip", 7}, "", 2500);
  HoldDelay(judged, {"satellites_few", "no satellite of Galileo", 11}, "E", 3000);
  for (const char* band : {"L1/E1/B1C", "L5/E5a/B2a"}) HoldCleared(judged, "snr_drop", band);
  HoldCleared(judged, "data_gap", "");
  HoldCleared(judged, "slip_burst", "");
  HoldCleared(judged, "satellites_few", "E");
  HoldNoOther(judged, {"data_gap", "snr_drop", "slip_burst", "satellites_few", "messages_missing"});
  for (const LiveEvent& event : judged.events) {
    if (event.kind == "messages_missing") {
      EXPECT_EQ(event.subject, "1097");  // of Galileo
    }
    if (event.kind != "snr_drop" || event.state != LiveEvent::State::kRaised) continue;
    const bool one = judged.SecondsOf(event) > 2000;
    if (one) {
      EXPECT_EQ(event.subject, "L1/E1/B1C");
    }
    EXPECT_EQ(event.advice.find("interference") != std::string::npos, one) << event.json;
  }
  EXPECT_EQ(judged.state->epochs_lost_total, 60U);
}

/// When changes of the stream began.
struct Times {
  std::optional<double> moved_s, renamed_s, last_ephemeris_s;
};

/// Changes messages that the station sends; the observations stay as they are.
std::string ChangedMessage(const std::string& message, double at_s, Times& times) {
  const int type = static_cast<int>(rtcm::BitReader(message).Unsigned(12));
  std::string frame = rtcm::FrameOf(message);
  if (type == 1046 && at_s > 1300) return "";
  if (type == 1046) times.last_ephemeris_s = at_s;
  if (type == 1077 && at_s >= 600 && at_s < 660 && static_cast<int>(at_s) % 10 == 0) frame.back() ^= 1;
  rtcm::StationDescription station;
  if (type == 1033 && at_s > 800 && rtcm::TakeStation(message, station)) {
    if (!times.renamed_s) times.renamed_s = at_s;
    station.receiver = "ANOTHER";
    return rtcm::FrameOf(rtcm::WriteEquipment(station));
  }
  if (type == 1006 && at_s > 800 && rtcm::TakeStation(message, station)) {
    if (!times.moved_s) times.moved_s = at_s;
    (*station.position_m)[0] += 20;
    return rtcm::FrameOf(rtcm::WritePosition(station));
  }
  return frame;
}

void FaultsOfTheStream() {
  const TestFolder folder;
  const std::string stream = StreamOf(Short(0.75), folder / "data");
  Times times;
  StationSettings settings;
  settings.limits.ephemeris_age_s = 600;
  Judged judged;
  JudgeStream(
      stream, settings,
      [&times](const std::string& message, double at_s) { return ChangedMessage(message, at_s, times); },
      judged);
  ASSERT_TRUE(times.moved_s && times.renamed_s && times.last_ephemeris_s);
  HoldDelay(judged, {"crc_errors", "every tenth epoch has a wrong CRC", 61}, "", 600);
  HoldDelay(judged, {"identity_changed", "another receiver in 1033", 1}, "receiver", *times.renamed_s);
  HoldDelay(judged, {"position_moved", "20 m in 1006", 1}, "stated", *times.moved_s);
  HoldDelay(judged, {"position_moved", "the same, against positions from codes", 61}, "computed",
            *times.moved_s);
  HoldDelay(judged, {"messages_missing", "no 1046, which came every 300 s", 961}, "1046",
            *times.last_ephemeris_s);
  HoldDelay(judged, {"ephemeris_old", "no 1046, with a limit of 600 s", 661}, "E", *times.last_ephemeris_s);
  HoldNoOther(judged,
              {"crc_errors", "identity_changed", "position_moved", "messages_missing", "ephemeris_old"});
}

/// A station with a good network for ten minutes, a slow one, a very slow one, and a good one again.
void Latency() {
  const TestFolder folder;
  const std::string stream = StreamOf(Short(0.5), folder / "data");
  Judged judged;
  JudgeLive(
      stream, [](double at_s) { return at_s < 610    ? 1.5
                                       : at_s < 1000 ? 4.0
                                       : at_s < 1300 ? 7.0
                                                     : 1.5; },
      judged);
  HoldDelay(judged, {"latency", "epochs come 4 s after their time, not 1.5 s", 95}, "", 610);
  HoldCleared(judged, "latency", "");
  HoldNoOther(judged, {"latency"});
  std::vector<Severity> raised;
  for (const LiveEvent& event : judged.events) {
    if (event.kind == "latency" && event.state == LiveEvent::State::kRaised) raised.push_back(event.severity);
  }
  EXPECT_EQ(raised, (std::vector<Severity>{Severity::kWarning, Severity::kBad}));
  EXPECT_GE(judged.At("latency", "", LiveEvent::State::kCleared).value_or(0), 1300 + 60);
}

/// Twenty minutes of a clear sky, then something that reflects next to the antenna.
/// @param period_s  in which the multipath turns: 4 pi h sin(e) / wavelength of a reflector 20 m or 2 m away
void Multipath(double period_s, const Delay& stated) {
  const TestFolder folder;
  const std::string clear = StreamOf(Short(0.75), folder / "clear");
  Scenario reflecting = Short(0.75);
  reflecting.errors.multipath_m = {3, 3};
  reflecting.errors.multipath_period_s = period_s;
  rtcm::FrameScanner later;
  later.Append(ReadAll(StreamOf(reflecting, folder / "reflecting")));
  Judged judged;
  JudgeStream(
      clear, {},
      [&later](const std::string& message, double at_s) {
        const std::string other(*later.Next());
        return rtcm::FrameOf(at_s < 1200 ? message : other);
      },
      judged);
  HoldDelay(judged, stated, "G 1C", 1200);
  HoldNoOther(judged, {"multipath", "position_moved"});  // codes off by metres move positions, too
}

/// Half an hour with all signals, then one that is no longer tracked.
void Completeness() {
  const TestFolder folder;
  Scenario scenario = Short(0.75);
  Fault gone = FaultOf(FaultKind::kOutage, 1800, 600, 0);
  gone.target.signal = "5Q";
  gone.target.system = 'E';
  scenario.faults = {gone};
  Judged judged;
  JudgeStream(StreamOf(scenario, folder / "data"), {}, nullptr, judged);
  HoldDelay(judged, {"completeness", "a signal is no longer tracked, after 30 minutes with it", 261}, "E 5Q",
            1800);
  HoldNoOther(judged, {"completeness"});
}

TEST(AlarmFaults, EachRaisesItsAlarmWithinTheStatedDelayAndNoOther) {
  delays.clear();
  FaultsOfTheSky();
  FaultsOfTheStream();
  Latency();
  Multipath(60, {"multipath", "codes with 2.1 m (RMS) of a minute's period, after 20 minutes without", 900});
  Multipath(600, {"multipath", "the same with a period of ten minutes", 900});
  Completeness();
  std::string table = "| alarm | fault | stated, s | measured, s |\n|---|---|---|---|\n";
  for (const std::string& kind : kAlarmKinds) {
    int rows = 0;
    for (const Delay& row : delays) {
      if (row.alarm != kind) continue;
      table += fmt::format("| `{}` | {} | {:.0f} | {:.0f} |\n", row.alarm, row.fault, row.stated_s,
                           row.measured_s);
      ++rows;
    }
    EXPECT_GT(rows, 0) << kind << " has no fault";
  }
  HoldTable(std::string(ORSOLVA_SOURCE_DIR) + "/docs/internals/live.md", "<!-- delays of alarms -->\n",
            "<!-- end of delays -->\n", table);
}

/// The same streams without their faults.
TEST(AlarmFaults, WithoutAFaultNoneIsRaised) {
  const TestFolder folder;
  const std::string stream = StreamOf(Short(1.2), folder / "data");
  Judged replayed;
  JudgeStream(stream, {}, nullptr, replayed);
  EXPECT_EQ(replayed.Raised(), 0) << replayed.Text();
  Judged live;
  JudgeLive(
      stream, [](double) { return 2.0; }, live);
  EXPECT_EQ(live.Raised(), 0) << live.Text();
}

}  // namespace
