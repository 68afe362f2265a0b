// Any bytes as a file of precise orbits.
#include "host/formats/sp3_reader.h"

#include <cmath>
#include <cstdint>
#include <string>

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using orsolva_fuzz::Require;
using orsolva_host::PrecisePoint;

void CheckPoint(const PrecisePoint& point) {
  const auto& [x, y, z] = point.position_m;
  const double radius_m = std::hypot(x, y, z);
  Require(radius_m > 6.3e6 && radius_m < 1.1e8, "every point has a position that a satellite can have");
  Require(!(std::fabs(point.clock_s) > 0.1), "clocks are those of satellites");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orsolva_host::Diagnostics notices;
  orsolva_host::PreciseOrbits orbits;
  try {
    orsolva_host::ReadPreciseOrbits(orsolva_host::TextBytes(std::string(data, data + size)), "fuzzed",
                                    notices, {}, orbits);
  } catch (const orsolva_host::FileError& error) {
    Require(*error.what() != '\0', "an error says something");
  }
  std::size_t points = 0;
  for (const auto& [satellite, of] : orbits.satellites) {
    points += of.size();
    for (std::size_t i = 0; i < of.size(); ++i) {
      CheckPoint(of[i]);
      Require(i == 0 || of[i - 1].time_ns < of[i].time_ns, "times increase");
    }
  }
  Require(points <= size / 20, "a point takes bytes");
  Require(notices.Notices().size() <= orsolva_host::Diagnostics::kMaxKinds, "notices are bounded");
  return 0;
}
