#include "results/result_analysis.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using gnssqctoolkit::kBds;
using gnssqctoolkit::kGalileo;
using gnssqctoolkit::kGlonass;
using gnssqctoolkit::kGps;
using gnssqctoolkit::kQzss;

/// A whole analysis of hand-made statistics.
struct Analysis {
  std::unique_ptr<QcResult> Result = std::make_unique<QcResult>();
  QcResultCore Total;
  explicit Analysis(const RunStores& run) { QcResultAnalysis().Analyse(run.Sources(), *Result, Total); }
};

/// Satellites handed over one by one with the combinations of the run.
struct Satellites {
  std::unique_ptr<QcResult> Result = std::make_unique<QcResult>();
  const RunStores& TheRun;
  explicit Satellites(const RunStores& run) : TheRun(run) {
    QcResultAnalysis().BuildCodeCombinations(run.Sources(), run.Config, *Result);
  }
  Satellites& Add(const Satellite& sat) {
    QcResultAnalysis().AnalyseSatellite(sat.Stores(), TheRun.Config, *Result);
    return *this;
  }
};

QcEpochData Epoch(std::initializer_list<std::pair<int, std::int32_t>> signals) {
  QcEpochData epoch;
  for (const auto& [slot, code] : signals) Put(epoch, slot, Signal(code));
  return epoch;
}

std::vector<std::int32_t> FirstCombination(const QcCodeCombination& combinations) {
  return combinations.Count == 0 ? std::vector<std::int32_t>() : AsVector(combinations.Lists[0]);
}

TEST(ResultConfig, MergesTheTwoBdsRowsUnderAutomaticDetectionInACopy) {
  QcConfig config;
  config.AutoDetectFreq = 1;
  for (int f = 0; f < kBandSlots; ++f) {
    config.Sys[kSlotBds].FreqEnable[f] = f == 1 ? 1 : 0;
    config.Sys[kSlotBd3].FreqEnable[f] = f == 4 ? 1 : 0;
  }
  const QcConfig merged = QcResultAnalysis().ResultConfig(config);
  for (int f = 0; f < kBandSlots; ++f) {
    EXPECT_EQ(merged.Sys[kSlotBds].FreqEnable[f], f == 1 || f == 4);
    EXPECT_EQ(merged.Sys[kSlotBd3].FreqEnable[f], f == 1 || f == 4);
  }
  EXPECT_EQ(config.Sys[kSlotBds].FreqEnable[4], 0) << "the run's own flags stay";
  config.AutoDetectFreq = 0;
  EXPECT_EQ(QcResultAnalysis().ResultConfig(config).Sys[kSlotBds].FreqEnable[4], 0);
}

TEST(CodeCombinationsOfARun, FillEverySystemSlotFromItsOwnList) {
  RunStores run;
  run.Observed(kGps, {kG1C}).Observed(kGlonass, {kR1C}).Observed(kGalileo, {kE1C}).Observed(kQzss, {kJ1C});
  run.Observed(kBds, {kC2I, kC1P, kC5P, kC7I, kC6I});
  const Satellites result(run);
  EXPECT_EQ(FirstCombination(result.Result->All[kSlotGps].Combinations), std::vector<std::int32_t>({kG1C}));
  EXPECT_EQ(FirstCombination(result.Result->All[kSlotGlonass].Combinations),
            std::vector<std::int32_t>({kR1C}));
  EXPECT_EQ(FirstCombination(result.Result->All[kSlotGalileo].Combinations),
            std::vector<std::int32_t>({kE1C}));
  EXPECT_EQ(FirstCombination(result.Result->All[kSlotQzss].Combinations), std::vector<std::int32_t>({kJ1C}));
  EXPECT_EQ(FirstCombination(result.Result->All[kSlotBds].Combinations),
            std::vector<std::int32_t>({kC6I, kC7I, kC2I}));
  EXPECT_EQ(FirstCombination(result.Result->All[kSlotBd3].Combinations),
            std::vector<std::int32_t>({kC5P, kC1P, kC6I, kC2I}));
  EXPECT_EQ(FirstCombination(result.Result->All[kSlotBd3].AltCombinations),
            std::vector<std::int32_t>({kC6I, kC2I}));
  EXPECT_EQ(result.Result->All[kSlotGps].AltCombinations.Count, 0);
}

