#include "host/live/serving/state_json.h"

#include <utility>

#include "tests/live/serving/sample_board.h"
#include "tests/support/json_reader.h"

namespace orsolva_host::live {
namespace {

using orsolva_test::Json;
constexpr std::int64_t kNow_ns = 1'795'363'200'000'000'000;

TEST(StateJson, StationsComeWorstFirst) {
  LiveBoard board;
  FillSampleBoard(board, kNow_ns);
  const Json json = Json::parse(NetworkJson(board.Stations(), {kNow_ns, 4}));
  const Json& stations = json.at("stations");
  ASSERT_EQ(stations.size(), 5U);
  const char* expected[] = {"WETZ", "GONE", nullptr, "BERN", "NEWB"};
  for (std::size_t i = 0; i < 5; ++i) {
    if (expected[i] == nullptr) continue;
    EXPECT_EQ(stations.at(i).at("name").get<std::string>(), expected[i]) << i;
  }
}

TEST(StateJson, WhatWasNotMeasuredIsNull) {
  StationState station;
  station.name = "NEWB";
  const Json json = Json::parse(StationJson(station, {kNow_ns, 0}));
  const Json& shown = json.at("station");
  for (const char* member :
       {"latency_s", "interval_s", "epoch_gpst", "connected_since", "receiver", "position_llh"}) {
    EXPECT_TRUE(shown.at(member).is_null()) << member;
  }
  EXPECT_TRUE(shown.at("windows").at(1).at("from_gpst").is_null());
  EXPECT_TRUE(shown.at("windows").at(1).at("completeness_ratio").is_null());
  EXPECT_EQ(shown.at("minutes").at("begin_gps_ms").size(), 0U);
}

TEST(StateJson, MinutesAreColumnsOfOneLength) {
  const Json json = Json::parse(StationJson(SampleStation("BERN", 0, kNow_ns), {kNow_ns, 0}));
  const Json& minutes = json.at("station").at("minutes");
  for (const char* column : {"begin_gps_ms", "epochs_expected", "epochs_present", "crc_errors", "slip_events",
                             "satellites", "completeness_ratio"}) {
    EXPECT_EQ(minutes.at(column).size(), 1440U) << column;
  }
  EXPECT_EQ(minutes.at("signals").size(), 5U);
  // A lost minute has no figure.
  EXPECT_EQ(minutes.at("epochs_present").at(210).get<int>(), 0);
  EXPECT_TRUE(minutes.at("completeness_ratio").at(210).is_null());
  EXPECT_TRUE(minutes.at("signals").at(0).at("snr_dbhz").at(210).is_null());
  EXPECT_TRUE(minutes.at("signals").at(0).at("snr_dbhz").at(209).is_number());
}

TEST(StateJson, TextsThatAreNoUtf8AreReplaced) {
  EXPECT_EQ(ValidUtf8("B\xffN"), "B\xef\xbf\xbdN");
  EXPECT_EQ(ValidUtf8("BERN"), "BERN");
}

}  // namespace
}  // namespace orsolva_host::live
