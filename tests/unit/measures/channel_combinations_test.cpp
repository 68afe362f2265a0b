#include "measures/channel_combinations.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>

#include "measures/multipath.h"
#include "tests/support/trace_recorder.h"
#include "tests/unit/measures/channel_builder.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using orsolva_test::TraceRecorder;

std::string Gps(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(0, codes).Select(select).Build().Systems[kSlotGps]);
}

TEST(MpWindowLength, IsFiftyUpToFiveSecondsThenThreeHundredOverTheIntervalThenTen) {
  EXPECT_EQ(50, MpWindowLength(0.1));
  EXPECT_EQ(50, MpWindowLength(5.0));
  EXPECT_EQ(kMaxMpWindow, MpWindowLength(5.05)) << "longer than at 5 s: 300 s hold 59 epochs";
  EXPECT_EQ(50, MpWindowLength(6.0));
  EXPECT_EQ(42, MpWindowLength(7.0));
  EXPECT_EQ(20, MpWindowLength(15.0));
  EXPECT_EQ(10, MpWindowLength(30.0));
  EXPECT_EQ(10, MpWindowLength(31.0));
  EXPECT_EQ(10, MpWindowLength(86400.0));
}

TEST(MpWindowLength, OfNoNumberIsTen) {
  EXPECT_EQ(10, MpWindowLength(std::numeric_limits<double>::quiet_NaN()));
}

TEST(PairCodes, TakesEveryPartnerOfTheFirstCodeBeforeTheSecond) {
  ChannelComb pairs[kPairsPerBand];
  ASSERT_EQ(4, PairCodes({1, 2}, {10, 11}, pairs));
  EXPECT_EQ(1u, pairs[1].Code);
  EXPECT_EQ(11u, pairs[1].Partner);
  EXPECT_EQ(2u, pairs[2].Code);
  EXPECT_EQ(10u, pairs[2].Partner);
  EXPECT_EQ(0, PairCodes({}, {10}, pairs));
  EXPECT_EQ(0, PairCodes({1}, {}, pairs));
}

TEST(PairCodes, StopsAtTheTenthPair) {
  const std::string pairs = Gps({1, 2, 3, 10, 11, 12, 13});
  EXPECT_EQ(
      "0:1-10 0:1-11 0:1-12 0:1-13 0:2-10 0:2-11 0:2-12 0:2-13 0:3-10 0:3-11 "
      "1:10-1 1:10-2 1:10-3 1:11-1 1:11-2 1:11-3 1:12-1 1:12-2 1:12-3 1:13-1 ",
      pairs);
}

TEST(GpsPairs, OfTwoBandsGoBothWays) {
  EXPECT_EQ("0:1-15 1:15-1 ", Gps({kG1, kG2}));
  EXPECT_EQ("0:1-20 2:20-1 ", Gps({kG1, kG5}));
  EXPECT_EQ("1:15-20 2:20-15 ", Gps({kG2, kG5}));
}

TEST(GpsPairs, OfThreeBandsPairTheThirdWithTheFirst) {
  EXPECT_EQ("0:1-15 1:15-1 2:20-1 ", Gps({kG5, kG2, kG1}));
}

TEST(GpsPairs, WithoutTwoFrequencyModeKnowOnlyTheFirstBandAsPartner) {
  EXPECT_EQ("2:20-1 ", Gps({kG1, kG5}, 0));
  EXPECT_EQ("", Gps({kG2, kG5}, 0));
  EXPECT_EQ("0:1-15 1:15-1 ", Gps({kG1, kG2}, 0));
}

TEST(GpsPairs, OfOneBandAreNone) { EXPECT_EQ("", Gps({1, 2, 3})); }

TEST(GpsPairs, IgnoreCodesOfOtherBands) { EXPECT_EQ("0:1-15 1:15-1 ", Gps({kG1, 60, 99, kG2})); }

TEST(GpsPairs, KeepTheOrderInWhichCodesWereObserved) {
  EXPECT_EQ("0:5-15 0:1-15 1:15-5 1:15-1 ", Gps({5, 15, 1}));
}

TEST(ChosenCodes, AreTheOnlyOnesPaired) {
  Builder builder;
  builder.Observe(0, {1, 5, 15, 16, 20});
  builder.Config.Sys[kSlotGps].Extra = 1;
  for (std::int32_t code : {16, 5}) builder.Config.Sys[kSlotGps].CodeList.Append(code);
  EXPECT_EQ("0:5-16 1:16-5 ", Pairs(builder.Build().Systems[kSlotGps]));
  EXPECT_EQ("110001", builder.FlagText(kSlotGps));
}

TEST(ChosenCodes, OfAnEmptyListBuildNothingAndLeaveTheFlags) {
  Builder builder;
  builder.Observe(0, {kG1, kG2});
  builder.Config.Sys[kSlotGps].Extra = 1;
  builder.Config.Sys[kSlotGps].FreqNum = 2;
  EXPECT_EQ("", Pairs(builder.Build().Systems[kSlotGps]));
  EXPECT_EQ("111111", builder.FlagText(kSlotGps));
  EXPECT_EQ(2, builder.Config.Sys[kSlotGps].FreqNum);
}

