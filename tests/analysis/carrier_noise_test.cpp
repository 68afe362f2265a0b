#include "host/analysis/figures/carrier_noise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "host/analysis/figures/result_rows.h"
#include "tests/analysis/made_track.h"
#include "tests/analysis/normal_noise.h"

namespace orsolva_host::analysis {
namespace {

constexpr SignalCode k1C = {'1', 'C'}, k2L = {'2', 'L'}, k2W = {'2', 'W'}, k5Q = {'5', 'Q'}, k6C = {'6', 'C'};

/// One satellite with phases that hold a range, an ionosphere and noise.
class NoisyTrack {
 public:
  NoisyTrack(SatelliteId id, double interval_s, const std::vector<SignalCode>& codes)
      : track(id, interval_s, codes), signals_(codes.size()) {}

  /// The next epoch. @param noise  of a signal, m
  void Epoch(CarrierNoise& figures, const std::function<double(std::size_t)>& noise,
             double elevation_deg = 45) {
    const int k = count_++;
    std::vector<MadeTrack::Value> values;
    for (std::size_t j = 0; j < signals_; ++j) {
      const double ionosphere = track.Track().signals[j].mu * (3 + 0.02 * k + 1e-5 * k * k);
      values.push_back({0.5 * k - ionosphere + 7.0 * static_cast<double>(j) + noise(j), 0});
    }
    track.Epoch(values, elevation_deg);
    if (k > 0) figures.AddStep(track.Outcome());
  }

  MadeTrack track;

