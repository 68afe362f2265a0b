// The sky: who flies, where, and what the broadcast records say about it.
#include "host/simulator/constellation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "host/simulator/broadcast.h"
#include "host/simulator/sky.h"
#include "host/simulator/surroundings.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using orsolva_test::ScenarioOf;

constexpr double kDegree = 0.017453292519943295;

TEST(Constellation, HasTheNominalNumberOfSatellitesOfEachSystem) {
  std::map<char, int> count;
  std::set<std::pair<char, int>> names;
  for (const NominalOrbit& o : NominalConstellation("GREJC")) {
    ++count[o.system];
    EXPECT_TRUE(names.insert({o.system, o.number}).second) << o.system << o.number;
    EXPECT_LE(o.number, kSystemTable[SystemSlot(o.system)].satellites);
  }
  EXPECT_EQ(count['G'], 31);
  EXPECT_EQ(count['R'], 24);
  EXPECT_EQ(count['E'], 26);
  EXPECT_EQ(count['J'], 4);
  EXPECT_EQ(count['C'], 45);
}

TEST(Constellation, BdsHasAllKindsOfOrbitsInBothGenerations) {
  std::map<std::pair<bool, OrbitKind>, int> count;  // whether BDS-3, kind
  for (const NominalOrbit& o : NominalConstellation("C")) ++count[{o.number >= 19, o.kind}];
  EXPECT_EQ((count[{false, OrbitKind::kGeostationary}]), 5);
  EXPECT_EQ((count[{false, OrbitKind::kInclinedSynchronous}]), 7);
  EXPECT_EQ((count[{false, OrbitKind::kMedium}]), 3);
  EXPECT_EQ((count[{true, OrbitKind::kGeostationary}]), 3);
  EXPECT_EQ((count[{true, OrbitKind::kInclinedSynchronous}]), 3);
  EXPECT_EQ((count[{true, OrbitKind::kMedium}]), 24);
}

TEST(Constellation, GlonassChannelsAreTwelvePairsOfOppositeSatellites) {
  std::map<int, std::vector<int>> slots;
  for (const NominalOrbit& o : NominalConstellation("R")) slots[o.channel].push_back(o.number);
  EXPECT_EQ(slots.size(), 12U);
  for (const auto& [channel, pair] : slots) {
    EXPECT_TRUE(channel >= -7 && channel <= 6) << channel;
    ASSERT_EQ(pair.size(), 2U) << channel;
    EXPECT_EQ(pair[1] - pair[0], 4) << "slots four places apart share a channel";
  }
}

TEST(Constellation, OrbitsKeepTheirHeightsAndLongitudes) {
  const Scenario scenario = ScenarioOf(24, 30);
  const Sky sky(scenario);
  const std::vector<NominalOrbit> orbits = NominalConstellation(scenario.systems);
  ASSERT_EQ(orbits.size(), sky.Satellites().size());
  for (std::size_t i = 0; i < orbits.size(); ++i) {
    double low = 1e9, high = 0, west = 1e9, east = -1e9, north = 0;
    for (double t = 0; t < 86400; t += 900) {
      const SkyState state = sky.StateAt(i, t, t);
      const double* p = state.position_m;
      const double r = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
      const double longitude = std::atan2(p[1], p[0]) / kDegree;
      low = std::min(low, r), high = std::max(high, r);
      west = std::min(west, longitude), east = std::max(east, longitude);
      north = std::max(north, std::asin(p[2] / r) / kDegree);
    }
    const std::string name = SatelliteName(orbits[i].system, orbits[i].number);
    if (orbits[i].kind == OrbitKind::kMedium) {
      EXPECT_TRUE(low > 25.0e6 && high < 30.5e6) << name << ' ' << low << ' ' << high;
      EXPECT_TRUE(north > 53 && north < 66) << name;
    } else {
      EXPECT_TRUE(low > 38.5e6 && high < 45.8e6) << name << ' ' << low << ' ' << high;
      EXPECT_GT(west, 40) << name << ": all of them are above the Asia-Pacific";
    }
    if (orbits[i].kind == OrbitKind::kGeostationary) {
      EXPECT_LT(east - west, 2) << name;
      EXPECT_LT(north, 3) << name;
    } else if (orbits[i].kind == OrbitKind::kInclinedSynchronous) {
      EXPECT_GT(north, 38) << name;
    }
  }
}

