#include "host/analysis/geometry/precise_orbit.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::size_t kMiddle = 4;                                      // node before a time, where possible
constexpr std::int64_t kLongestStep_ns = 1800 * kNanosecondsPerSecond;  // of points
constexpr std::size_t kNoStep = static_cast<std::size_t>(-1);

/// (x - k) over all other nodes k of node j, as it is at x = j, for ten nodes 0 to 9.
constexpr std::array<double, 10> kDenominators = {-362880, 40320, -10080, 4320,   -2880,
                                                  2880,    -4320, 10080,  -40320, 362880};

struct Weights {
  std::array<double, 10> value;
  std::array<double, 10> slope;
};

/// Lagrange's polynomials and their derivatives, by products from both ends.
Weights LagrangeAt(double x) {
  constexpr std::size_t n = 10;
  std::array<double, n + 1> below, below_slope, above, above_slope;
  below[0] = above[n] = 1;
  below_slope[0] = above_slope[n] = 0;
  for (std::size_t k = 0; k < n; ++k) {
    const double off = x - static_cast<double>(k);
    below[k + 1] = below[k] * off;
    below_slope[k + 1] = below_slope[k] * off + below[k];
  }
  for (std::size_t k = n; k-- > 0;) {
    const double off = x - static_cast<double>(k);
    above[k] = above[k + 1] * off;
    above_slope[k] = above_slope[k + 1] * off + above[k + 1];
  }
  Weights w;
  for (std::size_t j = 0; j < n; ++j) {
    w.value[j] = below[j] * above[j + 1] / kDenominators[j];
    w.slope[j] = (below_slope[j] * above[j + 1] + below[j] * above_slope[j + 1]) / kDenominators[j];
  }
  return w;
}

/// Turned about the Earth's axis, towards the east for a positive angle.
Vector3 Turned(const Vector3& p, double angle_rad) {
  const double s = std::sin(angle_rad), c = std::cos(angle_rad);
  return {c * p[0] - s * p[1], s * p[0] + c * p[1], p[2]};
}

}  // namespace

PreciseOrbit::PreciseOrbit(const std::vector<PrecisePoint>& points) : points_(&points) {
  if (points.size() < 2) return;
  runs_.resize(points.size() - 1);
  const auto spacing = [&](std::size_t step) { return points[step + 1].time_ns - points[step].time_ns; };
  for (std::size_t first = 0; first < runs_.size();) {
    std::size_t last = first + 1;
    const auto joins = [&](std::size_t step) {
      return spacing(step) == spacing(first) && (points[step + 1].flags & kManeuver) == 0;
    };
    const bool usable = joins(first) && spacing(first) <= kLongestStep_ns;
    while (usable && last < runs_.size() && joins(last)) ++last;
    for (std::size_t step = first; step < last; ++step) {
      runs_[step] = usable ? Run{first, last} : Run{first, first};
    }
    first = last;
  }
}

std::optional<std::int64_t> PreciseOrbit::NextPoint(std::int64_t time_ns) const {
  const auto next = std::lower_bound(points_->begin(), points_->end(), time_ns,
                                     [](const PrecisePoint& p, std::int64_t t) { return p.time_ns < t; });
  if (next == points_->end()) return std::nullopt;
  return next->time_ns;
}

/// The step within which a time lies, its last point included; kNoStep outside all points.
std::size_t PreciseOrbit::StepOf(std::int64_t time_ns) const {
  const auto& points = *points_;
  if (runs_.empty() || time_ns < points.front().time_ns || time_ns > points.back().time_ns) return kNoStep;
  const auto after = std::upper_bound(points.begin(), points.end(), time_ns,
                                      [](std::int64_t t, const PrecisePoint& p) { return t < p.time_ns; });
  const auto step = static_cast<std::size_t>(after - points.begin()) - 1;
  return std::min(step, runs_.size() - 1);
}

bool PreciseOrbit::HasPosition(std::size_t step) const {
  return step != kNoStep && runs_[step].last - runs_[step].first + 1 >= kNodes;
}

bool PreciseOrbit::HasClock(std::size_t step) const {
  const PrecisePoint& end = (*points_)[step + 1];
  return (end.flags & kClockEvent) == 0 && std::isfinite((*points_)[step].clock_s + end.clock_s);
}

bool PreciseOrbit::Covers(std::int64_t time_ns) const {
  const std::size_t step = StepOf(time_ns);
  return HasPosition(step) && HasClock(step);
}

/// Where a time lies in units of the spacing of its step, counted from a point.
double PreciseOrbit::Between(const Instant& time, std::size_t step, std::size_t point) const {
  const double spacing_s = SecondsBetween((*points_)[step + 1].time_ns, (*points_)[step].time_ns);
  return (SecondsBetween(time.ns, (*points_)[point].time_ns) + time.offset_s) / spacing_s;
}

/// Takes the points around a step into the frame of its first point.
void PreciseOrbit::TurnNodes(std::size_t step) {
  if (turned_step_ == step) return;
  turned_step_ = step;
  const Run& run = runs_[step];
  first_node_ = std::max(run.first, std::min(step - std::min(step, kMiddle), run.last + 1 - kNodes));
  const std::int64_t frame_ns = (*points_)[step].time_ns;
  for (std::size_t k = 0; k < kNodes; ++k) {
    const PrecisePoint& point = (*points_)[first_node_ + k];
    nodes_[k] = Turned(point.position_m, kEarthRotation_rad_s * SecondsBetween(point.time_ns, frame_ns));
  }
}

SatelliteState PreciseOrbit::StateAt(const Instant& time) {
  SatelliteState state;
  state.position_m = {kAbsent, kAbsent, kAbsent};
  const std::size_t step = StepOf(time.ns);
  if (!HasPosition(step)) return state;
  TurnNodes(step);
  const Weights weights = LagrangeAt(Between(time, step, first_node_));
  Vector3 position = {}, slope = {};
  for (std::size_t k = 0; k < kNodes; ++k) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      position[axis] += weights.value[k] * nodes_[k][axis];
      slope[axis] += weights.slope[k] * nodes_[k][axis];
    }
  }
  const PrecisePoint& begin = (*points_)[step];
  const double spacing_s = SecondsBetween((*points_)[step + 1].time_ns, begin.time_ns);
  const double radius_times_speed =
      (position[0] * slope[0] + position[1] * slope[1] + position[2] * slope[2]) / spacing_s;
  const double since_s = SecondsBetween(time.ns, begin.time_ns) + time.offset_s;
  state.position_m = Turned(position, -kEarthRotation_rad_s * since_s);
  state.clock_s = ClockIn(step, time) - 2 * radius_times_speed / (kLightSpeed_m_s * kLightSpeed_m_s);
  return state;
}

double PreciseOrbit::ClockIn(std::size_t step, const Instant& time) const {
  const double part = Between(time, step, step);
  return (*points_)[step].clock_s * (1 - part) + (*points_)[step + 1].clock_s * part;
}

double PreciseOrbit::ClockAt(const Instant& time) const {
  const std::size_t step = StepOf(time.ns);
  return step == kNoStep ? kAbsent : ClockIn(step, time);
}

}  // namespace orsolva_host::analysis
