#include "measures/epoch_store.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

namespace orsolva {
namespace {

struct Entry {
  int Code;
  double Pseudorange;
};

QcEpochData Data(Time_gbt time, std::initializer_list<Entry> entries) {
  QcEpochData epoch;
  epoch.Time = time;
  int i = 0;
  for (const Entry& entry : entries) {
    QcSlotSignals& slot = epoch.Slots[i++ / kSignalsPerSlot];
    Signal_QC_gbt signal{};
    signal.code = static_cast<std::uint8_t>(entry.Code);
    signal.pseudorange = entry.Pseudorange;
    signal.phase = 2.0 * entry.Pseudorange;
    slot.Signals[slot.Count++] = signal;
  }
  return epoch;
}

TEST(EpochStore, GivesEpochsInTimeOrderWithSatellitesAscending) {
  EpochStore store;
  for (int number : {3, 9}) {
    for (int t : {100, 130, 160}) store.Add(number, Data({t, 0.0}, {{1, 1.0 * t}}), t != 130);
  }
  store.Add(5, Data({130, 0.0}, {{1, 5.0}}), true);
  store.Arrange();
  ASSERT_EQ(3u, store.Epochs().size());
  EXPECT_EQ(130, store.Epochs()[1].Time.time);
  ASSERT_EQ(3u, store.Epochs()[1].Last - store.Epochs()[1].First);
  const StoredSatellite* satellites = &store.Satellites()[store.Epochs()[1].First];
  EXPECT_EQ(3, satellites[0].Number);
  EXPECT_FALSE(satellites[0].Counting);
  EXPECT_EQ(5, satellites[1].Number);
  EXPECT_TRUE(satellites[1].Counting);
  EXPECT_EQ(9, satellites[2].Number);
  EXPECT_EQ(130.0, store.Observations(satellites[2])->Pseudorange);
  EXPECT_EQ(260.0, store.Observations(satellites[2])->Phase);
}

TEST(EpochStore, KeepsObservationsAscendingByCodeAndTheFirstOfACode) {
  EpochStore store;
  store.Add(1, Data({100, 0.0}, {{20, 1.0}, {3, 2.0}, {15, 3.0}, {3, 4.0}}), true);
  store.Arrange();
  const StoredSatellite& satellite = store.Satellites()[0];
  ASSERT_EQ(3u, satellite.Count);
  const CodeObservation* observations = store.Observations(satellite);
  EXPECT_EQ(3u, observations[0].Code);
  EXPECT_EQ(2.0, observations[0].Pseudorange);
  EXPECT_EQ(15u, observations[1].Code);
  EXPECT_EQ(20u, observations[2].Code);
}

TEST(EpochStore, MakesOneEpochOfTimesWithinAMicrosecondOfOneSecond) {
  EpochStore store;
  store.Add(2, Data({100, 0.5000005}, {{1, 1.0}}), true);
  store.Add(4, Data({100, 0.5}, {{1, 1.0}}), true);
  store.Add(5, Data({100, 0.500001}, {{1, 1.0}}), true);
  store.Add(6, Data({101, -0.5}, {{1, 1.0}}), true);
  store.Arrange();
  ASSERT_EQ(3u, store.Epochs().size());
  EXPECT_EQ(2u, store.Epochs()[0].Last);
  EXPECT_EQ(2, store.Satellites()[0].Number);
  EXPECT_EQ(4, store.Satellites()[1].Number);
}

TEST(EpochStore, JoinsASatelliteListedTwiceInAnEpoch) {
  EpochStore store;
  store.Add(1, Data({100, 0.0}, {{1, 1.0}, {15, 2.0}}), true);
  store.Add(1, Data({100, 0.0}, {{15, 3.0}, {20, 4.0}}), true);
  store.Add(2, Data({100, 0.0}, {{1, 5.0}}), true);
  for (int again = 0; again < 2; ++again) {
    store.Arrange();
    ASSERT_EQ(2u, store.Satellites().size());
    const StoredSatellite& satellite = store.Satellites()[0];
    ASSERT_EQ(3u, satellite.Count);
    EXPECT_EQ(1.0, store.Observations(satellite)[0].Pseudorange);
    EXPECT_EQ(2.0, store.Observations(satellite)[1].Pseudorange);
    EXPECT_EQ(4.0, store.Observations(satellite)[2].Pseudorange);
    EXPECT_EQ(5.0, store.Observations(store.Satellites()[1])[0].Pseudorange);
  }
}

TEST(EpochStore, LeavesOutTimesThatAreNotFiniteAndEmptyEpochs) {
  EpochStore store;
  store.Add(1, Data({100, std::numeric_limits<double>::quiet_NaN()}, {{1, 1.0}}), true);
  store.Add(1, Data({100, std::numeric_limits<double>::infinity()}, {{1, 1.0}}), true);
  store.Add(1, Data({100, 0.0}, {}), true);
  store.Arrange();
  EXPECT_TRUE(store.Epochs().empty());
  EXPECT_TRUE(store.Satellites().empty());
}

TEST(EpochStore, ReadsNoMoreThanASlotHolds) {
  EpochStore store;
  QcEpochData epoch = Data({100, 0.0}, {{1, 1.0}, {2, 2.0}, {3, 3.0}});
  epoch.Slots[0].Count = 255;
  store.Add(1, epoch, true);
  store.Arrange();
  EXPECT_EQ(3u, store.Satellites()[0].Count);
}

}  // namespace
}  // namespace orsolva
