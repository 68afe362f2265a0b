#include "host/analysis/figures/visibility.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::int64_t kCrossing_ns = 1'000'000;  // how well rising and setting are known
constexpr double kFarMove_m = 1000;               // 0.01 degree for the vertical
// From medium height no satellite climbs faster than 0.56 degree a minute while it is below the horizon: one
// that is 10 degrees below at both ends of a segment does not rise in it.
const double kFarBelow = std::sin(-10 * kPi / 180);

bool IsFinite(const Vector3& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }

}  // namespace

Visibility::Visibility(BroadcastStore& orbits, double cutoff_deg)
    : least_sin_{0, std::sin(cutoff_deg * kPi / 180)} {
  for (const SatelliteId id : orbits.Satellites()) {
    Track track;
    track.id = id;
    track.records = orbits.Find(id);
    tracks_.push_back(std::move(track));
  }
}

std::optional<std::size_t> Visibility::Find(SatelliteId id) const {
  const auto place =
      std::lower_bound(tracks_.begin(), tracks_.end(), id,
                       [](const Track& track, SatelliteId wanted) { return track.id < wanted; });
  if (place == tracks_.end() || !(place->id == id)) return std::nullopt;
  return static_cast<std::size_t>(place - tracks_.begin());
}

std::optional<std::int64_t> Visibility::NextCovered(std::int64_t time_ns) const {
  std::optional<std::int64_t> first;
  for (const Track& track : tracks_) {
    const auto next = track.records->NextCovered(time_ns);
    if (next && (!first || *next < *first)) first = next;
  }
  return first;
}

void Visibility::MoveTo(std::int64_t time_ns, const Station& station) {
  time_ns_ = time_ns;
  const Vector3 moved = Difference(station.Position(), station_.Position());
  const std::int64_t begin_ns = time_ns / kSegment_ns * kSegment_ns;
  if (begin_ns == begin_ns_ && Dot(moved, moved) < kFarMove_m * kFarMove_m) return;
  Build(begin_ns, station);
}

void Visibility::Build(std::int64_t begin_ns, const Station& station) {
  begin_ns_ = begin_ns;
  station_ = station;
  in_view_.clear();
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    Track& track = tracks_[i];
    if (track.end.time_ns == begin_ns) track.begin = track.end;
    if (track.begin.time_ns != begin_ns) track.begin = NodeAt(track, begin_ns);
    if (track.end.time_ns != SegmentEnd()) track.end = NodeAt(track, SegmentEnd());
    track.covered = track.begin.known || track.end.known;
    if (track.begin.known && track.end.known) FitCubic(track);
    track.windows.clear();
    if (track.covered) FindWindows(track);
    if (!track.windows.empty()) in_view_.push_back(i);
  }
}

Visibility::Node Visibility::NodeAt(Track& track, std::int64_t time_ns) {
  Node node;
  node.time_ns = time_ns;
  const auto record = track.records->Select(time_ns);
  if (!record) return node;
  const Vector3 before = track.records->StateAt(*record, {time_ns, -1}).position_m;
  const Vector3 after = track.records->StateAt(*record, {time_ns, 1}).position_m;
  const double seconds = static_cast<double>(kSegment_ns / kNanosecondsPerSecond);
  for (std::size_t k = 0; k < 3; ++k) {
    node.position_m[k] = 0.5 * (before[k] + after[k]);
    node.motion_m[k] = 0.5 * (after[k] - before[k]) * seconds;
  }
  node.known = IsFinite(node.position_m);
  // What SBAS calls unhealthy is its ranging service, which some never offer; the signal is there.
  node.healthy = track.id.system == 'S' || !track.records->IsUnhealthy(time_ns);
  return node;
}

void Visibility::FitCubic(Track& track) const {
  const Node& a = track.begin;
  const Node& b = track.end;
  for (std::size_t k = 0; k < 3; ++k) {
    const double whole = b.position_m[k] - a.position_m[k];
    track.coefficients[0][k] = a.position_m[k];
    track.coefficients[1][k] = a.motion_m[k];
    track.coefficients[2][k] = 3 * whole - 2 * a.motion_m[k] - b.motion_m[k];
    track.coefficients[3][k] = a.motion_m[k] + b.motion_m[k] - 2 * whole;
  }
}

