// Limits of single figures.
#include "host/live/alarms/station_alarms.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orsolva_host::live;

SignalSums WithMultipath(Count milli_m) {
  SignalSums sums;
  sums.multipath_values = 1000;
  sums.multipath_square_um2 = 1000 * milli_m * milli_m;
  return sums;
}

std::vector<std::string> RaisedBy(const WindowSums& hour) {
  StationAlarms alarms("S", Limits(), [](const LiveEvent&) { return std::uint64_t{1}; });
  alarms.Hour(hour, 60, 1'800'000'000'000'000'000);
  std::vector<std::string> raised;
  for (const Alarm& alarm : alarms.Raised()) raised.push_back(alarm.kind + " " + alarm.subject);
  return raised;
}

TEST(StationAlarms, MultipathOfLongChipsMayBeTwiceAsLarge) {
  WindowSums hour;
  for (const auto& [system, signal] : std::vector<std::pair<char, std::string>>{
           {'G', "1C"}, {'G', "2W"}, {'R', "1C"}, {'R', "1P"}, {'R', "2C"}, {'R', "3Q"}})
    hour.signals[{system, signal}] = WithMultipath(1001);
  EXPECT_EQ(RaisedBy(hour), (std::vector<std::string>{"multipath G 1C", "multipath G 2W", "multipath R 1P",
                                                      "multipath R 3Q"}));
  for (auto& [key, sums] : hour.signals) sums = WithMultipath(key.system == 'R' ? 2001 : 1000);
  EXPECT_EQ(RaisedBy(hour), (std::vector<std::string>{"multipath R 1C", "multipath R 1P", "multipath R 2C",
                                                      "multipath R 3Q"}));
}

/// Alarms with what they report.
struct Watched {
  explicit Watched(const Limits& limits = {})
      : alarms("S", limits, [this](const LiveEvent& event) {
          texts.push_back(event.kind + " " + event.subject + " " + NameOf(event.state));
          advice = event.advice;
          return static_cast<std::uint64_t>(texts.size());
        }) {}
  std::vector<std::string> texts;
  std::string advice;  ///< of the last event
  StationAlarms alarms;
};

constexpr std::int64_t kNow_ns = 1'800'000'000'000'000'000;

TEST(StationAlarms, ASystemThatIsSwitchedOffIsNoLongerShortOfSatellites) {
  Watched watched;
  const EpochCounter::Presence all = {20, 16}, none = {8, 0}, gps = {12, 12};
  for (int i = 0; i < 12; ++i) watched.alarms.Satellites(all, {{'E', none}, {'G', gps}}, 1, kNow_ns);
  EXPECT_EQ(watched.texts, (std::vector<std::string>{"satellites_few E raised"}));
  watched.alarms.Satellites(gps, {{'G', gps}}, 1, kNow_ns);
  EXPECT_EQ(watched.texts, (std::vector<std::string>{"satellites_few E raised", "satellites_few E cleared"}));
}

TEST(StationAlarms, ASystemThatIsSwitchedOffNeedsNoEphemerides) {
  Watched watched;
  watched.alarms.Ephemerides({{'E', 9000}, {'G', 10}}, kNow_ns);
  watched.alarms.Ephemerides({{'G', 10}}, kNow_ns);
  EXPECT_EQ(watched.texts, (std::vector<std::string>{"ephemeris_old E raised", "ephemeris_old E cleared"}));
}

TEST(StationAlarms, ABandThatIsNoLongerComparedIsNotDown) {
  Watched watched;
  for (int i = 0; i < 12; ++i) watched.alarms.Strengths({{"L2", 6, -9}, {"L5", 6, 0}}, 1, kNow_ns);
  watched.alarms.Strengths({{"L5", 6, 0}}, 1, kNow_ns);
  EXPECT_EQ(watched.texts, (std::vector<std::string>{"snr_drop L2 raised", "snr_drop L2 cleared"}));
}

/// Epochs with a band that is down, until the alarm is raised.
int EpochsUntilRaised(double snr_drop_s, double interval_s) {
  Limits limits;
  limits.snr_drop_s = snr_drop_s;
  Watched watched(limits);
  for (int epochs = 1; epochs <= 20'000; ++epochs) {
    watched.alarms.Strengths({{"L2", 6, -9}}, interval_s, kNow_ns);
    if (!watched.texts.empty()) return epochs;
  }
  return -1;
}

TEST(StationAlarms, ADropLastsItsTimeAtEveryInterval) {
  EXPECT_EQ(EpochsUntilRaised(10, 1), 10);
  EXPECT_EQ(EpochsUntilRaised(300, 1), 300);
  EXPECT_EQ(EpochsUntilRaised(10, 0.02), 500);
  EXPECT_EQ(EpochsUntilRaised(10, 30), 1);
  EXPECT_EQ(EpochsUntilRaised(0, 1), 1);
  EXPECT_EQ(EpochsUntilRaised(1e300, 30), -1);
}

TEST(StationAlarms, ALackOfSatellitesLastsTenSecondsAt50Hz) {
  Watched watched;
  const EpochCounter::Presence none = {8, 0}, all = {8, 8};
  for (int i = 0; i < 499; ++i) watched.alarms.Satellites(none, {}, 0.02, kNow_ns);
  EXPECT_TRUE(watched.texts.empty());
  watched.alarms.Satellites(none, {}, 0.02, kNow_ns);
  EXPECT_EQ(watched.texts.size(), 1U);
  for (int i = 0; i < 499; ++i) watched.alarms.Satellites(all, {}, 0.02, kNow_ns);
  EXPECT_EQ(watched.texts.size(), 1U);
  watched.alarms.Satellites(all, {}, 0.02, kNow_ns);
  EXPECT_EQ(watched.texts, (std::vector<std::string>{"satellites_few  raised", "satellites_few  cleared"}));
}

TEST(StationAlarms, EpochsADayLateMayBeThoseOfARecording) {
  Watched watched;
  for (int i = 0; i < 5; ++i) watched.alarms.Latency(90'000, kNow_ns);
  EXPECT_NE(watched.advice.find("--start"), std::string::npos) << watched.advice;
  Watched late;
  for (int i = 0; i < 5; ++i) late.alarms.Latency(30, kNow_ns);
  EXPECT_EQ(late.advice.find("--start"), std::string::npos) << late.advice;
  EXPECT_NE(late.advice.find("clock"), std::string::npos) << late.advice;
}

}  // namespace
