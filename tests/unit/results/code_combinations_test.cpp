#include "results/code_combinations.h"

#include <gtest/gtest.h>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using gnssqctoolkit::kBds;
using gnssqctoolkit::kGalileo;
using gnssqctoolkit::kGps;
using Combinations = std::vector<std::vector<std::int32_t>>;

QcSysConfig Switched() {
  QcSysConfig config;
  config.Select = 1;
  return config;
}

Combinations Build(int system, CombinationTarget target, std::initializer_list<std::int32_t> codes,
                   const QcSysConfig& config = Switched()) {
  const QcCodeCombination built = BuildCombinations(config, system, target, Codes(codes));
  Combinations out;
  for (int i = 0; i < built.Count; ++i) out.push_back(AsVector(built.Lists[i]));
  return out;
}

TEST(CodeCombinations, ListTheLastBandFirstAndVaryItSlowest) {
  EXPECT_EQ(Build(kGps, CombinationTarget::kSystem, {kG2C, kG1C, kG2W, kG1W}),
            (Combinations{{kG2C, kG1C}, {kG2C, kG1W}, {kG2W, kG1C}, {kG2W, kG1W}}));
}

TEST(CodeCombinations, StopAtTen) {
  const Combinations all =
      Build(kGps, CombinationTarget::kSystem, {kG1C, kG1W, kG2C, kG2W, kG5I, kG5Q, kG5X});
  Combinations expected;
  for (const std::int32_t l5 : {kG5I, kG5Q, kG5X}) {
    for (const std::int32_t l2 : {kG2C, kG2W}) {
      for (const std::int32_t l1 : {kG1C, kG1W}) expected.push_back({l5, l2, l1});
    }
  }
  ASSERT_EQ(expected.size(), 12u);
  expected.resize(10);
  EXPECT_EQ(all, expected);
}

TEST(CodeCombinations, AreOneCodeEachWithOneBand) {
  EXPECT_EQ(Build(kGps, CombinationTarget::kSystem, {kG2C, kG2W}), (Combinations{{kG2C}, {kG2W}}));
}

TEST(CodeCombinations, AreNoneWithoutAUsableBand) {
  EXPECT_TRUE(Build(kGps, CombinationTarget::kSystem, {}).empty());
  EXPECT_TRUE(Build(kGps, CombinationTarget::kSystem, {kR1C, 250, 0}).empty());
}

TEST(CodeCombinations, LeaveOutDisabledBandsOnlyWhileTheSwitchIsOn) {
  QcSysConfig config = Switched();
  config.FreqEnable[1] = 0;
  EXPECT_EQ(Build(kGps, CombinationTarget::kSystem, {kG1C, kG2W, kG5Q}, config),
            (Combinations{{kG5Q, kG1C}}));
  config.Select = 0;
  EXPECT_EQ(Build(kGps, CombinationTarget::kSystem, {kG1C, kG2W, kG5Q}, config),
            (Combinations{{kG5Q, kG2W, kG1C}}));
}

TEST(CodeCombinations, UseTheSlotsOfTheSignalTablesForTheFlags) {
  QcSysConfig config = Switched();
  config.FreqEnable[2] = 0;  // Galileo band 7 in the signal tables
  EXPECT_EQ(Build(kGalileo, CombinationTarget::kSystem, {kE1C, kE7Q, kE8Q}, config),
            (Combinations{{kE8Q, kE1C}}));
}

TEST(CodeCombinations, KeepTheChosenCodesOnlyWhileTheSwitchIsOn) {
  QcSysConfig config = Switched();
  config.CodeList = Codes({kG1W, kG2W});
  EXPECT_EQ(Build(kGps, CombinationTarget::kSystem, {kG1C, kG1W, kG2W}, config).size(), 2u);
  config.Extra = 1;
  EXPECT_EQ(Build(kGps, CombinationTarget::kSystem, {kG1C, kG1W, kG2W}, config),
            (Combinations{{kG2W, kG1W}}));
}

TEST(CodeCombinations, KeepTheBandsOfEachBdsTarget) {
  const std::initializer_list<std::int32_t> codes = {kC2I, kC1P, kC5P, kC7I, kC7D, kC6I};
  EXPECT_EQ(Build(kBds, CombinationTarget::kBds2, codes), (Combinations{{kC6I, kC7I, kC2I}}));
  EXPECT_EQ(Build(kBds, CombinationTarget::kBds3, codes), (Combinations{{kC7D, kC5P, kC1P, kC6I, kC2I}}));
  EXPECT_EQ(Build(kBds, CombinationTarget::kBds3Stationary, codes), (Combinations{{kC6I, kC2I}}));
}

TEST(CodeCombinations, PutBdsBands6And8And36IntoOneSlot) {
  EXPECT_EQ(Build(kBds, CombinationTarget::kBds3, {kC2I, kC6I, kC6D, kC8D}),
            (Combinations{{kC6I, kC2I}, {kC6D, kC2I}, {kC8D, kC2I}}));
  EXPECT_EQ(Build(kBds, CombinationTarget::kBds2, {kC2I, kC6I, kC6D, kC8D}), (Combinations{{kC6I, kC2I}}));
}

TEST(CodeEnabled, FollowsTheSlotOfTheSignalTables) {
  QcSysConfig config;
  EXPECT_TRUE(IsCodeEnabled(config, kBds, kC5P));
  config.FreqEnable[4] = 0;
  EXPECT_FALSE(IsCodeEnabled(config, kBds, kC5P));
  EXPECT_TRUE(IsCodeEnabled(config, kBds, kC7D));
  EXPECT_FALSE(IsCodeEnabled(config, kBds, 250)) << "a code without a slot is never enabled";
}

}  // namespace
}  // namespace orsolva
