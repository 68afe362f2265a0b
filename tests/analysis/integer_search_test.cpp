#include "host/analysis/slips/integer_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

/// A GPS satellite with 1C, 2W, 2L and 5Q and a step in which it slips.
class IntegerSearchTest : public testing::Test {
 protected:
  IntegerSearchTest() {
    const struct {
      SignalCode code;
      double frequency;
    } rows[] = {
        {{'1', 'C'}, 1575.42e6}, {{'2', 'W'}, 1227.6e6}, {{'2', 'L'}, 1227.6e6}, {{'5', 'Q'}, 1176.45e6}};
    for (const auto& row : rows) {
      SignalTrack s;
      s.code = row.code;
      s.frequency_hz = row.frequency;
      s.wavelength_m = kLightSpeed_m_s / row.frequency;
      s.mu = (kReferenceCarrier_hz / row.frequency) * (kReferenceCarrier_hz / row.frequency);
      track_.signals.push_back(s);
    }
    test_.count = 4;
    test_.range_m2 = 0.02 * 0.02;
    test_.ionosphere_m2 = 0.01 * 0.01;
    for (std::size_t i = 0; i < 4; ++i) {
      test_.signal[i] = static_cast<std::uint8_t>(i);
      test_.mu[i] = track_.signals[i].mu;
      test_.noise_m2[i] = 2e-5;
    }
  }

  /// Whether the search, given these cycles and a little noise, offers them.
  bool Finds(const std::array<double, 4>& cycles) {
    Cycles wanted = {};
    for (std::size_t i = 0; i < 4; ++i) {
      wanted[i] = cycles[i];
      test_.r[i] = cycles[i] * track_.signals[i].wavelength_m + 0.012 - 0.004 * test_.mu[i] + 0.001 * (i % 2);
    }
    SlipCandidates found;
    IntegerSearch().Offer(track_, test_, test_.r, WideLaneEvidence(), true, found);
    return std::any_of(found.List().begin(), found.List().end(), [&](const SlipCandidate& c) {
      return std::equal(wanted.begin(), wanted.begin() + 4, c.cycles.begin());
    });
  }

  SatelliteTrack track_;
  StepTest test_;
};

TEST_F(IntegerSearchTest, OffersTheVectorThatSlipped) {
  EXPECT_TRUE(Finds({1, 0, 0, 0}));
  EXPECT_TRUE(Finds({0, -12, 0, 0}));
  EXPECT_TRUE(Finds({1, 1, 1, 1}));
  EXPECT_TRUE(Finds({9, 7, 7, 0}));
  EXPECT_TRUE(Finds({77, 60, 60, 0}));
  EXPECT_TRUE(Finds({0, 0.5, 0.5, 0}));
  EXPECT_TRUE(Finds({-3, 5, 4, 2}));
}

/// Where range and ionosphere leave dozens of cycles open, a narrow beam limits the wide one.
TEST_F(IntegerSearchTest, OffersTheCheapestOfAllVectorsWhereManyAreLikely) {
  track_.signals.erase(track_.signals.begin() + 2, track_.signals.end());
  test_.count = 2;
  test_.range_m2 = 0.9 * 0.9;
  test_.ionosphere_m2 = 0.02 * 0.02;
  test_.r = {0.31, -0.17};
  std::vector<std::pair<double, Cycles>> all;
  for (int first = -40; first <= 40; ++first) {
    for (int second = -40; second <= 40; ++second) {
      const Cycles cycles = {static_cast<double>(first), static_cast<double>(second)};
      std::array<double, kMaxSignals> r = test_.r;
      for (std::size_t i = 0; i < 2; ++i) r[i] -= cycles[i] * track_.signals[i].wavelength_m;
      all.emplace_back(Chi2(test_, r), cycles);
    }
  }
  std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  SlipCandidates found;
  IntegerSearch().Offer(track_, test_, test_.r, WideLaneEvidence(), false, found);
  for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(found.List()[i].cycles, all[i].second) << i;
}

TEST_F(IntegerSearchTest, OffersEachVectorOnce) {
  test_.r = {0.19, 0, 0, 0};
  SlipCandidates found;
  IntegerSearch search;
  search.Offer(track_, test_, test_.r, WideLaneEvidence(), true, found);
  const std::size_t once = found.List().size();
  search.Offer(track_, test_, test_.r, WideLaneEvidence(), true, found);
  EXPECT_EQ(found.List().size(), once);
}

TEST_F(IntegerSearchTest, EndsWherePhasesJumpBeyondEveryNumberOfCycles) {
  for (const double jump_m : {1e14, -1e300, std::numeric_limits<double>::infinity()}) {
    test_.r = {jump_m, 0, 0, jump_m};
    SlipCandidates found;
    IntegerSearch().Offer(track_, test_, test_.r, WideLaneEvidence(), true, found);
    for (const SlipCandidate& one : found.List()) EXPECT_TRUE(std::isfinite(one.cycles[0]));
  }
}

}  // namespace
}  // namespace orsolva_host::analysis
