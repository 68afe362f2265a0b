#include "host/simulator/antenna_path.h"

#include <algorithm>

#include "host/simulator/portable_math.h"

namespace orsolva_host {

std::array<double, 2> PathOffset(const AntennaPath& path, double time_s) {
  const double driven_m = path.speed_m_s * (std::clamp(time_s, path.from_s, path.to_s) - path.from_s);
  if (path.kind == PathKind::kLine) {
    const auto [east, north] = SineCosineOf(path.heading_deg * kRadian);
    return {driven_m * east, driven_m * north};
  }
  const auto [sine, cosine] = SineCosineOf(driven_m / path.radius_m);
  return {path.radius_m * sine, path.radius_m * (cosine - 1)};
}

Site SiteOnPath(const Site& start, const AntennaPath& path, double time_s) {
  if (path.kind == PathKind::kStatic) return start;
  const auto [east, north] = PathOffset(path, time_s);
  std::array<double, 3> p = start.position_m;
  for (std::size_t i = 0; i < 3; ++i) p[i] += east * start.east[i] + north * start.north[i];
  return MakeSite(p);
}

}  // namespace orsolva_host