TEST(CodeCombinationsOfARun, FollowTheRowOfTheirOwnBdsGeneration) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC6I});
  run.Config.Sys[kSlotBds].FreqEnable[2] = 0;
  const Satellites newer(run);
  EXPECT_EQ(FirstCombination(newer.Result->All[kSlotBds].Combinations), std::vector<std::int32_t>({kC2I}));
  EXPECT_EQ(FirstCombination(newer.Result->All[kSlotBd3].Combinations),
            std::vector<std::int32_t>({kC6I, kC2I}));
  run.Config.Sys[kSlotBds].FreqEnable[2] = 1;
  run.Config.Sys[kSlotBd3].FreqEnable[2] = 0;
  const Satellites older(run);
  EXPECT_EQ(FirstCombination(older.Result->All[kSlotBds].Combinations),
            std::vector<std::int32_t>({kC6I, kC2I}));
  EXPECT_EQ(FirstCombination(older.Result->All[kSlotBd3].Combinations), std::vector<std::int32_t>({kC2I}));
  EXPECT_EQ(FirstCombination(older.Result->All[kSlotBd3].AltCombinations), std::vector<std::int32_t>({kC2I}));
}

TEST(SatelliteAnalysis, SkipsASatelliteWithoutAUsableBand) {
  RunStores run;
  run.Observed(kGps, {kG1C, kG2W});
  Satellites result(run);
  Satellite sat(kGps, 3);
  sat.Channel(1, kG1C, {0, 0}).Channel(2, kG2W, {}).Expect(2);
  result.Add(sat);
  EXPECT_EQ(result.Result->All[kSlotGps].System, kGps) << "the slot is named all the same";
  EXPECT_EQ(result.Result->All[kSlotGps].PerSat[2][0].System, 0);
  EXPECT_EQ(result.Result->All[kSlotGps].PerComb[0].ExpectedEpochs, 0u);
}

TEST(SatelliteAnalysis, PoolsASingleFrequencySatelliteIntoTheFirstCombination) {
  RunStores run;
  run.Observed(kGps, {kG1C, kG2W});
  Satellites result(run);
  Satellite both(kGps, 3), single(kGps, 4);
  both.Channel(1, kG1C, {1, 1, 1}).Channel(2, kG2W, {1, 1, 0}).Expect(3);
  single.Channel(1, kG1C, {1, 0, 1, 1}).Channel(2, kG2W, {0, 0, 0, 0}).Expect(4);
  result.Add(both).Add(single);
  const QcSysAllResult& gps = result.Result->All[kSlotGps];
  EXPECT_EQ(gps.PerSat[2][0].ObservedEpochs, 2u);
  EXPECT_EQ(gps.PerSat[3][0].ObservedEpochs, 3u);
  EXPECT_EQ(gps.PerComb[0].ObservedEpochs, 5u);
  EXPECT_EQ(gps.PerComb[0].ExpectedEpochs, 7u);
}

TEST(SatelliteAnalysis, GivesASatelliteOfOneBandACombinationPerUsableCode) {
  RunStores run;
  run.Observed(kGps, {kG1C, kG1W, kG2W});
  Satellites result(run);
  Satellite sat(kGps, 4);
  sat.Channel(1, 5, {0, 0}).Channel(1, kG1C, {1, 1}).Channel(1, kG1W, {1, 0}).Expect(2);
  result.Add(sat);
  const QcResultCore* figures = result.Result->All[kSlotGps].PerSat[3];
  EXPECT_EQ(figures[0].ObservedEpochs, 2u);
  EXPECT_EQ(figures[1].ObservedEpochs, 1u);
  EXPECT_EQ(figures[2].System, 0);
}

