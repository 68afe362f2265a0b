#include "results/satellite_figures.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using gnssqctoolkit::kBds;
using gnssqctoolkit::kGalileo;
using gnssqctoolkit::kGlonass;
using gnssqctoolkit::kGps;
using gnssqctoolkit::kQzss;

TEST(ObservedTogether, CountsTheEpochsAtWhichEveryCodeWasObserved) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {1, 1, 0, 1}).Channel(2, kG2W, {1, 0, 1, 1});
  EXPECT_EQ(Together(sat, Codes({kG2W, kG1C})), 2u);
  EXPECT_EQ(Together(sat, Codes({kG1C})), 3u);
}

TEST(ObservedTogether, IsZeroWithoutAChannelOrWithoutFlags) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {1, 1}).Channel(2, kG2W, {});
  EXPECT_EQ(Together(sat, Codes({kG2W, kG1C})), 0u);
  EXPECT_EQ(Together(sat, Codes({kG2C, kG1C})), 0u);
  EXPECT_EQ(Together(sat, Codes({})), 0u);
}

TEST(ObservedTogether, TakesMissingFlagsOfAShorterListAsNotObserved) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {1, 1, 1}).Channel(2, kG2W, {1, 1});
  EXPECT_EQ(Together(sat, Codes({kG1C, kG2W})), 2u);
  EXPECT_EQ(Together(sat, Codes({kG2W, kG1C})), 2u);
}

TEST(ObservedTogether, IsNotLoweredByAnL5CodeOfSeveral) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {1, 1, 1}).Channel(2, kG2W, {1, 1, 1}).Channel(3, kG5Q, {0, 0, 1});
  EXPECT_EQ(Together(sat, Codes({kG5Q, kG2W, kG1C})), 3u);
  EXPECT_EQ(Together(sat, Codes({kG5Q})), 1u) << "alone it counts";
  EXPECT_EQ(Together(sat, Codes({kG5Q, kG5I})), 0u) << "nothing is left to count";
}

TEST(ObservedTogether, LeavesOutTheBandsOfTheOtherSystemsToo) {
  Satellite glonass(kGlonass, 3);
  glonass.Channel(1, kR1C, {1, 1});
  EXPECT_EQ(Together(glonass, Codes({kR3I, kR1C})), 2u);
  Satellite qzss(kQzss, 3);
  qzss.Channel(1, kJ1C, {1, 1}).Channel(3, kJ5Q, {0, 0}).Channel(4, kJ6L, {0, 0});
  EXPECT_EQ(Together(qzss, Codes({kJ6L, kJ5Q, kJ1C})), 2u);
  Satellite bds2(kBds, 17);
  bds2.Channel(1, kC2I, {1, 1});
  EXPECT_EQ(Together(bds2, Codes({kC5P, kC1P, kC7D, kC8D, kC6D, kC2I})), 2u);
}

TEST(ObservedTogether, KeepsAllCodesOfBds18) {
  for (const int prn : {17, 18, 19}) {
    Satellite sat(kBds, prn);
    sat.Channel(1, kC2I, {1, 1});
    EXPECT_EQ(Together(sat, Codes({kC1P, kC2I})), prn == 17 ? 2u : 0u);
    EXPECT_EQ(Together(sat, Codes({kC7I, kC2I})), prn == 19 ? 2u : 0u);
  }
}

TEST(ObservedTogether, FindsGalileoBands7And8NotInTheirSwappedChannels) {
  Satellite sat(kGalileo, 3);
  sat.Channel(1, kE1C, {1, 1}).Channel(3, kE8Q, {1, 1}).Channel(4, kE7Q, {1, 1});
  EXPECT_EQ(Together(sat, Codes({kE8Q, kE1C})), 0u);
  EXPECT_EQ(Together(sat, Codes({kE7Q, kE1C})), 0u);
  EXPECT_EQ(Together(sat, Codes({kE1C})), 2u);
}

