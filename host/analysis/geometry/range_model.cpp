#include "host/analysis/geometry/range_model.h"

#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

/// The position in the frame of the time of reception, for a travel of so many metres.
Vector3 TurnedBack(const Vector3& p, double travel_m) {
  const double turn = kEarthRotation_rad_s * travel_m / kLightSpeed_m_s;
  // Some 1e-5 rad: what the series leave out is below a double's last digit.
  const double s = turn * (1 - turn * turn / 6), c = 1 - 0.5 * turn * turn;
  return {p[0] * c + p[1] * s, -p[0] * s + p[1] * c, p[2]};
}

}  // namespace

ModelledRange RangeAt(SatelliteRecords& records, std::size_t record, const Station& station,
                      std::int64_t time_ns, double pseudorange_m) {
  Instant sent{time_ns, -pseudorange_m / kLightSpeed_m_s};
  sent.offset_s -= records.ClockAt(record, sent);
  const SatelliteState state = records.StateAt(record, sent);
  double range = Norm(Difference(state.position_m, station.Position()));
  Vector3 sight = Difference(TurnedBack(state.position_m, range), station.Position());
  range = Norm(sight);
  sight = Difference(TurnedBack(state.position_m, range), station.Position());
  range = Norm(sight);
  ModelledRange out;
  if (!(range > 1e6 && range < 1e8)) return out;
  for (std::size_t i = 0; i < 3; ++i) out.line_of_sight[i] = sight[i] / range;
  const Vector3& up = station.Up();
  for (std::size_t i = 0; i < 3; ++i) out.sin_elevation += out.line_of_sight[i] * up[i];
  out.metres = range + station.TroposphereDelay(out.sin_elevation) - kLightSpeed_m_s * state.clock_s;
  out.valid = std::isfinite(out.metres);
  out.precise = record == kPreciseOrbit;
  out.healthy = records.IsHealthy(record);
  out.group_delay_m = kLightSpeed_m_s * records.GroupDelay(record);
  return out;
}

}  // namespace orsolva_host::analysis