/// Reference times of a satellite's records, GPS time, in their order.
std::vector<std::int64_t> ReferencesOf(const NavigationSet& set, char system, int number) {
  std::vector<std::int64_t> times;
  const auto add = [&](const auto& list, std::int64_t shift) {
    for (const auto& e : list) {
      if (e.prn == number) times.push_back(e.toc.time + shift);
    }
  };
  if (system == 'G') add(set.gps, 0);
  if (system == 'J') add(set.qzss, 0);
  if (system == 'E') add(set.galileo, 0);
  if (system == 'C') add(set.bds, kBdsBehindGps_s);
  for (const GloEph_gbt& e : set.glonass) {
    if (system == 'R' && e.prn == number) times.push_back(e.toe.time + LeapSeconds(e.toe.time));
  }
  return times;
}

TEST(Broadcast, RecordsCoverTheSpanInTheCadenceOfEachSystem) {
  Scenario scenario = ScenarioOf(5.3, 30);
  scenario.cadence.gps_s = 3600;
  scenario.cadence.galileo_s = 600;
  scenario.cadence.bds_s = 7200;
  const Sky sky(scenario);
  const std::map<char, std::int64_t> steps = {{'G', 3600}, {'R', 1800}, {'E', 600}, {'J', 3600}, {'C', 7200}};
  const std::int64_t start = scenario.start.time, end = start + 19080;
  for (const SkySatellite& satellite : sky.Satellites()) {
    const auto times = ReferencesOf(sky.Navigation(), satellite.system, satellite.number);
    const std::int64_t step = steps.at(satellite.system);
    ASSERT_GE(times.size(), 3U);
    EXPECT_LE(times.front(), start);
    EXPECT_GE(times.front(), start - 2 * step);
    EXPECT_GE(times.back(), end);
    EXPECT_LE(times.back(), end + 2 * step);
    for (std::size_t i = 1; i < times.size(); ++i) EXPECT_EQ(times[i] - times[i - 1], step);
  }
}

TEST(Broadcast, NeighbouringRecordsDescribeOneOrbitAndOneClock) {
  const Scenario scenario = ScenarioOf(24, 30);
  const Sky sky(scenario);
  const std::map<char, double> steps = {{'G', 7200}, {'R', 1800}, {'E', 3600}, {'J', 3600}, {'C', 3600}};
  for (std::size_t i = 0; i < sky.Satellites().size(); ++i) {
    const char system = sky.Satellites()[i].system;
    const auto times = ReferencesOf(sky.Navigation(), system, sky.Satellites()[i].number);
    for (std::size_t k = 1; k + 1 < times.size(); ++k) {
      // Between two records: by the one before, and by the one after.
      const double middle = static_cast<double>(times[k] - scenario.start.time) + steps.at(system) / 2;
      const SkyState before = sky.StateAt(i, middle, middle - 1), after = sky.StateAt(i, middle, middle + 1);
      for (int axis = 0; axis < 3; ++axis) {
        // Rounded records of 12 decimals; GLONASS velocities count in micrometres a second over 15 minutes.
        EXPECT_NEAR(before.position_m[axis], after.position_m[axis], system == 'R' ? 0.01 : 0.001)
            << system << sky.Satellites()[i].number;
      }
      EXPECT_NEAR(before.clock_s, after.clock_s, 1e-13);
    }
  }
}

TEST(Broadcast, HealthWordsFollowTheFaults) {
  Scenario scenario = ScenarioOf(6, 30);
  Fault always;
  always.kind = FaultKind::kUnhealthy;
  always.target = {'G', 7, ""};
  Fault hour = always;
  hour.target = {'E', 3, ""};
  hour.at_s = 7200;
  hour.duration_s = 3600;
  hour.size = 5;
  Fault system = always;
  system.target = {'J', 0, ""};
  scenario.faults = {always, hour, system};
  const Sky sky(scenario);
  for (const GpsEph_gbt& e : sky.Navigation().gps) EXPECT_EQ(e.svh, e.prn == 7 ? 1 : 0);
  for (const GpsEph_gbt& e : sky.Navigation().qzss) EXPECT_EQ(e.svh, 1);
  int marked = 0;
  for (const GalEph_gbt& e : sky.Navigation().galileo) {
    const double reference_s = static_cast<double>(e.toc.time - scenario.start.time);
    const bool meant = e.prn == 3 && reference_s >= 7200 && reference_s < 10800;
    EXPECT_EQ(e.svh, meant ? 5 : 0);
    marked += meant;
  }
  EXPECT_EQ(marked, 1);
  for (const SkySatellite& s : sky.Satellites()) {
    EXPECT_EQ(s.healthy, !(s.system == 'J' || (s.system == 'G' && s.number == 7))) << s.system << s.number;
  }
}

TEST(Broadcast, TheSkyDoesNotDependOnTheSeed) {
  Scenario a = ScenarioOf(1, 30), b = a;
  b.seed = 99;
  EXPECT_EQ(Sky(a).Navigation().gps[0].M0, Sky(b).Navigation().gps[0].M0);
}

}  // namespace
