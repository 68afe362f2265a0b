// Laws that hold for any run: what may not change a figure.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {
namespace {

SimulatedSky ShortSky() {
  SkyOptions options;
  options.Epochs = 90;
  options.MissingShare = 0.02;
  return SimulatedSky(options);
}

Results RunWhole(const NavigationSet& navigation, const config_qct& config,
                 const std::vector<ObsEpoch_QC_gbt>& epochs) {
  Process process;
  EXPECT_TRUE(process.Initialise(navigation, config));
  EXPECT_EQ(process.Feed(epochs), GNSSQC_OK);
  return Results(process);
}

TEST(Laws, EveryBandOfTheSimulatedSkyHasFigures) {
  const SimulatedSky sky = ShortSky();
  const Results results = RunWhole(sky.Navigation, sky.Config(), sky.Epochs);
  EXPECT_TRUE(results.Plausible);
  EXPECT_EQ(results.Whole->lost_epochs, 0);
  for (int s = 0; s < 5; ++s) {
    if (s != 3) {  // Galileo is the next law
      EXPECT_GT(results.Whole->sys[s].observed_epochs, 50u) << s;
      EXPECT_GT(results.Whole->sys[s].completeness, 0.9) << s;
    }
    EXPECT_GT(results.Whole->sys[s].mp[0], 0.05) << s;
    EXPECT_LT(results.Whole->sys[s].mp[0], 1.0) << s;
  }
}

// Bands 7 and 8 of Galileo have no completeness channel, so a combination that holds one is observed nowhere,
// while its bands have multipath and its codes their own completeness all the same.
TEST(Laws, GalileoCombinationWithItsThirdBandIsObservedNowhere) {
  const SimulatedSky sky = ShortSky();
  const Results results = RunWhole(sky.Navigation, sky.Config(), sky.Epochs);
  EXPECT_EQ(results.Whole->sys[3].observed_epochs, 0u);
  EXPECT_GT(results.Whole->sys[3].expected_epochs, 50u);
  EXPECT_GT(results.Whole->sys[3].mp[2], 0.05);
  EXPECT_GT(results.Codes->sys[3].entries[0].completeness, 0.9);
}

// The codes of a system are kept in the order of their first appearance, so the first epoch keeps its order.
TEST(Laws, OrderOfSatellitesInsideALaterEpochChangesNothing) {
  SimulatedSky sky = ShortSky();
  const Results expected = RunWhole(sky.Navigation, sky.Config(), sky.Epochs);
  std::mt19937 random(3);
  for (std::size_t k = 1; k < sky.Epochs.size(); ++k) {
    std::shuffle(sky.Epochs[k].sats, sky.Epochs[k].sats + sky.Epochs[k].sat_num, random);
  }
  EXPECT_TRUE(RunWhole(sky.Navigation, sky.Config(), sky.Epochs).SameBits(expected));
}

TEST(Laws, ShiftByWholeWeeksShiftsTheTimesAlone) {
  SimulatedSky sky = ShortSky();
  const Results expected = RunWhole(sky.Navigation, sky.Config(), sky.Epochs);
  constexpr int kWeeks = 3;
  constexpr std::int64_t kShift = kWeeks * 604800;
  const auto shift = [](auto& records, auto move) { std::for_each(records.begin(), records.end(), move); };
  const auto kepler = [](auto& record) {
    record.toc.time += kShift;
    record.week += kWeeks;
  };
  shift(sky.Navigation.Gps, kepler);
  shift(sky.Navigation.Qzss, kepler);
  shift(sky.Navigation.Bds, kepler);
  shift(sky.Navigation.Galileo, kepler);
  shift(sky.Navigation.Glonass, [](GloEph_gbt& record) { record.toe.time += kShift; });
  shift(sky.Epochs, [](ObsEpoch_QC_gbt& epoch) { epoch.time.time += kShift; });
  const Results shifted = RunWhole(sky.Navigation, sky.Config(), sky.Epochs);
  EXPECT_EQ(shifted.Whole->start_time.time, expected.Whole->start_time.time + kShift);
  EXPECT_EQ(shifted.Whole->end_time.time, expected.Whole->end_time.time + kShift);
  shifted.Whole->start_time = expected.Whole->start_time;
  shifted.Whole->end_time = expected.Whole->end_time;
  EXPECT_TRUE(shifted.SameBits(expected));
}

TEST(Laws, IdleSystemLeavesTheOthersAlone) {
  SimulatedSky sky = ShortSky();
  const Results expected = RunWhole(sky.Navigation, sky.Config(), sky.Epochs);
  for (ObsEpoch_QC_gbt& epoch : sky.Epochs) {
    Satellite_gbt* end = std::remove_if(epoch.sats, epoch.sats + epoch.sat_num,
                                        [](const Satellite_gbt& satellite) { return satellite.sys == 16; });
    epoch.sat_num = static_cast<std::uint32_t>(end - epoch.sats);
  }
  const Results without = RunWhole(sky.Navigation, sky.Config(), sky.Epochs);
  EXPECT_EQ(without.Whole->sys[4].observed_epochs, 0u);
  for (int s = 0; s < 4; ++s) {
    EXPECT_EQ(without.Whole->sys[s].observed_epochs, expected.Whole->sys[s].observed_epochs);
    EXPECT_EQ(without.Whole->sys[s].mp[0], expected.Whole->sys[s].mp[0]);
    EXPECT_EQ(without.Whole->sys[s].snr[0], expected.Whole->sys[s].snr[0]);
  }
}

TEST(Laws, EmptyBatchesInBetweenChangeNothing) {
  const SimulatedSky sky = ShortSky();
  const Results expected = RunWhole(sky.Navigation, sky.Config(), sky.Epochs);
  Process process;
  ASSERT_TRUE(process.Initialise(sky.Navigation, sky.Config()));
  EXPECT_EQ(process.Feed(nullptr, 10), GNSSQC_NO_DATA);
  EXPECT_EQ(process.Feed(sky.Epochs.data(), 50), GNSSQC_OK);
  EXPECT_EQ(process.Feed(sky.Epochs.data(), 0), GNSSQC_NO_DATA);
  EXPECT_EQ(process.Feed(sky.Epochs.data(), -5), GNSSQC_NO_DATA);
  EXPECT_EQ(process.Feed(sky.Epochs.data() + 50, 40), GNSSQC_OK);
  EXPECT_TRUE(Results(process).SameBits(expected));
}

TEST(Laws, PositionIsComputedOnlyByTheFirstBatchThatSucceeds) {
  SimulatedSky sky = ShortSky();
  config_qct config = sky.Config();
  config.enable_position = 0;
  Process process;
  ASSERT_TRUE(process.Initialise(sky.Navigation, config));
  ASSERT_EQ(process.Feed(sky.Epochs.data(), 45), GNSSQC_OK);
  const Results first(process);
  ASSERT_EQ(process.Feed(sky.Epochs.data() + 45, 45), GNSSQC_OK);
  const Results second(process);
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(first.Whole->station_xyz[i], sky.Options.Station[i], 10.0);
    EXPECT_EQ(first.Whole->station_xyz[i], second.Whole->station_xyz[i]);
  }
}

}  // namespace
}  // namespace orsolva_test
