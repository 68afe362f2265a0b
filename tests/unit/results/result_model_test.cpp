#include "results/result_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;

/// Figures of a satellite with something in every field.
QcResultCore SomeFigures(std::uint32_t seed) {
  std::mt19937 random(seed);
  const auto count = [&random] { return static_cast<std::uint64_t>(random() % 1000 + 1); };
  const auto value = [&random] { return static_cast<double>(random() % 10000) / 128.0; };
  QcResultCore core;
  core.System = 1;
  core.ExpectedEpochs = count();
  core.ObservedEpochs = count();
  core.SlipEpochs = count();
  core.JumpEpochs = count();
  for (int b = 0; b < kBandSlots; ++b) {
    core.Mp[b].MpRms = value();
    core.Mp[b].MpCount = count();
    core.Mp[b].SlipCount = count();
    core.Mp[b].JumpCount = count();
    core.Mp[b].IodRms = value();
    core.Snr[b].AboveMaskCount = count();
    core.Snr[b].BelowMaskCount = count();
    core.Snr[b].Above30Count = count();
    core.Snr[b].Below30Count = count();
    core.Snr[b].AboveMaskMean = value();
    core.Snr[b].BelowMaskMean = value();
    core.Snr[b].Above30Mean = value();
    core.Snr[b].Below30Mean = value();
    core.Snr[b].StdDev = value();
  }
  return core;
}

/// One satellite with figures for combination 0 alone.
struct OneCombination {
  QcResultCore All[kMaxCombinations];
  explicit OneCombination(const QcResultCore& core) { All[0] = core; }
};

QcResultCore Pool(const std::vector<QcResultCore>& satellites) {
  QcResultCore pool;
  for (const QcResultCore& core : satellites) PoolSatellite(OneCombination(core).All, 0, pool);
  FinishPool(pool);
  return pool;
}

TEST(QcResult, StartsWithZeroFiguresAndAllSatellitesUsed) {
  const auto result = std::make_unique<QcResult>();
  EXPECT_EQ(result->LostEpochs, 0);
  EXPECT_EQ(result->DurationHours, 0.0);
  for (int s = 0; s < kSystemSlots; ++s) {
    EXPECT_EQ(result->All[s].Combinations.Count, 0);
    for (int i = 0; i < kPrnsPerSlot; ++i) {
      EXPECT_EQ(result->SatUsed[s][i], 1u);
      EXPECT_EQ(result->Optimal[s].PerSat[i].ExpectedEpochs, 0u);
    }
  }
}

TEST(ObservationsPerSlip, DropsTheFraction) {
  EXPECT_EQ(ObservationsPerSlip(1000, 3), 333.0);
  EXPECT_EQ(ObservationsPerSlip(2, 3), 0.0);
}

TEST(ObservationsPerSlip, IsTheNumberOfObservationsWithoutJumps) {
  EXPECT_EQ(ObservationsPerSlip(1000, 0), 1000.0);
}

TEST(PoolOfSatellites, AgreesWithOneSumOverAllOfThem) {
  std::vector<QcResultCore> sats;
  for (std::uint32_t seed = 1; seed <= 5; ++seed) sats.push_back(SomeFigures(seed));
  const QcResultCore pool = Pool(sats);
  std::uint64_t expected = 0, observed = 0, slips = 0, jumps = 0;
  for (const QcResultCore& sat : sats) {
    expected += sat.ExpectedEpochs;
    observed += sat.ObservedEpochs;
    slips += sat.SlipEpochs;
    jumps += sat.JumpEpochs;
  }
  EXPECT_EQ(pool.System, 1);
  EXPECT_EQ(pool.ExpectedEpochs, expected);
  EXPECT_EQ(pool.ObservedEpochs, observed);
  EXPECT_EQ(pool.SlipEpochs, slips);
  EXPECT_EQ(pool.JumpEpochs, jumps);
  EXPECT_EQ(pool.Completeness, static_cast<double>(observed) / static_cast<double>(expected));
  EXPECT_EQ(pool.ObsPerSlip, static_cast<double>(observed / jumps));
}

