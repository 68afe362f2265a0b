#include "host/simulator/surroundings.h"

#include <algorithm>
#include <cmath>

#include "host/simulator/portable_math.h"

namespace orsolva_host {
namespace {

constexpr double kEarthRadius_m = 6378137.0;
constexpr double kEccentricitySquared = 0.0066943799901413165;
constexpr double kShellRatio = 6371.0 / (6371.0 + 400.0);
constexpr double kHumidity = 0.7;

double VerticalTec(double local_hour, double night, double day) {
  // A smooth maximum of fourteen hours around the early afternoon.
  const double wave = std::max(0.0, Cosine((local_hour - 14) * kPi / 14));
  return night + day * wave * wave;
}

}  // namespace

Site MakeSite(const std::array<double, 3>& p) {
  Site site;
  site.position_m = p;
  const double r = std::sqrt(p[0] * p[0] + p[1] * p[1]);
  double normal = kEarthRadius_m, z = p[2];
  for (int i = 0; i < 10; ++i) {
    const double sine = z / std::sqrt(r * r + z * z);
    normal = kEarthRadius_m / std::sqrt(1 - kEccentricitySquared * sine * sine);
    z = p[2] + normal * kEccentricitySquared * sine;
  }
  site.latitude_rad = ArcTangent(z, r);
  site.longitude_rad = ArcTangent(p[1], p[0]);
  site.height_m = std::sqrt(r * r + z * z) - normal;
  const auto [sf, cf] = SineCosineOf(site.latitude_rad);
  const auto [sl, cl] = SineCosineOf(site.longitude_rad);
  site.east = {-sl, cl, 0};
  site.north = {-sf * cl, -sf * sl, cf};
  site.up = {cf * cl, cf * sl, sf};
  return site;
}

Direction DirectionOf(const Site& site, const double* line, double length_m) {
  const auto along = [line, length_m](const std::array<double, 3>& axis) {
    return (line[0] * axis[0] + line[1] * axis[1] + line[2] * axis[2]) / length_m;
  };
  const double up = std::min(1.0, std::max(-1.0, along(site.up)));
  return {ArcSine(up), ArcTangent(along(site.east), along(site.north))};
}

double TroposphereDelay(const Site& site, double elevation_rad) {
  const double height = std::min(std::max(site.height_m, 0.0), 10000.0);
  const double pressure = 1013.25 * Exponential(5.2568 * Logarithm(1 - 2.2557e-5 * height));
  const double kelvin = 15.0 - 6.5e-3 * height + 273.16;
  const double vapour = 6.108 * kHumidity * Exponential((17.15 * kelvin - 4684.0) / (kelvin - 38.45));
  const double sine = Sine(std::max(elevation_rad, 0.03));
  const double dry =
      0.0022768 * pressure / (1 - 0.00266 * Cosine(2 * site.latitude_rad) - 0.00028 * height / 1000) / sine;
  return dry + 0.002277 * (1255.0 / kelvin + 0.05) * vapour / sine;
}

double SlantTec(const Site& site, const Direction& d, double day_s, double night, double day) {
  const double shell_sine = kShellRatio * Cosine(d.elevation_rad);
  const double shell_cosine = std::sqrt(1 - shell_sine * shell_sine);
  const double angle = kPi / 2 - d.elevation_rad - ArcSine(shell_sine);
  const auto [sf, cf] = SineCosineOf(site.latitude_rad);
  const auto [sa, ca] = SineCosineOf(angle);
  const auto [east, north] = SineCosineOf(d.azimuth_rad);
  const double longitude = site.longitude_rad + ArcTangent(east * sa, cf * ca - sf * sa * north);
  double hour = day_s / 3600 + longitude * 12 / kPi;
  hour -= 24 * std::floor((hour - 2) / 24);  // from 2 h to 26 h, so that the maximum is not split
  return VerticalTec(hour, night, day) / shell_cosine;
}

double MetresPerTecu(double frequency_hz) { return 40.3e16 / (frequency_hz * frequency_hz); }

}  // namespace orsolva_host
