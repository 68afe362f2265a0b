#include "measures/driver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/unit/measures/synthetic_run.h"

namespace orsolva {
namespace {

using orsolva_test::Feed;
using orsolva_test::kL1;
using orsolva_test::kL2;
using orsolva_test::kReferenceTime;
using orsolva_test::kStation;
using orsolva_test::Observation;
using orsolva_test::RecordingObserver;
using orsolva_test::Slips;
using orsolva_test::SyntheticRun;

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

TEST(Driver, ResetDropsWhatNoPassHasTakenButNotALoneFirstEpoch) {
  SyntheticRun run, expected;
  for (SyntheticRun* one : {&run, &expected}) {
    Feed(*one, 4, 0, 1);
    EXPECT_FALSE(one->Pass());
  }
  Feed(run, 4, 1, 5);
  run.Measures.ResetBatch();
  for (SyntheticRun* one : {&run, &expected}) {
    Feed(*one, 4, 5, 7);
    EXPECT_TRUE(one->Pass());
  }
  EXPECT_EQ(3, run.Mp(1)->Count);
  EXPECT_EQ(expected.Mp(1)->SumOfSquares, run.Mp(1)->SumOfSquares);
  Feed(run, 4, 7, 9);
  run.Measures.ResetBatch();
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
  EXPECT_EQ(86400.0, run.Records.Gps().MaxAge()) << "the stores are only read";
  EXPECT_EQ(86400.0, run.Records.Glonass().MaxAge());
}

}  // namespace
}  // namespace orsolva
