#include "host/analysis/geometry/station.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kSemiMajor_m = 6378137.0;
constexpr double kFlattening = 1 / 298.257223563;

// Niell 1996, tables 3 and 4, mean values: latitudes 15, 30, 45, 60 and 75 degrees.
constexpr double kNiellDry[5][3] = {{1.2769934e-3, 2.9153695e-3, 62.610505e-3},
                                    {1.2683230e-3, 2.9152299e-3, 62.837393e-3},
                                    {1.2465397e-3, 2.9288445e-3, 63.721774e-3},
                                    {1.2196049e-3, 2.9022565e-3, 63.824265e-3},
                                    {1.2045996e-3, 2.9024912e-3, 64.258455e-3}};
constexpr double kNiellWet[5][3] = {{5.8021897e-4, 1.4275268e-3, 4.3472961e-2},
                                    {5.6794847e-4, 1.5138625e-3, 4.6729510e-2},
                                    {5.8118019e-4, 1.4572752e-3, 4.3908931e-2},
                                    {5.9727542e-4, 1.5007428e-3, 4.4626982e-2},
                                    {6.1641693e-4, 1.7599082e-3, 5.4736038e-2}};

/// Least squares may give a latitude that is not a number before they are rejected: row 0.
double AtLatitude(const double table[5][3], int column, double latitude_deg) {
  const double x = latitude_deg > 15 ? (std::min(latitude_deg, 75.0) - 15) / 15 : 0;
  const int row = std::min(static_cast<int>(x), 3);
  const double part = x - row;
  return table[row][column] * (1 - part) + table[row + 1][column] * part;
}

}  // namespace

Geodetic ToGeodetic(const Vector3& x) {
  const double e2 = kFlattening * (2 - kFlattening);
  const double p = std::hypot(x[0], x[1]);
  const auto normal = [&](double latitude) {
    const double s = std::sin(latitude);
    return kSemiMajor_m / std::sqrt(1 - e2 * s * s);
  };
  double latitude = std::atan2(x[2], p * (1 - e2));
  for (int i = 0; i < 6; ++i) latitude = std::atan2(x[2] + e2 * normal(latitude) * std::sin(latitude), p);
  // Valid at the poles too, where p / cos(latitude) is not.
  const double height =
      p * std::cos(latitude) + x[2] * std::sin(latitude) - kSemiMajor_m * kSemiMajor_m / normal(latitude);
  return {latitude, std::atan2(x[1], x[0]), height};
}

Station::Station(const Vector3& position_m) : position_m_(position_m) {
  const Geodetic g = ToGeodetic(position_m);
  up_ = {std::cos(g.latitude_rad) * std::cos(g.longitude_rad),
         std::cos(g.latitude_rad) * std::sin(g.longitude_rad), std::sin(g.latitude_rad)};
  const double h = std::clamp(g.height_m, -200.0, 8000.0);
  const double pressure_hpa = 1013.25 * std::pow(1 - 2.2557e-5 * h, 5.2568);
  const double kelvin = 288.15 - 6.5e-3 * h;
  const double vapour_hpa = 6.108 * 0.7 * std::exp((17.15 * kelvin - 4684.0) / (kelvin - 38.45));
  zenith_dry_m_ = 0.0022768 * pressure_hpa / (1 - 0.00266 * std::cos(2 * g.latitude_rad) - 0.00028e-3 * h);
  zenith_wet_m_ = 0.002277 * (1255.0 / kelvin + 0.05) * vapour_hpa;
  const double latitude_deg = std::fabs(g.latitude_rad) * 180 / kPi;
  const auto mapping = [&](const double table[5][3]) {
    return Mapping{AtLatitude(table, 0, latitude_deg), AtLatitude(table, 1, latitude_deg),
                   AtLatitude(table, 2, latitude_deg)};
  };
  dry_ = mapping(kNiellDry);
  wet_ = mapping(kNiellWet);
}

double Station::Mapped(const Mapping& m, double s) {
  return (1 + m.a / (1 + m.b / (1 + m.c))) / (s + m.a / (s + m.b / (s + m.c)));
}

double Station::TroposphereDelay(double sin_elevation) const {
  const double s = std::max(sin_elevation, 0.03);
  return zenith_dry_m_ * Mapped(dry_, s) + zenith_wet_m_ * Mapped(wet_, s);
}

}  // namespace orsolva_host::analysis
