#include "measures/channel_combinations.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/support/trace_recorder.h"
#include "tests/unit/measures/channel_builder.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using orsolva_test::TraceRecorder;

std::string Bds2(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(2, codes).Select(select).Build().Systems[kSlotBds]);
}
std::string Bds3(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(2, codes).Select(select).Build().Bds3);
}
std::string Geostationary(std::initializer_list<std::int32_t> codes) {
  return Pairs(Builder().Observe(2, codes).Build().Bds3Geostationary);
}

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

}  // namespace
}  // namespace orsolva
