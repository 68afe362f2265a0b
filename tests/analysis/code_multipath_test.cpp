#include "host/analysis/figures/code_multipath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "host/analysis/figures/partner_signal.h"
#include "host/analysis/figures/result_rows.h"
#include "tests/analysis/made_track.h"
#include "tests/analysis/normal_noise.h"

namespace orsolva_host::analysis {
namespace {

constexpr SignalCode k1C = {'1', 'C'}, k2W = {'2', 'W'}, k5Q = {'5', 'Q'};

/// What is added to a signal's code at an epoch.
using CodeError = std::function<double(std::size_t signal, int epoch)>;

double NoError(std::size_t, int) { return 0; }

class CodeMultipathTest : public testing::Test {
 protected:
  explicit CodeMultipathTest(const std::vector<SignalCode>& codes = {k1C, k2W}) : track({'G', 5}, 30, codes) {
    multipath.SetInterval(30);
  }

  /// An epoch with 5 m of ionosphere that grows by 1 cm per epoch.
  void Epoch(const CodeError& error, double elevation_deg = 45, int intervals = 1) {
    const int k = count++;
    std::vector<MadeTrack::Value> values;
    for (std::size_t j = 0; j < track.Track().signals.size(); ++j) {
      const double ionosphere = track.Track().signals[j].mu * (5 + 0.01 * k);
      values.push_back({1e5 * static_cast<double>(j) - ionosphere + broken_m, ionosphere + error(j, k)});
    }
    track.Epoch(values, elevation_deg, intervals);
  }
  void Decide() {
    if (track.Newest() > 0) multipath.AddStep(track.Outcome());
  }
  void Run(int epochs, const CodeError& error, double elevation_deg = 45) {
    for (int k = 0; k < epochs; ++k) Epoch(error, elevation_deg), Decide();
  }
  MultipathFigures Of(SignalCode code) {
    result = {};
    multipath.FillIn(result);
    EXPECT_EQ(SystemSignalRow(result, 'G', code).multipath.values,
              SatelliteSignalRow(result, {'G', 5}, code).multipath.values);
    return SystemSignalRow(result, 'G', code).multipath;
  }