TEST(PoolOfSatellites, WeighsMultipathWithItsCount) {
  std::vector<QcResultCore> sats = {SomeFigures(1), SomeFigures(2), SomeFigures(3)};
  const QcResultCore pool = Pool(sats);
  for (int b = 0; b < kBandSlots; ++b) {
    double squares = 0.0;
    std::uint64_t n = 0, slips = 0, jumps = 0;
    for (const QcResultCore& sat : sats) {
      squares += std::pow(sat.Mp[b].MpRms, 2) * static_cast<double>(sat.Mp[b].MpCount);
      n += sat.Mp[b].MpCount;
      slips += sat.Mp[b].SlipCount;
      jumps += sat.Mp[b].JumpCount;
    }
    EXPECT_NEAR(pool.Mp[b].MpRms, std::sqrt(squares / static_cast<double>(n)), 1e-10);
    EXPECT_EQ(pool.Mp[b].MpCount, n);
    EXPECT_EQ(pool.Mp[b].SlipCount, slips);
    EXPECT_EQ(pool.Mp[b].JumpCount, jumps);
  }
}

TEST(PoolOfSatellites, WeighsSnrWithItsCounts) {
  std::vector<QcResultCore> sats = {SomeFigures(1), SomeFigures(2), SomeFigures(3)};
  const QcResultCore pool = Pool(sats);
  double above = 0, below = 0, above30 = 0, below30 = 0, spread = 0, n_above = 0, n_below = 0, n_above30 = 0,
         n_below30 = 0;
  for (const QcResultCore& sat : sats) {
    const QcSnrResult& snr = sat.Snr[2];
    const auto a = static_cast<double>(snr.AboveMaskCount), b = static_cast<double>(snr.BelowMaskCount);
    above += snr.AboveMaskMean * a;
    below += snr.BelowMaskMean * b;
    above30 += snr.Above30Mean * static_cast<double>(snr.Above30Count);
    below30 += snr.Below30Mean * static_cast<double>(snr.Below30Count);
    spread += snr.StdDev * snr.StdDev * (a + b - 1);
    n_above += a;
    n_below += b;
    n_above30 += static_cast<double>(snr.Above30Count);
    n_below30 += static_cast<double>(snr.Below30Count);
  }
  const QcSnrResult& snr = pool.Snr[2];
  EXPECT_EQ(static_cast<double>(snr.AboveMaskCount), n_above);
  EXPECT_EQ(static_cast<double>(snr.BelowMaskCount), n_below);
  EXPECT_NEAR(snr.AboveMaskMean, above / n_above, 1e-10);
  EXPECT_NEAR(snr.BelowMaskMean, below / n_below, 1e-10);
  EXPECT_NEAR(snr.Above30Mean, above30 / n_above30, 1e-10);
  EXPECT_NEAR(snr.Below30Mean, below30 / n_below30, 1e-10);
  EXPECT_NEAR(snr.Mean, (above + below) / (n_above + n_below), 1e-10);
  EXPECT_NEAR(snr.StdDev, std::sqrt(spread / (n_above + n_below)), 1e-10) << "divided by n, not by n - 1";
}

TEST(PoolOfSatellites, IgnoresTheSpreadOfASingleValue) {
  QcResultCore core;
  core.Snr[0].AboveMaskCount = 1;
  core.Snr[0].StdDev = 5.0;
  EXPECT_EQ(Pool({core}).Snr[0].StdDev, 0.0);
}

