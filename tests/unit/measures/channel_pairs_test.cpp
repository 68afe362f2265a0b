#include "measures/channel_combinations.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>

#include "tests/support/trace_recorder.h"
#include "tests/unit/measures/channel_builder.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using orsolva_test::TraceRecorder;

std::string Galileo(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(3, codes).Select(select).Build().Systems[kSlotGalileo]);
}
std::string Qzss(std::initializer_list<std::int32_t> codes, std::uint8_t select = 1) {
  return Pairs(Builder().Observe(5, codes).Select(select).Build().Systems[kSlotQzss]);
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

}  // namespace
}  // namespace orsolva