 private:
  std::size_t signals_;
  int count_ = 0;
};

PhaseNoiseFigures Of(const CarrierNoise& figures, char system, SignalCode code) {
  AnalysisResult result;
  figures.FillIn(result);
  return SystemSignalRow(result, system, code).phase_noise;
}

// 10,000 third differences, of which neighbours are alike: the median scatters by 1.5 %.
constexpr double kTolerance = 0.03;

TEST(CarrierNoise, WithinTheBandItIsThatOfBothSignals) {
  CarrierNoise figures;
  figures.SetInterval(30);
  NoisyTrack satellite({'G', 5}, 30, {k1C, k2L, k2W});
  NormalNoise noise(1);
  for (int k = 0; k < 20000; ++k) satellite.Epoch(figures, [&](std::size_t) { return 0.002 * noise(); });
  const PhaseNoiseFigures second = Of(figures, 'G', k2W);
  EXPECT_EQ(second.method, "within the band");
  EXPECT_NEAR(*second.noise_mm, 2, 2 * kTolerance);
  EXPECT_EQ(second.values, 9998U);
  EXPECT_FALSE(Of(figures, 'G', k1C).noise_mm);
}

TEST(CarrierNoise, OfThreeBandsItIsGivenForThoseThatMakeUpTheCombination) {
  CarrierNoise figures;
  figures.SetInterval(30);
  NoisyTrack satellite({'E', 5}, 30, {k1C, k6C, k5Q});
  NormalNoise noise(2);
  for (int k = 0; k < 20000; ++k) satellite.Epoch(figures, [&](std::size_t) { return 0.003 * noise(); });
  const PhaseNoiseFigures sixth = Of(figures, 'E', k6C);
  EXPECT_EQ(sixth.method, "three bands");
  EXPECT_NEAR(*sixth.noise_mm, 3, 3 * kTolerance);
  EXPECT_TRUE(Of(figures, 'E', k5Q).noise_mm);
  EXPECT_FALSE(Of(figures, 'E', k1C).noise_mm);  // 8 % of the variance
}

TEST(CarrierNoise, OneOrTwoBandsAtThirtySecondsHaveNone) {
  CarrierNoise figures;
  figures.SetInterval(30);
  NoisyTrack satellite({'G', 5}, 30, {k1C, k2W});
  NormalNoise noise(3);
  for (int k = 0; k < 500; ++k) satellite.Epoch(figures, [&](std::size_t) { return 0.003 * noise(); });
  EXPECT_FALSE(Of(figures, 'G', k1C).noise_mm);
  EXPECT_FALSE(Of(figures, 'G', k2W).values);
}

TEST(CarrierNoise, PhasesThatAreCopiesOfEachOtherHaveNone) {
  CarrierNoise figures;
  figures.SetInterval(30);
  NoisyTrack satellite({'G', 5}, 30, {k1C, k2L, k2W});
  NormalNoise noise(4);
  for (int k = 0; k < 500; ++k) {
    const double same = 0.002 * noise();
    satellite.Epoch(figures, [&](std::size_t) { return same; });
  }
  EXPECT_FALSE(Of(figures, 'G', k2W).noise_mm);
}

TEST(CarrierNoise, AtOneSecondTheReceiverClockOfAllSatellitesIsTakenOff) {
  CarrierNoise figures;
  figures.SetInterval(1);
  std::vector<std::unique_ptr<NoisyTrack>> sky;
  for (std::uint8_t s = 1; s <= 12; ++s)
    sky.push_back(std::make_unique<NoisyTrack>(SatelliteId{'G', s}, 1, std::vector<SignalCode>{k1C, k2W}));
  NormalNoise noise(5);
  for (int k = 0; k < 2500; ++k) {
    const double clock = 5 * noise();
    for (auto& satellite : sky)
      satellite->Epoch(figures, [&](std::size_t j) { return clock + (j == 0 ? 0.001 : 0.004) * noise(); });
  }
  EXPECT_EQ(Of(figures, 'G', k1C).method, "third difference");
  // The median of eleven others has a variance of pi / 22 of theirs.
  const double common = kPi / 22;
  EXPECT_NEAR(*Of(figures, 'G', k1C).noise_mm, std::sqrt(1 + common), kTolerance);
  EXPECT_NEAR(*Of(figures, 'G', k2W).noise_mm, std::sqrt(16 + common), 4 * kTolerance);
}

TEST(CarrierNoise, FewerThanEightSatellitesDoNotGiveTheReceiverClock) {
  CarrierNoise figures;
  figures.SetInterval(1);
  std::vector<std::unique_ptr<NoisyTrack>> sky;
  for (std::uint8_t s = 1; s <= 7; ++s)
    sky.push_back(std::make_unique<NoisyTrack>(SatelliteId{'G', s}, 1, std::vector<SignalCode>{k1C}));
  NormalNoise noise(6);
  for (int k = 0; k < 300; ++k) {
    for (auto& satellite : sky) satellite->Epoch(figures, [&](std::size_t) { return 0.001 * noise(); });
  }
  EXPECT_FALSE(Of(figures, 'G', k1C).noise_mm);
}

TEST(CarrierNoise, ABrokenPhaseGivesNoDifferenceOverTheBreak) {
  CarrierNoise figures;
  figures.SetInterval(30);
  MadeTrack track({'G', 5}, 30, {k2L, k2W});
  for (int k = 0; k < 800; ++k) {
    const double level = (k + 3) / 4;  // breaks every four epochs
    track.Epoch({{0.002 * (k % 2), 0}, {level, 0}}, 45);
    if (k % 4 == 1) track.Happens(EventKind::kSlip, {k2W}, {1}, false);
    if (k > 0) figures.AddStep(track.Outcome());
  }
  EXPECT_EQ(Of(figures, 'G', k2W).values, 199U);  // one difference of each four epochs
  // Phases that alternate by 2 mm have third differences of 8 mm.
  EXPECT_NEAR(*Of(figures, 'G', k2W).noise_mm, 1.4826 * 8 / std::sqrt(40.0), 0.13 * 1.88);
}

TEST(CarrierNoise, OnlyObservationsFromTheCutOffUpCount) {
  CarrierNoise figures;
  figures.SetInterval(30);
  NoisyTrack satellite({'G', 5}, 30, {k2L, k2W});
  NormalNoise noise(7);
  for (int k = 0; k < 300; ++k)
    satellite.Epoch(
        figures, [&](std::size_t) { return noise(); }, 9);
  EXPECT_FALSE(Of(figures, 'G', k2W).values);
}

}  // namespace
}  // namespace orsolva_host::analysis
