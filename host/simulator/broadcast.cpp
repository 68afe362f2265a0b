// Notation as in the interface documents: toe reference time, OMG0 node at the beginning of the week, M0 mean
// anomaly. The nominal orbits refer to the beginning of the GPS week in which the span starts, so that all
// spans of a week have the same sky.
#include "host/simulator/broadcast.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "host/simulator/portable_math.h"
#include "host/simulator/random_streams.h"

namespace orsolva_host {
namespace {

constexpr std::uint64_t kRecordSeed = 7;
constexpr double kGlonassRadius_m = 25508e3;
constexpr std::int64_t kDay_s = 86400;

std::int64_t FloorTo(std::int64_t value, std::int64_t step) {
  const std::int64_t rest = value % step;
  return value - (rest < 0 ? rest + step : rest);
}

double WithinPi(double angle) { return angle - 2 * kPi * std::floor((angle + kPi) / (2 * kPi)); }

/// Values of a satellite that are the same in all its records.
struct Shape {
  RandomStream stream;
  explicit Shape(const NominalOrbit& o)
      : stream(RandomStream(kRecordSeed)
                   .Of(static_cast<unsigned char>(o.system))
                   .Of(static_cast<unsigned>(o.number))) {}
  double operator()(std::uint64_t what, double low, double high) const {
    return AsBroadcast(stream.Between(what, low, high));
  }
};

double SqrtAxis(const NominalOrbit& o, const KeplerSet& r) {
  if (o.kind != OrbitKind::kMedium) {
    // One turn while the Earth turns once below the (slowly moving) node.
    const double motion = r.earth_rate - r.node_rate - r.deln;
    return CubeRoot(std::sqrt(r.gravity) / motion);
  }
  if (o.system == 'G') return 5153.65;
  return o.system == 'E' ? 5440.606 : 5282.618;
}

/// What all records of a satellite have in common.
KeplerSet Common(const NominalOrbit& o) {
  const Shape shape(o);
  KeplerSet r;
  const bool bds = o.system == 'C';
  r.gravity = bds || o.system == 'E' ? kGravityGalileo_m3_s2 : kGravityGps_m3_s2;
  r.earth_rate = bds ? kEarthRotationBds_rad_s : kEarthRotation_rad_s;
  r.geostationary = bds && o.kind == OrbitKind::kGeostationary;
  r.af1 = shape(1, -8e-12, 8e-12);
  r.e = AsBroadcast(o.eccentricity);
  if (!r.geostationary) {
    r.deln = shape(2, 3.5e-9, 5.0e-9);
    r.node_rate = shape(3, -8.4e-9, -7.6e-9);
    r.idot = shape(4, -4e-10, 4e-10);
    r.cuc = shape(5, -6e-6, 6e-6), r.cus = shape(6, -6e-6, 9e-6);
    r.crc = shape(7, 120, 300), r.crs = shape(8, -110, 110);
    r.cic = shape(9, -1.5e-7, 1.5e-7), r.cis = shape(10, -1.5e-7, 1.5e-7);
  }
  r.sqrt_a = AsBroadcast(SqrtAxis(o, r));
  return r;
}

using Vector = std::array<double, 3>;

Vector IntoTiltedFrame(const Vector& v) {
  const auto [s, c] = SineCosineOf(kGeoTilt_rad);
  return {v[0], c * v[1] - s * v[2], s * v[1] + c * v[2]};
}

/// Orientation of a geostationary orbit in the tilted frame that is inertial since the reference time.
void OrientGeostationary(const NominalOrbit& o, double node, KeplerSet& r) {
  const auto [sn, cn] = SineCosineOf(node);
  const auto [si, ci] = SineCosineOf(o.inclination_rad);
  const auto [sp, cp] = SineCosineOf(o.perigee_rad);
  const Vector w = IntoTiltedFrame({si * sn, -si * cn, ci});
  const Vector p = IntoTiltedFrame({cp * cn - sp * ci * sn, cp * sn + sp * ci * cn, sp * si});
  r.i0 = AsBroadcast(ArcTangent(std::sqrt(w[0] * w[0] + w[1] * w[1]), w[2]));
  const double tilted = ArcTangent(w[0], -w[1]);
  const auto [ny, nx] = SineCosineOf(tilted);
  const Vector m = {-w[2] * ny, w[2] * nx, w[0] * ny - w[1] * nx};
  r.perigee = AsBroadcast(ArcTangent(p[0] * m[0] + p[1] * m[1] + p[2] * m[2], p[0] * nx + p[1] * ny));
  r.node_at_week = AsBroadcast(WithinPi(tilted + r.earth_rate * r.seconds_of_week));
}

void FillAt(const NominalOrbit& o, const KeplerSet& common, double since_week_s, KeplerSet& r) {
  const Shape shape(o);
  const double motion =
      std::sqrt(common.gravity) / (common.sqrt_a * common.sqrt_a * common.sqrt_a) + common.deln;
  r.m0 = AsBroadcast(WithinPi(o.mean_anomaly_rad + motion * since_week_s));
  r.af0 = AsBroadcast(shape(20, -3e-4, 3e-4) + common.af1 * since_week_s);
  const double node = o.node_rad + (common.node_rate - common.earth_rate) * since_week_s;
  if (common.geostationary) {
    OrientGeostationary(o, node, r);
  } else {
    r.node_at_week = AsBroadcast(WithinPi(node + common.earth_rate * r.seconds_of_week));
    r.i0 = AsBroadcast(o.inclination_rad + common.idot * since_week_s);
    r.perigee = AsBroadcast(o.perigee_rad);
  }
}

GlonassState NominalGlonass(const NominalOrbit& o) {
  const double u = o.mean_anomaly_rad + o.perigee_rad;
  const double speed = std::sqrt(kGravityGlonassRounded_m3_s2 / kGlonassRadius_m);
  const auto [sn, cn] = SineCosineOf(o.node_rad);
  const auto [si, ci] = SineCosineOf(o.inclination_rad);
  const auto [su, cu] = SineCosineOf(u);
  const Vector radial = {cu * cn - su * ci * sn, cu * sn + su * ci * cn, su * si};
  const Vector along = {-su * cn - cu * ci * sn, -su * sn + cu * ci * cn, cu * si};
  GlonassState s;
  for (std::size_t i = 0; i < 3; ++i) {
    s[i] = kGlonassRadius_m * radial[i];
    s[i + 3] = speed * along[i];
  }
  s[3] += kEarthRotationBds_rad_s * s[1];
  s[4] -= kEarthRotationBds_rad_s * s[0];
  return s;
}

GlonassState Integrated(GlonassState s, const GlonassAcceleration& a, double span_s) {
  while (span_s > 0) {
    const double step = std::min(span_s, kGlonassStep_s);
    s = GlonassStep(s, a, step);
    span_s -= step;
  }
  return s;
}

/// An acceleration of lunisolar size, in steps of the broadcast word (2^-30 km/s^2).
GlonassAcceleration Pull(const NominalOrbit& o, std::int64_t time) {
  GlonassAcceleration a = {};
  for (std::size_t i = 0; i < 3; ++i) {
    const double turn =
        2 * kPi * static_cast<double>(time % kDay_s) / kDay_s + static_cast<double>(i) + o.number;
    a[i] = std::round(2.4 * Sine(turn)) * 0x1p-30 * 1000;
  }
  return a;
}

GloEph_gbt GlonassRecord(const NominalOrbit& o, std::int64_t time, std::int64_t origin, const GlonassState& s,
                         const GlonassAcceleration& a) {
  const Shape shape(o);
  GloEph_gbt e = {};
  e.prn = o.number;
  e.frequency_channel = o.channel;
  e.toe = {time - LeapSeconds(time), 0.0};
  e.clock_rate = shape(1, -2e-12, 2e-12);
  e.clock_bias = AsBroadcast(shape(20, -2e-4, 2e-4) + e.clock_rate * static_cast<double>(time - origin));
  e.x = AsBroadcast(s[0] / 1000), e.y = AsBroadcast(s[1] / 1000), e.z = AsBroadcast(s[2] / 1000);
  e.vx = AsBroadcast(s[3] / 1000), e.vy = AsBroadcast(s[4] / 1000), e.vz = AsBroadcast(s[5] / 1000);
  e.ax = AsBroadcast(a[0] / 1000), e.ay = AsBroadcast(a[1] / 1000), e.az = AsBroadcast(a[2] / 1000);
  return e;
}

}  // namespace

double AsBroadcast(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.12E", value);
  return std::strtod(text, nullptr) + 0.0;
}

RecordTimes TimesOver(std::int64_t start, std::int64_t end, std::int64_t step, std::int64_t offset) {
  RecordTimes times;
  times.step = step;
  times.first = FloorTo(start - offset, step) + offset - step;
  const std::int64_t last = FloorTo(end - offset + step - 1, step) + offset + step;
  times.count = (last - times.first) / step + 1;
  return times;
}

int LeapSeconds(std::int64_t gps_time) {
  // GPS time of each change from 2006 on (IERS Bulletin C).
  if (gps_time >= 1483228800 + 18) return 18;
  if (gps_time >= 1435708800 + 17) return 17;
  if (gps_time >= 1341100800 + 16) return 16;
  return gps_time >= 1230768000 + 15 ? 15 : 14;
}

std::vector<KeplerSet> KeplerSets(const NominalOrbit& orbit, const RecordTimes& times, std::int64_t origin) {
  const KeplerSet common = Common(orbit);
  const std::int64_t week = kGpsEpoch + FloorTo(origin - kGpsEpoch, kWeek_s);
  const std::int64_t shift = orbit.system == 'C' ? kBdsBehindGps_s : 0;
  std::vector<KeplerSet> records;
  for (std::int64_t i = 0; i < times.count; ++i) {
    const std::int64_t time = times.first + i * times.step;
    KeplerSet r = common;
    r.reference_s = static_cast<double>(time - origin);
    r.seconds_of_week = static_cast<double>((time - shift - kGpsEpoch) % kWeek_s);
    FillAt(orbit, common, static_cast<double>(time - week), r);
    records.push_back(r);
  }
  return records;
}

std::vector<GloEph_gbt> GlonassRecords(const NominalOrbit& orbit, const RecordTimes& times) {
  // The trajectory begins at the midnight before the first record.
  const std::int64_t midnight = FloorTo(times.first, kDay_s);
  const std::int64_t half = times.step / 2;
  GlonassState state = Integrated(NominalGlonass(orbit), {}, static_cast<double>(times.first - midnight));
  std::vector<GloEph_gbt> records;
  for (std::int64_t i = 0; i < times.count; ++i) {
    const std::int64_t time = times.first + i * times.step;
    const GlonassAcceleration now = Pull(orbit, time), next = Pull(orbit, time + times.step);
    records.push_back(GlonassRecord(orbit, time, midnight, state, now));
    state = Integrated(state, now, static_cast<double>(half));
    state = Integrated(state, next, static_cast<double>(times.step - half));
  }
  return records;
}

}  // namespace orsolva_host
