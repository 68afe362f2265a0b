#include "results/code_result.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using gnssqctoolkit::kBds;
using gnssqctoolkit::kGalileo;
using gnssqctoolkit::kGps;

code_qc_block BlockOf(const Satellite& sat, const QcSysConfig& config = QcSysConfig()) {
  code_qc_block block{};
  FillSatelliteBlock(config, sat.Stores(), block);
  return block;
}

TEST(SatelliteBlock, HoldsACodeForEveryChannelWithFlagsInAnEnabledBand) {
  QcSysConfig config;
  config.FreqEnable[2] = 0;
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {1})
      .Channel(1, 0, {1})
      .Channel(1, kG1W, {0})
      .Channel(2, kG2C, {})
      .Channel(2, kG2W, {1});
  sat.Channel(3, kG5Q, {1});
  const code_qc_block block = BlockOf(sat, config);
  EXPECT_EQ(block.system, kGps);
  ASSERT_EQ(block.count, 3);
  EXPECT_EQ(block.entries[0].code, kG1C);
  EXPECT_EQ(block.entries[1].code, kG1W);
  EXPECT_EQ(block.entries[2].code, kG2W);
}

TEST(SatelliteBlock, UsesTheSlotOfTheSignalTablesForTheFlags) {
  QcSysConfig config;
  config.FreqEnable[3] = 0;  // Galileo band 8 in the signal tables
  Satellite sat(kGalileo, 3);
  sat.Channel(3, kE8Q, {1}).Channel(4, kE7Q, {1});
  const code_qc_block block = BlockOf(sat, config);
  ASSERT_EQ(block.count, 1);
  EXPECT_EQ(block.entries[0].code, kE7Q);
}

TEST(SatelliteBlock, NamesTheSystemOfASatelliteWithoutEntries) {
  const code_qc_block block = BlockOf(Satellite(kGps, 3));
  EXPECT_EQ(block.system, kGps);
  EXPECT_EQ(block.count, 0);
}

TEST(SatelliteBlock, IsNeverWrittenBeyondItsEighthEntry) {
  Satellite sat(kBds, 25);
  for (const int code : {150, 151, 152}) sat.Channel(1, code, {1});
  for (const int code : {161, 162, 163}) sat.Channel(2, code, {1});
  for (const int code : {173, 174, 175}) sat.Channel(3, code, {1});
  for (const int code : {153, 154, 155}) sat.Channel(4, code, {1});
  code_qc_block blocks[2]{};
  std::memset(&blocks[1], 0x5A, sizeof(blocks[1]));
  FillSatelliteBlock(QcSysConfig(), sat.Stores(), blocks[0]);
  EXPECT_EQ(blocks[0].count, 8);
  EXPECT_EQ(blocks[0].entries[7].code, 174);
  EXPECT_EQ(blocks[1].system, 0x5A);
}

TEST(SatelliteBlock, CountsObservedAndExpectedEpochsOfTheCodeAlone) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {1, 0, 1, 1}).Expect(8);
  const code_qc_entry entry = BlockOf(sat).entries[0];
  EXPECT_EQ(entry.observed_epochs, 3u);
  EXPECT_EQ(entry.expected_epochs, 8u);
  EXPECT_EQ(entry.completeness, 0.375);
}

TEST(SatelliteBlock, HoldsCompletenessZeroWhenNothingIsExpectedAndMoreThanOneUnclamped) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {1, 1, 1});
  EXPECT_EQ(BlockOf(sat).entries[0].completeness, 0.0);
  sat.Expect(2);
  EXPECT_EQ(BlockOf(sat).entries[0].completeness, 1.5);
}

TEST(SatelliteBlock, HoldsTheSnrOfTheChannel) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {0});
  SnrChannelList& channel = sat.Snr.Channels[0][0];
  channel.Add(30.0, false, false);
  channel.Add(40.0, true, false);
  channel.Add(50.0, true, true);
  const code_qc_entry entry = BlockOf(sat).entries[0];
  EXPECT_EQ(entry.snr, 45.0);
  EXPECT_EQ(entry.snr_below30, 35.0);
  EXPECT_EQ(entry.snr_above30, 50.0);
  EXPECT_EQ(entry.snr_count, 2u);
  EXPECT_EQ(entry.snr_count_below30, 2u);
  EXPECT_EQ(entry.snr_count_above30, 1u);
}

