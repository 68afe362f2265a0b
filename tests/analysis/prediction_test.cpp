#include "host/analysis/slips/prediction.h"

#include <gtest/gtest.h>

#include <cmath>

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

}  // namespace
}  // namespace orsolva_host::analysis
