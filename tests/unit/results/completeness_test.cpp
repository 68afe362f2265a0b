#include "results/completeness.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/unit/results/result_fixtures.h"
#include "toolkit/satellite.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;

SatCompleteObsList WithCodes(int slot, std::initializer_list<std::int32_t> codes) {
  SatCompleteObsList list;
  for (const std::int32_t code : codes) {
    list.Channels[slot - 1][list.CodeCount[slot - 1]++].Code = static_cast<std::uint8_t>(code);
  }
  return list;
}

TEST(CompleteObservation, NeedsPseudorangePhaseAndSnr) {
  EXPECT_TRUE(IsCompleteObservation(Signal(kG1C)));
  EXPECT_FALSE(IsCompleteObservation(Signal(kG1C, 45.0, 0.0)));
  EXPECT_FALSE(IsCompleteObservation(Signal(kG1C, 45.0, 2.2e7, 0.0)));
  EXPECT_FALSE(IsCompleteObservation(Signal(kG1C, 0.0)));
  EXPECT_FALSE(IsCompleteObservation(Signal(kG1C, -1.0)));
}

TEST(CompleteObservation, CountsAValueOfExactlyTheLimitAsPresent) {
  EXPECT_TRUE(IsCompleteObservation(Signal(kG1C, 45.0, 1e-12, 1e-12)));
  EXPECT_FALSE(IsCompleteObservation(Signal(kG1C, 45.0, 0.99e-12, 1.0)));
  EXPECT_FALSE(IsCompleteObservation(Signal(kG1C, 0.99e-12)));
}

TEST(SatCompleteObsList, AppendsOneFlagPerCodeAndEpoch) {
  SatCompleteObsList list = WithCodes(1, {kG1C, kG1W});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1W));
  list.AddEpoch(epoch);
  EXPECT_EQ(AsVector(list.Channels[0][0].Flags), std::vector<std::int32_t>({0}));
  EXPECT_EQ(AsVector(list.Channels[0][1].Flags), std::vector<std::int32_t>({1}));
  EXPECT_EQ(list.Channels[0][0].ValidCount, 0u);
  EXPECT_EQ(list.Channels[0][1].ValidCount, 1u);
}

TEST(SatCompleteObsList, AppendsZerosForABandWithoutObservations) {
  SatCompleteObsList list = WithCodes(2, {kG2C, kG2W});
  list.AddEpoch(QcEpochData());
  EXPECT_EQ(AsVector(list.Channels[1][0].Flags), std::vector<std::int32_t>({0}));
  EXPECT_EQ(AsVector(list.Channels[1][1].Flags), std::vector<std::int32_t>({0}));
  EXPECT_EQ(list.Channels[1][2].Flags.Count(), 0) << "a channel without a code stays empty";
}

TEST(SatCompleteObsList, CountsAnObservationWithPseudorangeZeroAsMissing) {
  SatCompleteObsList list = WithCodes(1, {kG1C});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1C, 45.0, 0.0));
  list.AddEpoch(epoch);
  EXPECT_EQ(AsVector(list.Channels[0][0].Flags), std::vector<std::int32_t>({0}));
  EXPECT_EQ(list.Channels[0][0].ValidCount, 0u);
}

TEST(SatCompleteObsList, AppendsAFlagForEveryEntryOfTheSameCode) {
  SatCompleteObsList list = WithCodes(1, {kG1C});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1C));
  Put(epoch, 0, Signal(kG1W));
  Put(epoch, 0, Signal(kG1C, 0.0));
  list.AddEpoch(epoch);
  EXPECT_EQ(AsVector(list.Channels[0][0].Flags), std::vector<std::int32_t>({1, 0}));
}

TEST(SatCompleteObsList, FlagsBothChannelsOfACodeConfiguredTwice) {
  SatCompleteObsList list = WithCodes(1, {kG1C, kG1C});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1C));
  list.AddEpoch(epoch);
  EXPECT_EQ(AsVector(list.Channels[0][0].Flags), std::vector<std::int32_t>({1}));
  EXPECT_EQ(AsVector(list.Channels[0][1].Flags), std::vector<std::int32_t>({1}));
}

TEST(SatCompleteObsList, ReadsNoEntriesBeyondTheArray) {
  SatCompleteObsList list = WithCodes(6, {kC8D});
  QcEpochData epoch;
  for (Signal_QC_gbt& signal : epoch.Slots[5].Signals) signal = Signal(kC8D);
  epoch.Slots[5].Count = 255;
  list.AddEpoch(epoch);
  EXPECT_EQ(list.Channels[5][0].Flags.Count(), 3);
}

TEST(SatCompleteObsList, CopiesDeeply) {
  SatCompleteObsList list = WithCodes(1, {kG1C});
  list.ExpectedEpochs = 7;
  list.Channels[0][0].Append(true);
  SatCompleteObsList copy = list;
  copy.Channels[0][0].Append(true);
  EXPECT_EQ(copy.ExpectedEpochs, 7u);
  EXPECT_EQ(copy.CodeCount[0], 1);
  EXPECT_EQ(copy.Channels[0][0].Flags.Count(), 2);
  EXPECT_EQ(list.Channels[0][0].Flags.Count(), 1);
}

TEST(CompletenessRatio, IsZeroWhenNothingIsExpected) {
  EXPECT_EQ(CompletenessRatio(0, 0), 0.0);
  EXPECT_EQ(CompletenessRatio(5, 0), 0.0);
  EXPECT_EQ(CompletenessRatio(90, 100), 0.9);
}

std::set<int> Dropped(int system, int prn) {
  std::set<int> bands;
  for (int band = 0; band <= 64; ++band) {
    if (IsDroppedFromCombination(system, prn, band)) bands.insert(band);
  }
  return bands;
}

TEST(CombinationDrop, LeavesOutTheBandsThatNotEverySatelliteSends) {
  EXPECT_EQ(Dropped(gnssqctoolkit::kGps, 4), std::set<int>({5}));
  EXPECT_EQ(Dropped(gnssqctoolkit::kGlonass, 4), std::set<int>({3}));
  EXPECT_EQ(Dropped(gnssqctoolkit::kQzss, 4), std::set<int>({5, 6}));
  EXPECT_EQ(Dropped(gnssqctoolkit::kGalileo, 4), std::set<int>());
  EXPECT_EQ(Dropped(gnssqctoolkit::kBds, 17), std::set<int>({1, 5, 7, 8, 36}));
  EXPECT_EQ(Dropped(gnssqctoolkit::kBds, 19), std::set<int>({27}));
}

TEST(CombinationDrop, LeavesBds18AllItsCodes) { EXPECT_TRUE(Dropped(gnssqctoolkit::kBds, 18).empty()); }

}  // namespace
}  // namespace orsolva