struct TwoPartners {
  Satellite Sat{kGps, 3};
  AbsoluteMp WithC = Multipath(kG1C, kG2C, 4.0, 4, {1, 2, 3});
  AbsoluteMp WithW = Multipath(kG1C, kG2W, 36.0, 4, {1});
  AbsoluteMp OtherCode = Multipath(kG1W, kG2W, 400.0, 4);
  IodDetect SlipsC = Slips(kG1C, kG2C, {1, 2});
  IodDetect SlipsW = Slips(kG1C, kG2W, {1, 2, 3, 4, 5});
  TwoPartners(std::initializer_list<int> flags_c, std::initializer_list<int> flags_w) {
    Sat.Channel(1, kG1C, {1, 1, 1, 1}).Channel(2, kG2C, flags_c).Channel(2, kG2W, flags_w).Expect(4);
    Sat.Pair(1, OtherCode).Pair(1, WithC).Pair(1, WithW).Pair(1, SlipsC).Pair(1, SlipsW);
  }
};

TEST(SatelliteBlock, ChoosesThePairWithTheMostCompletePartner) {
  const TwoPartners w({1, 0, 0, 0}, {1, 1, 0, 0});
  EXPECT_EQ(BlockOf(w.Sat).entries[0].mp_rms, 3.0);
  EXPECT_EQ(BlockOf(w.Sat).entries[0].mp_count, 4u);
  EXPECT_EQ(BlockOf(w.Sat).entries[0].slip_count, 1);
  EXPECT_EQ(BlockOf(w.Sat).entries[0].iod_slip_count, 5u);
  const TwoPartners c({1, 1, 1, 0}, {1, 1, 0, 0});
  EXPECT_EQ(BlockOf(c.Sat).entries[0].mp_rms, 1.0);
  EXPECT_EQ(BlockOf(c.Sat).entries[0].iod_slip_count, 2u);
}

TEST(SatelliteBlock, KeepsTheFirstPairOnATieAndCountsAPartnerWithoutEntryAsZero) {
  const TwoPartners tie({1, 1, 0, 0}, {1, 1, 0, 0});
  EXPECT_EQ(BlockOf(tie.Sat).entries[0].mp_rms, 1.0);
  const TwoPartners missing({}, {});
  EXPECT_EQ(BlockOf(missing.Sat).entries[0].mp_rms, 1.0) << "zero is above the start of -1";
  const TwoPartners one({}, {1, 0, 0, 0});
  EXPECT_EQ(BlockOf(one.Sat).entries[0].mp_rms, 3.0);
}

TEST(SatelliteBlock, LeavesMultipathZeroWithoutAPair) {
  Satellite sat(kGps, 3);
  const IodDetect slips = Slips(kG1C, kG2W, {1, 2});
  sat.Channel(1, kG1C, {1, 1}).Pair(1, slips);
  const code_qc_entry entry = BlockOf(sat).entries[0];
  EXPECT_EQ(entry.mp_rms, 0.0);
  EXPECT_EQ(entry.slip_count, 0);
  EXPECT_EQ(entry.iod_slip_count, 0u);
  EXPECT_EQ(entry.obs_per_slip, 0.0);
}

TEST(SatelliteBlock, ShowsTheSlipsOfThePhaseWhenThePairHasNoValues) {
  Satellite sat(kGps, 3);
  const AbsoluteMp pair = Multipath(kG1C, kG2W, 0.0, 0, {1});
  const IodDetect slips = Slips(kG1C, kG2W, {1, 2});
  sat.Channel(1, kG1C, {1, 1, 1}).Pair(1, pair).Pair(1, slips);
  const code_qc_entry entry = BlockOf(sat).entries[0];
  EXPECT_EQ(entry.slip_count, 2);
  EXPECT_EQ(entry.mp_count, 0u);
  EXPECT_EQ(entry.obs_per_slip, 1.5);
}

TEST(SatelliteBlock, DividesObservationsBySlipsAsAFraction) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {});
  for (int i = 0; i < 1000; ++i) sat.Complete.Channels[0][0].Append(true);
  const AbsoluteMp three = Multipath(kG1C, kG2W, 1.0, 1, {1, 2, 3});
  sat.Pair(1, three);
  EXPECT_EQ(BlockOf(sat).entries[0].obs_per_slip, 1000.0 / 3.0);
  Satellite none(kGps, 3);
  const AbsoluteMp pair = Multipath(kG1C, kG2W, 1.0, 1);
  none.Channel(1, kG1C, {1, 1, 1}).Pair(1, pair);
  EXPECT_EQ(BlockOf(none).entries[0].obs_per_slip, 3.0);
}

TEST(SystemBlock, NamesItsCodesAndHoldsAtMostEight) {
  code_qc_block block{};
  StartSystemBlock(kGps, Codes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), block);
  EXPECT_EQ(block.system, kGps);
  EXPECT_EQ(block.count, 8);
  EXPECT_EQ(block.entries[7].code, 8);
}

code_qc_entry Entry(int code, std::uint64_t observed, std::uint64_t expected) {
  code_qc_entry entry{};
  entry.code = static_cast<std::uint8_t>(code);
  entry.observed_epochs = observed;
  entry.expected_epochs = expected;
  return entry;
}

