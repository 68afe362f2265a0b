#include "measures/driver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/unit/measures/synthetic_run.h"

namespace {
long g_allocations = 0;
}

// Counts every allocation of this program, so that a test can see which calls make none.
__attribute__((noinline)) void* operator new(std::size_t size) {
  ++g_allocations;
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept { std::free(memory); }
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace orsolva {
namespace {

using orsolva_test::kL1;
using orsolva_test::kL2;
using orsolva_test::kReferenceTime;
using orsolva_test::kStation;
using orsolva_test::Observation;
using orsolva_test::RecordingObserver;
using orsolva_test::SyntheticRun;

// Every statistic of every satellite, bit for bit.
std::string Bits(const IonSlipAndMultipath& measures) {
  std::ostringstream text;
  text << std::hexfloat;
  for (int number = 1; number <= 208; ++number) {
    for (int slot = 0; slot < kBandSlots; ++slot) {
      for (int i = 0; i < measures.Multipath(number).Count[slot]; ++i) {
        const AbsoluteMp& mp = *measures.Multipath(number).Pairs[slot][i];
        const IodDetect& iod = *measures.Ionosphere(number).Pairs[slot][i];
        text << number << ' ' << mp.Code << ' ' << mp.Partner << ' ' << mp.SumOfSquares << ' ' << mp.Count
             << ' ' << mp.LastEpoch.Seconds << ' ' << mp.LastEpoch.Fraction << ' ' << mp.Values.Mean() << ' '
             << mp.Residuals.Mean() << ' ' << mp.RestartTimes.Size() << ' ' << iod.SlipCount << ' '
             << iod.SlipTimes.Size() << ' ' << iod.GeometryFree << ' ' << iod.PreviousEpoch.Seconds << ' '
             << iod.PhaseMinusGeometry << ' ' << iod.Difference << ' ' << iod.SlipFlag << ' '
             << iod.WideLaneMean << ' ' << iod.WideLaneVariance << ' ' << iod.WideLaneCount << ' '
             << iod.LongestArcCount << ' ' << iod.LongestArcVariance << ' ' << iod.LastPseudorange << ' '
             << iod.LastPhase << '\n';
      }
    }
  }
  return text.str();
}

int Slips(const SyntheticRun& run, int number) { return static_cast<int>(run.Iod(number)->SlipCount); }

// Epochs first to last of every satellite, one pass.
void Feed(SyntheticRun& run, int satellites, int first, int last) {
  for (int prn = 1; prn <= satellites; ++prn) {
    for (int i = first; i < last; ++i)
      run.Measures.AddSatelliteEpoch(prn, run.Epoch(prn, run.Interval * i), true);
  }
}

TEST(Driver, StartsUninitialisedWithAWindowOfFifty) {
  IonSlipAndMultipath measures;
  EXPECT_FALSE(measures.Initialised());
  EXPECT_EQ(50, measures.WindowLength());
  SyntheticRun run(30.0);
  EXPECT_TRUE(run.Measures.Initialised());
  EXPECT_EQ(10, run.Measures.WindowLength());
  run.Measures.Release();
  EXPECT_FALSE(run.Measures.Initialised());
  EXPECT_EQ(50, run.Measures.WindowLength());
}

TEST(Driver, PeriodOfOneEpochYieldsNoMultipathAndNoSlips) {
  SyntheticRun run;
  Feed(run, 4, 0, 1);
  EXPECT_FALSE(run.Pass());
  EXPECT_FALSE(run.Pass());
  EXPECT_EQ(0, run.Measures.Multipath(1).Count[0]);
  EXPECT_EQ(0, run.Measures.Ionosphere(1).Count[0]);
}

TEST(Driver, LoneFirstEpochWaitsForTheNextBatchAndLaterBatchesDoNot) {
  SyntheticRun run;
  Feed(run, 4, 0, 1);
  EXPECT_FALSE(run.Pass());
  Feed(run, 4, 1, 2);
  EXPECT_TRUE(run.Pass());
  EXPECT_EQ(2, run.Mp(1)->Count);
  Feed(run, 4, 2, 3);
  EXPECT_TRUE(run.Pass());
  EXPECT_EQ(3, run.Mp(1)->Count);
  EXPECT_TRUE(run.Pass());
  EXPECT_EQ(3, run.Mp(1)->Count);
}

TEST(Driver, RunWithoutEpochsYieldsNothing) {
  SyntheticRun run;
  EXPECT_FALSE(run.Pass());
  EXPECT_EQ(0, run.Measures.Multipath(1).Count[0]);
}

TEST(Driver, SatelliteNumberedAbove208CannotBeStored) {
  SyntheticRun run;
  for (int number : {-1, 0, 209, 1000000}) {
    for (int i = 0; i < 3; ++i) run.Measures.AddSatelliteEpoch(number, run.Epoch(1, 30.0 * i), true);
    EXPECT_EQ(0, run.Measures.Multipath(number).Count[0]);
    EXPECT_EQ(0, run.Measures.Ionosphere(number).Count[0]);
  }
  EXPECT_FALSE(run.Pass());
}

TEST(Driver, SatelliteOfASystemWithoutPairsHasNoResults) {
  SyntheticRun run;
  for (int number : {40, 180, 205}) {
    for (int i = 0; i < 3; ++i) run.Measures.AddSatelliteEpoch(number, run.Epoch(1, 30.0 * i), true);
  }
  EXPECT_TRUE(run.Pass());
  for (int number : {40, 180, 205}) {
    for (int slot = 0; slot < kBandSlots; ++slot) EXPECT_EQ(0, run.Measures.Multipath(number).Count[slot]);
  }
}

TEST(Driver, CleanSkyHasNoSlipsAndResidualsOfRounding) {
  SyntheticRun run;
  Feed(run, 6, 0, 60);
  EXPECT_TRUE(run.Pass());
  for (int number = 1; number <= 6; ++number) {
    for (int slot : {0, 1}) {
      ASSERT_EQ(1, run.Measures.Multipath(number).Count[slot]);
      const AbsoluteMp& mp = *run.Mp(number, slot);
      EXPECT_EQ(slot == 0 ? kL1 : kL2, mp.Code);
      EXPECT_EQ(slot == 0 ? kL2 : kL1, mp.Partner);
      EXPECT_EQ(60, mp.Count);
      EXPECT_LT(std::sqrt(mp.SumOfSquares / 60), 1e-6);
      EXPECT_EQ(0, mp.RestartTimes.Size());
      EXPECT_EQ(0u, run.Iod(number, slot)->SlipCount);
      EXPECT_EQ(60, run.Iod(number, slot)->WideLaneCount);
    }
  }
}

TEST(Driver, MultipathIsTheCodeErrorLessItsMovingMean) {
  SyntheticRun run;
  double squares = 0.0;
  std::vector<double> errors;
  for (int i = 0; i < 60; ++i) {
    errors.push_back(i % 3 == 0 ? 0.9 : -0.4);
    run.Measures.AddSatelliteEpoch(2, run.Epoch(2, 30.0 * i, {errors.back()}), true);
    const int n = std::min(i + 1, 10);
    double mean = 0.0;
    for (int k = 0; k < n; ++k) mean += errors[static_cast<std::size_t>(i - k)] / n;
    squares += (errors.back() - mean) * (errors.back() - mean);
  }
  EXPECT_TRUE(run.Pass());
  EXPECT_NEAR(std::sqrt(squares / 60), std::sqrt(run.Mp(2)->SumOfSquares / 60), 1e-6);
}

TEST(Driver, SlipOfOneSatelliteIsCountedAndOneCommonToAllIsNot) {
  SyntheticRun run;
  for (int prn = 1; prn <= 7; ++prn) {
    for (int i = 0; i < 20; ++i) {
      // Ten cycles on one satellite at epoch 8, a common step in range of about 3 km at epoch 12. The steps
      // of both phases are equal in metres, so that the geometry-free combination stays.
      Observation change;
      if (prn == 3 && i >= 8) change = {0.0, 60.0, 60.0 * 0.19029367279836487 / 0.24421021342456825};
      if (i >= 12) {
        change.Slip1 += 15400.0;
        change.Slip2 += 15400.0 * 0.19029367279836487 / 0.24421021342456825;
      }
      run.Measures.AddSatelliteEpoch(prn, run.Epoch(prn, 30.0 * i, change), true);
    }
  }
  EXPECT_TRUE(run.Pass());
  for (int prn = 1; prn <= 7; ++prn) EXPECT_EQ(prn == 3 ? 1 : 0, Slips(run, prn)) << prn;
  ASSERT_EQ(1, run.Iod(3)->SlipTimes.Size());
  EXPECT_EQ(kReferenceTime + 240, run.Iod(3)->SlipTimes.Get(0).time);
  EXPECT_EQ(8, run.Iod(3)->LongestArcCount);
  EXPECT_EQ(12, run.Iod(3)->WideLaneCount);
}

TEST(Driver, OnlyDifferenceOfAnEpochIsItsOwnMedianAndNeverASlip) {
  SyntheticRun run(30.0, 8, {static_cast<std::int32_t>(kL1), static_cast<std::int32_t>(kL2)});
  for (int i = 0; i < 10; ++i) {
    QcEpochData epoch = run.Epoch(4, 30.0 * i, {0.0, i >= 5 ? 1000.0 : 0.0, 0.0});
    epoch.Slots[1].Count = 0;
    run.Measures.AddSatelliteEpoch(4, epoch, true);
  }
  EXPECT_TRUE(run.Pass());
  EXPECT_EQ(0, Slips(run, 4));
}

TEST(Driver, GeometryFreeSlipIsLeftOutOfTheMedianAndRestartsTheAveraging) {
  // Satellite 1 slips on both of its pairs, satellite 2 is clean: with the slipped differences left out the
  // median is that of satellite 2, so that only satellite 1 counts slips.
  SyntheticRun run;
  for (int prn : {1, 2}) {
    for (int i = 0; i < 10; ++i) {
      const Observation change = prn == 1 && i >= 5 ? Observation{0.0, 1000.0, 900.0} : Observation();
      run.Measures.AddSatelliteEpoch(prn, run.Epoch(prn, 30.0 * i, change), true);
    }
  }
  RecordingObserver observer;
  EXPECT_TRUE(run.Pass(&observer));
  EXPECT_EQ(1, Slips(run, 1));
  EXPECT_EQ(0, Slips(run, 2));
  EXPECT_EQ(1, run.Mp(1)->RestartTimes.Size());
  EXPECT_EQ(0, run.Mp(2)->RestartTimes.Size());
}

TEST(Driver, BandOneObservationComesFirstInTheGeometryFreeTest) {
  SyntheticRun run;
  Feed(run, 1, 0, 2);
  EXPECT_TRUE(run.Pass());
  EXPECT_EQ(run.Iod(1, 0)->GeometryFree, run.Iod(1, 1)->GeometryFree);
  const QcEpochData epoch = run.Epoch(1, 30.0);
  EXPECT_EQ(epoch.Slots[1].Signals[0].phase * 0.24421021342456825 -
                epoch.Slots[0].Signals[0].phase * 0.19029367279836487,
            run.Iod(1, 0)->GeometryFree);
}

TEST(Driver, WithoutThePartnerThePhaseTestStillRuns) {
  SyntheticRun run;
  for (int prn = 1; prn <= 5; ++prn) {
    for (int i = 0; i < 10; ++i) {
      QcEpochData epoch = run.Epoch(prn, 30.0 * i, {0.0, prn == 2 && i >= 5 ? 50.0 : 0.0, 0.0});
      epoch.Slots[1].Count = 0;
      run.Measures.AddSatelliteEpoch(prn, epoch, true);
    }
  }
  EXPECT_TRUE(run.Pass());
  EXPECT_EQ(1, Slips(run, 2));
  EXPECT_EQ(0, run.Mp(2)->Count);
  EXPECT_EQ(0, run.Iod(2)->WideLaneCount);
  EXPECT_FALSE(IsSet(run.Iod(2)->GeometryFreeEpoch));
  EXPECT_EQ(0, run.Measures.Multipath(2).Count[1]);
}

TEST(Driver, BelowTheCutOffNothingIsCountedButTheStatesMove) {
  SyntheticRun run;
  for (int prn = 1; prn <= 4; ++prn) {
    for (int i = 0; i < 10; ++i) {
      const Observation change = i >= 5 && prn == 1 ? Observation{0.0, 100.0, 0.0} : Observation();
      run.Measures.AddSatelliteEpoch(prn, run.Epoch(prn, 30.0 * i, change), false);
    }
  }
  EXPECT_TRUE(run.Pass());
  EXPECT_EQ(0, Slips(run, 1));
  EXPECT_EQ(0, run.Mp(1)->Count);
  EXPECT_EQ(10, run.Iod(1)->WideLaneCount);
  EXPECT_EQ(10, run.Mp(1)->Values.Count());
}

TEST(Driver, TakesTheSatellitePositionFromTheValidPseudorangeOfTheLowestCode) {
  SyntheticRun run;
  QcEpochData epochs[2] = {run.Epoch(1, 0.0), run.Epoch(1, 30.0)};
  for (QcEpochData& epoch : epochs) {
    epoch.Slots[0].Signals[0].pseudorange = 0.0;
    epoch.Slots[1].Signals[0].pseudorange = 3e7;
    run.Measures.AddSatelliteEpoch(1, epoch, true);
  }
  EXPECT_TRUE(run.Pass());
  gnssqctoolkit::SatelliteState state;
  ASSERT_TRUE(run.Records.SatellitePosition(gnssqctoolkit::SatelliteId{1, 1}, {kReferenceTime + 30, 0.0}, 3e7,
                                            state));
  double squares = 0.0;
  for (int i = 0; i < 3; ++i)
    squares += (state.Position[i] - kStation[i]) * (state.Position[i] - kStation[i]);
  EXPECT_EQ(epochs[1].Slots[0].Signals[0].phase * 0.19029367279836487 - std::sqrt(squares) +
                299792458.0 * state.Clock,
            run.Iod(1)->PhaseMinusGeometry);
}

TEST(Driver, WithoutAnyPseudorangeThereIsNoPosition) {
  SyntheticRun run;
  for (int i = 0; i < 3; ++i) {
    QcEpochData epoch = run.Epoch(1, 30.0 * i);
    epoch.Slots[0].Signals[0].pseudorange = epoch.Slots[1].Signals[0].pseudorange = 0.0;
    run.Measures.AddSatelliteEpoch(1, epoch, true);
  }
  EXPECT_TRUE(run.Pass());
  EXPECT_FALSE(IsSet(run.Iod(1)->CurrentEpoch));
  EXPECT_TRUE(IsSet(run.Iod(1)->GeometryFreeEpoch));
}

TEST(Driver, EpochTimesPassThroughTheCalendar) {
  // Seconds of the minute carry the fraction, which costs its last digits.
  SyntheticRun run;
  for (int i = 0; i < 2; ++i) {
    QcEpochData epoch = run.Epoch(1, 30.0 * i);
    epoch.Time = {kReferenceTime + 59 + 60 * i, 0.1};
    run.Measures.AddSatelliteEpoch(1, epoch, true);
  }
  EXPECT_TRUE(run.Pass());
  const gnssqctoolkit::AbsoluteTime expected =
      gnssqctoolkit::GNSSTime(gnssqctoolkit::AbsoluteTime{kReferenceTime + 119, 0.1}).Absolute();
  EXPECT_NE(0.1, expected.Fraction);
  EXPECT_EQ(expected.Fraction, run.Mp(1)->LastEpoch.Fraction);
  EXPECT_EQ(expected.Fraction, run.Iod(1)->CurrentEpoch.Fraction);
}

TEST(Driver, PassUsesItsOwnMaximumAges) {
  SyntheticRun run;
  run.Records.Gps().SetMaxAge(86400.0);
  run.Records.Glonass().SetMaxAge(86400.0);
  for (int i = 0; i < 3; ++i) {
    run.Measures.AddSatelliteEpoch(1, run.Epoch(1, 8000.0 + 30.0 * i), true);
  }
  EXPECT_TRUE(run.Pass());
  EXPECT_FALSE(IsSet(run.Iod(1)->CurrentEpoch));
  EXPECT_EQ(7200.0, run.Records.Gps().MaxAge());
  EXPECT_EQ(1800.0, run.Records.Glonass().MaxAge());
  EXPECT_EQ(7200.0, run.Records.Bds().MaxAge());
  EXPECT_EQ(7200.0, run.Records.Galileo().MaxAge());
  EXPECT_EQ(7200.0, run.Records.Qzss().MaxAge());
}

TEST(Driver, PairEntersTheResultsWhenItsCodeIsMet) {
  SyntheticRun run(30.0, 8, {1, 5, 15, 16});
  Feed(run, 1, 0, 2);
  EXPECT_TRUE(run.Pass());
  // Pairs 1-15 and 1-16 exist, those of code 5 do not.
  ASSERT_EQ(2, run.Measures.Multipath(1).Count[0]);
  EXPECT_EQ(15u, run.Mp(1, 0, 0)->Partner);
  EXPECT_EQ(16u, run.Mp(1, 0, 1)->Partner);
  ASSERT_EQ(2, run.Measures.Multipath(1).Count[1]);
  EXPECT_EQ(1u, run.Mp(1, 1, 0)->Partner);
  EXPECT_EQ(5u, run.Mp(1, 1, 1)->Partner);
  EXPECT_EQ(2, run.Mp(1, 0, 0)->Count);
  EXPECT_EQ(0, run.Mp(1, 0, 1)->Count);
}

TEST(Driver, PairsStandInAscendingOrderWheneverTheyAreMet) {
  SyntheticRun run(30.0, 8, {5, 16, 15, 1});
  const auto add = [&](double seconds, std::uint8_t first, std::uint8_t second) {
    QcEpochData epoch = run.Epoch(1, seconds);
    epoch.Slots[0].Signals[0].code = first;
    epoch.Slots[1].Signals[0].code = second;
    run.Measures.AddSatelliteEpoch(1, epoch, true);
  };
  add(0, 5, 16);
  add(30, 5, 16);
  EXPECT_TRUE(run.Pass());
  const AbsoluteMp* before = run.Mp(1, 0, 0);
  EXPECT_EQ(5u, before->Code);
  add(60, 1, 15);
  EXPECT_TRUE(run.Pass());
  ASSERT_EQ(4, run.Measures.Multipath(1).Count[0]);
  const std::uint32_t expected[4][2] = {{1, 15}, {1, 16}, {5, 15}, {5, 16}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(expected[i][0], run.Mp(1, 0, i)->Code);
    EXPECT_EQ(expected[i][1], run.Mp(1, 0, i)->Partner);
    EXPECT_EQ(expected[i][0], run.Iod(1, 0, i)->Code);
    EXPECT_EQ(expected[i][1], run.Iod(1, 0, i)->Partner);
  }
  EXPECT_EQ(5u, before->Code);
}

TEST(Driver, CodeWithTwoPartnersEntersTheDifferencesTwice) {
  // Satellite 1 has codes 1, 15, 16: pairs 1-15, 1-16, 15-1, 16-1. Satellite 2 has code 1 alone, but two
  // pairs as well. Only code 1 of each satellite has a phase: the differences are (d1, d1, d2, d2), the upper
  // middle of which is the larger one, whichever satellite holds it.
  SyntheticRun run(30.0, 8, {1, 15, 16});
  for (int prn : {1, 2}) {
    for (int i = 0; i < 2; ++i) {
      QcEpochData epoch = run.Epoch(prn, 30.0 * i, {0.0, prn == 1 && i == 1 ? 50.0 : 0.0, 0.0});
      epoch.Slots[1].Count = 0;
      run.Measures.AddSatelliteEpoch(prn, epoch, true);
    }
  }
  RecordingObserver observer;
  EXPECT_TRUE(run.Pass(&observer));
  int differences = 0;
  for (const PairEpochDetail& detail : observer.Pairs) differences += detail.HasDifference ? 1 : 0;
  EXPECT_EQ(4, differences);
  EXPECT_EQ(0, Slips(run, 1));
  EXPECT_EQ(1, Slips(run, 2));
}

TEST(Driver, GlonassWithoutAChannelMeasuresNothing) {
  SyntheticRun run;
  gnssqctoolkit::IList lists[kCodeListSlots];
  lists[1].Append(30);
  lists[1].Append(35);
  std::int32_t channels[32];
  for (std::int32_t& channel : channels) channel = -999;
  channels[1] = 3;
  IonSlipAndMultipath measures;
  measures.Initialise(run.Config, lists, channels, 30.0);
  for (int number : {36, 37}) {
    for (int i = 0; i < 5; ++i) {
      QcEpochData epoch = run.Epoch(1, 30.0 * i);
      epoch.Slots[0].Signals[0].code = 30;
      epoch.Slots[1].Signals[0].code = 35;
      measures.AddSatelliteEpoch(number, epoch, true);
    }
  }
  EXPECT_TRUE(measures.ProcessAllEpochs(kStation, run.Records, 30.0, nullptr));
  EXPECT_EQ(0, measures.Multipath(36).Pairs[0][0]->Count);
  EXPECT_FALSE(IsSet(measures.Ionosphere(36).Pairs[0][0]->GeometryFreeEpoch));
  EXPECT_EQ(5, measures.Multipath(37).Pairs[0][0]->Count);
}

// A lively series: slips, code noise, outages, satellites coming and going, changes of records.
QcEpochData LivelyEpoch(const SyntheticRun& run, int prn, int i) {
  std::mt19937 random(static_cast<std::uint32_t>(prn * 10007 + i));
  const auto unit = [&] { return static_cast<double>(random()) / 4294967296.0; };
  Observation change;
  change.CodeError = 4.0 * unit() - 2.0;
  change.Slip1 = (prn * 3 + i) / 11 * 2.0;
  change.Slip2 = (prn * 5 + i) / 17 * 1.0;
  if (unit() < 0.02) change.CodeError += 80.0;
  QcEpochData epoch = run.Epoch(prn, run.Interval * i, change);
  if (unit() < 0.1) epoch.Slots[1].Count = 0;
  if (unit() < 0.1) epoch.Slots[0].Signals[0].phase = 0.0;
  return epoch;
}

bool Missing(int prn, int i) { return (prn + i / 7) % 5 == 0 || (prn == 3 && i % 90 > 40 && i % 90 < 65); }

std::string RunInBatches(const std::vector<int>& ends) {
  SyntheticRun run(30.0, 8);
  for (int prn = 1; prn <= 8; ++prn) run.Records.Gps().Add(orsolva_test::GpsRecord(prn, 3600.0));
  int first = 0;
  for (int end : ends) {
    for (int prn = 1; prn <= 8; ++prn) {
      for (int i = first; i < end; ++i) {
        if (!Missing(prn, i))
          run.Measures.AddSatelliteEpoch(prn, LivelyEpoch(run, prn, i), (prn + i / 30) % 6 != 0);
      }
    }
    run.Pass();
    first = end;
  }
  return Bits(run.Measures);
}

TEST(Driver, AnySplitIntoBatchesGivesTheSameBits) {
  constexpr int kEpochs = 180;
  const std::string whole = RunInBatches({kEpochs});
  EXPECT_NE(std::string::npos, whole.find("0x1."));
  std::vector<int> one_by_one;
  for (int i = 1; i <= kEpochs; ++i) one_by_one.push_back(i);
  EXPECT_EQ(whole, RunInBatches(one_by_one));
  std::mt19937 random(7);
  for (int trial = 0; trial < 8; ++trial) {
    std::vector<int> ends;
    for (int end = 0; end < kEpochs;) {
      end = std::min(kEpochs, end + 1 + static_cast<int>(random() % 40));
      ends.push_back(end);
    }
    EXPECT_EQ(whole, RunInBatches(ends));
  }
}

TEST(Driver, BatchOfOneEpochAllocatesNothingOnceWarm) {
  SyntheticRun run(1.0, 4);
  std::vector<std::vector<QcEpochData>> epochs;
  constexpr int kWarm = 2000, kMeasured = 2000;
  for (int i = 0; i < kWarm + kMeasured; ++i) {
    epochs.emplace_back();
    for (int prn = 1; prn <= 4; ++prn) epochs.back().push_back(run.Epoch(prn, i));
  }
  long before = 0;
  for (int i = 0; i < kWarm + kMeasured; ++i) {
    if (i == kWarm) before = g_allocations;
    for (int prn = 1; prn <= 4; ++prn) {
      run.Measures.AddSatelliteEpoch(
          prn, epochs[static_cast<std::size_t>(i)][static_cast<std::size_t>(prn - 1)], true);
    }
    run.Pass();
    ASSERT_EQ(i > 0 ? 1 : 0, run.Measures.Multipath(1).Count[0]);
  }
  EXPECT_EQ(before, g_allocations);
  EXPECT_EQ(kWarm + kMeasured, run.Mp(1)->Count);
}

TEST(Driver, ObserverChangesNoBitAndHearsEveryPairOnceAnEpoch) {
  SyntheticRun silent, watched;
  RecordingObserver observer;
  for (SyntheticRun* run : {&silent, &watched}) {
    for (int prn = 1; prn <= 5; ++prn) {
      for (int i = 0; i < 40; ++i) run->Measures.AddSatelliteEpoch(prn, LivelyEpoch(*run, prn, i), true);
    }
  }
  silent.Pass();
  watched.Pass(&observer);
  EXPECT_EQ(Bits(silent.Measures), Bits(watched.Measures));
  int slips = 0, restarts = 0;
  std::size_t at = 0;
  for (int i = 0; i < 40; ++i) {
    for (int prn = 1; prn <= 5; ++prn) {
      const int codes = LivelyEpoch(silent, prn, i).Slots[1].Count + 1;
      for (int k = 0; k < codes; ++k, ++at) {
        ASSERT_LT(at, observer.Pairs.size());
        const PairEpochDetail& detail = observer.Pairs[at];
        EXPECT_EQ(prn, detail.Number);
        EXPECT_EQ(prn, detail.Satellite.prn);
        EXPECT_EQ(kReferenceTime + 30 * i, detail.Time.time);
        EXPECT_EQ(k == 0 ? kL1 : kL2, detail.Code);
        slips += detail.GeometrySlip != GeometrySlipReason::kNone ? 1 : 0;
        const bool event =
            detail.Restart == RestartReason::kJump || detail.Restart == RestartReason::kIonosphereSlip;
        restarts += event ? 1 : 0;
      }
    }
  }
  EXPECT_EQ(at, observer.Pairs.size());
  int counted = 0, recorded = 0;
  for (int prn = 1; prn <= 5; ++prn) {
    for (int slot : {0, 1}) {
      counted += static_cast<int>(silent.Iod(prn, slot)->SlipCount);
      recorded += silent.Mp(prn, slot)->RestartTimes.Size();
    }
  }
  EXPECT_GT(counted, 0);
  EXPECT_GT(recorded, 0);
  EXPECT_EQ(counted, slips);
  EXPECT_EQ(recorded, restarts);
}

TEST(Driver, DetailNamesTheChangeOfRecords) {
  SyntheticRun run;
  for (int prn = 1; prn <= 3; ++prn) {
    for (int i = 0; i < 10; ++i) run.Measures.AddSatelliteEpoch(prn, run.Epoch(prn, 30.0 * i), true);
  }
  run.Records.Gps().Add(orsolva_test::GpsRecord(2, 270.0));
  RecordingObserver observer;
  run.Pass(&observer);
  int changes = 0;
  for (const PairEpochDetail& detail : observer.Pairs) {
    if (!detail.NewEphemeris) continue;
    EXPECT_EQ(2, detail.Number);
    EXPECT_EQ(GeometrySlipReason::kNewEphemeris, detail.GeometrySlip);
    EXPECT_GT(std::fabs(detail.ExcessM), detail.GeometryThresholdM);
    ++changes;
  }
  EXPECT_EQ(2, changes);
}

TEST(Driver, HoldsOutAgainstAbsurdInput) {
  SyntheticRun run;
  const double absurd[] = {1e308,
                           -1e308,
                           1e-320,
                           5e-12,
                           std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN(),
                           0.0};
  const std::int64_t times[] = {0,
                                -1,
                                std::numeric_limits<std::int64_t>::min(),
                                std::numeric_limits<std::int64_t>::max(),
                                4102444800,
                                kReferenceTime};
  const double fractions[] = {0.0, 0.5, -1e300, 1e300, 7.25, std::numeric_limits<double>::quiet_NaN()};
  std::mt19937 random(3);
  for (int batch = 0; batch < 200; ++batch) {
    for (int prn = 1; prn <= 4; ++prn) {
      for (int i = 0; i < 5; ++i) {
        QcEpochData epoch = run.Epoch(prn, 30.0 * i);
        epoch.Time = {times[random() % 6] + 0, fractions[random() % 6]};
        Signal_QC_gbt& signal = epoch.Slots[random() % 2].Signals[0];
        (random() % 2 == 0 ? signal.phase : signal.pseudorange) = absurd[random() % 7];
        run.Measures.AddSatelliteEpoch(prn, epoch, random() % 2 == 0);
      }
    }
    const double intervals[] = {1e-300, 1e-9, 30.0, 1e300, 0.0, std::numeric_limits<double>::quiet_NaN()};
    run.Interval = intervals[random() % 6];
    run.Pass();
  }
  SUCCEED();
}

}  // namespace
}  // namespace orsolva
