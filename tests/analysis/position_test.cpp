// Codes, positions and their figures on skies made by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "host/analysis/figures/code_range.h"
#include "host/analysis/figures/point_solution.h"
#include "host/analysis/figures/position.h"
#include "host/analysis/geometry/constants.h"
#include "host/analysis/numeric/quantile_histogram.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kRange_m = 2.2e7;

TEST(QuantileHistogram, QuantilesOfEvenlySpreadValues) {
  QuantileHistogram h(0, 10, 1000);
  EXPECT_TRUE(std::isnan(h.Quantile(0.5)));
  for (int i = 0; i < 1000; ++i) h.Add(0.01 * i + 0.005);
  EXPECT_NEAR(h.Quantile(0.5), 5, 0.01);
  EXPECT_NEAR(h.Quantile(0.95), 9.5, 0.01);
  h.Add(-5), h.Add(50);
  EXPECT_EQ(h.Count(), 1002U);
  EXPECT_NEAR(h.Quantile(0), 0, 0.01);
  EXPECT_NEAR(h.Quantile(1), 10, 0.01);
}

ObservationEpoch OneSatellite(SatelliteId id, const std::vector<std::pair<SignalCode, double>>& codes) {
  ObservationEpoch epoch;
  epoch.satellites = {{id, 0, codes.size()}};
  for (const auto& [code, metres] : codes) {
    epoch.signals.emplace_back();
    epoch.signals.back().code = code;
    epoch.signals.back().pseudorange_m = metres;
  }
  return epoch;
}

CodeRange CodesOf(SatelliteId id, const std::vector<std::pair<SignalCode, double>>& codes,
                  const ModelledRange& range = {}) {
  const ObservationEpoch epoch = OneSatellite(id, codes);
  return CodeRangeOf(epoch, epoch.satellites[0], range);
}

// 10 m of ionosphere on L1 are 10 (77 / 60)^2 m on L2.
TEST(CodeRange, TwoBandsTakeTheIonosphereOff) {
  const double on_second_m = 10 * 77.0 * 77 / (60 * 60);
  const CodeRange gps = CodesOf({'G', 5}, {{{'1', 'C'}, kRange_m + 99},
                                           {{'1', 'W'}, kRange_m + 10},
                                           {{'2', 'W'}, kRange_m + on_second_m},
                                           {{'5', 'Q'}, kRange_m}});
  EXPECT_NEAR(gps.two_bands_m, kRange_m, 1e-6);
  EXPECT_EQ(gps.one_band_m, kRange_m + 10);
  const double on_second_glonass_m = 10 * 9.0 * 9 / (7 * 7);
  const CodeRange glonass =
      CodesOf({'R', 5}, {{{'1', 'C'}, kRange_m + 10}, {{'2', 'C'}, kRange_m + on_second_glonass_m}});
  EXPECT_NEAR(glonass.two_bands_m, kRange_m, 1e-6);
}

TEST(CodeRange, GalileoTakesTheBandsOfItsClock) {
  const std::vector<std::pair<SignalCode, double>> codes = {
      {{'1', 'C'}, kRange_m}, {{'5', 'Q'}, kRange_m + 5}, {{'7', 'Q'}, kRange_m + 7}};
  ModelledRange precise;
  precise.precise = true;
  const double e1 = 1575.42 * 1575.42, e5a = 1176.45 * 1176.45, e5b = 1207.14 * 1207.14;
  EXPECT_NEAR(CodesOf({'E', 5}, codes).two_bands_m, kRange_m - 7 * e5b / (e1 - e5b), 1e-6);
  EXPECT_NEAR(CodesOf({'E', 5}, codes, precise).two_bands_m, kRange_m - 5 * e5a / (e1 - e5a), 1e-6);
  EXPECT_NEAR(CodesOf({'E', 5}, {codes[0], codes[1]}).two_bands_m, kRange_m - 5 * e5a / (e1 - e5a), 1e-6);
}

TEST(CodeRange, BdsLosesItsGroupDelayOnTheFirstBand) {
  ModelledRange range;
  range.group_delay_m = 3;
  const CodeRange codes = CodesOf({'C', 21}, {{{'2', 'I'}, kRange_m + 3}, {{'6', 'I'}, kRange_m}}, range);
  EXPECT_NEAR(codes.two_bands_m, kRange_m, 1e-6);
  EXPECT_EQ(codes.one_band_m, kRange_m);
}

