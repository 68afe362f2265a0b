// Figures of epochs through the whole analysis.
#include <gtest/gtest.h>

#include "host/analysis/station_analysis.h"
#include "tests/analysis/figure_sky.h"

namespace orsolva_host::analysis {
namespace {

/// Geostationary satellites around the station, the header giving its position.
struct Scene {
  Scene() {
    for (std::uint8_t i = 1; i <= 6; ++i) AddStillOrbit(records, {'J', i}, -0.6 + 0.2 * i);
    options.detector.position = EquatorStation().Position();
  }
  BroadcastRecords records;
  AnalysisOptions options;
};

ObservationEpoch SceneEpoch(int i) {
  ObservationEpoch epoch;
  epoch.time_ns = At(30.0 * i);
  for (std::uint8_t s = 1; s <= 5; ++s) AddSatellite(epoch, {'J', s}, {"1C", "2L"});
  return epoch;
}

TEST(StationAnalysis, GivesFiguresOfEpochsAtAnyTimeWithoutChangingThem) {
  Scene scene;
  StationAnalysis asked(scene.options, scene.records), left_alone(scene.options, scene.records);
  for (int i = 0; i < 200; ++i) {
    if (i == 90) continue;
    asked.Add(SceneEpoch(i));
    left_alone.Add(SceneEpoch(i));
    const AnalysisResult now = asked.Result();
    if (i == 99) {
      EXPECT_TRUE(now.with_orbits);
      EXPECT_EQ(now.span.expected_epochs, 100U);
      EXPECT_EQ(now.span.present_epochs, 99U);
      EXPECT_EQ(now.signals[0].cutoff.expected, 500U);
      EXPECT_EQ(now.signals[0].cutoff.observed, 495U);
    }
  }
  asked.Finish();
  left_alone.Finish();
  const AnalysisResult a = asked.Result(), b = left_alone.Result();
  EXPECT_EQ(a.span.expected_epochs, 200U);
  ASSERT_EQ(a.span.gaps.size(), 1U);
  EXPECT_EQ(a.span.expected_epochs, b.span.expected_epochs);
  EXPECT_EQ(a.signals[0].cutoff.observed, b.signals[0].cutoff.observed);
  EXPECT_EQ(a.signals[0].strength.mean_dbhz, b.signals[0].strength.mean_dbhz);
  EXPECT_EQ(a.mask.lowest_deg, b.mask.lowest_deg);
  ASSERT_EQ(a.never_observed.size(), 1U);
  EXPECT_EQ(NameOf(a.never_observed[0].id), "J06");
}

TEST(StationAnalysis, WithoutNavigationGivesWhatNeedsNoElevation) {
  Scene scene;
  StationAnalysis analysis(scene.options, {});
  for (int i = 0; i < 100; ++i) analysis.Add(SceneEpoch(i));
  analysis.Add(SceneEpoch(50));
  analysis.Finish();
  const AnalysisResult result = analysis.Result();
  EXPECT_FALSE(result.with_orbits);
  EXPECT_EQ(result.span.interval_s, 30);
  EXPECT_EQ(result.span.usable_epochs, 100U);
  EXPECT_EQ(result.span.disordered_epochs, 1U);
  ASSERT_EQ(result.signals.size(), 2U);
  EXPECT_EQ(result.signals[0].phases, 500U);
  EXPECT_EQ(result.signals[0].strength.values, 500U);
  EXPECT_FALSE(result.signals[0].horizon.expected);
  EXPECT_FALSE(result.mask.lowest_deg);
  EXPECT_EQ(result.without_record.size(), 5U);
  EXPECT_EQ(result.systems[0].satellites_without_record, 5U);
  EXPECT_TRUE(result.never_observed.empty());
}

TEST(StationAnalysis, CountsWithAnotherIntervalThanThatOfTheFirstEpochs) {
  Scene scene;
  StationAnalysis analysis(scene.options, scene.records);
  for (int i = 0; i < 20; ++i) {
    ObservationEpoch epoch = SceneEpoch(0);
    epoch.time_ns = At(i);
    analysis.Add(epoch);
  }
  for (int i = 1; i < 500; ++i) analysis.Add(SceneEpoch(i));
  analysis.Finish();
  const AnalysisResult result = analysis.Result();
  EXPECT_EQ(result.span.interval_s, 30);
  EXPECT_EQ(result.span.expected_epochs, 500U);
  EXPECT_TRUE(result.span.gaps.empty());
  EXPECT_NEAR(static_cast<double>(result.signals[0].cutoff.expected.value()), 2500, 5);
  EXPECT_LE(result.signals[0].cutoff.observed.value(), result.signals[0].cutoff.expected.value());
  EXPECT_GT(result.signals[0].cutoff.ratio.value(), 0.98);
}

}  // namespace
}  // namespace orsolva_host::analysis
