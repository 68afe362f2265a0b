// Streams whose interval becomes known only after their first epochs.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "host/analysis/figures/epoch_groups.h"
#include "tests/analysis/figure_sky.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kEnd_s = 7200;

/// Half an hour a window: a satellite at the zenith, one that rises, one that is not always observed.
class IntervalChange : public testing::Test {
 protected:
  IntervalChange() {
    BroadcastRecords records;
    AddStillOrbit(records, {'J', 1}, 0, 600);
    AddStillOrbit(records, {'J', 2}, 0.5, 600);
    AddMediumOrbit(records, {'G', 1});
    orbits_.Add(records);
  }

  static ObservationEpoch WholeEpoch(double seconds) {
    ObservationEpoch epoch = EpochOf(seconds, 0);
    AddSatellite(epoch, {'J', 1}, {"1C", "5Q"});
    AddSatellite(epoch, {'G', 1}, {"1C"});
    if (seconds > 1500) AddSatellite(epoch, {'J', 2}, {"1C"});
    return epoch;
  }

  AnalysisResult Of(const std::vector<ObservationEpoch>& epochs, double begin_s, bool read_often = false) {
    EpochGroups groups(0, 10, 1800);
    groups.UseOrbits(orbits_);
    groups.Begin(begin_s);
    for (const ObservationEpoch& epoch : epochs) {
      groups.AddEpoch(epoch, &station_);
      AnalysisResult now;
      if (read_often) groups.FillIn(now);
    }
    AnalysisResult result;
    groups.FillIn(result);
    return result;
  }

  static std::string Text(const CompletenessFigures& figures) {
    return std::to_string(figures.observed.value_or(0)) + "/" + std::to_string(figures.expected.value_or(0)) +
           " ";
  }

  /// Everything that depends on nominal epochs.
  static std::string Text(const AnalysisResult& result) {
    std::string text = std::to_string(*result.span.present_epochs) + "/" +
                       std::to_string(*result.span.expected_epochs) + "\n";
    for (const SignalFigures& row : result.satellite_signals) text += Text(row.horizon) + Text(row.cutoff);
    text += "\n";
    for (const SystemFigures& row : result.systems) text += Text(row.horizon) + Text(row.cutoff);
    for (const WindowFigures& window : result.windows) {
      text += "\n" + std::to_string(*window.span.present_epochs) + "/" +
              std::to_string(*window.span.expected_epochs) + " ";
      for (const SystemFigures& row : window.systems) text += Text(row.cutoff);
    }
    return text;
  }

  /// Epochs every 30 s of which some are left out, against those with nothing in their place, whose steps
  /// show the interval from the first one on.
  void ExpectTheSameAsEmpty(const std::function<bool(int)>& is_there, double begin_s) {
    std::vector<ObservationEpoch> thinned, with_empty;
    for (int i = 0; 30 * i < kEnd_s; ++i) {
      ObservationEpoch epoch = WholeEpoch(30.0 * i);
      if (is_there(i)) thinned.push_back(epoch);
      if (!is_there(i)) epoch.satellites.clear(), epoch.signals.clear();
      with_empty.push_back(std::move(epoch));
    }
    const std::string wanted = Text(Of(with_empty, 30));
    EXPECT_EQ(Text(Of(thinned, begin_s)), wanted);
    EXPECT_EQ(Text(Of(thinned, begin_s, true)), wanted) << "read after each epoch";
  }

  BroadcastStore orbits_;
  Station station_ = EquatorStation();
};

TEST_F(IntervalChange, FirstEpochsFurtherApartAreCountedAsIfItHadBeenKnown) {
  ExpectTheSameAsEmpty([](int i) { return i >= 40 || i % 2 == 0; }, 60);
  ExpectTheSameAsEmpty([](int i) { return i >= 200 || i % 10 == 0; }, 300);
}

TEST_F(IntervalChange, LastEpochsFurtherApartChangeNothing) {
  ExpectTheSameAsEmpty([](int i) { return i < 200 || i % 2 == 1; }, 30);
}

TEST_F(IntervalChange, AWrongFirstIntervalChangesNothing) {
  std::vector<ObservationEpoch> whole;
  for (int i = 0; 30 * i < kEnd_s; ++i) whole.push_back(WholeEpoch(30.0 * i));
  const AnalysisResult right = Of(whole, 30);
  EXPECT_EQ(right.systems[1].letter, 'J');
  EXPECT_EQ(right.systems[1].cutoff.expected, 3U * 240U);
  EXPECT_EQ(right.systems[1].cutoff.observed, 2U * 240U + 189U);
  for (const double begin_s : {15.0, 45.0, 60.0, 300.0}) EXPECT_EQ(Text(Of(whole, begin_s)), Text(right));
}

TEST_F(IntervalChange, DenserFirstEpochsCountWhereTheyAreOnTheGrid) {
  std::vector<ObservationEpoch> dense, whole;
  for (int i = 0; 30 * i < kEnd_s; ++i) whole.push_back(WholeEpoch(30.0 * i));
  for (int s = 0; s < 120; ++s) dense.push_back(WholeEpoch(s));
  dense.insert(dense.end(), whole.begin() + 4, whole.end());
  EXPECT_EQ(Text(Of(dense, 1)), Text(Of(whole, 30)));
}

TEST_F(IntervalChange, MoreRunsThanAreKeptAreCountedAgainOnce) {
  std::vector<ObservationEpoch> epochs;
  double seconds = 0;
  for (int i = 0; i < 40; ++i) epochs.push_back(WholeEpoch(seconds += 60));
  for (std::size_t i = 0; i < 80; ++i) epochs.push_back(WholeEpoch(seconds += 30));
  for (std::size_t i = 0; i < Span::kMaxRuns + 1000; ++i)
    epochs.push_back(WholeEpoch(seconds += i % 2 == 0 ? 60 : 30));
  const AnalysisResult result = Of(epochs, 60);
  EXPECT_EQ(result.span.present_epochs, epochs.size());
  const SignalFigures& zenith = result.satellite_signals[1];
  ASSERT_EQ(zenith.satellite, (SatelliteId{'J', 1}));
  EXPECT_EQ(zenith.cutoff.expected, result.span.expected_epochs);
  EXPECT_EQ(zenith.cutoff.observed, epochs.size());
}

}  // namespace
}  // namespace orsolva_host::analysis