TEST(SatelliteAnalysis, EvaluatesAllCombinationsBeforeItPools) {
  RunStores run;
  run.Observed(kGps, {kG1C, kG1W, kG2W});
  Satellites result(run);
  Satellite sat(kGps, 4);
  sat.Channel(1, kG1C, {0, 0}).Channel(1, kG1W, {1, 1}).Channel(2, kG2W, {1, 1}).Expect(2);
  result.Add(sat);
  EXPECT_EQ(result.Result->All[kSlotGps].PerSat[3][0].ObservedEpochs, 0u);
  EXPECT_EQ(result.Result->All[kSlotGps].PerComb[0].ObservedEpochs, 2u) << "from the second combination";
}

TEST(SatelliteAnalysis, KeepsTheFiguresOfBds3InTheSlotOfBds) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC5P, kC7I, kC6I});
  Satellites result(run);
  Satellite sat(kBds, 25);
  sat.Channel(1, kC2I, {1, 1}).Channel(2, kC5P, {1, 1}).Channel(3, kC6I, {1, 0}).Expect(2);
  result.Add(sat);
  EXPECT_EQ(result.Result->All[kSlotBd3].System, kBds);
  EXPECT_EQ(result.Result->All[kSlotBds].PerSat[24][0].ObservedEpochs, 1u);
  EXPECT_EQ(result.Result->All[kSlotBds].PerSat[24][0].Snr[4].Code, kC5P) << "the shifted channel";
  EXPECT_EQ(result.Result->All[kSlotBd3].PerSat[24][0].System, 0);
  EXPECT_EQ(result.Result->All[kSlotBds].PerComb[0].ExpectedEpochs, 2u);
}

TEST(SatelliteAnalysis, DoesNotNameTheBds3SlotForOlderSatellites) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC7I});
  Satellites result(run);
  Satellite sat(kBds, 17);
  sat.Channel(1, kC2I, {1}).Channel(2, kC7I, {1}).Expect(1);
  result.Add(sat);
  EXPECT_EQ(result.Result->All[kSlotBd3].System, 0);
  EXPECT_EQ(result.Result->All[kSlotBds].PerSat[16][0].ObservedEpochs, 1u);
}

TEST(SatelliteAnalysis, GivesGeostationaryBds60ItsOwnCombinationsAndDoesNotShiftItsBands) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC5P, kC6I});
  Satellites result(run);
  Satellite sat(kBds, 60);
  sat.Channel(1, kC2I, {1, 1}).Channel(2, kC5P, {0, 0}).Channel(3, kC6I, {1, 1}).Expect(2);
  result.Add(sat);
  const QcResultCore& figures = result.Result->All[kSlotBds].PerSat[59][0];
  EXPECT_EQ(figures.ObservedEpochs, 2u) << "band 5 takes no part";
  EXPECT_EQ(figures.Snr[4].Code, 0);
  EXPECT_EQ(figures.Snr[2].Code, kC6I);
}

Satellite Bds3Of2Bands() {
  Satellite sat(kBds, 25);
  sat.Channel(1, kC2I, {1}).Channel(3, kC6I, {1}).Expect(1);
  return sat;
}

TEST(SatelliteAnalysis, CountsTheBandsOfABds3SatelliteByTheFlagsOfTheBdsRow) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC6I});
  run.Config.Sys[kSlotBds].FreqEnable[2] = 0;
  Satellites result(run);
  result.Add(Bds3Of2Bands());
  EXPECT_EQ(result.Result->All[kSlotBd3].System, 0) << "one band: evaluated by its single code";
  EXPECT_EQ(result.Result->All[kSlotBds].PerSat[24][0].ObservedEpochs, 1u);
  EXPECT_EQ(result.Result->All[kSlotBds].PerSat[24][0].Snr[2].Code, 0);
}

TEST(SatelliteAnalysis, GivesABds3SatelliteNothingWhenItsOwnRowIsOff) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC6I});
  for (std::uint8_t& flag : run.Config.Sys[kSlotBd3].FreqEnable) flag = 0;
  Satellites result(run);
  result.Add(Bds3Of2Bands());
  EXPECT_EQ(result.Result->All[kSlotBd3].System, kBds);
  EXPECT_EQ(result.Result->All[kSlotBds].PerSat[24][0].System, 0);
}

