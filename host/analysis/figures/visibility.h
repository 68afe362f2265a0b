// Which satellites are above the horizon and above the cut-off, observed or not.
//
// Time is cut into segments of half an hour. A satellite's position in a segment is a cubic through positions
// and velocities of its orbit at both ends; for satellites of medium height and above the elevation is then
// good to 0.002 degrees (Visibility.IsThatOfTheOrbitItself; Hermite: R (w h)^4 / 384 = 0.3 km for GPS).
// Signal travel (0.001 degree) is left out. Where only one end has an orbit, the orbit itself is asked at
// each time. The times at which a satellite rises and sets are searched once per segment, so that an epoch
// costs a comparison.
//
// The elevation is above the plane perpendicular to the ellipsoid's normal, without refraction. A satellite
// is healthy as the broadcast record at the nearer end of the segment says.
#ifndef ORSOLVA_ANALYSIS_FIGURES_VISIBILITY_H
#define ORSOLVA_ANALYSIS_FIGURES_VISIBILITY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/station.h"

namespace orsolva_host::analysis {

class Visibility {
 public:
  static constexpr std::int64_t kSegment_ns = 1800 * kNanosecondsPerSecond;

  /// Elevations from which a satellite counts.
  enum Level : std::size_t { kHorizon, kCutoff, kLevels };

  /// A time during which a satellite is above a level, end excluded.
  struct Window {
    std::int64_t from_ns = 0;
    std::int64_t to_ns = 0;
    Level level = kHorizon;
    bool healthy = true;
  };

  /// @param orbits  must outlive this
  Visibility(BroadcastStore& orbits, double cutoff_deg);

  /// Goes to a time, not before the one before.
  void MoveTo(std::int64_t time_ns, const Station& station);
  /// The end of the segment gone to, which does not belong to it.
  std::int64_t SegmentEnd() const { return begin_ns_ + kSegment_ns; }
  /// The earliest time from a given one on that may have an orbit.
  std::optional<std::int64_t> NextCovered(std::int64_t time_ns) const;

  /// Satellites with orbits are numbered from 0, by system and number.
  std::size_t Satellites() const { return tracks_.size(); }
  SatelliteId IdOf(std::size_t satellite) const { return tracks_[satellite].id; }
  std::optional<std::size_t> Find(SatelliteId id) const;

  /// Satellites with windows in the segment.
  const std::vector<std::size_t>& InView() const { return in_view_; }
  const std::vector<Window>& WindowsOf(std::size_t satellite) const { return tracks_[satellite].windows; }
  /// At the time gone to; NaN without an orbit.
  double SinElevation(std::size_t satellite);

 private:
  /// The orbit at an end of a segment.
  struct Node {
    std::int64_t time_ns = -1;
    bool known = false;
    bool healthy = true;
    Vector3 position_m = {};
    Vector3 motion_m = {};  ///< velocity times the length of a segment
  };
  struct Track {
    SatelliteId id;
    SatelliteRecords* records = nullptr;
    Node begin, end;
    bool covered = false;                      ///< some part of the segment
    std::array<Vector3, 4> coefficients = {};  ///< of the cubic, where both ends are known
    std::vector<Window> windows;
  };

  /// Steps of a segment in which a satellite rises or sets at most once.
  static constexpr std::int64_t kSamples = 8;
  using Samples = std::array<double, kSamples + 1>;

  void Build(std::int64_t begin_ns, const Station& station);
  static Node NodeAt(Track& track, std::int64_t time_ns);
  void FitCubic(Track& track) const;
  void FindWindows(Track& track);
  void FindWindows(Track& track, Level level, const Samples& sines);
  void AddWindows(Track& track, Level level, std::int64_t from_ns, std::int64_t to_ns);
  double SinAt(Track& track, std::int64_t time_ns);
  double SinOf(const Vector3& position_m) const;
  std::int64_t Crossing(Track& track, double level, std::int64_t below_ns, std::int64_t above_ns);

  std::array<double, kLevels> least_sin_;
  Station station_;
  std::vector<Track> tracks_;
  std::vector<std::size_t> in_view_;
  std::int64_t begin_ns_ = -1;
  std::int64_t time_ns_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_VISIBILITY_H