TEST(SatelliteView, ShiftsTheChannelsOfABds3Satellite) {
  Satellite sat(kBds, 25);
  sat.Channel(1, kC2I, {1}).Channel(2, kC5P, {1, 1}).Channel(5, kC7D, {1, 1, 1}).Channel(6, kC8D, {1, 1});
  EXPECT_EQ(Together(sat, Codes({kC5P}), true), 2u);
  EXPECT_EQ(Together(sat, Codes({kC7D}), true), 3u);
  EXPECT_EQ(Together(sat, Codes({kC2I}), true), 1u);
  EXPECT_EQ(Together(sat, Codes({kC8D}), true), 0u) << "band 8 has given its slot to band 7";
  EXPECT_EQ(Together(sat, Codes({kC5P}), false), 0u);
  EXPECT_EQ(Together(sat, Codes({kC7D}), false), 0u);
}

TEST(SatelliteView, ShiftsSnrAsWell) {
  Satellite sat(kBds, 25);
  sat.Channel(2, kC5P, {1}, 46.0).Channel(5, kC7D, {1}, 47.0);
  const QcResultCore core = Evaluate(sat, Codes({kC7D, kC5P}), true);
  EXPECT_EQ(core.Snr[4].AboveMaskMean, 46.0);
  EXPECT_EQ(core.Snr[5].AboveMaskMean, 47.0);
}

TEST(SatelliteView, LeavesTheStatisticsAsTheyAre) {
  Satellite sat(kBds, 25);
  sat.Channel(2, kC5P, {1, 1}).Channel(5, kC7D, {1});
  Evaluate(sat, Codes({kC5P}), true);
  EXPECT_EQ(sat.Complete.Channels[1][0].Code, kC5P);
  EXPECT_EQ(sat.Complete.Channels[1][0].Flags.Count(), 2);
  EXPECT_EQ(sat.Complete.CodeCount[5], 0);
  EXPECT_EQ(sat.Snr.Channels[4][0].Code, kC7D);
}

TEST(EvaluateCombination, GivesCompletenessAndNoDivisionWithoutExpectedEpochs) {
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {1, 1, 0}).Expect(4);
  const QcResultCore core = Evaluate(sat, Codes({kG1C}));
  EXPECT_EQ(core.System, kGps);
  EXPECT_EQ(core.ExpectedEpochs, 4u);
  EXPECT_EQ(core.ObservedEpochs, 2u);
  EXPECT_EQ(core.Completeness, 0.5);
  EXPECT_EQ(Evaluate(Satellite(kGps, 3), Codes({kG1C})).Completeness, 0.0);
}

TEST(EvaluateCombination, WritesSnrOfEachCodeIntoItsSlotAndLeavesTheOthers) {
  Satellite sat(kGps, 3);
  sat.Channel(2, kG2W, {});
  SnrChannelList& channel = sat.Snr.Channels[1][0];
  channel.Add(30.0, false, false);
  channel.Add(40.0, true, false);
  channel.Add(50.0, true, true);
  const QcResultCore core = Evaluate(sat, Codes({kG2W, kG1C}));
  const QcSnrResult& snr = core.Snr[1];
  EXPECT_EQ(snr.Code, kG2W);
  EXPECT_EQ(snr.AboveMaskCount, 2u);
  EXPECT_EQ(snr.BelowMaskCount, 1u);
  EXPECT_EQ(snr.AboveMaskMean, 45.0);
  EXPECT_EQ(snr.BelowMaskMean, 30.0);
  EXPECT_EQ(snr.Mean, 40.0);
  EXPECT_EQ(snr.Above30Count, 1u);
  EXPECT_EQ(snr.Below30Count, 2u);
  EXPECT_EQ(snr.Above30Mean, 50.0);
  EXPECT_EQ(snr.Below30Mean, 35.0);
  EXPECT_NEAR(snr.StdDev, 10.0, 1e-12);
  EXPECT_EQ(core.Snr[0].Code, 0);
}

