// Slips around the step from one hour to the next: each counted once, in the minute of its epoch.
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/live/stations/station_judge.h"
#include "tests/live/core/judged_stream.h"
#include "tests/support/sanitized.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;
using namespace orsolva_test;

constexpr double kBorder_s = 3600;  // the streams begin with an hour

/// Slips of all satellites at times.
Scenario SlippingAt(const std::vector<double>& times_s, double hours) {
  Scenario scenario = Short(hours);
  for (const double at_s : times_s) scenario.faults.push_back(FaultOf(FaultKind::kSlip, at_s, 0, 10));
  return scenario;
}

/// Satellites with a slip, by minute from the start; minutes without one are left out.
std::map<int, Count> SlipEvents(const Judged& judged) {
  std::map<int, Count> events;
  for (const auto& minute : judged.state->minutes) {
    if (minute->sums.slip_events == 0) continue;
    events[static_cast<int>((minute->begin_gps_ns - judged.start_ns) / kMinute_ns)] =
        minute->sums.slip_events;
  }
  return events;
}

void Judge(const Scenario& scenario, Judged& judged, const StationSettings& settings = {}) {
  const TestFolder folder;
  JudgeStream(StreamOf(scenario, folder / "data"), settings, nullptr, judged);
}

TEST(HourBorder, ASlipInTheStepOverItIsFoundOnceInTheHourOfItsEpoch) {
  const TestFolder reports;
  StationSettings settings;
  settings.reports_folder = reports / "reports";
  Judged judged;
  Judge(SlippingAt({kBorder_s}, 1.1), judged, settings);
  const auto raised = judged.At("slip_burst", "");
  ASSERT_TRUE(raised) << judged.Text();
  EXPECT_GE(*raised, kBorder_s);
  EXPECT_LE(*raised, kBorder_s + 7);
  EXPECT_EQ(judged.Raised(), 1) << judged.Text();
  const std::map<int, Count> events = SlipEvents(judged);
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events.begin()->first, 60);
  EXPECT_GT(events.begin()->second, 10U);
  // The report of an hour is that of a file of the hour, whose first epochs no step leads to.
  for (const char* name : {"SIMU_2020062500.json", "SIMU_2020062501.json"}) {
    const auto report = nlohmann::json::parse(ReadAll(settings.reports_folder + "/" + name));
    EXPECT_EQ(report["headline"]["cycle_slips"], 0) << name;
  }
}

TEST(HourBorder, WithoutASlipNoneIsFound) {
  Judged judged;
  Judge(Short(1.25), judged);
  EXPECT_EQ(judged.Raised(), 0) << judged.Text();
  EXPECT_TRUE(SlipEvents(judged).empty());
}

/// Before the border, in the first epochs of the new run, and around the end of what the bridge covers.
TEST(HourBorder, SlipsNearItAreFoundOnceAndInTime) {
  const std::vector<std::vector<double>> streams = {
      {3510, 3598, 3680, 4201, 4270}, {3599, 3667, 4200}, {3607, 4202}, {3612, 4204}};
  Count satellites = 0;
  for (std::size_t i = 0; i < streams.size(); ++i) {
    if (!RunsHere(i, 4)) continue;
    const std::vector<double>& times_s = streams[i];
    Judged judged;
    Judge(SlippingAt(times_s, 1.2), judged);
    const std::map<int, Count> events = SlipEvents(judged);
    EXPECT_EQ(events.size(), times_s.size()) << judged.Text();
    EXPECT_EQ(judged.Raised(), static_cast<int>(times_s.size())) << judged.Text();
    for (const double at_s : times_s) {
      const auto minute = events.find(static_cast<int>(at_s / 60));
      ASSERT_NE(minute, events.end()) << at_s;
      if (satellites == 0) satellites = minute->second;  // some rise or set within the quarter of an hour
      EXPECT_NEAR(static_cast<double>(minute->second), static_cast<double>(satellites), 2) << at_s;
      const auto raised = judged.At("slip_burst", "", LiveEvent::State::kRaised, at_s);
      ASSERT_TRUE(raised) << at_s << "\n" << judged.Text();
      EXPECT_LE(*raised, at_s + 7);
    }
  }
}

/// As within an hour.
TEST(HourBorder, ASlipInAGapOverItIsFound) {
  std::vector<Count> slips;
  for (const double at_s : {1800.0, kBorder_s}) {
    Scenario scenario = Short(1.1);
    for (const int satellite : {1, 3, 8}) {
      Fault slip = FaultOf(FaultKind::kSlip, at_s - 10, 0, 25);
      slip.target.system = 'E';
      slip.target.satellite = satellite;
      slip.target.signal = "1C";
      scenario.faults.push_back(slip);
    }
    scenario.faults.push_back(FaultOf(FaultKind::kMissingEpoch, at_s - 20, 40, 0));
    Judged judged;
    Judge(scenario, judged);
    const std::map<int, Count> events = SlipEvents(judged);
    ASSERT_EQ(events.size(), 1U) << judged.Text();
    EXPECT_EQ(events.begin()->first, static_cast<int>((at_s + 20) / 60));
    slips.push_back(events.begin()->second);
  }
  EXPECT_EQ(slips[0], slips[1]);
}

}  // namespace