TEST(ResultAnalysis, GivesTheSameResultAgainAndAgain) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC5P, kC7D, kC6I});
  run.Track(kBds, 25, Epoch({{0, kC2I}, {1, kC5P}, {2, kC6I}, {4, kC7D}}), 3);
  for (int i = 0; i < 3; ++i) {
    const Analysis again(run);
    const QcResultCore& sat = again.Result->Optimal[kSlotBds].PerSat[24];
    EXPECT_EQ(sat.ObservedEpochs, 3u);
    const QcResultCore& figures = again.Result->All[kSlotBds].PerSat[24][0];
    EXPECT_EQ(figures.ObservedEpochs, 3u);
    EXPECT_EQ(figures.Snr[5].Code, kC7D);
    EXPECT_EQ(figures.Snr[4].Code, kC5P);
  }
}

TEST(ResultAnalysis, WalksTheSatellitesOfTheFiveSystems) {
  RunStores run;
  run.Observed(kGps, {kG1C}).Observed(kQzss, {kJ1C});
  run.Track(kGps, 35, Epoch({{0, kG1C}}), 4);
  run.Track(kQzss, 10, Epoch({{0, kJ1C}}), 3);
  const Analysis analysis(run);
  EXPECT_EQ(analysis.Result->Optimal[kSlotGps].PerSat[34].ObservedEpochs, 4u);
  EXPECT_EQ(analysis.Result->Optimal[kSlotQzss].PerSat[9].ObservedEpochs, 3u);
  EXPECT_EQ(analysis.Result->All[kSlotGlonass].System, kGlonass);
  EXPECT_EQ(analysis.Total.ObservedEpochs, 7u);
}

TEST(ResultAnalysis, FinishesTheFiguresOfEverySystem) {
  RunStores run;
  run.Observed(kGps, {kG1C});
  run.Track(kGps, 1, Epoch({{0, kG1C}}), 4).Track(kGps, 2, Epoch({}), 4);
  const Analysis analysis(run);
  const QcResultCore& gps = analysis.Result->Optimal[kSlotGps].Sys;
  EXPECT_EQ(gps.ExpectedEpochs, 4u) << "a satellite without a usable band is left out";
  EXPECT_EQ(gps.Completeness, 1.0);
  EXPECT_EQ(gps.Snr[0].AboveMaskMean, 45.0);
}

TEST(ResultAnalysis, CombinesSystemsThatAreEnabledAndChosen) {
  RunStores run;
  run.Observed(kGps, {kG1C}).Observed(kGlonass, {kR1C}).Observed(kGalileo, {kE1C});
  run.Track(kGps, 1, Epoch({{0, kG1C}}), 1).Track(kGlonass, 1, Epoch({{0, kR1C}}), 10);
  run.Track(kGalileo, 1, Epoch({{0, kE1C}}), 100);
  EXPECT_EQ(Analysis(run).Total.ObservedEpochs, 111u);
  run.CombinationMask = 1 + 2;
  EXPECT_EQ(Analysis(run).Total.ObservedEpochs, 11u);
  run.Config.SystemMask = 2 + 8;
  EXPECT_EQ(Analysis(run).Total.ObservedEpochs, 10u);
  EXPECT_EQ(Analysis(run).Result->Optimal[kSlotGps].Sys.ObservedEpochs, 1u)
      << "the systems' own figures stay";
}

TEST(ResultAnalysis, ShowsNoBdsWithoutACodeOfTheOlderSatellites) {
  RunStores run;
  run.Observed(kBds, {kC1P, kC5P, kC7D, kC8D, kC6D});
  run.Track(kBds, 25, Epoch({{3, kC1P}, {4, kC5P}}), 7);
  const Analysis newer(run);
  EXPECT_EQ(newer.Result->All[kSlotBds].PerComb[0].ExpectedEpochs, 7u) << "the satellite is evaluated";
  EXPECT_EQ(newer.Result->Optimal[kSlotBds].System, 0);
  EXPECT_EQ(newer.Result->Optimal[kSlotBds].Sys.ExpectedEpochs, 0u);
  EXPECT_EQ(newer.Result->Optimal[kSlotBds].PerSat[24].ExpectedEpochs, 0u);
  EXPECT_EQ(newer.Result->Optimal[kSlotBd3].PerSat[24].ExpectedEpochs, 0u);
  EXPECT_EQ(newer.Total.ExpectedEpochs, 0u);
  run.Observed(kBds, {kC6I});
  EXPECT_EQ(Analysis(run).Total.ExpectedEpochs, 7u);
}