TEST(EvaluateCombination, TakesTheFirstPairThatLiesWithinTheCombination) {
  Satellite sat(kGps, 3);
  const AbsoluteMp other = Multipath(kG1C, kG2C, 100.0, 1);
  const AbsoluteMp first = Multipath(kG1C, kG2W, 8.0, 2, {10});
  const AbsoluteMp later = Multipath(kG1C, kG2W, 100.0, 1);
  sat.Pair(1, other).Pair(1, first).Pair(1, later);
  const QcMpIodResult mp = Evaluate(sat, Codes({kG2W, kG1C})).Mp[0];
  EXPECT_EQ(mp.Code1, kG1C);
  EXPECT_EQ(mp.Code2, kG2W);
  EXPECT_EQ(mp.BandSlot, 1);
  EXPECT_EQ(mp.BandSlot1, 1);
  EXPECT_EQ(mp.BandSlot2, 2);
  EXPECT_EQ(mp.MpRms, 2.0);
  EXPECT_EQ(mp.MpCount, 2u);
  EXPECT_EQ(mp.JumpCount, 1u);
}

TEST(EvaluateCombination, AsksASingleCodeForNoPartner) {
  Satellite sat(kGps, 3);
  const AbsoluteMp pair = Multipath(kG1C, kG2C, 9.0, 1);
  sat.Pair(1, pair);
  EXPECT_EQ(Evaluate(sat, Codes({kG1C})).Mp[0].MpRms, 3.0);
  EXPECT_EQ(Evaluate(sat, Codes({kG2W, kG1C})).Mp[0].Code1, 0);
}

TEST(EvaluateCombination, GivesNoRmsWithoutValues) {
  Satellite sat(kGps, 3);
  const AbsoluteMp pair = Multipath(kG1C, kG2C, 0.0, 0);
  sat.Pair(1, pair);
  const QcMpIodResult mp = Evaluate(sat, Codes({kG1C})).Mp[0];
  EXPECT_EQ(mp.MpRms, 0.0);
  EXPECT_EQ(mp.MpCount, 0u);
  EXPECT_EQ(mp.Code1, kG1C);
}

TEST(EvaluateCombination, TakesTheIonosphericRecordOfTheSamePair) {
  Satellite sat(kGps, 3);
  const AbsoluteMp pair = Multipath(kG1C, kG2W, 9.0, 1);
  const IodDetect other = Slips(kG1C, kG2C, {1, 2, 3}, 100.0);
  const IodDetect same = Slips(kG1C, kG2W, {5, 6}, 0.25);
  sat.Pair(1, pair).Pair(1, other).Pair(1, same);
  const QcMpIodResult mp = Evaluate(sat, Codes({kG2W, kG1C})).Mp[0];
  EXPECT_EQ(mp.SlipCount, 2u);
  EXPECT_EQ(mp.SlipTimes, &same.SlipTimes);
  EXPECT_EQ(mp.IodRms, 0.5);
}

TEST(EvaluateCombination, CountsDistinctSlipEpochsOverAllSlots) {
  Satellite sat(kQzss, 3);
  const AbsoluteMp p1 = Multipath(kJ1C, kJ2L, 1.0, 1), p2 = Multipath(kJ2L, kJ1C, 1.0, 1);
  const AbsoluteMp p4 = Multipath(kJ6L, kJ1C, 1.0, 1);
  const IodDetect s1 = Slips(kJ1C, kJ2L, {10, 20}), s2 = Slips(kJ2L, kJ1C, {20, 30});
  const IodDetect s4 = Slips(kJ6L, kJ1C, {40});
  sat.Pair(1, p1).Pair(2, p2).Pair(4, p4).Pair(1, s1).Pair(2, s2).Pair(4, s4);
  EXPECT_EQ(Evaluate(sat, Codes({kJ6L, kJ2L, kJ1C})).SlipEpochs, 4u);
}