TEST(PoolOfSatellites, IsZeroWithoutData) {
  const QcResultCore pool = Pool({QcResultCore(), QcResultCore()});
  EXPECT_EQ(pool.Completeness, 0.0);
  EXPECT_EQ(pool.ObsPerSlip, 0.0);
  EXPECT_EQ(pool.Mp[0].MpRms, 0.0);
  EXPECT_EQ(pool.Snr[0].Mean, 0.0);
  EXPECT_EQ(pool.Snr[0].StdDev, 0.0);
  EXPECT_EQ(pool.Snr[0].AboveMaskMean, 0.0);
}

TEST(PoolOfSatellites, TakesCodesFromTheFirstSatelliteThatHasThem) {
  QcResultCore none, first, second;
  first.Mp[0].BandSlot = first.Mp[0].BandSlot1 = 1;
  first.Mp[0].BandSlot2 = 2;
  first.Mp[0].Code1 = 10;
  first.Mp[0].Code2 = 20;
  first.Snr[0].Code = 10;
  second.Mp[0].BandSlot = second.Mp[0].BandSlot1 = 3;
  second.Mp[0].BandSlot2 = 4;
  second.Mp[0].Code1 = 30;
  second.Mp[0].Code2 = 40;
  second.Snr[0].Code = 30;
  const QcResultCore pool = Pool({none, first, second});
  EXPECT_EQ(pool.Mp[0].BandSlot, 1);
  EXPECT_EQ(pool.Mp[0].BandSlot1, 1);
  EXPECT_EQ(pool.Mp[0].BandSlot2, 2);
  EXPECT_EQ(pool.Mp[0].Code1, 10);
  EXPECT_EQ(pool.Mp[0].Code2, 20);
  EXPECT_EQ(pool.Snr[0].Code, 10);
}

TEST(PoolOfSatellites, ShowsTheIonosphericStatisticOfTheLastSatellite) {
  QcResultCore first, last;
  first.Mp[0].IodRms = 0.7;
  last.Mp[0].IodRms = 0.2;
  EXPECT_EQ(Pool({first, last}).Mp[0].IodRms, 0.2);
  EXPECT_EQ(Pool({first, last, QcResultCore()}).Mp[0].IodRms, 0.0) << "also when the last one has none";
}

TEST(PoolOfSatellites, AddsTheBestOtherCombinationOfASatelliteWithoutObservations) {
  QcResultCore all[kMaxCombinations];
  all[0].ExpectedEpochs = all[1].ExpectedEpochs = all[2].ExpectedEpochs = 100;
  all[1].ObservedEpochs = 40;
  all[2].ObservedEpochs = 60;
  QcResultCore pool;
  PoolSatellite(all, 0, pool);
  EXPECT_EQ(pool.ObservedEpochs, 60u);
  EXPECT_EQ(pool.ExpectedEpochs, 100u);
  PoolSatellite(all, 1, pool);
  EXPECT_EQ(pool.ObservedEpochs, 100u) << "its own count where it has one";
}

struct Slot {
  std::unique_ptr<QcSysAllResult> All = std::make_unique<QcSysAllResult>();
  std::unique_ptr<QcSysOptimalResult> Optimal = std::make_unique<QcSysOptimalResult>();
  explicit Slot(std::initializer_list<double> completeness) {
    All->System = 1;
    for (const double c : completeness) {
      All->PerComb[All->Combinations.Count].Completeness = c;
      All->Combinations.Lists[All->Combinations.Count] = Codes({100 + All->Combinations.Count});
      ++All->Combinations.Count;
    }
  }
  bool Choose() { return ChooseOptimal(*All, *Optimal); }
};

TEST(OptimalCombination, IsTheFirstOfTheMostComplete) {
  Slot slot({0.5, 0.9, 0.9, 0.1});
  ASSERT_TRUE(slot.Choose());
  EXPECT_EQ(AsVector(slot.Optimal->Codes), std::vector<std::int32_t>({101}));
  EXPECT_EQ(slot.Optimal->Sys.Completeness, 0.9);
  EXPECT_EQ(slot.Optimal->System, 1);
  Slot equal({0.7, 0.7});
  ASSERT_TRUE(equal.Choose());
  EXPECT_EQ(AsVector(equal.Optimal->Codes), std::vector<std::int32_t>({100}));
}

