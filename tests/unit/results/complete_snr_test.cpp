#include "results/complete_snr.h"

#include <gtest/gtest.h>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using gnssqctoolkit::kBds;
using gnssqctoolkit::kGalileo;
using gnssqctoolkit::kGlonass;
using gnssqctoolkit::kGps;
using gnssqctoolkit::kQzss;

const SatCompleteObsList& CompleteOf(const RunStores& run, std::uint8_t system, int prn) {
  return run.Snr->CompleteSats[gnssqctoolkit::QcSatelliteIndex({system, prn}) - 1];
}
const SnrSatList& SnrOf(const RunStores& run, std::uint8_t system, int prn) {
  return run.Snr->SnrSats[gnssqctoolkit::QcSatelliteIndex({system, prn}) - 1];
}

/// Codes by channel slot.
std::vector<std::vector<int>> Template(const SatCompleteObsList& list) {
  std::vector<std::vector<int>> slots(kBandSlots);
  for (int b = 0; b < kBandSlots; ++b) {
    for (int k = 0; k < list.CodeCount[b]; ++k)
      slots[static_cast<std::size_t>(b)].push_back(list.Channels[b][k].Code);
  }
  return slots;
}

using Slots = std::vector<std::vector<int>>;

TEST(CompleteSnrTemplates, SortTheCodesOfEverySystemIntoItsSlots) {
  RunStores run;
  run.Observed(kGps, {kG5Q, kG1C, kG2W, kG1W})
      .Observed(kGlonass, {kR1C, kR3I, kR2C})
      .Observed(kGalileo, {kE1C, kE5Q, kE7Q, kE8Q, kE6C})
      .Observed(kQzss, {kJ1C, kJ2L, kJ5Q, kJ6L});
  run.Snr->BuildTemplates(run.Lists);
  EXPECT_TRUE(run.Snr->Ready);
  EXPECT_EQ(Template(CompleteOf(run, kGps, 35)), (Slots{{kG1C, kG1W}, {kG2W}, {kG5Q}, {}, {}, {}}));
  EXPECT_EQ(Template(CompleteOf(run, kGlonass, 1)), (Slots{{kR1C}, {kR2C}, {}, {}, {}, {}}));
  EXPECT_EQ(Template(CompleteOf(run, kGalileo, 37)), (Slots{{kE1C}, {kE5Q}, {kE8Q}, {kE7Q}, {kE6C}, {}}));
  EXPECT_EQ(Template(CompleteOf(run, kQzss, 10)), (Slots{{kJ1C}, {kJ2L}, {kJ5Q}, {kJ6L}, {}, {}}));
}

TEST(CompleteSnrTemplates, ChangeForBdsAtNumber18) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC1P, kC5P, kC7I, kC7D, kC8D, kC6I, kC6D});
  run.Snr->BuildTemplates(run.Lists);
  EXPECT_EQ(Template(CompleteOf(run, kBds, 17)), (Slots{{kC2I}, {kC7I}, {kC6I}, {}, {}, {}}));
  EXPECT_EQ(Template(CompleteOf(run, kBds, 18)), (Slots{{kC2I}, {kC5P}, {kC6I}, {kC1P}, {kC7D}, {kC8D}}));
}

TEST(CompleteSnrTemplates, HoldTheSameCodesForSnr) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC1P, kC5P, kC7I, kC7D, kC8D, kC6I, kC6D}).Observed(kGps, {kG1C, kG1W, kG2W});
  run.Snr->BuildTemplates(run.Lists);
  for (int i = 0; i < gnssqctoolkit::kMaxSatellites; ++i) {
    for (int b = 0; b < kBandSlots; ++b) {
      ASSERT_EQ(run.Snr->CompleteSats[i].CodeCount[b], run.Snr->SnrSats[i].CodeCount[b]);
      for (int k = 0; k < kCodesPerSlot; ++k) {
        ASSERT_EQ(run.Snr->CompleteSats[i].Channels[b][k].Code, run.Snr->SnrSats[i].Channels[b][k].Code);
      }
    }
  }
}

