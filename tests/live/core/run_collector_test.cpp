// What a run finds, in the minutes of a station.
#include "host/live/stations/run_collector.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;
using analysis::MultipathBlock;

constexpr SatelliteId kSatellite = {'G', 7};
const SignalCode kSignal = {'1', 'C'};

MultipathBlock BlockAt(std::int64_t minute, std::int64_t second, double squares_m2, Count values) {
  return {kSatellite, kSignal, minute * kMinute_ns + second * 1'000'000'000, squares_m2, values};
}

TEST(RunCollector, PutsMultipathIntoTheMinutesOfItsBlocks) {
  MinuteStore store;
  RunCollector collector(store);
  collector.AddMultipath({BlockAt(100, 0, 7.5, 30), BlockAt(100, 30, 0.25, 10), BlockAt(101, 0, 1, 30)});
  store.CloseUntil(102 * kMinute_ns);
  const auto minutes = store.Whole();
  ASSERT_EQ(minutes.size(), 2U);
  const SignalSums& first = minutes[0]->sums.signals.at({'G', "1C"});
  EXPECT_EQ(first.multipath_values, 40U);
  EXPECT_EQ(first.multipath_square_um2, 7'750'000U);
  EXPECT_EQ(minutes[1]->sums.signals.at({'G', "1C"}).multipath_values, 30U);
}

TEST(RunCollector, AddsMultipathToMinutesThatHaveEnded) {
  MinuteStore store;
  RunCollector collector(store);
  collector.AddMultipath({BlockAt(100, 0, 1, 30)});
  store.CloseUntil(110 * kMinute_ns);
  const auto published = store.Whole();
  collector.AddMultipath({BlockAt(100, 30, 1, 30)});
  EXPECT_EQ(store.Hour().signals.at({'G', "1C"}).multipath_values, 60U);
  EXPECT_EQ(published[0]->sums.signals.at({'G', "1C"}).multipath_values, 30U);
}

TEST(RunCollector, LeavesOutWhatIsNoMultipath) {
  MinuteStore store;
  RunCollector collector(store);
  collector.AddMultipath({BlockAt(100, 0, 1e6 * 30, 30), BlockAt(100, 30, 0.999e6 * 30, 30)});
  store.CloseUntil(101 * kMinute_ns);
  EXPECT_EQ(store.Hour().signals.at({'G', "1C"}).multipath_values, 30U);
}

TEST(RunCollector, AnEpochIsDecidedFiveEpochsLater) {
  MinuteStore store;
  RunCollector collector(store);
  for (int epoch = 0; epoch < 5; ++epoch) collector.AddEpoch(epoch, 7);
  EXPECT_FALSE(collector.NextDecided());
  collector.AddEpoch(5, 7);
  const auto decided = collector.NextDecided();
  ASSERT_TRUE(decided);
  EXPECT_EQ(decided->gps_ns, 0);
  EXPECT_FALSE(collector.NextDecided());
}

}  // namespace
