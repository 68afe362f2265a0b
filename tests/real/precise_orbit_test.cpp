// Broadcast satellite positions against the precise orbits of the same day.
//
// The precise file gives centres of mass, broadcast records antenna phase centres; the offsets (up to two
// metres along the radius for GPS, under one for Galileo) are inside the bounds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "host/rinex/diagnostics.h"
#include "host/rinex/navigation_reader.h"
#include "navigation/ephemerides/ephemeris.h"
#include "tests/support/gzip_file.h"
#include "tests/support/shared_folder.h"

namespace orsolva_test {
namespace {

using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::SatelliteId;
using gnssqctoolkit::SatelliteState;

struct PrecisePosition {
  SatelliteId Satellite;
  AbsoluteTime Time;
  double Position[3];  // m
};

/// The P records of an SP3 file in GPS time.
std::vector<PrecisePosition> ReadPreciseOrbits(const std::filesystem::path& path) {
  const std::vector<unsigned char> bytes = Unpack(path);
  std::istringstream lines(std::string(bytes.begin(), bytes.end()));
  std::vector<PrecisePosition> positions;
  AbsoluteTime time;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("*  ", 0) == 0) {
      int year, month, day, hour, minute;
      double second;
      std::istringstream(line.substr(3)) >> year >> month >> day >> hour >> minute >> second;
      time = gnssqctoolkit::GNSSTime(year, month, day, hour, minute, second).Absolute();
    } else if (line.size() > 46 && line[0] == 'P') {
      static const std::map<char, int> systems = {{'G', 1}, {'R', 2}, {'C', 4}, {'E', 8}};
      const auto system = systems.find(line[1]);
      if (system == systems.end()) continue;
      PrecisePosition position{
          {static_cast<std::uint8_t>(system->second), std::stoi(line.substr(2, 2))}, time, {}};
      for (int i = 0; i < 3; ++i) position.Position[i] = 1000.0 * std::stod(line.substr(4 + 14 * i, 14));
      positions.push_back(position);
    }
  }
  return positions;
}

/// Position of a satellite at a time by its own clock: the reception time of a signal with hardly any way to
/// go.
bool PositionAt(const gnssqctoolkit::Ephemeris& records, const SatelliteId& satellite,
                const AbsoluteTime& time, SatelliteState& state) {
  constexpr double kShortRange = 1e-3;  // m
  if (!records.SatellitePosition(satellite, time, kShortRange, state)) return false;
  const AbsoluteTime by_clock = gnssqctoolkit::AbsoluteTimeAdd(time, state.Clock);
  return records.SatellitePosition(satellite, by_clock, kShortRange, state);
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

TEST(PreciseOrbits, BroadcastPositionsAgreeWithinMetres) {
  const std::filesystem::path data = SharedFolder() / "data";
  const std::filesystem::path precise = data / "GRG0MGXFIN_20201770000_01D_15M_ORB.SP3.gz";
  const std::filesystem::path broadcast = data / "ESBC00DNK_R_20201770000_01D_MN.rnx.gz";
  if (!std::filesystem::exists(precise)) GTEST_SKIP() << "no file " << precise;

  orsolva_host::Diagnostics diagnostics;
  orsolva_host::NavigationReader reader(diagnostics);
  reader.Read(broadcast.string());
  const orsolva_host::NavigationSet set = reader.Take();
  gnssqctoolkit::Ephemeris records;
  for (const auto& record : set.gps)
    if (record.svh == 0) records.Gps().Add(record);
  for (const auto& record : set.glonass)
    if (record.svh == 0) records.Glonass().Add(record);
  for (const auto& record : set.galileo)
    if (record.svh == 0) records.Galileo().Add(record);
  // Fresh: well inside the span a record is made for.
  records.Gps().SetMaxAge(3600.0);
  records.Glonass().SetMaxAge(900.0);
  records.Galileo().SetMaxAge(3600.0);

  std::map<int, std::vector<double>> differences;
  for (const PrecisePosition& expected : ReadPreciseOrbits(precise)) {
    SatelliteState state;
    if (!PositionAt(records, expected.Satellite, expected.Time, state)) continue;
    differences[expected.Satellite.system].push_back(std::hypot(state.Position[0] - expected.Position[0],
                                                                state.Position[1] - expected.Position[1],
                                                                state.Position[2] - expected.Position[2]));
  }
  const std::map<int, double> bounds = {{1, 2.0}, {2, 4.0}, {8, 2.0}};  // m
  for (const auto& [system, bound] : bounds) {
    ASSERT_GT(differences[system].size(), 500u) << "system " << system;
    const double median = Median(differences[system]);
    RecordProperty("median_mm_system_" + std::to_string(system), static_cast<int>(1000 * median));
    std::printf("system %d: median %.3f m of %zu positions\n", system, median, differences[system].size());
    EXPECT_LT(median, bound) << "system " << system;
  }
}

}  // namespace
}  // namespace orsolva_test
