#include "host/analysis/figures/span.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/analysis/figure_epochs.h"

namespace orsolva_host::analysis {
namespace {

SpanFigures Of(const std::vector<ObservationEpoch>& epochs, double hint_s = 0) {
  Span span(hint_s);
  for (const ObservationEpoch& epoch : epochs) span.Add(epoch);
  SpanFigures figures;
  span.FillIn(figures);
  return figures;
}

SpanFigures OfTimes(const std::vector<double>& seconds) {
  std::vector<ObservationEpoch> epochs;
  for (const double s : seconds) epochs.push_back(EpochOf(s, 5));
  return Of(epochs);
}

TEST(Span, CountsAWholeStream) {
  std::vector<double> seconds;
  for (int i = 0; i < 2880; ++i) seconds.push_back(30.0 * i);
  const SpanFigures figures = OfTimes(seconds);
  EXPECT_EQ(figures.interval_s, 30);
  EXPECT_EQ(figures.first_ns, At(0));
  EXPECT_EQ(figures.last_ns, At(86370));
  EXPECT_EQ(figures.expected_epochs, 2880U);
  EXPECT_EQ(figures.present_epochs, 2880U);
  EXPECT_EQ(figures.usable_epochs, 2880U);
  EXPECT_EQ(figures.lost_epochs, 0U);
  EXPECT_TRUE(figures.gaps.empty());
}

TEST(Span, ListsEachGapWithItsEnds) {
  const SpanFigures figures = OfTimes({0, 30, 60, 120, 150, 180, 300, 330});
  EXPECT_EQ(figures.expected_epochs, 12U);
  EXPECT_EQ(figures.present_epochs, 8U);
  EXPECT_EQ(figures.lost_epochs, 4U);
  ASSERT_EQ(figures.gaps.size(), 2U);
  EXPECT_EQ(figures.gaps[0].last_before_ns, At(60));
  EXPECT_EQ(figures.gaps[0].first_after_ns, At(120));
  EXPECT_EQ(figures.gaps[0].missing_epochs, 1U);
  EXPECT_EQ(figures.gaps[1].missing_epochs, 3U);
}

TEST(Span, ListsGapsOfEqualLengthInARow) {
  const SpanFigures figures = OfTimes({0, 30, 60, 90, 120, 210, 300, 390, 420, 450});
  ASSERT_EQ(figures.gaps.size(), 3U);
  EXPECT_EQ(figures.gaps[1].last_before_ns, At(210));
  EXPECT_EQ(figures.gaps[1].first_after_ns, At(300));
  EXPECT_EQ(figures.gaps[1].missing_epochs, 2U);
  EXPECT_EQ(figures.lost_epochs, 6U);
}

TEST(Span, EpochsOffTheGridAreNeitherMissingNorCounted) {
  const SpanFigures extra = OfTimes({0, 30, 37, 60, 90, 104.9, 120, 150, 180});
  EXPECT_EQ(extra.expected_epochs, 7U);
  EXPECT_EQ(extra.lost_epochs, 0U);
  EXPECT_TRUE(extra.gaps.empty());
  const SpanFigures late = OfTimes({0, 30, 60, 98, 120, 150});
  EXPECT_EQ(late.expected_epochs, 6U);
  EXPECT_EQ(late.lost_epochs, 0U);
}

TEST(Span, ATimeTagThatWandersLosesNothing) {
  std::vector<double> seconds;
  for (int i = 0; i < 2000; ++i) seconds.push_back(i * 1.0004);
  const SpanFigures figures = OfTimes(seconds);
  EXPECT_EQ(figures.interval_s, 1);
  EXPECT_EQ(figures.expected_epochs, 2000U);
  EXPECT_EQ(figures.lost_epochs, 0U);
}

TEST(Span, AnEpochWithoutObservationsIsLost) {
  std::vector<ObservationEpoch> epochs;
  for (int i = 0; i < 8; ++i)
    epochs.push_back(EpochOf(30.0 * i, i == 0 || i == 4 || i == 5 || i == 7 ? 0 : 6));
  const SpanFigures figures = Of(epochs);
  EXPECT_EQ(figures.expected_epochs, 8U);
  EXPECT_EQ(figures.present_epochs, 4U);
  EXPECT_EQ(figures.lost_epochs, 4U);
  ASSERT_EQ(figures.gaps.size(), 3U);
  EXPECT_EQ(figures.gaps[0].last_before_ns, At(0));
  EXPECT_EQ(figures.gaps[0].first_after_ns, At(30));
  EXPECT_EQ(figures.gaps[0].missing_epochs, 1U);
  EXPECT_EQ(figures.gaps[1].last_before_ns, At(90));
  EXPECT_EQ(figures.gaps[1].first_after_ns, At(180));
  EXPECT_EQ(figures.gaps[1].missing_epochs, 2U);
  EXPECT_EQ(figures.gaps[2].first_after_ns, At(210));
  EXPECT_EQ(figures.gaps[2].missing_epochs, 1U);
}

TEST(Span, UsableTakesFourSatellitesWithTwoBands) {
  std::vector<ObservationEpoch> epochs = {EpochOf(0, 4), EpochOf(30, 3), EpochOf(60, 5), EpochOf(90, 4)};
  epochs[3].signals[7].phase_cycles = kAbsent;
  ObservationEpoch one_band;
  one_band.time_ns = At(120);
  for (std::uint8_t i = 1; i < 9; ++i) AddSatellite(one_band, {'G', i}, {"1C", "1W"});
  epochs.push_back(one_band);
  EXPECT_EQ(Of(epochs).usable_epochs, 2U);
}

TEST(Span, CountsWithTheIntervalOfTheWholeStream) {
  std::vector<double> seconds;
  for (int i = 0; i < 61; ++i) seconds.push_back(i);
  for (int i = 3; i <= 102; ++i) seconds.push_back(30.0 * i);
  const SpanFigures figures = OfTimes(seconds);
  EXPECT_EQ(figures.interval_s, 30);
  EXPECT_EQ(figures.expected_epochs, 103U);
  EXPECT_EQ(figures.present_epochs, 103U);
  EXPECT_TRUE(figures.gaps.empty());
}

TEST(Span, ASingleEpochIsOneOfOne) {
  const SpanFigures figures = OfTimes({0});
  EXPECT_EQ(figures.interval_s, 0);
  EXPECT_EQ(figures.expected_epochs, 1U);
  EXPECT_EQ(figures.present_epochs, 1U);
}

TEST(Span, WithoutEpochsNothingIsCounted) {
  const SpanFigures figures = Of({}, 30);
  EXPECT_FALSE(figures.expected_epochs);
  EXPECT_FALSE(figures.present_epochs);
}

TEST(Span, CountsGapsBeyondTheList) {
  std::vector<ObservationEpoch> epochs;
  const int gaps = static_cast<int>(Span::kMaxGaps) * 5 / 2;
  for (int i = 0; i < 4 * gaps; ++i) {
    if (i % 4 != 3) epochs.push_back(EpochOf(i, 1));
  }
  const SpanFigures figures = Of(epochs);
  EXPECT_EQ(figures.gaps.size(), Span::kMaxGaps);
  EXPECT_EQ(figures.gaps.size() + figures.further_gaps, static_cast<std::size_t>(gaps) - 1);
  EXPECT_EQ(figures.lost_epochs, static_cast<std::size_t>(gaps) - 1);
  EXPECT_EQ(figures.expected_epochs, 4U * static_cast<std::size_t>(gaps) - 1);
}

}  // namespace
}  // namespace orsolva_host::analysis
