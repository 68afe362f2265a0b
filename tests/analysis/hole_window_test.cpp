#include "host/analysis/slips/hole_window.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orsolva_host::analysis {
namespace {

constexpr double kInterval_s = 1;
constexpr std::int64_t kEpochs = 12, kHole = 8;

/// Three signals that are there at every epoch, with a hole of a minute before one of them.
SatelliteTrack TrackWithHole(bool modelled) {
  SatelliteTrack track;
  const double wavelengths_m[] = {0.19, 0.2445, 0.2548}, mus[] = {1, 1.647, 1.793};
  for (std::size_t j = 0; j < 3; ++j) {
    SignalTrack s;
    s.wavelength_m = wavelengths_m[j];
    s.mu = mus[j];
    s.real = s.known = (1U << kEpochs) - 1;
    for (std::int64_t i = 0; i < kEpochs; ++i)
      s.phase_m[RingSlot(i)] =
          1234.567 + 0.01 * std::sin(3.0 * static_cast<double>(i * i) + static_cast<double>(j));
    track.signals.push_back(s);
  }
  track.next = kEpochs;
  for (std::int64_t i = 0; i < kEpochs; ++i) {
    StepState& step = track.At(i);
    step.dt_s = i == kHole ? 60 : kInterval_s;
    step.gap = i == kHole;
    step.broken = i == 0;
    step.modelled = step.clock_known = modelled;
    step.range_scale_m = step.ionosphere_scale_m = 0.004;
  }
  for (std::int64_t i = 1; i < kEpochs; ++i) FitRates(track, i);
  return track;
}

double OfRepaired(SatelliteTrack track, const SignalMetres& metres) {
  for (std::size_t j = 0; j < track.signals.size(); ++j) {
    if (metres[j] != 0) Repair(track, kHole, j, metres[j]);
  }
  double sum = 0;
  for (std::int64_t i = kHole - 2; i <= kHole + 2; ++i) {
    StepTest test;
    MakeTest(track, i, kInterval_s, test);
    sum += Chi2(test);
  }
  return sum;
}

TEST(HoleWindow, MakesTheSameBitsAsRepairedPhases) {
  for (const bool modelled : {true, false}) {
    const SatelliteTrack track = TrackWithHole(modelled);
    HoleWindow window;
    window.Settle(track, kHole, kInterval_s);
    for (int cycles = -3; cycles <= 3; ++cycles) {
      const SignalMetres metres = {0.19 * cycles, 0, 0.2548 * (cycles - 1)};
      EXPECT_EQ(window.Chi2Without(track, metres, 1e300), OfRepaired(track, metres)) << modelled << cycles;
    }
  }
}

TEST(HoleWindow, StopsWhereTheSumIsMoreThanEnough) {
  const SatelliteTrack track = TrackWithHole(true);
  HoleWindow window;
  window.Settle(track, kHole, kInterval_s);
  const SignalMetres metres = {19};
  const double whole = window.Chi2Without(track, metres, 1e300);
  const double part = window.Chi2Without(track, metres, 1);
  EXPECT_GT(part, 1);
  EXPECT_LT(part, whole);
}

}  // namespace
}  // namespace orsolva_host::analysis
