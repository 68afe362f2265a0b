// A slip while a satellite rises, when nothing is known yet of its clock: it must stay that satellite's.
#include <gtest/gtest.h>

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "host/simulator/presets.h"
#include "host/simulator/scenario_json.h"
#include "tests/truth/analyzed_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::FindPreset;
using orsolva_host::SatelliteId;
using orsolva_host::Scenario;
using orsolva_host::analysis::Event;

constexpr double kRisingSlip_cycles = 100;
constexpr int kEpochsWatched = 30;

Scenario QuietSky(double interval_s, double hours) {
  Scenario scenario;
  ReadScenario(FindPreset("quiet")->json, scenario);
  ReadScenario(fmt::format(R"({{"seed": 16420, "interval_s": {}, "hours": {}}})", interval_s, hours),
               scenario);
  return scenario;
}

struct Rise {
  std::string satellite;
  std::string signal;
  std::int64_t first_epoch = 0;
  std::int64_t epochs = 0;
};

/// Satellites that rise after the first epochs and stay.
/// @param events  gets those that the sky has without any slip
std::vector<Rise> RisesOf(const Scenario& scenario, const RunOptions& options, std::vector<Event>& events) {
  std::map<SatelliteId, Rise> all;
  std::int64_t number = 0;
  const AnalyzedRun run =
      Analyze(scenario, options, [&](const auto&, const orsolva_host::ObservationEpoch& epoch) {
        for (const auto& satellite : epoch.satellites) {
          Rise& rise = all[satellite.id];
          if (rise.epochs++ > 0) continue;
          rise.satellite = NameOf(satellite.id);
          rise.signal = NameOf(epoch.signals[satellite.first_signal].code);
          rise.first_epoch = number;
        }
        ++number;
      });
  events = run.events;
  std::vector<Rise> rises;
  for (const auto& [id, rise] : all) {
    if (rise.first_epoch >= kEpochsWatched && rise.epochs >= kEpochsWatched) rises.push_back(rise);
  }
  return rises;
}

std::string Stated(const Event& event) {
  std::string text = fmt::format("{} {} {}", event.time_ns / orsolva_host::kNanosecondsPerSecond % 86400,
                                 NameOf(event.satellite), NameOf(event.kind));
  for (std::size_t i = 0; i < event.signals.size(); ++i) {
    text += ' ' + NameOf(event.signals[i]);
    if (i < event.sizes.size()) text += fmt::format(" {:g}", event.sizes[i]);
  }
  return text;
}

/// Each satellite that rises slips once, in its epoch `at` (0: the first).
void ExpectTheirSlipsAlone(double interval_s, double hours, int at, bool navigation) {
  Scenario scenario = QuietSky(interval_s, hours);
  RunOptions options;
  options.navigation = navigation;
  std::vector<Event> without_slips;
  const std::vector<Rise> rises = RisesOf(scenario, options, without_slips);
  ASSERT_GE(rises.size(), 3U);
  EXPECT_LE(without_slips.size(), navigation ? 0U : 1U);
  std::vector<std::string> expected;
  for (const Event& event : without_slips) expected.push_back(Stated(event));
  std::string faults;
  for (const Rise& rise : rises) {
    const double at_s = static_cast<double>(rise.first_epoch + at) * interval_s;
    faults +=
        fmt::format(R"({}{{"kind": "slip", "satellite": "{}", "signal": "{}", "size": {}, "at_s": {}}})",
                    faults.empty() ? "" : ", ", rise.satellite, rise.signal, kRisingSlip_cycles, at_s);
    expected.push_back(
        fmt::format("{} {} slip {} {}", at_s, rise.satellite, rise.signal, kRisingSlip_cycles));
  }
  ReadScenario(R"({"faults": [)" + faults + "]}", scenario);
  std::vector<std::string> stated;
  for (const Event& event : Analyze(scenario, options).events) stated.push_back(Stated(event));
  std::sort(expected.begin(), expected.end());
  std::sort(stated.begin(), stated.end());
  EXPECT_EQ(stated, expected) << interval_s << " s, epoch " << at << (navigation ? "" : ", no navigation");
}

TEST(RisingSlips, AreReportedAloneAtThirtySeconds) {
  for (const int at : {1, 2, 3}) ExpectTheirSlipsAlone(30, 2, at, true);
}

TEST(RisingSlips, AreReportedAloneAtOneSecond) {
  for (const int at : {1, 2, 3}) ExpectTheirSlipsAlone(1, 0.5, at, true);
}

TEST(RisingSlips, AreReportedAloneWithoutNavigation) {
  for (const int at : {1, 2, 3}) {
    ExpectTheirSlipsAlone(30, 2, at, false);
    ExpectTheirSlipsAlone(1, 0.5, at, false);
  }
}

TEST(RisingSlips, SatelliteClocksStayWhereManySlip) {
  for (std::uint64_t seed = 16413; seed < 16419; ++seed) {
    Scenario scenario;
    ReadScenario(FindPreset("slips")->json, scenario);
    ReadScenario(fmt::format(R"({{"seed": {}, "hours": 1}})", seed), scenario);
    for (const Event& event : Analyze(scenario).events)
      EXPECT_NE(event.kind, orsolva_host::analysis::EventKind::kSatelliteClock)
          << seed << ' ' << Stated(event);
  }
}

}  // namespace
}  // namespace orsolva_test
