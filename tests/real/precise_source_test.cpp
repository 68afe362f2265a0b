// Precise orbits of a real file against themselves and against the broadcast records of the day, in the
// geometry of host/analysis.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/constants.h"
#include "host/analysis/geometry/precise_orbit.h"
#include "host/formats/sp3_reader.h"
#include "host/rinex/navigation_reader.h"
#include "tests/host/shared_data.h"

namespace orsolva_host::analysis {
namespace {

using orsolva_test::DataFile;

constexpr std::size_t kNodes = 10;

std::string PreciseFile() { return DataFile("GRG0MGXFIN_20201770000_01D_15M_ORB.SP3.gz"); }

PreciseOrbits ReadPrecise() {
  Diagnostics notices;
  PreciseOrbits orbits;
  ReadPreciseOrbits(PreciseFile(), notices, {}, orbits);
  return orbits;
}

double Distance(const Vector3& a, const std::array<double, 3>& b) {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

/// E14 and E18 are on orbits of eccentricity 0.16.
char KindOf(SatelliteId id) {
  return id.system == 'E' && (id.number == 14 || id.number == 18) ? 'e' : id.system;
}

// Half of the points, 30 minutes apart, give the other half. The error of a polynomial of degree 9 grows with
// the tenth power of the spacing: what is found here is a thousand times what all points give.
TEST(PreciseOrbit, EveryOtherPointGivesTheOthers) {
  ORSOLVA_NEED_FILE(PreciseFile());
  std::map<char, std::vector<double>> inside, ends, clocks;
  for (const auto& [satellite, points] : ReadPrecise().satellites) {
    std::vector<PrecisePoint> kept;
    for (std::size_t i = 0; i < points.size(); i += 2) kept.push_back(points[i]);
    PreciseOrbit orbit(kept);
    for (std::size_t i = 1; i + 2 < points.size(); i += 2) {
      const std::size_t node = i / 2;
      const bool middle = node >= kNodes / 2 - 1 && node + kNodes / 2 < kept.size();
      const Instant time{points[i].time_ns, 0};
      const double off = Distance(orbit.StateAt(time).position_m, points[i].position_m);
      (middle ? inside : ends)[KindOf(satellite)].push_back(off);
      clocks[satellite.system].push_back(std::fabs(orbit.ClockAt(time) - points[i].clock_s));
    }
  }
  const std::map<char, double> bounds_m = {{'G', 0.05}, {'R', 0.05}, {'E', 0.01}, {'e', 15}};
  for (const auto& [kind, bound_m] : bounds_m) {
    ASSERT_GT(inside[kind].size(), 60U) << kind;
    std::printf("%c: median %.4f m inside, %.3f m at the ends\n", kind, Median(inside[kind]),
                Median(ends[kind]));
    EXPECT_LT(Median(inside[kind]), bound_m) << kind;
  }
  for (const char system : {'G', 'R', 'E'}) {
    std::printf("%c: clock %.3f ns\n", system, 1e9 * Median(clocks[system]));
    EXPECT_LT(Median(clocks[system]), 1e-9) << system;
  }
}

/// Whether a record has its reference time within half an hour; then it is used in the middle of its span.
bool IsFresh(const BroadcastRecords& records, SatelliteId satellite, std::int64_t time_ns) {
  const auto near = [&](const auto& r) {
    return r.satellite == satellite && !r.unhealthy &&
           std::fabs(static_cast<double>(time_ns) / 1e9 - r.toe_s) <= 1800;
  };
  return std::any_of(records.kepler.begin(), records.kepler.end(), near) ||
         std::any_of(records.state_vectors.begin(), records.state_vectors.end(), near);
}

// The difference holds the offset from the centre of mass to the antenna, which is left out: up to two metres
// along the radius.
TEST(PreciseOrbit, BroadcastRecordsOfTheDayLieWithinMetres) {
  const std::string broadcast = DataFile("ESBC00DNK_R_20201770000_01D_MN.rnx.gz");
  ORSOLVA_NEED_FILE(PreciseFile());
  ORSOLVA_NEED_FILE(broadcast);
  Diagnostics notices;
  NavigationReader reader(notices);
  reader.Read(broadcast);
  BroadcastStore store;
  store.Add(reader.Broadcast());
  std::map<char, double> squares;
  std::map<char, int> counts;
  for (const auto& [satellite, points] : ReadPrecise().satellites) {
    SatelliteRecords* records = store.Find(satellite);
    for (const PrecisePoint& point : points) {
      if (!records || !IsFresh(reader.Broadcast(), satellite, point.time_ns)) continue;
      const auto record = records->Select(point.time_ns);
      ASSERT_TRUE(record) << NameOf(satellite);
      const double off = Distance(records->StateAt(*record, {point.time_ns, 0}).position_m, point.position_m);
      squares[satellite.system] += off * off;
      ++counts[satellite.system];
    }
  }
  const std::map<char, double> bounds_m = {{'G', 2}, {'R', 5}, {'E', 2}};
  for (const auto& [system, bound_m] : bounds_m) {
    ASSERT_GT(counts[system], 400) << system;
    const double rms_m = std::sqrt(squares[system] / counts[system]);
    std::printf("%c: rms %.2f m of %d positions\n", system, rms_m, counts[system]);
    EXPECT_LT(rms_m, bound_m) << system;
  }
}

}  // namespace
}  // namespace orsolva_host::analysis