TEST(OptimalCombination, IsTheOnlyOneWhateverItsCompleteness) {
  Slot slot({0.0});
  ASSERT_TRUE(slot.Choose());
  EXPECT_EQ(AsVector(slot.Optimal->Codes), std::vector<std::int32_t>({100}));
}

TEST(OptimalCombination, LiesAmongTheCombinationsOfTheSlot) {
  Slot slot({0.5});
  slot.All->PerComb[1].Completeness = 1.0;  // pooled from satellites with a list of their own
  ASSERT_TRUE(slot.Choose());
  EXPECT_EQ(slot.Optimal->Sys.Completeness, 0.5);
}

TEST(OptimalCombination, IsMissingWithoutCombinations) {
  Slot slot({});
  slot.All->PerComb[0].Completeness = 1.0;
  slot.All->PerSat[0][0].Completeness = 1.0;
  EXPECT_FALSE(slot.Choose());
  EXPECT_EQ(slot.Optimal->System, 0);
  EXPECT_EQ(slot.Optimal->Sys.Completeness, 0.0);
  EXPECT_EQ(slot.Optimal->PerSat[0].Completeness, 0.0);
}

TEST(OptimalCombination, GivesASatelliteWithoutItItsOwnBest) {
  Slot slot({0.9, 0.2});
  slot.All->PerSat[0][0].Completeness = 0.3;
  slot.All->PerSat[0][1].Completeness = 0.8;
  slot.All->PerSat[1][0].Completeness = 0.9e-16;
  slot.All->PerSat[1][1].Completeness = 0.5;
  slot.All->PerSat[1][2].Completeness = 0.8;
  slot.All->PerSat[1][9].Completeness = 0.8;
  slot.All->PerSat[1][2].ExpectedEpochs = 7;
  ASSERT_TRUE(slot.Choose());
  EXPECT_EQ(slot.Optimal->PerSat[0].Completeness, 0.3) << "the chosen combination where it has figures";
  EXPECT_EQ(slot.Optimal->PerSat[1].Completeness, 0.8);
  EXPECT_EQ(slot.Optimal->PerSat[1].ExpectedEpochs, 7u) << "the first of its best";
  EXPECT_EQ(slot.Optimal->PerSat[2].Completeness, 0.0);
}

TEST(MergeOfSystems, DividesTheSumsNotTheRates) {
  QcResultCore gps, glonass, total;
  gps.ExpectedEpochs = 100;
  gps.ObservedEpochs = 90;
  gps.Completeness = 0.9;
  glonass.ExpectedEpochs = 50;
  glonass.ObservedEpochs = 50;
  glonass.Completeness = 1.0;
  MergeSystem(gps, total);
  MergeSystem(glonass, total);
  EXPECT_EQ(total.Completeness, 140.0 / 150.0);
}

TEST(MergeOfSystems, AddsCountsAndKeepsTheFirstSystemAndCodes) {
  QcResultCore a = SomeFigures(1), b = SomeFigures(2), total;
  a.System = 2;
  b.System = 8;
  b.Mp[0].Code1 = 30;
  b.Mp[0].BandSlot2 = 2;
  b.Snr[0].Code = 30;
  MergeSystem(QcResultCore(), total);
  MergeSystem(a, total);
  MergeSystem(b, total);
  EXPECT_EQ(total.System, 2);
  EXPECT_EQ(total.SlipEpochs, a.SlipEpochs + b.SlipEpochs);
  EXPECT_EQ(total.JumpEpochs, a.JumpEpochs + b.JumpEpochs);
  EXPECT_EQ(total.ObsPerSlip,
            static_cast<double>((a.ObservedEpochs + b.ObservedEpochs) / (a.JumpEpochs + b.JumpEpochs)));
  EXPECT_EQ(total.Mp[0].Code1, 30);
  EXPECT_EQ(total.Mp[0].BandSlot2, 2);
  EXPECT_EQ(total.Snr[0].Code, 30);
  EXPECT_EQ(total.Mp[3].SlipCount, a.Mp[3].SlipCount + b.Mp[3].SlipCount);
  EXPECT_EQ(total.Mp[3].JumpCount, a.Mp[3].JumpCount + b.Mp[3].JumpCount);
  EXPECT_EQ(total.Mp[3].MpCount, a.Mp[3].MpCount + b.Mp[3].MpCount);
}