TEST(CodeRange, IsAbsentWithoutItsBands) {
  EXPECT_TRUE(std::isnan(CodesOf({'G', 5}, {{{'1', 'C'}, kRange_m}}).two_bands_m));
  EXPECT_EQ(CodesOf({'G', 5}, {{{'1', 'C'}, kRange_m}}).one_band_m, kRange_m);
  EXPECT_TRUE(std::isnan(CodesOf({'G', 5}, {{{'2', 'W'}, kRange_m}}).one_band_m));
  EXPECT_TRUE(std::isnan(CodesOf({'S', 20}, {{{'1', 'C'}, kRange_m}}).one_band_m));
}

/// Unit vectors to satellites around a station on the x axis, where up is (1, 0, 0).
Vector3 Sight(double azimuth_deg, double elevation_deg) {
  const double a = azimuth_deg * kPi / 180, e = elevation_deg * kPi / 180;
  return {std::sin(e), std::cos(e) * std::sin(a), std::cos(e) * std::cos(a)};
}

std::vector<CodeSample> Sky(const Vector3& shift, double clock_m, double glonass_clock_m) {
  std::vector<CodeSample> samples;
  for (int i = 0; i < 12; ++i) {
    CodeSample s;
    s.line_of_sight = Sight(30 * i, 15 + 25 * (i % 3));
    s.sin_elevation = s.line_of_sight[0];
    s.range_m = kRange_m;
    s.clock = ClockPlace(i % 4 == 0 ? 'R' : 'G');
    Vector3 to = s.line_of_sight;
    for (std::size_t k = 0; k < 3; ++k) to[k] = kRange_m * to[k] - shift[k];
    const double range_m = std::sqrt(to[0] * to[0] + to[1] * to[1] + to[2] * to[2]);
    s.code_less_range_m = range_m - kRange_m + (s.clock == 0 ? clock_m : glonass_clock_m);
    samples.push_back(s);
  }
  return samples;
}

TEST(PointSolution, FindsShiftAndClocksNearAndKilometresAway) {
  for (const double far : {1.0, 1000.0}) {
    const auto solution = SolvePoint(Sky({3 * far, -2 * far, 1 * far}, 1e5, 1e5 + 40));
    ASSERT_TRUE(solution);
    const double tolerance_m = far == 1 ? 1e-6 : 1e-2;
    EXPECT_NEAR(solution->shift_m[0], 3 * far, tolerance_m);
    EXPECT_NEAR(solution->shift_m[1], -2 * far, tolerance_m);
    EXPECT_NEAR(solution->shift_m[2], 1 * far, tolerance_m);
    EXPECT_NEAR(solution->clock_m[ClockPlace('G')], 1e5, tolerance_m);
    EXPECT_NEAR(solution->clock_m[ClockPlace('R')], 1e5 + 40, tolerance_m);
    EXPECT_TRUE(std::isnan(solution->clock_m[ClockPlace('E')]));
    EXPECT_EQ(solution->used, 12U);
  }
}

TEST(PointSolution, AnOutlierMovesItByLessThanAMetre) {
  auto samples = Sky({}, 0, 0);
  samples[5].code_less_range_m += 300;
  const auto solution = SolvePoint(samples);
  ASSERT_TRUE(solution);
  EXPECT_LT(
      std::fabs(solution->shift_m[0]) + std::fabs(solution->shift_m[1]) + std::fabs(solution->shift_m[2]), 1);
  EXPECT_EQ(solution->used, 11U);
}

// Four satellites at the corners of a tetrahedron: e e' sums to 4/3 of the unit matrix, the mean is zero, and
// a fifth at their mean direction does not exist; twice the tetrahedron gives PDOP = sqrt(3 / (8 / 3)).
TEST(PointSolution, DilutionOfATetrahedron) {
  const double t = 1 / std::sqrt(3.0);
  std::vector<CodeSample> samples;
  for (const Vector3& e : {Vector3{t, t, t}, Vector3{t, -t, -t}, Vector3{-t, t, -t}, Vector3{-t, -t, t}}) {
    samples.push_back({e, 1, kRange_m, 0, 0});
    samples.push_back({e, 1, kRange_m, 0, 0});
  }
  const auto solution = SolvePoint(samples);
  ASSERT_TRUE(solution);
  EXPECT_NEAR(solution->pdop, std::sqrt(9.0 / 8), 1e-12);
}

TEST(PointSolution, NeedsFourSatellitesBeyondTheFirstOfTheirSystems) {
  auto samples = Sky({}, 0, 0);
  samples.resize(5);  // R G G G R: 3 beyond
  EXPECT_FALSE(SolvePoint(samples));
  samples = Sky({}, 0, 0);
  samples.resize(6);
  EXPECT_TRUE(SolvePoint(samples));
  EXPECT_FALSE(SolvePoint({}));
}