Satellite ThreeBands(std::uint8_t system, const AbsoluteMp& a, const AbsoluteMp& b, const AbsoluteMp& c) {
  Satellite sat(system, 3);
  sat.Pair(1, a).Pair(2, b).Pair(3, c);
  return sat;
}

TEST(EvaluateCombination, CountsJumpsOfTheThirdBandForGpsOnly) {
  const AbsoluteMp g1 = Multipath(kG1C, kG2W, 1.0, 1, {10}), g2 = Multipath(kG2W, kG1C, 1.0, 1, {10, 20});
  const AbsoluteMp g3 = Multipath(kG5Q, kG1C, 1.0, 1, {30});
  EXPECT_EQ(Evaluate(ThreeBands(kGps, g1, g2, g3), Codes({kG5Q, kG2W, kG1C})).JumpEpochs, 3u);
  const AbsoluteMp j1 = Multipath(kJ1C, kJ2L, 1.0, 1, {10}), j2 = Multipath(kJ2L, kJ1C, 1.0, 1, {10, 20});
  const AbsoluteMp j3 = Multipath(kJ5Q, kJ1C, 1.0, 1, {30});
  EXPECT_EQ(Evaluate(ThreeBands(kQzss, j1, j2, j3), Codes({kJ5Q, kJ2L, kJ1C})).JumpEpochs, 2u);
}

TEST(EvaluateCombination, ShowsTheSlipsOfASingleCodeAsItsJumps) {
  Satellite sat(kGps, 3);
  const AbsoluteMp pair = Multipath(kG1C, kG2W, 1.0, 1, {10, 20, 30});
  const IodDetect slips = Slips(kG1C, kG2W, {40, 50});
  sat.Pair(1, pair).Pair(1, slips);
  EXPECT_EQ(Evaluate(sat, Codes({kG1C})).JumpEpochs, 2u);
}

TEST(EvaluateCombination, DividesObservedEpochsByJumps) {
  Satellite sat(kGps, 3);
  const AbsoluteMp pair = Multipath(kG1C, kG2W, 1.0, 1, {10, 20});
  sat.Pair(1, pair).Channel(1, kG1C, {1, 1, 1, 1, 1}).Channel(2, kG2W, {1, 1, 1, 1, 1});
  EXPECT_EQ(Evaluate(sat, Codes({kG2W, kG1C})).ObsPerSlip, 2.0);
}

TEST(UsableCodes, NeedAnEnabledBandFlagsAndAValidObservation) {
  QcSysConfig config;
  config.FreqEnable[2] = 0;
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {0, 1}).Channel(1, kG1W, {0, 0}).Channel(2, kG2C, {}).Channel(2, kG2W, {1});
  sat.Channel(3, kG5Q, {1, 1});
  const UsableCodes usable = FindUsableCodes(config, sat.Stores());
  EXPECT_EQ(usable.BandCount, 2);
  EXPECT_EQ(AsVector(usable.Codes), std::vector<std::int32_t>({kG1C, kG2W}));
}

TEST(UsableCodes, CountABandOnceAndUseTheCodesOwnSlot) {
  QcSysConfig config;
  Satellite sat(kBds, 25);
  sat.Channel(2, kC5P, {1}).Channel(2, 161, {1});
  EXPECT_EQ(FindUsableCodes(config, sat.Stores()).BandCount, 1);
  config.FreqEnable[1] = 0;  // the slot of the channel
  EXPECT_EQ(FindUsableCodes(config, sat.Stores()).BandCount, 1);
  config.FreqEnable[4] = 0;  // the slot of band 5 in the signal tables
  EXPECT_EQ(FindUsableCodes(config, sat.Stores()).BandCount, 0);
}

}  // namespace
}  // namespace orsolva