  MadeTrack track;
  CodeMultipath multipath{10};
  AnalysisResult result;
  int count = 0;
  double broken_m = 0;  ///< on all phases
};

// 5,000 values: standard deviation 1 % of a scatter, 1.7 % of one from the median.
TEST_F(CodeMultipathTest, WhiteNoiseIsBothMultipathAndCodeNoise) {
  NormalNoise noise(8);
  Run(5000, [&](std::size_t j, int) { return (j == 0 ? 0.3 : 0.1) * noise(); });
  EXPECT_NEAR(*Of(k1C).moving_m, 0.3, 0.01);
  EXPECT_NEAR(*Of(k1C).whole_arc_m, 0.3, 0.01);
  EXPECT_NEAR(*Of(k1C).code_noise_m, 0.3, 0.015);
  EXPECT_NEAR(*Of(k2W).moving_m, 0.1, 0.004);
  EXPECT_EQ(Of(k1C).values, 5000U);
  EXPECT_EQ(Of(k1C).partner, "2W");
  EXPECT_EQ(Of(k2W).partner, "1C");
}

TEST_F(CodeMultipathTest, ASlowSinusoidIsMultipathAndHardlyNoise) {
  Run(20000,
      [](std::size_t j, int k) { return j == 0 ? 0.5 * std::sin(2 * kPi * k / 100.0) : 0.0; });  // 3,000 s
  const double x = kPi / 100, left = 1 - std::sin(21 * x) / (21 * std::sin(x));
  EXPECT_NEAR(*Of(k1C).moving_m, 0.5 / std::sqrt(2) * left * std::sqrt(21.0 / 20), 0.001);
  EXPECT_NEAR(*Of(k1C).whole_arc_m, 0.5 / std::sqrt(2), 0.001);
  EXPECT_LT(*Of(k1C).code_noise_m, 0.03);
  EXPECT_LT(*Of(k2W).whole_arc_m, 1e-6);
}

TEST_F(CodeMultipathTest, NeitherIonosphereNorPhasesLeaveAnything) {
  Run(200, NoError);
  EXPECT_LT(*Of(k1C).whole_arc_m, 1e-6);
  EXPECT_LT(*Of(k2W).moving_m, 1e-6);
}

TEST_F(CodeMultipathTest, ASlipThatIsTakenOffDoesNotEndTheArcAndOneInDoubtDoes) {
  Run(100, NoError);
  Epoch(NoError);
  track.Happens(EventKind::kSlip, {k1C}, {5});
  Decide();
  Run(100, NoError);
  EXPECT_EQ(Of(k1C).values, 201U);
  broken_m = 0.4;
  Epoch(NoError);
  track.Happens(EventKind::kSlip, {k1C, k2W}, {2, 2}, false);
  Decide();
  Run(100, NoError);
  EXPECT_EQ(Of(k1C).values, 302U);
  EXPECT_LT(*Of(k1C).whole_arc_m, 1e-6);
  EXPECT_LT(Of(k1C).code_noise_m.value_or(0), 1e-3);
}

TEST_F(CodeMultipathTest, ABrokenPartnerEndsTheArc) {
  Run(100, NoError);
  Epoch(NoError);
  for (SignalTrack& s : track.Track().signals)
    s.phase_m[RingSlot(track.Newest())] += s.code == k2W ? 1.0 : 0.0;
  track.Happens(EventKind::kSignalGapUnresolved, {k2W});
  Decide();
  EXPECT_LT(*Of(k1C).whole_arc_m, 1e-6);
}

TEST_F(CodeMultipathTest, AJumpEndsEveryArc) {
  Run(100, NoError);
  broken_m = 3;
  Epoch(NoError);
  track.Happens(EventKind::kJump, {k1C, k2W});
  Decide();
  Run(10, NoError);
  EXPECT_EQ(Of(k1C).values, 100U);
  EXPECT_LT(*Of(k1C).whole_arc_m, 1e-6);
}

TEST_F(CodeMultipathTest, FewValuesGiveNoFigure) {
  Run(49, NoError);
  EXPECT_FALSE(Of(k1C).moving_m);
  EXPECT_FALSE(Of(k1C).code_noise_m);
  EXPECT_EQ(Of(k1C).values, 49U);
  Run(1, NoError);
  EXPECT_TRUE(Of(k1C).moving_m);
}

TEST_F(CodeMultipathTest, HeadlineFiguresAreFromTheCutOffUpAndBinsHoldAll) {
  NormalNoise noise(2);
  Run(
      2000, [&](std::size_t, int) { return noise(); }, 7);
  Run(
      2000, [&](std::size_t, int) { return 0.1 * noise(); }, 25);
  const MultipathFigures figures = Of(k1C);
  EXPECT_NEAR(*figures.whole_arc_m, 0.1, 0.005);
  EXPECT_NEAR(*figures.code_noise_m, 0.1, 0.008);
  ASSERT_EQ(figures.by_elevation.size(), 2U);
  EXPECT_NEAR(figures.by_elevation[0].value, 1, 0.06);
  EXPECT_EQ(figures.by_elevation[1].from_deg, 20);
}

// The wide lane of codes with noise s: s sqrt(f1^2 + f2^2) / (f1 + f2).
TEST_F(CodeMultipathTest, TheWideLaneScattersAsItsCodes) {
  NormalNoise noise(5);
  Run(5000, [&](std::size_t, int) { return 0.2 * noise(); });
  multipath.FillIn(result);
  ASSERT_EQ(result.wide_lanes.size(), 1U);
  const WideLaneFigures& row = result.wide_lanes[0];
  EXPECT_EQ(NameOf(row.first) + NameOf(row.second), "1C2W");
  EXPECT_EQ(row.values, 5000U);
  const double expected = 0.2 * std::hypot(77.0, 60.0) / 137;
  EXPECT_NEAR(*row.spread_m, expected, 0.02 * expected);
  EXPECT_NEAR(*row.spread_cycles, expected / 0.86192, 0.02 * expected);
}

class OneBandTest : public CodeMultipathTest {
 protected:
  OneBandTest() : CodeMultipathTest({k1C}) {}
};

TEST_F(OneBandTest, HasCodeNoiseAndNoMultipath) {
  NormalNoise noise(6);
  Run(5000, [&](std::size_t, int) { return 0.3 * noise(); });
  EXPECT_NEAR(*Of(k1C).code_noise_m, 0.3, 0.015);
  EXPECT_FALSE(Of(k1C).moving_m);
  EXPECT_FALSE(Of(k1C).whole_arc_m);
  EXPECT_FALSE(Of(k1C).values);
  EXPECT_EQ(Of(k1C).partner, "");
}

class ThreeBandTest : public CodeMultipathTest {
 protected:
  ThreeBandTest() : CodeMultipathTest({k1C, k2W, k5Q}) {}
};

TEST_F(ThreeBandTest, EverySatelliteOfASignalHasTheSamePartnerWhereItCan) {
  Run(100, NoError);
  EXPECT_EQ(Of(k1C).partner, "2W");
  EXPECT_EQ(Of(k2W).partner, "1C");
  EXPECT_EQ(Of(k5Q).partner, "1C");
  EXPECT_EQ(result.wide_lanes.size(), 2U);
}

TEST(PartnerSignal, NoPartnerAmplifiesPhaseNoiseMoreThanEightTimes) {
  int pairs = 0;
  for (const char system : {'G', 'R', 'E', 'C', 'J', 'I', 'S'}) {
    for (const char band : {'1', '2', '3', '4', '5', '6', '7', '8', '9'}) {
      for (const char* p = PartnerBands(system, band); *p != '\0'; ++p) {
        const double f = CarrierFrequency(system, band, 0), g = CarrierFrequency(system, *p, 0);
        ASSERT_GT(f, 0);
        ASSERT_GT(g, 0);
        const double c = PartnerCoefficient(1 / (f * f), 1 / (g * g));
        EXPECT_LT(std::hypot(1 + c, c), 8) << system << band << *p;
        ++pairs;
      }
    }
  }
  EXPECT_GT(pairs, 40);
}

TEST(PartnerSignal, B1CPairsWithB2aAndNotWithTheCarrierBesideIt) {
  EXPECT_EQ(PartnerBands('C', '1')[0], '5');
  EXPECT_EQ(std::string(PartnerBands('C', '1')).find('2'), std::string::npos);
  EXPECT_EQ(std::string(PartnerBands('C', '2')).find('1'), std::string::npos);
  EXPECT_EQ(std::string(PartnerBands('G', '4')), "");
  EXPECT_EQ(std::string(PartnerBands('S', '1')), "");
}

}  // namespace
}  // namespace orsolva_host::analysis
