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

}  // namespace
