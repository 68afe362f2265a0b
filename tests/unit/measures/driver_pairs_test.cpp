#include "measures/driver.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/unit/measures/synthetic_run.h"

namespace orsolva {
namespace {

using orsolva_test::Feed;
using orsolva_test::kStation;
using orsolva_test::RecordingObserver;
using orsolva_test::Slips;
using orsolva_test::SyntheticRun;

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
  for (const PairEpochDetail& detail : observer.Pairs) differences += detail.has_difference ? 1 : 0;
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

}  // namespace
}  // namespace orsolva
