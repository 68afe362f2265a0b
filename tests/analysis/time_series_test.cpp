// Figures over time through the whole analysis: bins, their order, what is expected, and that what comes late
// is in them.
#include "host/analysis/figures/time_series.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "host/analysis/station_analysis.h"
#include "tests/analysis/figure_sky.h"

namespace orsolva_host::analysis {
namespace {

/// Geostationary satellites over the station, J01 to J05.
struct Scene {
  Scene() {
    for (std::uint8_t i = 1; i <= 5; ++i) AddStillOrbit(records, {'J', i}, -0.6 + 0.2 * i);
    options.detector.position = EquatorStation().Position();
    options.detector.interval_s = 30;
    options.series = true;
  }
  BroadcastRecords records;
  AnalysisOptions options;
};

ObservationEpoch SceneEpoch(int i, int satellites = 5) {
  ObservationEpoch epoch;
  epoch.time_ns = At(30.0 * i);
  for (std::uint8_t s = 1; s <= satellites; ++s) AddSatellite(epoch, {'J', s}, {"1C", "2L"}, 40 + s);
  return epoch;
}

std::vector<SeriesRow> AllRows(StationAnalysis& analysis) {
  analysis.Finish();
  return analysis.TakeSeries();
}

std::string SubjectOf(const SeriesRow& row) {
  switch (row.subject) {
    case SeriesSubject::kStation:
      return "station";
    case SeriesSubject::kSystemSignal:
      return std::string(1, row.satellite.system) + " " + NameOf(row.code);
    case SeriesSubject::kSatellite:
      return NameOf(row.satellite);
    default:
      return NameOf(row.satellite) + " " + NameOf(row.code);
  }
}

const SeriesRow& Find(const std::vector<SeriesRow>& rows, const std::string& subject, int bin) {
  for (const SeriesRow& row : rows) {
    if (SubjectOf(row) == subject && row.time_ns == kMidnight_ns + bin * TimeSeries::kBin_ns) return row;
  }
  ADD_FAILURE() << subject << " has no row in bin " << bin;
  return rows.front();
}

TEST(TimeSeries, ABinHasTheStationItsSignalsAndEachSatelliteWithItsSignals) {
  Scene scene;
  StationAnalysis analysis(scene.options, scene.records);
  for (int i = 0; i < 10; ++i) analysis.Add(SceneEpoch(i, 2));
  std::string subjects;
  for (const SeriesRow& row : AllRows(analysis)) subjects += SubjectOf(row) + ", ";
  EXPECT_EQ(subjects, "station, J 1C, J 2L, J01, J01 1C, J01 2L, J02, J02 1C, J02 2L, ");
}

TEST(TimeSeries, CountsObservedOfExpectedEpochsInEachBin) {
  Scene scene;
  StationAnalysis analysis(scene.options, scene.records);
  // J05 is away in the last six epochs of the second bin.
  for (int i = 0; i < 30; ++i) analysis.Add(SceneEpoch(i, i >= 14 && i < 20 ? 4 : 5));
  const std::vector<SeriesRow> rows = AllRows(analysis);
  EXPECT_EQ(Find(rows, "station", 1).observed_epochs, 10U);
  EXPECT_DOUBLE_EQ(Find(rows, "station", 0).satellites, 5);
  EXPECT_DOUBLE_EQ(Find(rows, "station", 1).satellites, 4.4);
  EXPECT_EQ(Find(rows, "J05", 1).expected_epochs, 10U);
  EXPECT_EQ(Find(rows, "J05", 1).observed_epochs, 4U);
  EXPECT_EQ(Find(rows, "J05 2L", 1).expected_epochs, 10U);
  EXPECT_EQ(Find(rows, "J05 2L", 1).observed_epochs, 4U);
  EXPECT_EQ(Find(rows, "J 1C", 1).expected_epochs, 50U);
  EXPECT_EQ(Find(rows, "J 1C", 1).observed_epochs, 44U);
  EXPECT_EQ(Find(rows, "J 1C", 2).observed_epochs, 50U);
}

TEST(TimeSeries, ASignalIsExpectedFromTheBinInWhichItWasFirstObserved) {
  Scene scene;
  StationAnalysis analysis(scene.options, scene.records);
  for (int i = 0; i < 20; ++i) {
    ObservationEpoch epoch = SceneEpoch(i, 4);
    AddSatellite(epoch, {'J', 5},
                 i < 15 ? std::vector<std::string>{"1C"} : std::vector<std::string>{"1C", "2L"});
    analysis.Add(epoch);
  }
  const std::vector<SeriesRow> rows = AllRows(analysis);
  EXPECT_EQ(Find(rows, "J 2L", 0).expected_epochs, 40U);
  EXPECT_EQ(Find(rows, "J 2L", 1).expected_epochs, 50U);
  EXPECT_EQ(Find(rows, "J 2L", 1).observed_epochs, 45U);
}

TEST(TimeSeries, MeansAreOfTheValuesOfTheBin) {
  Scene scene;
  StationAnalysis analysis(scene.options, scene.records);
  for (int i = 0; i < 20; ++i) analysis.Add(SceneEpoch(i));
  const std::vector<SeriesRow> rows = AllRows(analysis);
  EXPECT_DOUBLE_EQ(Find(rows, "J03 1C", 1).snr_dbhz, 43);
  EXPECT_EQ(Find(rows, "J03 1C", 1).snr_values, 10U);
  EXPECT_DOUBLE_EQ(Find(rows, "J 2L", 0).snr_dbhz, 43);
  EXPECT_EQ(Find(rows, "J 2L", 0).snr_values, 50U);
  EXPECT_NEAR(Find(rows, "J03", 0).elevation_deg, 90, 0.01);
}

TEST(TimeSeries, WithoutNavigationExpectsNothingAndCountsEverything) {
  Scene scene;
  StationAnalysis analysis(scene.options, {});
  for (int i = 0; i < 20; ++i) analysis.Add(SceneEpoch(i));
  const std::vector<SeriesRow> rows = AllRows(analysis);
  EXPECT_FALSE(Find(rows, "J 1C", 1).expected_epochs);
  EXPECT_EQ(Find(rows, "J 1C", 1).observed_epochs, 50U);
  EXPECT_TRUE(std::isnan(Find(rows, "J01", 1).elevation_deg));
  EXPECT_TRUE(std::isnan(Find(rows, "station", 1).pdop));
}

/// Three and a half hours with holes of all kinds; J05 sets for good early.
ObservationEpoch HoleyEpoch(int i) {
  ObservationEpoch epoch = SceneEpoch(i, i < 150 ? 5 : 4);
  if (i >= 200 && i < 260) epoch.satellites.erase(epoch.satellites.begin() + 1);
  if (i >= 300 && i < 310) epoch.satellites.erase(epoch.satellites.begin() + 2);
  for (std::size_t k = 0; k < epoch.signals.size(); ++k)
    epoch.signals[k].pseudorange_m += 0.3 * ((7 * i + 3 * static_cast<int>(k)) % 5 - 2);
  return epoch;
}

TEST(TimeSeries, HoldsEveryMultipathValueOfTheFigures) {
  Scene scene;
  StationAnalysis analysis(scene.options, scene.records);
  std::vector<SeriesRow> rows;
  for (int i = 0; i < 420; ++i) {
    if (i >= 380 && i < 400) continue;  // a gap of the receiver
    analysis.Add(HoleyEpoch(i));
    for (const SeriesRow& row : analysis.TakeSeries()) rows.push_back(row);
  }
  for (const SeriesRow& row : AllRows(analysis)) rows.push_back(row);
  std::map<std::string, double> squares;
  std::map<std::string, Count> values;
  for (const SeriesRow& row : rows) {
    if (row.subject != SeriesSubject::kSatelliteSignal || row.multipath_values == 0) continue;
    const std::string signal = NameOf(row.code);
    values[signal] += row.multipath_values;
    squares[signal] += row.multipath_m * row.multipath_m * static_cast<double>(row.multipath_values);
  }
  for (const SignalFigures& signal : analysis.Result().signals) {
    const std::string name = NameOf(signal.code);
    ASSERT_TRUE(signal.multipath.values && signal.multipath.moving_m);
    EXPECT_EQ(values[name], *signal.multipath.values) << name;
    EXPECT_NEAR(std::sqrt(squares[name] / static_cast<double>(values[name])), *signal.multipath.moving_m,
                1e-9);
  }
}

TEST(TimeSeries, ChangesNoFigure) {
  Scene scene;
  StationAnalysis with(scene.options, scene.records);
  scene.options.series = false;
  StationAnalysis without(scene.options, scene.records);
  for (int i = 0; i < 420; ++i) {
    with.Add(HoleyEpoch(i));
    without.Add(HoleyEpoch(i));
  }
  with.Finish();
  without.Finish();
  const AnalysisResult a = with.Result(), b = without.Result();
  EXPECT_TRUE(without.TakeSeries().empty());
  ASSERT_EQ(a.satellite_signals.size(), b.satellite_signals.size());
  for (std::size_t i = 0; i < a.satellite_signals.size(); ++i) {
    EXPECT_EQ(a.satellite_signals[i].multipath.moving_m, b.satellite_signals[i].multipath.moving_m);
    EXPECT_EQ(a.satellite_signals[i].multipath.whole_arc_m, b.satellite_signals[i].multipath.whole_arc_m);
    EXPECT_EQ(a.satellite_signals[i].multipath.values, b.satellite_signals[i].multipath.values);
  }
  ASSERT_EQ(a.systems.size(), b.systems.size());
  EXPECT_EQ(a.systems[0].ionosphere.windows, b.systems[0].ionosphere.windows);
  EXPECT_EQ(a.systems[0].ionosphere.median_roti, b.systems[0].ionosphere.median_roti);
}

TEST(TimeSeries, GivesBinsOutWhenTheyAreCompleteAndHoldsNoOthers) {
  Scene scene;
  StationAnalysis analysis(scene.options, scene.records);
  std::int64_t last_ns = 0;
  for (int i = 0; i < 600; ++i) {
    analysis.Add(SceneEpoch(i));
    for (const SeriesRow& row : analysis.TakeSeries()) {
      EXPECT_GE(row.time_ns, last_ns);
      last_ns = row.time_ns;
    }
    const double held_s = SecondsBetween(At(30.0 * i), last_ns);
    if (i <= 120) continue;
    EXPECT_LE(held_s, 3400) << i;
  }
  EXPECT_GT(last_ns, At(4.0 * 3600 - 3600 / 2));
}

}  // namespace
}  // namespace orsolva_host::analysis