TEST(ResultAnalysis, MergesNoSystemWithoutAnOptimalResult) {
  const auto result = std::make_unique<QcResult>();
  QcSysAllResult& gps = result->All[kSlotGps];
  gps.System = kGps;
  gps.Combinations.Count = 1;
  gps.PerComb[0].System = kGps;
  gps.PerComb[0].Mp[0].MpRms = 1.86;
  gps.PerComb[0].Mp[0].MpCount = 37;
  QcResultCore total, once;
  QcResultAnalysis().ChooseAndCombine(31, *result, total);
  MergeSystem(gps.PerComb[0], once);
  EXPECT_EQ(total.Mp[0].MpRms, once.Mp[0].MpRms);
  QcResultCore again = once;
  MergeSystem(QcResultCore(), again);
  EXPECT_NE(again.Mp[0].MpRms, once.Mp[0].MpRms) << "an empty system would round the mean again";
}

TEST(ResultAnalysis, NeverMergesTheBds3Slot) {
  const auto result = std::make_unique<QcResult>();
  result->All[kSlotBd3].Combinations.Count = 1;
  result->All[kSlotBd3].PerComb[0].ExpectedEpochs = 5;
  QcResultCore total;
  QcResultAnalysis().ChooseAndCombine(0xFFFFFFFFu, *result, total);
  EXPECT_EQ(result->Optimal[kSlotBd3].Sys.ExpectedEpochs, 5u);
  EXPECT_EQ(total.ExpectedEpochs, 0u);
}

TEST(RunFigures, CountNominalEpochsFromSpanAndInterval) {
  RunStores run;
  run.First = {1000, 0.25};
  run.Last = {1090, 0.25};
  run.Interval = 30.0;
  run.EpochCount = 3;
  const Analysis analysis(run);
  EXPECT_EQ(analysis.Result->LostEpochs, 1);
  EXPECT_EQ(analysis.Result->DurationHours, 90.0 / 3600.0);
  EXPECT_EQ(analysis.Result->StartTime.time, 1000);
  EXPECT_EQ(analysis.Result->StartTime.sec, 0.25);
  EXPECT_EQ(analysis.Result->EndTime.time, 1090);
  EXPECT_EQ(analysis.Result->StationXyz[2], 4801568.0);
}

TEST(RunFigures, RoundSpanAndIntervalToAMillisecond) {
  RunStores run;
  run.First = {1000, 0.0};
  run.Last = {1089, 0.9996};
  run.Interval = 30.0004;
  run.EpochCount = 4;
  const Analysis analysis(run);
  EXPECT_EQ(analysis.Result->Interval, 30.0);
  EXPECT_EQ(analysis.Result->DurationHours, 90.0 / 3600.0);
  EXPECT_EQ(analysis.Result->LostEpochs, 0);
}

TEST(RunFigures, RoundHalvesOfAMillisecondAwayFromZero) {
  RunStores run;
  run.Interval = 0.0625;  // 62.5 ms, exact in binary
  EXPECT_EQ(Analysis(run).Result->Interval, 0.063);
}

TEST(RunFigures, LoseOneEpochBeforeAnyBatch) {
  const Analysis analysis{RunStores()};
  EXPECT_EQ(analysis.Result->LostEpochs, 1);
  EXPECT_EQ(analysis.Result->DurationHours, 0.0);
  EXPECT_EQ(analysis.Result->Interval, 1.0);
  EXPECT_EQ(analysis.Total.ExpectedEpochs, 0u);
  EXPECT_EQ(analysis.Total.Completeness, 0.0);
}

