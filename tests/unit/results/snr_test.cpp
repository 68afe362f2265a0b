#include "results/snr.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;

SnrSatList WithCodes(std::initializer_list<std::int32_t> codes) {
  SnrSatList list;
  for (const std::int32_t code : codes) {
    list.Channels[0][list.CodeCount[0]++].Code = static_cast<std::uint8_t>(code);
  }
  return list;
}

TEST(SnrChannel, CountsNeitherZeroNorNegativeNorMissingValues) {
  SnrChannelList channel;
  for (const double snr : {0.0, -30.0, 1e-12, std::numeric_limits<double>::quiet_NaN()}) {
    channel.Add(snr, true, true);
    channel.Add(snr, false, false);
  }
  EXPECT_EQ(channel.Count, 0u);
  EXPECT_EQ(channel.Samples.Count(), 0);
  EXPECT_EQ(channel.AboveMask.Count + channel.BelowMask.Count, 0u);
  EXPECT_EQ(channel.Above30.Count + channel.Below30.Count, 0u);
}

TEST(SnrChannel, SplitsAtTheCutOffAndAt30Degrees) {
  SnrChannelList channel;
  channel.Add(30.0, false, false);
  channel.Add(40.0, true, false);
  channel.Add(50.0, true, true);
  EXPECT_EQ(channel.Count, 3u);
  EXPECT_EQ(channel.Sum, 120.0);
  EXPECT_EQ(channel.Mean, 40.0);
  EXPECT_EQ(channel.AboveMask.Count, 2u);
  EXPECT_EQ(channel.AboveMask.Mean, 45.0);
  EXPECT_EQ(channel.BelowMask.Mean, 30.0);
  EXPECT_EQ(channel.Above30.Count, 1u);
  EXPECT_EQ(channel.Above30.Mean, 50.0);
  EXPECT_EQ(channel.Below30.Count, 2u);
  EXPECT_EQ(channel.Below30.Mean, 35.0);
}

TEST(SnrChannel, CountsAValueBelowTheCutOffInTheMean) {
  SnrChannelList channel;
  channel.Add(31.5, false, false);
  EXPECT_EQ(channel.Mean, 31.5);
  EXPECT_EQ(channel.BelowMask.Count, 1u);
  EXPECT_EQ(channel.Below30.Count, 1u);
}

TEST(SnrChannel, HasNoSpreadWithOneValue) {
  SnrChannelList channel;
  EXPECT_EQ(channel.StdDev(), 0.0);
  channel.Add(45.13, true, true);
  EXPECT_EQ(channel.StdDev(), 0.0);
}

TEST(SnrChannel, TakesTheSpreadOfQuantisedSamplesAboutTheUnquantisedMean) {
  SnrChannelList channel;
  channel.Add(45.13, true, true);  // read back as 45.25
  channel.Add(40.0, true, true);
  channel.Add(42.37, true, true);  // read back as 42.25
  const double mean = (45.13 + 40.0 + 42.37) / 3;
  const double sum = std::pow(45.25 - mean, 2) + std::pow(40.0 - mean, 2) + std::pow(42.25 - mean, 2);
  EXPECT_NEAR(channel.StdDev(), std::sqrt(sum / 2), 1e-12);
}

TEST(SnrSamples, AreQuarterUnits) {
  EXPECT_EQ(QuantiseSnr(45.13), 181);
  EXPECT_EQ(QuantiseSnr(0.1), 0);
  EXPECT_EQ(QuantiseSnr(0.125), 1);
  EXPECT_EQ(QuantiseSnr(63.75), 255);
}

TEST(SnrSamples, WrapAt64AndNeverLeaveTheirRange) {
  EXPECT_EQ(QuantiseSnr(64.0), 0);
  EXPECT_EQ(QuantiseSnr(64.25), 1);
  EXPECT_EQ(QuantiseSnr(1000.0), 4000 % 256);
  for (const double snr : {1e30, 3.4e38, 1e300, std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN(), -1e300}) {
    EXPECT_GE(QuantiseSnr(snr), 0);
    EXPECT_LE(QuantiseSnr(snr), 255);
  }
}

TEST(SnrSamples, ThatWrapChangeTheSpreadOnly) {
  SnrChannelList channel;
  channel.Add(64.0, true, true);
  channel.Add(64.0, true, true);
  EXPECT_EQ(channel.Mean, 64.0);
  EXPECT_EQ(channel.AboveMask.Mean, 64.0);
  EXPECT_NEAR(channel.StdDev(), std::sqrt(2 * 64.0 * 64.0), 1e-12);
}

TEST(SnrSatList, FindsACodeAtAnyEntryWithinTheSearchedOnes) {
  SnrSatList list = WithCodes({kG1C, kG1W});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1W, 41.0));
  Put(epoch, 0, Signal(kG1C, 47.0));
  list.AddEpoch(epoch, true, true);
  EXPECT_EQ(list.Channels[0][0].Mean, 47.0);
  EXPECT_EQ(list.Channels[0][1].Mean, 41.0);
}

TEST(SnrSatList, SearchesAsManyEntriesAsTheSlotHasChannels) {
  SnrSatList list = WithCodes({kG1C});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1W, 41.0));
  Put(epoch, 0, Signal(kG1C, 47.0));
  list.AddEpoch(epoch, true, true);
  EXPECT_EQ(list.Channels[0][0].Count, 0u) << "the code is behind the one entry that is searched";
}

TEST(SnrSatList, TakesTheEntryOfTheSameIndexBeforeAnEarlierOne) {
  SnrSatList list = WithCodes({kG1W, kG1C});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1C, 20.0));
  Put(epoch, 0, Signal(kG1C, 47.0));
  list.AddEpoch(epoch, true, true);
  EXPECT_EQ(list.Channels[0][1].Mean, 47.0);
}

TEST(SnrSatList, DoesNotReadEntriesThatAreNotThere) {
  SnrSatList list = WithCodes({kG1C, kG1W});
  QcEpochData epoch;
  for (Signal_QC_gbt& signal : epoch.Slots[0].Signals) signal = Signal(kG1W);
  epoch.Slots[0].Count = 1;
  epoch.Slots[0].Signals[0] = Signal(kG1C, 44.0);
  list.AddEpoch(epoch, true, true);
  EXPECT_EQ(list.Channels[0][0].Count, 1u);
  EXPECT_EQ(list.Channels[0][1].Count, 0u);
}

}  // namespace
}  // namespace orsolva
