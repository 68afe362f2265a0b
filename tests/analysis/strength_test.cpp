#include "host/analysis/figures/strength.h"

#include <gtest/gtest.h>

#include "tests/analysis/figure_sky.h"

namespace orsolva_host::analysis {
namespace {

/// A satellite at the zenith, one at 25 degrees and one without a record.
class StrengthTest : public testing::Test {
 protected:
  StrengthTest() {
    AddStillOrbit(records_, {'J', 1}, 0, 48);
    AddStillOrbit(records_, {'J', 2}, 0.95, 48);
    orbits_.Add(records_);
    sky_.emplace(orbits_, 10);
  }

  void Add(const ObservationEpoch& epoch, bool with_station = true) {
    roster_.Take(epoch);
    sky_->Add(epoch, roster_, with_station ? &station_ : nullptr, 1);
    strength_.Add(epoch, roster_, *sky_);
  }

  AnalysisResult Result() const {
    AnalysisResult result;
    strength_.FillIn(roster_, result);
    return result;
  }

 private:
  BroadcastRecords records_;
  BroadcastStore orbits_;
  Station station_ = EquatorStation();
  SignalRoster roster_;
  std::optional<Sky> sky_;
  Strength strength_;
};

TEST_F(StrengthTest, MeanAndPercentileOfSatellitesAndSystems) {
  for (int i = 0; i < 100; ++i) {
    ObservationEpoch epoch;
    epoch.time_ns = At(30.0 * i);
    AddSatellite(epoch, {'J', 1}, {"1C"}, 30 + 0.25 * i);
    AddSatellite(epoch, {'J', 2}, {"1C"}, 20);
    AddSatellite(epoch, {'J', 9}, {"1C"}, i == 0 ? 0 : kAbsent);
    Add(epoch);
  }
  const AnalysisResult result = Result();
  ASSERT_EQ(result.satellite_signals.size(), 2U) << "zero is no strength";
  const StrengthFigures& first = result.satellite_signals[0].strength;
  EXPECT_EQ(first.values, 100U);
  EXPECT_DOUBLE_EQ(first.mean_dbhz.value(), 42.375);
  EXPECT_EQ(first.p5_dbhz, 31.0) << "five values lie at or below it";
  const StrengthFigures& all = result.signals[0].strength;
  EXPECT_EQ(all.values, 200U);
  EXPECT_DOUBLE_EQ(all.mean_dbhz.value(), 31.1875);
  EXPECT_EQ(all.p5_dbhz, 20.0);
  ASSERT_EQ(all.mean_by_elevation.size(), 2U);
  EXPECT_EQ(all.mean_by_elevation[0].from_deg, 25);
  EXPECT_EQ(all.mean_by_elevation[0].to_deg, 30);
  EXPECT_EQ(all.mean_by_elevation[0].values, 100U);
  EXPECT_EQ(all.mean_by_elevation[1].from_deg, 85);
  EXPECT_DOUBLE_EQ(all.mean_by_elevation[1].value, 42.375);
  ASSERT_EQ(all.p5_by_elevation.size(), 2U);
  EXPECT_EQ(all.p5_by_elevation[1].value, 31.0);
  EXPECT_TRUE(first.p5_by_elevation.empty());
  EXPECT_EQ(first.mean_by_elevation.size(), 1U);
}

TEST_F(StrengthTest, PercentilesOfFewValuesAreAbsent) {
  for (int i = 0; i < 19; ++i) {
    ObservationEpoch epoch;
    epoch.time_ns = At(30.0 * i);
    AddSatellite(epoch, {'J', 1}, {"1C"}, 40.1);
    Add(epoch);
  }
  const StrengthFigures figures = Result().signals[0].strength;
  EXPECT_NEAR(figures.mean_dbhz.value(), 40.1, 1e-9);
  EXPECT_FALSE(figures.p5_dbhz);
  EXPECT_TRUE(figures.p5_by_elevation.empty());
}

TEST_F(StrengthTest, WithoutAStationOnlyTheBinsAreAbsent) {
  for (int i = 0; i < 40; ++i) {
    ObservationEpoch epoch;
    epoch.time_ns = At(30.0 * i);
    AddSatellite(epoch, {'J', 1}, {"1C"}, 40);
    Add(epoch, false);
  }
  const StrengthFigures figures = Result().signals[0].strength;
  EXPECT_EQ(figures.values, 40U);
  EXPECT_EQ(figures.p5_dbhz, 40.0);
  EXPECT_TRUE(figures.mean_by_elevation.empty());
  EXPECT_TRUE(figures.drops.empty());
}

TEST_F(StrengthTest, ADropOfSixDecibelsOverAnHourAndAHalfIsFoundInTheStream) {
  for (int i = 0; i < 2880; ++i) {
    ObservationEpoch epoch;
    epoch.time_ns = At(30.0 * i);
    const bool dropped = i >= 1200 && i < 1380;  // 10:00 to 11:30
    AddSatellite(epoch, {'J', 1}, {"1C", "5Q"}, dropped ? 39 : 45);
    epoch.signals[1].snr_dbhz = 48;
    Add(epoch);
  }
  const AnalysisResult result = Result();
  const std::vector<StrengthDrop>& drops = result.satellite_signals[0].strength.drops;
  ASSERT_EQ(drops.size(), 1U);
  EXPECT_EQ(drops[0].from_ns, At(36000));
  EXPECT_EQ(drops[0].to_ns, At(41400));
  EXPECT_NEAR(drops[0].mean_drop_db, 6, 1e-5);
  EXPECT_EQ(drops[0].other_bands, false);
  EXPECT_TRUE(result.satellite_signals[1].strength.drops.empty());
  EXPECT_TRUE(result.signals[0].strength.drops.empty()) << "one satellite is no system";
}

TEST_F(StrengthTest, DropsAreThoseOfTheLast26Hours) {
  const auto add = [&](int i) {
    ObservationEpoch epoch;
    epoch.time_ns = At(30.0 * i);
    AddSatellite(epoch, {'J', 1}, {"1C"}, i >= 1200 && i < 1380 ? 39 : 45);
    Add(epoch);
  };
  for (int i = 0; i < 2880; ++i) add(i);
  ASSERT_EQ(Result().satellite_signals[0].strength.drops.size(), 1U);
  for (int i = 2880; i < 4600; ++i) add(i);
  EXPECT_TRUE(Result().satellite_signals[0].strength.drops.empty());
  EXPECT_EQ(Result().satellite_signals[0].strength.values, 4600U);
}

TEST(StrengthHistogram, QuantilesAreRanksOfValues) {
  StrengthHistogram histogram;
  for (const double v : {30.0, 30.25, 41.0, 41.1, 60.0, -3.0, 70.0})
    histogram.Add(StrengthHistogram::BinOf(v));
  EXPECT_EQ(histogram.Count(), 7U);
  EXPECT_EQ(histogram.Quantile(0, 1), 0.0);
  EXPECT_EQ(histogram.Quantile(0.5, 1), 41.0);
  EXPECT_EQ(histogram.Quantile(1, 1), 63.75);
  EXPECT_FALSE(histogram.Quantile(0.5, 8));
}

}  // namespace
}  // namespace orsolva_host::analysis
