#include "host/analysis/figures/ionosphere_rate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "host/analysis/figures/result_rows.h"
#include "tests/analysis/made_track.h"
#include "tests/analysis/normal_noise.h"

namespace orsolva_host::analysis {
namespace {

constexpr SignalCode k1C = {'1', 'C'}, k2W = {'2', 'W'};
constexpr double kMetresPerTecu = 40.3e16 / 1575.42e6 / 1575.42e6;

/// One satellite whose slant TEC is given for every epoch.
class TecTrack {
 public:
  TecTrack(std::uint8_t number, double interval_s) : track_({'G', number}, interval_s, {k1C, k2W}) {}

  void Epoch(IonosphereRate& figures, double tecu, double elevation_deg = 45) {
    const double metres = kMetresPerTecu * tecu;
    track_.Epoch({{1e3 - metres, 0}, {2e3 - track_.Track().signals[1].mu * metres, 0}}, elevation_deg);
    figures.AddEpoch(track_.Track().At(track_.Newest()).time_ns);
    if (track_.Newest() > 0) figures.AddStep(track_.Outcome());
  }
  MadeTrack& Track() { return track_; }

 private:
  MadeTrack track_;
};

IonosphereFigures Of(const IonosphereRate& figures) {
  AnalysisResult result;
  figures.FillIn(result);
  return SystemRow(result, 'G').ionosphere;
}

IonosphereFigures FiguresOf(double interval_s, int epochs, const std::function<double(double)>& tecu_at) {
  IonosphereRate figures(10);
  figures.SetInterval(interval_s);
  TecTrack satellite(5, interval_s);
  for (int k = 0; k < epochs; ++k) satellite.Epoch(figures, tecu_at(k * interval_s));
  return Of(figures);
}

// Rates of +1 and -1 TECU/min in turn: ten in a window have a standard deviation of sqrt(10/9).
TEST(IonosphereRate, IsTheDeviationOfTheRatesOfFiveMinutes) {
  const auto figures = FiguresOf(30, 1001, [](double t) { return 0.5 * (static_cast<int>(t / 30) % 2); });
  EXPECT_EQ(figures.windows, 100U);
  EXPECT_NEAR(*figures.median_roti, std::sqrt(10 / 9.0), 0.07);
  EXPECT_EQ(figures.disturbed_minutes, 500.0);
}

TEST(IonosphereRate, ASteadyRateOfAnySizeIsNoUnrest) {
  const auto figures = FiguresOf(30, 1000, [](double t) { return 3 * t / 60; });
  EXPECT_LT(figures.median_roti.value_or(0), 1e-3);
  EXPECT_EQ(figures.disturbed_minutes, 0.0);
}

// White TEC of s at 30 s: rates 2 s (x_k - x_(k-1)) per minute, so a ROTI of 2 sqrt 2 s and a bit.
TEST(IonosphereRate, DoesNotDependOnTheIntervalBelowThirtySeconds) {
  NormalNoise noise(5);
  std::vector<double> tecu(3000);
  for (double& t : tecu) t = 0.1 * noise();
  const auto at = [&](double t) {
    const auto k = static_cast<std::size_t>(t / 30);
    const double part = t / 30 - static_cast<double>(k);
    return tecu[k] * (1 - part) + tecu[k + 1] * part;
  };
  const auto slow = FiguresOf(30, 2000, at);
  const auto fast = FiguresOf(1, 60000, at);
  EXPECT_NEAR(*slow.median_roti, 0.2828, 0.03);
  EXPECT_NEAR(*fast.median_roti, *slow.median_roti, 0.02);
}

TEST(IonosphereRate, AWindowIsDisturbedWhenAQuarterOfItsSatellitesAre) {
  IonosphereRate figures(10);
  figures.SetInterval(30);
  std::vector<TecTrack> sky;
  for (std::uint8_t s = 1; s <= 8; ++s) sky.emplace_back(s, 30);
  for (int k = 0; k < 200; ++k) {
    for (std::size_t s = 0; s < sky.size(); ++s) {
      const bool restless = k < 100 ? s == 0 : s < 2;  // one of eight, then two
      sky[s].Epoch(figures, restless ? 0.5 * (k % 2) : 0.0);
    }
  }
  EXPECT_EQ(Of(figures).disturbed_minutes, 50.0);
  EXPECT_EQ(Of(figures).windows, 160U);
}

TEST(IonosphereRate, SlipsTakenOffAndHolesGiveNoRate) {
  IonosphereRate figures(10);
  figures.SetInterval(30);
  TecTrack satellite(5, 30);
  for (int k = 0; k < 10; ++k) satellite.Epoch(figures, 0);
  satellite.Track().Epoch({{-9e3, 0}, {2e3, 0}}, 45);
  satellite.Track().Happens(EventKind::kJump, {k1C, k2W});
  figures.AddStep(satellite.Track().Outcome());
  EXPECT_LT(Of(figures).p95_roti.value_or(0), 1e-3);
}

TEST(IonosphereRate, AWindowNeedsHalfOfItsRates) {
  EXPECT_EQ(FiguresOf(30, 5, [](double t) { return t; }).windows.value_or(0), 0U);
  EXPECT_EQ(FiguresOf(30, 6, [](double t) { return t; }).windows, 1U);
}

TEST(IonosphereRate, ThereIsNoneAtMoreThanAMinuteNorBelowTheCutOff) {
  EXPECT_FALSE(FiguresOf(120, 100, [](double t) { return t; }).windows);
  IonosphereRate figures(10);
  figures.SetInterval(30);
  TecTrack satellite(5, 30);
  for (int k = 0; k < 100; ++k) satellite.Epoch(figures, 0.5 * (k % 2), 9.5);
  EXPECT_FALSE(Of(figures).windows);
}

TEST(IonosphereRate, ThereIsNoneOfSbas) {
  IonosphereRate figures(10);
  figures.SetInterval(30);
  MadeTrack track({'S', 20}, 30, {k1C, {'5', 'I'}});
  for (int k = 0; k < 100; ++k) {
    track.Epoch({{10.0 * (k % 2), 0}, {0, 0}}, 45);
    figures.AddEpoch(track.Track().At(track.Newest()).time_ns);
    if (k > 0) figures.AddStep(track.Outcome());
  }
  AnalysisResult result;
  figures.FillIn(result);
  EXPECT_FALSE(SystemRow(result, 'S').ionosphere.windows);
}

TEST(IonosphereRate, CountsPatchesThatTheDetectorNamed) {
  IonosphereRate figures(10);
  TecTrack satellite(5, 30);
  satellite.Epoch(figures, 0);
  satellite.Epoch(figures, 0);
  figures.AddEvent(satellite.Track().Happens(EventKind::kIonosphere, {k1C, k2W}));
  figures.AddEvent(satellite.Track().Happens(EventKind::kSlip, {k1C}, {1}));
  EXPECT_EQ(Of(figures).events, 1U);
}

}  // namespace
}  // namespace orsolva_host::analysis