code_qc_block Absorb(std::initializer_list<code_qc_entry> entries) {
  code_qc_block system{};
  StartSystemBlock(kGps, Codes({kG1C, kG2W}), system);
  for (const code_qc_entry& entry : entries) {
    code_qc_block sat{};
    sat.count = 1;
    sat.entries[0] = entry;
    AbsorbSatellite(sat, system);
  }
  return system;
}

TEST(SystemBlock, AddsEpochsOfSatellitesThatObservedTheCode) {
  const code_qc_block block =
      Absorb({Entry(kG1C, 3, 4), Entry(kG1C, 0, 100), Entry(kG1C, 5, 6), Entry(kG5Q, 9, 9)});
  EXPECT_EQ(block.entries[0].observed_epochs, 8u);
  EXPECT_EQ(block.entries[0].expected_epochs, 10u);
  EXPECT_EQ(block.entries[0].completeness, 0.8);
  EXPECT_EQ(block.entries[1].expected_epochs, 0u);
  EXPECT_EQ(Absorb({Entry(kG1C, 3, 0)}).entries[0].completeness, 0.0);
}

TEST(SystemBlock, WeighsSnrAndMultipathOfEverySatelliteEvenWithoutObservedEpochs) {
  code_qc_entry a = Entry(kG2W, 0, 10), b = Entry(kG2W, 7, 10);
  a.snr = 40.0, a.snr_count = 3, a.snr_below30 = 30.0, a.snr_count_below30 = 1;
  b.snr = 50.0, b.snr_count = 1, b.snr_below30 = 36.0, b.snr_count_below30 = 2;
  b.snr_above30 = 48.0, b.snr_count_above30 = 5;
  a.mp_rms = 2.0, a.mp_count = 1;
  b.mp_rms = 4.0, b.mp_count = 3;
  const code_qc_entry sum = Absorb({a, b}).entries[1];
  EXPECT_EQ(sum.snr, 42.5);
  EXPECT_EQ(sum.snr_count, 4u);
  EXPECT_EQ(sum.snr_below30, 34.0);
  EXPECT_EQ(sum.snr_count_below30, 3u);
  EXPECT_EQ(sum.snr_above30, 48.0);
  EXPECT_EQ(sum.snr_count_above30, 5u);
  EXPECT_EQ(sum.mp_rms, std::sqrt(52.0 / 4.0));
  EXPECT_EQ(sum.mp_count, 4u);
}

TEST(SystemBlock, AddsSlipsAndDividesAgain) {
  code_qc_entry a = Entry(kG1C, 5, 5), b = Entry(kG1C, 6, 6);
  a.slip_count = 1, a.iod_slip_count = 7;
  b.slip_count = 3, b.iod_slip_count = 2;
  const code_qc_entry sum = Absorb({a, b}).entries[0];
  EXPECT_EQ(sum.slip_count, 4);
  EXPECT_EQ(sum.iod_slip_count, 9u);
  EXPECT_EQ(sum.obs_per_slip, 11.0 / 4.0);
  EXPECT_EQ(Absorb({Entry(kG1C, 5, 5)}).entries[0].obs_per_slip, 5.0);
}

TEST(RegroupedCodes, StandInTheOrderOfTheChannelSlots) {
  QcSysConfig config;
  EXPECT_EQ(AsVector(RegroupCodes(config, kGps, Codes({kG5Q, kG2W, kG1W, kG2C, kG1C}))),
            std::vector<std::int32_t>({kG1W, kG1C, kG2W, kG2C, kG5Q}));
  EXPECT_EQ(AsVector(RegroupCodes(config, kGalileo, Codes({kE7Q, kE8Q, kE6C, kE1C}))),
            std::vector<std::int32_t>({kE1C, kE8Q, kE7Q, kE6C}));
}

TEST(RegroupedCodes, UseTheUnionOfBothBdsTables) {
  EXPECT_EQ(
      AsVector(RegroupCodes(QcSysConfig(), kBds, Codes({kC8D, kC7D, kC1P, kC6D, kC6I, kC5P, kC7I, kC2I}))),
      std::vector<std::int32_t>({kC2I, kC5P, kC7I, kC6I, kC1P, kC7D, kC8D}));
}

TEST(RegroupedCodes, UseTheChannelSlotForTheFlags) {
  QcSysConfig config;
  config.FreqEnable[2] = 0;  // Galileo band 8 among the channels, band 7 in the signal tables
  EXPECT_EQ(AsVector(RegroupCodes(config, kGalileo, Codes({kE7Q, kE8Q, kE1C}))),
            std::vector<std::int32_t>({kE1C, kE7Q}));
}

}  // namespace
}  // namespace orsolva
