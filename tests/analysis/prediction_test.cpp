#include "host/analysis/slips/prediction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace orsolva_host::analysis {
namespace {

/// r' C^-1 r by elimination of the whole matrix.
double BruteForce(const StepTest& t) {
  const int n = t.count;
  double a[8][9];
  for (int i = 0; i < n; ++i) {
    const auto p = static_cast<std::size_t>(i);
    for (int j = 0; j < n; ++j) {
      const auto q = static_cast<std::size_t>(j);
      a[i][j] = t.range_m2 + t.ionosphere_m2 * t.mu[p] * t.mu[q] + (i == j ? t.noise_m2[p] : 0);
    }
    a[i][n] = t.r[p];
  }
  for (int k = 0; k < n; ++k) {
    for (int i = 0; i < n; ++i) {
      if (i == k) continue;
      const double f = a[i][k] / a[k][k];
      for (int j = k; j <= n; ++j) a[i][j] -= f * a[k][j];
    }
  }
  double sum = 0;
  for (int i = 0; i < n; ++i) sum += t.r[static_cast<std::size_t>(i)] * a[i][n] / a[i][i];
  return sum;
}

TEST(Chi2, EqualsTheSolutionOfTheWholeMatrix) {
  for (int n = 1; n <= 6; ++n) {
    StepTest t;
    t.count = n;
    t.range_m2 = 0.02 * 0.02;
    t.ionosphere_m2 = 0.01 * 0.01;
    for (int i = 0; i < n; ++i) {
      const auto p = static_cast<std::size_t>(i);
      t.mu[p] = 1 + 0.13 * i * i;
      t.r[p] = 0.03 * std::sin(3.0 * i + n);
      t.noise_m2[p] = 2e-5 * (1 + i);
    }
    EXPECT_NEAR(Chi2(t), BruteForce(t), 1e-8 * (1 + BruteForce(t))) << n;
  }
}

TEST(Chi2, ACommonPartCostsNothingWhereTheRangeIsFree) {
  StepTest t;
  t.count = 2;
  t.range_m2 = 1e8;
  t.ionosphere_m2 = 1e-4;
  t.mu = {1, 1.65};
  t.noise_m2 = {1e-5, 1e-5};
  t.r = {0.01, -0.01};
  const double without = Chi2(t);
  t.r = {250.01, 249.99};
  EXPECT_NEAR(Chi2(t), without, 1e-3);
}

/// A track without a modelled range whose rates are those of a curve over time.
template <typename Curve>
SatelliteTrack TrackOf(const std::vector<double>& times_s, Curve mean_rate) {
  SatelliteTrack track;
  for (const double time_s : times_s) {
    StepState& step = track.At(track.next);
    step = {};
    step.time_ns = static_cast<std::int64_t>(time_s * 1e9);
    step.common_m = step.wide_common_m = 0;
    step.range_scale_m = 0.05;
    if (track.next > 0) {
      const double before_s = times_s[static_cast<std::size_t>(track.next - 1)];
      step.dt_s = time_s - before_s;
      step.range_rate = mean_rate(before_s, time_s);
    }
    ++track.next;
  }
  return track;
}

/// Mean over a step of the rate a + b t + c t^2 + d t^3, t in units of 30 s.
double MeanOfCubic(double from_s, double to_s) {
  const auto integral = [](double s) {
    const double t = s / 30;
    return 30 * t * (7 + t * (-2 + t * (0.5 - 0.03 * t)));
  };
  return (integral(to_s) - integral(from_s)) / (to_s - from_s);
}

const std::vector<double> kEven_s = {0, 30, 60, 90, 120, 150, 180, 210};

TEST(UnmodelledRange, BothStencilsAreExactForACubic) {
  const SatelliteTrack track = TrackOf(kEven_s, MeanOfCubic);
  const double truth = track.At(4).range_rate;
  EXPECT_NEAR(CubicRangeRate(track, 4), truth, 1e-9);
  EXPECT_NEAR(WideRangeRate(track, 4), truth, 1e-9);
}

TEST(UnmodelledRange, IsThatOfTheWideStencilWhereTheTwoAgree) {
  SatelliteTrack track = TrackOf(kEven_s, MeanOfCubic);
  track.At(5).range_rate += 1e-4;  // 3 mm: as a clock wanders
  EXPECT_EQ(RangeFromNeighbours(track, 4).rate, WideRangeRate(track, 4));
  track.At(7).range_rate += 0.5;  // 15 m: a slip in the outermost step
  EXPECT_EQ(RangeFromNeighbours(track, 4).rate, CubicRangeRate(track, 4));
}

TEST(UnmodelledRange, IsThatOfTheNarrowStencilAtTheEndOfWhatIsKnown) {
  const SatelliteTrack track = TrackOf({0, 30, 60, 90, 120, 150, 180}, MeanOfCubic);
  EXPECT_TRUE(std::isnan(WideRangeRate(track, 4)));
  EXPECT_EQ(RangeFromNeighbours(track, 4).rate, CubicRangeRate(track, 4));
}

TEST(UnmodelledRange, OfALateEpochIsPredictedByItsOwnTime) {
  const std::vector<double> late_s = {0, 30, 60, 90.25, 120, 150, 180, 210};
  const SatelliteTrack track = TrackOf(late_s, MeanOfCubic);
  EXPECT_TRUE(std::isnan(WideRangeRate(track, 4)));
  // The means of steps of other lengths differ from a cubic by a curvature of 1 m/s over a minute times 0.25
  // s.
  EXPECT_NEAR(CubicRangeRate(track, 4), track.At(4).range_rate, 1e-3);
  const double by_even_steps =
      (-track.RangeRate(2) + 4 * track.RangeRate(3) + 4 * track.RangeRate(5) - track.RangeRate(6)) / 6;
  EXPECT_GT(std::fabs(by_even_steps - track.At(4).range_rate), 4e-3);
}

}  // namespace
}  // namespace orsolva_host::analysis