TEST(MergeOfSystems, WeighsMultipathAndSnr) {
  const QcResultCore a = SomeFigures(1), b = SomeFigures(2);
  QcResultCore total;
  MergeSystem(a, total);
  MergeSystem(b, total);
  const auto weigh = [](double x, std::uint64_t n, double y, std::uint64_t m) {
    return (x * static_cast<double>(n) + y * static_cast<double>(m)) / static_cast<double>(n + m);
  };
  const QcMpIodResult &p = a.Mp[1], &q = b.Mp[1];
  EXPECT_NEAR(total.Mp[1].MpRms, std::sqrt(weigh(p.MpRms * p.MpRms, p.MpCount, q.MpRms * q.MpRms, q.MpCount)),
              1e-10);
  const QcSnrResult &s = a.Snr[1], &t = b.Snr[1], &u = total.Snr[1];
  EXPECT_NEAR(u.AboveMaskMean, weigh(s.AboveMaskMean, s.AboveMaskCount, t.AboveMaskMean, t.AboveMaskCount),
              1e-10);
  EXPECT_NEAR(u.BelowMaskMean, weigh(s.BelowMaskMean, s.BelowMaskCount, t.BelowMaskMean, t.BelowMaskCount),
              1e-10);
  EXPECT_NEAR(u.Above30Mean, weigh(s.Above30Mean, s.Above30Count, t.Above30Mean, t.Above30Count), 1e-10);
  EXPECT_NEAR(u.Below30Mean, weigh(s.Below30Mean, s.Below30Count, t.Below30Mean, t.Below30Count), 1e-10);
  EXPECT_NEAR(u.Mean, weigh(u.AboveMaskMean, u.AboveMaskCount, u.BelowMaskMean, u.BelowMaskCount), 1e-10);
  EXPECT_EQ(u.Above30Count, s.Above30Count + t.Above30Count);
  EXPECT_NEAR(
      u.StdDev,
      weigh(s.StdDev, s.AboveMaskCount + s.BelowMaskCount, t.StdDev, t.AboveMaskCount + t.BelowMaskCount),
      1e-10)
      << "a mean of the spreads, not a pooled variance";
}

TEST(MergeOfSystems, LeavesWeightedValuesAloneWhenBothWeightsAreZero) {
  QcResultCore system, total;
  total.Completeness = 0.25;
  total.Mp[0].MpRms = 1.5;
  total.Snr[0].AboveMaskMean = 40.0;
  total.Snr[0].StdDev = 2.0;
  total.Snr[0].Mean = 41.0;
  MergeSystem(system, total);
  EXPECT_EQ(total.Completeness, 0.25);
  EXPECT_EQ(total.Mp[0].MpRms, 1.5);
  EXPECT_EQ(total.Snr[0].AboveMaskMean, 40.0);
  EXPECT_EQ(total.Snr[0].StdDev, 2.0);
  EXPECT_EQ(total.Snr[0].Mean, 41.0);
}

TEST(MergeOfSystems, LeavesTheIonosphericStatisticZero) {
  QcResultCore total;
  MergeSystem(SomeFigures(1), total);
  for (const QcMpIodResult& mp : total.Mp) EXPECT_EQ(mp.IodRms, 0.0);
}

}  // namespace
}  // namespace orsolva