double Visibility::SinOf(const Vector3& position_m) const {
  const Vector3 sight = Difference(position_m, station_.Position());
  return Dot(sight, station_.Up()) / std::sqrt(Dot(sight, sight));
}

double Visibility::SinAt(Track& track, std::int64_t time_ns) {
  if (!track.covered) return kAbsent;
  if (!track.begin.known || !track.end.known) {
    const auto record = track.records->Select(time_ns);
    return record ? SinOf(track.records->StateAt(*record, {time_ns, 0}).position_m) : kAbsent;
  }
  const double x = static_cast<double>(time_ns - begin_ns_) / static_cast<double>(kSegment_ns);
  const auto& c = track.coefficients;
  Vector3 position;
  for (std::size_t k = 0; k < 3; ++k) position[k] = c[0][k] + x * (c[1][k] + x * (c[2][k] + x * c[3][k]));
  return SinOf(position);
}

double Visibility::SinElevation(std::size_t satellite) { return SinAt(tracks_[satellite], time_ns_); }

/// Between a time below a level, or without an orbit, and one above it.
std::int64_t Visibility::Crossing(Track& track, double level, std::int64_t below_ns, std::int64_t above_ns) {
  while (std::abs(above_ns - below_ns) > kCrossing_ns) {
    const std::int64_t middle_ns = below_ns + (above_ns - below_ns) / 2;
    (SinAt(track, middle_ns) >= level ? above_ns : below_ns) = middle_ns;
  }
  return above_ns;
}

void Visibility::FindWindows(Track& track) {
  constexpr std::int64_t step_ns = kSegment_ns / kSamples;
  Samples sines;
  sines.front() = SinAt(track, begin_ns_);
  sines.back() = SinAt(track, SegmentEnd());
  if (sines.front() < kFarBelow && sines.back() < kFarBelow) return;
  for (std::size_t i = 1; i < kSamples; ++i) {
    sines[i] = SinAt(track, begin_ns_ + static_cast<std::int64_t>(i) * step_ns);
  }
  for (const Level level : {kHorizon, kCutoff}) FindWindows(track, level, sines);
}

void Visibility::FindWindows(Track& track, Level level, const Samples& sines) {
  constexpr std::int64_t step_ns = kSegment_ns / kSamples;
  const double least = least_sin_[level];
  bool above = sines[0] >= least;
  std::int64_t from_ns = begin_ns_;
  for (std::size_t i = 0; i < kSamples; ++i) {
    if ((sines[i + 1] >= least) == above) continue;
    const std::int64_t here_ns = begin_ns_ + static_cast<std::int64_t>(i) * step_ns;
    if (above) {
      AddWindows(track, level, from_ns, Crossing(track, least, here_ns + step_ns, here_ns) + 1);
    } else {
      from_ns = Crossing(track, least, here_ns, here_ns + step_ns);
    }
    above = !above;
  }
  if (above) AddWindows(track, level, from_ns, SegmentEnd());
}

/// Cut in the middle of the segment where the health of its ends differs.
void Visibility::AddWindows(Track& track, Level level, std::int64_t from_ns, std::int64_t to_ns) {
  const bool begin_healthy = track.begin.known ? track.begin.healthy : track.end.healthy;
  const bool end_healthy = track.end.known ? track.end.healthy : track.begin.healthy;
  if (begin_healthy == end_healthy) {
    track.windows.push_back({from_ns, to_ns, level, begin_healthy});
    return;
  }
  const std::int64_t middle_ns = begin_ns_ + kSegment_ns / 2;
  if (from_ns < middle_ns)
    track.windows.push_back({from_ns, std::min(to_ns, middle_ns), level, begin_healthy});
  if (to_ns > middle_ns) track.windows.push_back({std::max(from_ns, middle_ns), to_ns, level, end_healthy});
}

}  // namespace orsolva_host::analysis