/// Feeds epochs of a sky to Position as the detector would.
class Stream {
 public:
  /// @param place  of the antenna against the station's position @param noise_m  of codes, alternating
  void Add(const Vector3& place, double noise_m, bool healthy = true) {
    const auto samples = Sky(place, 500, 500);
    ObservationEpoch epoch;
    std::vector<ModelledSatellite> satellites;
    for (std::size_t i = 0; i < samples.size(); ++i) {
      const double wobble = noise_m * (static_cast<double>((7 * i + 3 * count_) % 5) - 2);
      epoch.satellites.push_back({{'G', static_cast<std::uint8_t>(i + 1)}, 2 * i, 2});
      for (const char band : {'1', '2'}) {
        SignalObservation o;
        o.code = {band, 'W'};
        o.pseudorange_m = kRange_m + samples[i].code_less_range_m + wobble;
        epoch.signals.push_back(o);
      }
      ModelledRange range;
      range.valid = true;
      range.metres = kRange_m;
      range.line_of_sight = samples[i].line_of_sight;
      range.sin_elevation = samples[i].sin_elevation;
      range.healthy = healthy;
      satellites.push_back({i, range});
    }
    clock_m = position.AddRanges(epoch, station_, satellites);
    ReceiverStep step;
    step.clock_known = true;
    position.AddStep(step);
    ++count_;
  }

  PositionFigures Figures(const std::optional<Vector3>& header = {}) const {
    PositionFigures figures;
    position.FillIn(header, std::nullopt, figures);
    return figures;
  }

  Position position;
  double clock_m = 0;

 private:
  Station station_{Vector3{6378137.0, 0, 0}};
  std::size_t count_ = 0;
};

TEST(Position, MedianDistanceAndClockOfAnAntennaAtRest) {
  Stream stream;
  for (int i = 0; i < 50; ++i) stream.Add({1.5, -0.5, 2.5}, 0);
  EXPECT_NEAR(stream.clock_m, 500, 1e-3);
  const PositionFigures figures = stream.Figures(Vector3{6378137.0 + 1.5, -0.5, 2.5 + 4});
  ASSERT_TRUE(figures.mean_m);
  EXPECT_EQ(figures.solutions, 50U);
  EXPECT_EQ(figures.failed, 0U);
  EXPECT_EQ(figures.one_band_solutions, 0U);
  EXPECT_NEAR((*figures.mean_m)[0], 6378138.5, 0.02);
  EXPECT_NEAR((*figures.mean_m)[1], -0.5, 0.02);
  EXPECT_NEAR((*figures.mean_m)[2], 2.5, 0.02);
  EXPECT_NEAR(*figures.distance_to_header_m, 4, 0.03);
  EXPECT_FALSE(figures.distance_to_given_m);
  EXPECT_NEAR(*figures.residual_rms_m, 0, 1e-3);
  EXPECT_EQ(figures.moving, false);
}

TEST(Position, SaysNothingOfFewSolutionsAndUnhealthySatellites) {
  Stream stream;
  EXPECT_FALSE(stream.Figures().solutions);
  for (int i = 0; i < 9; ++i) stream.Add({}, 0);
  for (int i = 0; i < 9; ++i) stream.Add({}, 0, false);
  EXPECT_EQ(stream.Figures().solutions, 9U);
  EXPECT_EQ(stream.Figures().failed, 9U);
  EXPECT_FALSE(stream.Figures().mean_m);
  EXPECT_FALSE(stream.Figures().moving);
}

TEST(Position, AWalkOfMetresASecondIsMoving) {
  Stream stream;
  for (int i = 0; i < 60; ++i) stream.Add({0, 1.0 * i, 0}, 0.3);
  EXPECT_EQ(stream.Figures().moving, true);
  EXPECT_FALSE(stream.Figures().mean_m);
  EXPECT_FALSE(stream.Figures().scatter_enu_m);
}

// The same extent of positions is motion with good codes and noise with poor ones.
TEST(Position, NoisyCodesOfAnAntennaAtRestAreNoMotion) {
  Stream stream;
  for (int i = 0; i < 200; ++i) stream.Add({0, (i % 2) * 12.0, 0}, 8);
  EXPECT_EQ(stream.Figures().moving, false);
  EXPECT_GT((*stream.Figures().scatter_enu_m)[0], 2);
}

}  // namespace
}  // namespace orsolva_host::analysis