TEST(ChosenCodes, DoNotMatterWithoutTheSwitch) {
  Builder builder;
  builder.Observe(0, {kG1, kG2});
  builder.Config.Sys[kSlotGps].CodeList.Append(kG1);
  EXPECT_EQ("0:1-15 1:15-1 ", Pairs(builder.Build().Systems[kSlotGps]));
}

TEST(BandFlags, AreClearedAndSetByAutomaticDetectionButTheSixth) {
  Builder builder;
  for (std::uint8_t& flag : builder.Config.Sys[kSlotGps].FreqEnable) flag = 0;
  builder.Config.Sys[kSlotGps].FreqEnable[5] = 1;
  builder.Config.Sys[kSlotGps].FreqEnable[3] = 1;
  builder.Observe(0, {kG1, kG5}).Build();
  EXPECT_EQ("101001", builder.FlagText(kSlotGps));
  EXPECT_EQ(2, builder.Config.Sys[kSlotGps].FreqNum);
}

TEST(BandFlags, SetByHandStayOnlyWhereTheirBandHasCodes) {
  Builder builder;
  builder.Flags(kSlotGps, {1, 1, 0, 1, 1, 1}).Observe(0, {kG1, kG5}).Build();
  EXPECT_EQ("100111", builder.FlagText(kSlotGps));
  EXPECT_EQ(1, builder.Config.Sys[kSlotGps].FreqNum);
}

TEST(BandFlags, OfADisabledBandEmptyItsListAsPartnerToo) {
  Builder builder;
  builder.Flags(kSlotGps, {1, 0, 1, 1, 1, 1}).Observe(0, {kG1, kG2, kG5});
  EXPECT_EQ("0:1-20 2:20-1 ", Pairs(builder.Build().Systems[kSlotGps]));

  Builder without_mode;
  without_mode.Select(0).Flags(kSlotGps, {1, 0, 1, 1, 1, 1}).Observe(0, {kG1, kG2, kG5});
  EXPECT_EQ("2:20-1 ", Pairs(without_mode.Build().Systems[kSlotGps]));
}

TEST(BandCount, IsStoredInTwoFrequencyModeOrWithAutomaticDetection) {
  for (const bool select : {false, true}) {
    for (const bool automatic : {false, true}) {
      Builder builder;
      builder.Select(select).Observe(0, {kG1, kG2, kG5});
      builder.Config.AutoDetectFreq = automatic;
      builder.Config.Sys[kSlotGps].FreqNum = 77;
      builder.Build();
      EXPECT_EQ(select || automatic ? 3 : 77, builder.Config.Sys[kSlotGps].FreqNum);
    }
  }
}

TEST(ChannelCombinations, AreBuiltInTheOrderOfTheSystems) {
  Builder builder;
  builder.Observe(3, {kE1, kE5});
  builder.Config.Sys[kSlotGalileo].Extra = 1;
  TraceRecorder trace;
  builder.Build();
  ASSERT_EQ(4u, trace.Texts.size());
  EXPECT_EQ(kBdsText, trace.Texts[2]);
  EXPECT_EQ(kGalileoText, trace.Texts[3]);
  EXPECT_EQ(1, builder.Combinations.Systems[kSlotGps].System);
  EXPECT_EQ(2, builder.Combinations.Systems[kSlotGlonass].System);
  EXPECT_EQ(4, builder.Combinations.Systems[kSlotBds].System);
  EXPECT_EQ(8, builder.Combinations.Systems[kSlotGalileo].System);
  EXPECT_EQ(16, builder.Combinations.Systems[kSlotQzss].System);
  EXPECT_EQ(0, builder.Combinations.Systems[kSlotBd3].System);
}

TEST(ChannelCombinations, AreChosenBySystemNumberAndOrbitClass) {
  ChannelCombinations combinations;
  const auto record = [&](int system, int prn) {
    return combinations.ForSatellite({static_cast<std::uint8_t>(system), prn});
  };
  EXPECT_EQ(&combinations.Systems[kSlotGps], record(1, 7));
  EXPECT_EQ(&combinations.Systems[kSlotGlonass], record(2, 7));
  EXPECT_EQ(&combinations.Systems[kSlotGalileo], record(8, 7));
  EXPECT_EQ(&combinations.Systems[kSlotQzss], record(16, 1));
  EXPECT_EQ(&combinations.Systems[kSlotBds], record(4, 1));
  EXPECT_EQ(&combinations.Systems[kSlotBds], record(4, 17));
  EXPECT_EQ(&combinations.Bds3, record(4, 18));
  EXPECT_EQ(&combinations.Bds3, record(4, 38));
  EXPECT_EQ(&combinations.Bds3Geostationary, record(4, 59));
  EXPECT_EQ(&combinations.Bds3Geostationary, record(4, 62));
  EXPECT_EQ(&combinations.Bds3, record(4, 63));
  EXPECT_EQ(nullptr, record(32, 1));
  EXPECT_EQ(nullptr, record(64, 120));
}

}  // namespace
}  // namespace orsolva