TEST(RunFigures, LoseNothingWithoutAnInterval) {
  RunStores run;
  run.Interval = 1e-9;
  run.EpochCount = 5;
  run.Last = {1000000, 0.0};
  const Analysis analysis(run);
  EXPECT_EQ(analysis.Result->Interval, 0.0);
  EXPECT_EQ(analysis.Result->LostEpochs, 0);
}

TEST(RunFigures, AreNegativeWithMoreEpochsThanTheSpanAllows) {
  RunStores run;
  run.First = {1000, 0.0};
  run.Last = {1001, 0.0};
  run.EpochCount = 5;
  EXPECT_EQ(Analysis(run).Result->LostEpochs, -3);
}

std::int32_t LostEpochs(const RunStores& run) { return Analysis(run).Result->LostEpochs; }

TEST(RunFigures, StayWithinTheirRangeWhateverTheTimes) {
  RunStores run;
  run.Interval = 0.001;
  run.First = {1, 0.0};
  run.Last = {std::numeric_limits<std::int64_t>::max(), 0.0};
  EXPECT_EQ(LostEpochs(run), std::numeric_limits<std::int32_t>::max());
  run.Last = {std::numeric_limits<std::int64_t>::min() + 1, 0.0};
  run.EpochCount = std::numeric_limits<std::uint32_t>::max();
  EXPECT_EQ(LostEpochs(run), std::numeric_limits<std::int32_t>::min());
}

TEST(RunFigures, CountNoNominalEpochsOverASpanThatIsNoNumber) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  RunStores run;
  run.EpochCount = 2;
  run.Last = {5, nan};
  EXPECT_EQ(LostEpochs(run), -2);
  run.Last = {5, infinity};
  EXPECT_EQ(LostEpochs(run), std::numeric_limits<std::int32_t>::max() - 2);
  run.Interval = infinity;
  EXPECT_EQ(LostEpochs(run), -2);
  run.Interval = nan;
  EXPECT_EQ(LostEpochs(run), 0);
}

TEST(SatUsed, WidensTheSignedFlag) {
  RunStores run;
  run.Usable[0] = 255;
  run.Usable[1] = 0;
  const Analysis analysis(run);
  EXPECT_EQ(analysis.Result->SatUsed[kSlotGps][0], 4294967295u);
  EXPECT_EQ(analysis.Result->SatUsed[kSlotGps][1], 0u);
  EXPECT_EQ(analysis.Result->SatUsed[kSlotGps][2], 1u);
}

TEST(SatUsed, PutsBds18AndAboveIntoTheirOwnSlot) {
  RunStores run;
  std::memset(run.Usable, 7, sizeof(run.Usable));
  const Analysis analysis(run);
  for (int prn = 1; prn <= 64; ++prn) {
    EXPECT_EQ(analysis.Result->SatUsed[kSlotBds][prn - 1], prn < 18 ? 7u : 1u) << prn;
    EXPECT_EQ(analysis.Result->SatUsed[kSlotBd3][prn - 1], prn < 18 ? 1u : 7u) << prn;
  }
}

TEST(SatUsed, StaysOneForNumbersWithoutASatellite) {
  RunStores run;
  std::memset(run.Usable, 7, sizeof(run.Usable));
  const Analysis analysis(run);
  const auto used = [&analysis](int slot, int prn) { return analysis.Result->SatUsed[slot][prn - 1]; };
  EXPECT_EQ(used(kSlotGps, 35), 7u);
  EXPECT_EQ(used(kSlotGps, 36), 1u);
  EXPECT_EQ(used(kSlotGlonass, 32), 7u);
  EXPECT_EQ(used(kSlotGlonass, 33), 1u);
  EXPECT_EQ(used(kSlotGalileo, 37), 7u);
  EXPECT_EQ(used(kSlotGalileo, 38), 1u);
  EXPECT_EQ(used(kSlotQzss, 10), 7u);
  EXPECT_EQ(used(kSlotQzss, 11), 1u);
}

}  // namespace
}  // namespace orsolva
