#include "host/analysis/figures/visibility.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/analysis/figures/expected_epochs.h"
#include "tests/analysis/figure_sky.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kDegree = kPi / 180;

/// Elevation straight from the orbit, degrees.
double Direct(BroadcastStore& orbits, SatelliteId id, std::int64_t time_ns, const Station& station) {
  SatelliteRecords* records = orbits.Find(id);
  const Vector3 p = records->StateAt(*records->Select(time_ns), {time_ns, 0}).position_m;
  double up = 0, length = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    const double d = p[k] - station.Position()[k];
    up += d * station.Up()[k];
    length += d * d;
  }
  return std::asin(up / std::sqrt(length)) / kDegree;
}

StateVectorRecord Glonass() {
  StateVectorRecord r;
  r.satellite = {'R', 5};
  r.toe_s = static_cast<double>(kMidnight_ns / kNanosecondsPerSecond) + 2700;
  r.position_m[0] = 19e6, r.position_m[1] = 9e6, r.position_m[2] = 14.4e6;
  r.velocity_m_s[0] = -1500, r.velocity_m_s[1] = -800, r.velocity_m_s[2] = 2480;
  return r;
}

TEST(Visibility, IsThatOfTheOrbitItself) {
  BroadcastRecords records;
  AddMediumOrbit(records, {'G', 7});
  AddOrbit(records, {'E', 14}, 5288, 0.87, -1, 0.5);
  for (KeplerRecord& r : records.kepler) r.eccentricity = r.satellite.system == 'E' ? 0.166 : 0.01;
  AddStillOrbit(records, {'J', 7}, 0.3);
  records.state_vectors.push_back(Glonass());
  BroadcastStore orbits;
  orbits.Add(records);
  const Station station = EquatorStation();
  Visibility visibility(orbits, 10);
  double worst_deg = 0;
  int compared = 0;
  for (int s = 0; s < 86400; s += 37) {
    visibility.MoveTo(At(s), station);
    for (std::size_t i = 0; i < visibility.Satellites(); ++i) {
      const double sine = visibility.SinElevation(i);
      if (std::isnan(sine)) continue;
      const double off = std::asin(sine) / kDegree - Direct(orbits, visibility.IdOf(i), At(s), station);
      worst_deg = std::max(worst_deg, std::fabs(off));
      ++compared;
    }
  }
  EXPECT_GT(compared, 3 * 2300);
  EXPECT_LT(worst_deg, 0.002);
}

TEST(Visibility, WindowsAreTheTimesAboveALevel) {
  BroadcastRecords records;
  AddMediumOrbit(records, {'G', 7});
  BroadcastStore orbits;
  orbits.Add(records);
  const Station station = EquatorStation();
  Visibility visibility(orbits, 10);
  ExpectedEpochs expected;
  Count above_horizon = 0, above_cutoff = 0;
  for (int s = 0; s < 86400; s += 5) {
    expected.Add(At(s), 1, station, visibility);
    const double direct = Direct(orbits, {'G', 7}, At(s), station);
    above_horizon += direct >= 0;
    above_cutoff += direct >= 10;
    if (std::fabs(direct - 10) < 0.002) continue;
    EXPECT_EQ(expected.IsExpected(0, Visibility::kCutoff), direct >= 10) << s;
  }
  EXPECT_GT(above_cutoff, 2000U);
  EXPECT_GT(above_horizon, above_cutoff + 500);
  EXPECT_NEAR(static_cast<double>(expected.Satellites()[0].healthy[Visibility::kHorizon]),
              static_cast<double>(above_horizon), 2);
  EXPECT_NEAR(static_cast<double>(expected.Satellites()[0].healthy[Visibility::kCutoff]),
              static_cast<double>(above_cutoff), 2);
}

TEST(ExpectedEpochs, AGapCountsAsItsEpochsWould) {
  BroadcastRecords records;
  AddMediumOrbit(records, {'G', 7});
  AddOrbit(records, {'G', 9}, 5153.7, 0.96, 2.1, 0.4);
  BroadcastStore orbits;
  orbits.Add(records);
  const Station station = EquatorStation();
  Visibility whole_sky(orbits, 10), holes_sky(orbits, 10);
  ExpectedEpochs whole, holes;
  for (int s = 0; s < 86400; s += 30) whole.Add(At(s), 1, station, whole_sky);
  // 17 of 20 epochs missing, then nine hours in one piece.
  int last = 0;
  for (int s = 0; s < 54000; s += 600) {
    holes.Add(At(s), s == 0 ? 1 : (s - last) / 30, station, holes_sky);
    holes.Add(At(s + 30), 1, station, holes_sky);
    holes.Add(At(s + 60), 1, station, holes_sky);
    last = s + 60;
  }
  holes.Add(At(86370), (86370 - last) / 30, station, holes_sky);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_GT(whole.Satellites()[i].healthy[Visibility::kCutoff], 100U);
    EXPECT_EQ(holes.Satellites()[i].healthy, whole.Satellites()[i].healthy);
  }
}

TEST(ExpectedEpochs, AGapOfYearsCostsItsRecordsOnly) {
  BroadcastRecords records;
  AddStillOrbit(records, {'J', 7}, 0.1);
  BroadcastStore orbits;
  orbits.Add(records);
  const Station station = EquatorStation();
  Visibility visibility(orbits, 10);
  ExpectedEpochs expected;
  constexpr std::int64_t kYear_s = 365 * 86400;
  expected.Add(At(-10.0 * kYear_s), 1, station, visibility);
  expected.Add(At(60.0 * kYear_s), 70 * kYear_s, station, visibility);
  // Records reach 7,500 s beyond both ends of the day.
  EXPECT_NEAR(static_cast<double>(expected.Satellites()[0].healthy[Visibility::kCutoff]), 86400 + 15000, 2);
}

TEST(ExpectedEpochs, UnhealthySatellitesAreCountedApart) {
  BroadcastRecords records;
  AddStillOrbit(records, {'J', 7}, 0.1);
  AddStillOrbit(records, {'S', 33}, 0.1);
  for (KeplerRecord& r : records.kepler)
    r.unhealthy = r.toe_s > static_cast<double>(At(0) / 1000000000) + 3700;
  BroadcastStore orbits;
  orbits.Add(records);
  const Station station = EquatorStation();
  Visibility visibility(orbits, 10);
  ExpectedEpochs expected;
  for (int s = 0; s < 7200; s += 60) expected.Add(At(s), 1, station, visibility);
  // The record of 02:00 is the nearer one after 01:00; the health of a segment's nearer end counts: 01:15.
  EXPECT_EQ(expected.Satellites()[0].healthy[Visibility::kHorizon], 75U);
  EXPECT_EQ(expected.Satellites()[0].unhealthy[Visibility::kHorizon], 45U);
  EXPECT_EQ(expected.Satellites()[1].healthy[Visibility::kHorizon], 120U) << "SBAS";
}

TEST(ExpectedEpochs, AdditionalEpochsCountNothing) {
  BroadcastRecords records;
  AddStillOrbit(records, {'J', 7}, 0.1);
  BroadcastStore orbits;
  orbits.Add(records);
  const Station station = EquatorStation();
  Visibility visibility(orbits, 10);
  ExpectedEpochs expected;
  expected.Add(At(0), 1, station, visibility);
  expected.Add(At(7), 0, station, visibility);
  EXPECT_FALSE(expected.IsExpected(0, Visibility::kHorizon));
  expected.Add(At(30), 1, station, visibility);
  EXPECT_EQ(expected.Satellites()[0].healthy[Visibility::kHorizon], 2U);
}

}  // namespace
}  // namespace orsolva_host::analysis
