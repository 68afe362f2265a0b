#include "host/live/sources/gga_line.h"

#include <fmt/format.h>

#include <cmath>

namespace orsolva_host::live {
namespace {

constexpr std::int64_t kDay_s = 86400;

/// "4807.0380" of 48.1173 degrees: degrees and minutes to four decimals.
std::string DegreesMinutes(double degrees, int width) {
  constexpr std::int64_t kPerMinute = 10'000, kPerDegree = 60 * kPerMinute;
  const std::int64_t all = std::llround(std::fabs(degrees) * kPerDegree);
  const std::int64_t rest = all % kPerDegree;
  return fmt::format("{:0{}}{:02}.{:04}", all / kPerDegree, width, rest / kPerMinute, rest % kPerMinute);
}

}  // namespace

std::string GgaLine(const std::array<double, 3>& llh, std::int64_t utc_s) {
  const std::int64_t second = utc_s % kDay_s;
  const std::string body =
      fmt::format("GPGGA,{:02}{:02}{:02}.00,{},{},{},{},1,12,1.0,{:.1f},M,0.0,M,,", second / 3600,
                  second / 60 % 60, second % 60, DegreesMinutes(llh[0], 2), llh[0] < 0 ? 'S' : 'N',
                  DegreesMinutes(llh[1], 3), llh[1] < 0 ? 'W' : 'E', llh[2]);
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  return fmt::format("${}*{:02X}", body, sum);
}

}  // namespace orsolva_host::live