TEST(CompleteSnrTemplates, LeaveOutEveryCodeBehindAFullSlot) {
  RunStores run;
  run.Observed(kGps, {kG1C, kG1W, 5, kG2C, kG2W, 15, kG5I, kG5Q, kG5X});
  run.Snr->BuildTemplates(run.Lists);
  EXPECT_EQ(Template(CompleteOf(run, kGps, 1)), (Slots{{kG1C, kG1W, 5}, {}, {}, {}, {}, {}}));
}

TEST(CompleteSnrTemplates, GiveACodeListedTwiceTwoChannels) {
  RunStores run;
  run.Observed(kGps, {kG1C, kG1C});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1C));
  run.Track(kGps, 3, epoch, 2);
  EXPECT_EQ(CompleteOf(run, kGps, 3).Channels[0][0].ValidCount, 2u);
  EXPECT_EQ(CompleteOf(run, kGps, 3).Channels[0][1].ValidCount, 2u);
}

TEST(CompleteSnrTemplates, AreBuiltOnce) {
  RunStores run;
  run.Observed(kGps, {kG1C});
  run.Snr->BuildTemplates(run.Lists);
  run.Observed(kGps, {kG2W});
  run.Snr->BuildTemplates(run.Lists);
  EXPECT_EQ(Template(CompleteOf(run, kGps, 1)), (Slots{{kG1C}, {}, {}, {}, {}, {}}));
}

TEST(CompleteSnr, CountsSnrButNoAvailabilityBelowTheCutOff) {
  RunStores run;
  run.Observed(kGps, {kG1C});
  run.Snr->BuildTemplates(run.Lists);
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1C, 33.0));
  run.Snr->AddEpoch(5, epoch, false, false);
  EXPECT_EQ(CompleteOf(run, kGps, 5).Channels[0][0].Flags.Count(), 0);
  EXPECT_EQ(SnrOf(run, kGps, 5).Channels[0][0].BelowMask.Count, 1u);
  run.Snr->AddEpoch(5, epoch, true, false);
  EXPECT_EQ(CompleteOf(run, kGps, 5).Channels[0][0].Flags.Count(), 1);
  EXPECT_EQ(SnrOf(run, kGps, 5).Channels[0][0].Count, 2u);
}

TEST(CompleteSnr, AddsExpectedEpochsToTheirSatelliteAlone) {
  RunStores run;
  run.Snr->AddExpected(5, 3);
  run.Snr->AddExpected(5, 4);
  EXPECT_EQ(run.Snr->CompleteSats[4].ExpectedEpochs, 7u);
  EXPECT_EQ(run.Snr->CompleteSats[3].ExpectedEpochs, 0u);
  EXPECT_EQ(run.Snr->CompleteSats[5].ExpectedEpochs, 0u);
}

TEST(CompleteSnr, IgnoresNumbersOutside1To208) {
  RunStores run;
  for (const int number : {-1, 0, 209, 1 << 30}) {
    run.Snr->AddExpected(number, 1);
    run.Snr->AddEpoch(number, QcEpochData(), true, true);
  }
  for (const SatCompleteObsList& sat : run.Snr->CompleteSats) EXPECT_EQ(sat.ExpectedEpochs, 0u);
}

TEST(CompleteSnr, IsEmptyAfterItsRelease) {
  RunStores run;
  run.Observed(kGps, {kG1C});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1C));
  run.Track(kGps, 3, epoch, 2);
  run.Snr->Release();
  EXPECT_FALSE(run.Snr->Ready);
  EXPECT_EQ(run.Snr->CompleteSats[2].CodeCount[0], 0);
  EXPECT_EQ(run.Snr->CompleteSats[2].Channels[0][0].Flags.Capacity(), 0);
  EXPECT_EQ(run.Snr->SnrSats[2].Channels[0][0].Samples.Capacity(), 0);
  EXPECT_EQ(run.Snr->SnrSats[2].Channels[0][0].Count, 0u);
}

}  // namespace
}  // namespace orsolva
