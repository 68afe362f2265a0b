#include "measures/channel_combinations.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "measures/multipath.h"
#include "tests/support/trace_recorder.h"

namespace orsolva {
namespace {

using orsolva_test::TraceRecorder;

const char kBdsText[] = "error; bds system not enough frequency number!\n";
const char kGalileoText[] = "error; no choose galileo system qc code num!\n";

// One code of each band.
enum : std::int32_t {
  kG1 = 1,
  kG2 = 15,
  kG5 = 20,
  kR1 = 30,
  kR2 = 35,
  kR3 = 40,
  kE1 = 62,
  kE5 = 65,
  kE7 = 68,
  kE8 = 71,
  kE6 = 74,
  kJ1 = 120,
  kJ2 = 127,
  kJ5 = 130,
  kJ6 = 136,
  kC21 = 150,
  kC1 = 153,
  kC5 = 161,
  kC27 = 164,
  kC7 = 167,
  kC8 = 170,
  kC6 = 173,
  kC36 = 176,
};

struct Builder {
  QcConfig Config;
  gnssqctoolkit::IList Lists[kCodeListSlots];
  ChannelCombinations Combinations;

  Builder() {
    Config.ApplyDefaults();
    for (QcSysConfig& sys : Config.Sys) sys.Select = 1;
    Config.AutoDetectFreq = 1;
  }
  Builder& Observe(int list, std::initializer_list<std::int32_t> codes) {
    for (std::int32_t code : codes) Lists[list].Append(code);
    return *this;
  }
  Builder& Select(std::uint8_t select) {
    for (QcSysConfig& sys : Config.Sys) sys.Select = select;
    return *this;
  }
  Builder& Flags(int slot, std::initializer_list<int> flags) {
    Config.AutoDetectFreq = 0;
    int f = 0;
    for (int flag : flags) Config.Sys[slot].FreqEnable[f++] = static_cast<std::uint8_t>(flag);
    return *this;
  }
  ChannelCombinations& Build() {
    Combinations.Build(Config, Lists);
    return Combinations;
  }
  std::string FlagText(int slot) const {
    std::string text;
    for (std::uint8_t flag : Config.Sys[slot].FreqEnable) text += flag != 0 ? '1' : '0';
    return text;
  }
};

// "slot:code-partner" of every pair, in order.
std::string Pairs(const MpIodChannelCombination& record) {
  std::ostringstream text;
  for (int slot = 0; slot < kBandSlots; ++slot) {
    for (int i = 0; i < record.Count[slot]; ++i) {
      text << slot << ":" << record.Pairs[slot][i].Code << "-" << record.Pairs[slot][i].Partner << " ";
    }
  }
  return text.str();
}

std::string Gps(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(0, codes).Select(select).Build().Systems[kSlotGps]);
}
std::string Galileo(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(3, codes).Select(select).Build().Systems[kSlotGalileo]);
}
std::string Qzss(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(5, codes).Select(select).Build().Systems[kSlotQzss]);
}
std::string Bds2(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(2, codes).Select(select).Build().Systems[kSlotBds]);
}
std::string Bds3(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(2, codes).Select(select).Build().Bds3);
}
std::string Geostationary(std::initializer_list<std::int32_t> codes) {
  return Pairs(Builder().Observe(2, codes).Build().Bds3Geostationary);
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

TEST(GlonassPairs, NeedBothBands) {
  const auto pairs = [](std::initializer_list<std::int32_t> codes) {
    return Pairs(Builder().Observe(1, codes).Build().Systems[kSlotGlonass]);
  };
  EXPECT_EQ("0:30-35 1:35-30 ", pairs({kR1, kR2}));
  EXPECT_EQ("", pairs({kR1}));
  EXPECT_EQ("", pairs({kR1, kR3}));
}

TEST(GlonassPairs, ClearTheFlagsOfBandsTheyDoNotUse) {
  Builder builder;
  builder.Observe(1, {kR1, kR2, kR3}).Build();
  EXPECT_EQ("110001", builder.FlagText(kSlotGlonass));
  EXPECT_EQ(2, builder.Config.Sys[kSlotGlonass].FreqNum);
}

TEST(GalileoPairs, OfTwoBandsGoBothWays) {
  EXPECT_EQ("0:62-74 4:74-62 ", Galileo({kE1, kE6}));
  EXPECT_EQ("2:68-71 3:71-68 ", Galileo({kE7, kE8}));
}

TEST(GalileoPairs, OfThreeBandsWithTheFirstPreferBandFiveThenSevenThenEight) {
  EXPECT_EQ("0:62-65 1:65-62 2:68-62 ", Galileo({kE1, kE5, kE7}));
  EXPECT_EQ("0:62-68 2:68-62 3:71-62 ", Galileo({kE1, kE7, kE8}));
  EXPECT_EQ("0:62-68 2:68-62 4:74-62 ", Galileo({kE1, kE7, kE6}));
  EXPECT_EQ("0:62-71 3:71-62 4:74-62 ", Galileo({kE1, kE8, kE6}));
}

TEST(GalileoPairs, OfThreeBandsWithoutTheFirstPairWithBandFive) {
  EXPECT_EQ("1:65-68 2:68-65 3:71-65 ", Galileo({kE5, kE7, kE8}));
  EXPECT_EQ("1:65-68 2:68-65 4:74-65 ", Galileo({kE5, kE7, kE6}));
  EXPECT_EQ("1:65-71 3:71-65 4:74-65 ", Galileo({kE5, kE8, kE6}));
}

TEST(GalileoPairs, OfBandsSevenEightAndSixPairWithBandSeven) {
  EXPECT_EQ("2:68-71 3:71-68 4:74-68 ", Galileo({kE7, kE8, kE6}));
}

TEST(GalileoPairs, OfFourAndMoreBandsPairWithTheFirst) {
  EXPECT_EQ("0:62-65 1:65-62 2:68-62 3:71-62 ", Galileo({kE1, kE5, kE7, kE8}));
  EXPECT_EQ("0:62-65 1:65-62 2:68-62 3:71-62 4:74-62 ", Galileo({kE1, kE5, kE7, kE8, kE6}));
  EXPECT_EQ("2:68-62 3:71-62 4:74-62 ", Galileo({kE1, kE7, kE8, kE6}));
  EXPECT_EQ("", Galileo({kE5, kE7, kE8, kE6}));
}

TEST(GalileoPairs, WithoutTwoFrequencyModePairWithTheFirst) {
  EXPECT_EQ("2:68-62 ", Galileo({kE1, kE7}, 0));
  EXPECT_EQ("2:68-62 4:74-62 ", Galileo({kE1, kE7, kE6}, 0));
  EXPECT_EQ("", Galileo({kE5, kE7, kE8}, 0));
}

TEST(GalileoPairs, OfChosenCodesWithAnEmptyListWarn) {
  Builder builder;
  builder.Observe(2, {kC21, kC27, kC6}).Observe(3, {kE1, kE5});
  builder.Config.Sys[kSlotGalileo].Extra = 1;
  TraceRecorder trace;
  EXPECT_EQ("", Pairs(builder.Build().Systems[kSlotGalileo]));
  ASSERT_EQ(1u, trace.Texts.size());
  EXPECT_EQ(2, trace.Levels[0]);
  EXPECT_EQ(kGalileoText, trace.Texts[0]);
}

TEST(QzssPairs, OfTwoBandsGoBothWays) {
  EXPECT_EQ("0:120-127 1:127-120 ", Qzss({kJ1, kJ2}));
  EXPECT_EQ("2:130-136 3:136-130 ", Qzss({kJ5, kJ6}));
}

TEST(QzssPairs, OfThreeBandsPairWithTheLowest) {
  EXPECT_EQ("0:120-127 1:127-120 2:130-120 ", Qzss({kJ1, kJ2, kJ5}));
  EXPECT_EQ("0:120-127 1:127-120 3:136-120 ", Qzss({kJ1, kJ2, kJ6}));
  EXPECT_EQ("0:120-130 2:130-120 3:136-120 ", Qzss({kJ1, kJ5, kJ6}));
  EXPECT_EQ("1:127-130 2:130-127 3:136-127 ", Qzss({kJ2, kJ5, kJ6}));
}

TEST(QzssPairs, OfFourBandsOrWithoutTwoFrequencyModePairWithTheFirst) {
  EXPECT_EQ("0:120-127 1:127-120 2:130-120 3:136-120 ", Qzss({kJ1, kJ2, kJ5, kJ6}));
  EXPECT_EQ("2:130-120 3:136-120 ", Qzss({kJ1, kJ5, kJ6}, 0));
  EXPECT_EQ("", Qzss({kJ2, kJ5, kJ6}, 0));
  EXPECT_EQ("", Qzss({kJ5, kJ6}, 0));
}

TEST(QzssPairs, NeedTwoBands) { EXPECT_EQ("", Qzss({120, 121})); }

TEST(Bds2Pairs, OfTwoBandsGoBothWays) {
  EXPECT_EQ("1:164-173 2:173-164 ", Bds2({kC27, kC6}));
  EXPECT_EQ("0:150-164 1:164-150 ", Bds2({kC21, kC27}));
  EXPECT_EQ("0:150-173 2:173-150 ", Bds2({kC21, kC6}));
}

TEST(Bds2Pairs, OfThreeBandsOrWithoutTwoFrequencyModePairWithBand21) {
  EXPECT_EQ("0:150-164 1:164-150 2:173-150 ", Bds2({kC21, kC27, kC6}));
  EXPECT_EQ("2:173-150 ", Bds2({kC21, kC6}, 0));
  EXPECT_EQ("", Bds2({kC27, kC6}, 0));
}

TEST(Bds2Pairs, DoNotKnowTheNewSignals) {
  EXPECT_EQ("0:150-173 2:173-150 ", Bds2({kC21, kC1, kC5, kC7, kC8, kC36, kC6}));
}

TEST(Bds2Pairs, ClearAllSixFlagsInAutomaticDetection) {
  Builder builder;
  builder.Observe(2, {kC21, kC1, kC5, kC6}).Build();
  EXPECT_EQ("101000", builder.FlagText(kSlotBds));
  EXPECT_EQ(2, builder.Config.Sys[kSlotBds].FreqNum);
}

TEST(Bds3Pairs, PairEveryBandWithTheLowestOther) {
  EXPECT_EQ("0:150-173 2:173-150 3:153-150 4:161-150 5:167-150 ", Bds3({kC21, kC6, kC1, kC5, kC7}));
  EXPECT_EQ("0:150-153 3:153-150 ", Bds3({kC21, kC1}));
  EXPECT_EQ("3:153-161 4:161-153 ", Bds3({kC1, kC5}));
  EXPECT_EQ("2:173-153 3:153-173 4:161-173 ", Bds3({kC6, kC1, kC5}));
}

TEST(Bds3Pairs, KnowNoTwoFrequencyCase) {
  EXPECT_EQ("3:153-161 4:161-153 ", Bds3({kC1, kC5}, 0));
  EXPECT_EQ("0:150-173 2:173-150 3:153-150 ", Bds3({kC21, kC6, kC1}, 0));
}

TEST(Bds3Pairs, NeverUseBands27And8) {
  EXPECT_EQ("0:150-153 3:153-150 ", Bds3({kC21, kC27, kC8, kC1}));
  EXPECT_EQ("", Bds3({kC27, kC1}));
}

TEST(Bds3Pairs, TakeBands6And36AsOne) {
  EXPECT_EQ("0:150-176 0:150-173 2:176-150 2:173-150 ", Bds3({kC36, kC21, kC6}));
}

TEST(Bds3Pairs, GovernAllSixFlagsOfTheirOwnRow) {
  Builder builder;
  builder.Observe(2, {kC21, kC27, kC1}).Build();
  EXPECT_EQ("100100", builder.FlagText(kSlotBd3));
  EXPECT_EQ("110000", builder.FlagText(kSlotBds));
  EXPECT_EQ(2, builder.Config.Sys[kSlotBd3].FreqNum);

  Builder by_hand;
  by_hand.Flags(kSlotBd3, {1, 1, 0, 1, 1, 1}).Observe(2, {kC21, kC27, kC6, kC1, kC5});
  EXPECT_EQ("0:150-153 3:153-150 4:161-150 ", Pairs(by_hand.Build().Bds3));
  EXPECT_EQ("100110", by_hand.FlagText(kSlotBd3));
}

TEST(GeostationaryPairs, UseBands21And6Alone) {
  EXPECT_EQ("0:150-173 2:173-150 ", Geostationary({kC21, kC27, kC6, kC36, kC1, kC5, kC7}));
  EXPECT_EQ("", Geostationary({kC21, kC36, kC1}));
}

TEST(GeostationaryPairs, TouchFlags0And2Only) {
  // With chosen flags their effect on the shared row shows in the pairs of the other BDS-3 satellites: a band
  // 36 without band 6 loses its flag before those are built.
  Builder builder;
  builder.Flags(kSlotBd3, {1, 1, 1, 1, 1, 1}).Observe(2, {kC21, kC36, kC1});
  EXPECT_EQ("0:150-153 3:153-150 ", Pairs(builder.Build().Bds3));
  EXPECT_EQ("100100", builder.FlagText(kSlotBd3));
}

TEST(BdsPairs, OfFewerThanTwoBandsWarnForEachRecord) {
  Builder builder;
  builder.Observe(2, {kC21});
  TraceRecorder trace;
  builder.Build();
  ASSERT_EQ(3u, trace.Texts.size());
  EXPECT_EQ((std::vector<int>{2, 2, 2}), trace.Levels);
  EXPECT_EQ((std::vector<std::string>{kBdsText, kBdsText, kBdsText}), trace.Texts);
}

TEST(BdsPairs, WarnOnlyForTheRecordsThatLackBands) {
  Builder builder;
  builder.Observe(2, {kC1, kC5});
  TraceRecorder trace;
  builder.Build();
  EXPECT_EQ(2u, trace.Texts.size());
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
