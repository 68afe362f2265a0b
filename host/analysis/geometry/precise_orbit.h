// Position and clock of a satellite between the points of a precise orbit.
//
// Positions: a polynomial of degree 9 through ten equally spaced points, five on each side where there are so
// many, in the frame that is fixed to the stars at the point before (Schenewerk 2003, GPS
// Solutions 7(2), recommends nine to eleven points). Half of the points of a day, 30 minutes apart, give the
// others to 2 mm (Galileo), 20 mm (GLONASS) and 32 mm (GPS), medians with five points on each side
// (PreciseOrbit.EveryOtherPointGivesTheOthers); at 15 minutes the error is a thousandth of that, and what is
// left is the rounding to a millimetre. In the first and last hour it grows to some millimetres; E14 and E18
// (eccentricity 0.16) are known to 2 mm inside and 3 cm there. Clocks: the line between the two neighbours,
// by the same test good to 0.06 ns (GPS), 0.13 ns (GLONASS) and 0.01 ns (Galileo) even over 30 minutes.
//
// Nothing is extrapolated, and nothing is interpolated over a missing point, a maneuver or, for clocks, a
// discontinuity that the file flags: then the orbit covers no time there (of such a hole its first point
// belongs to it, its last does not). Predicted points count like others.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_PRECISE_ORBIT_H
#define ORSOLVA_ANALYSIS_GEOMETRY_PRECISE_ORBIT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/analysis/geometry/satellite_orbit.h"
#include "host/observation/precise_orbits.h"

namespace orsolva_host::analysis {

class PreciseOrbit {
 public:
  /// @param points  in the order of time; must outlive this
  explicit PreciseOrbit(const std::vector<PrecisePoint>& points);

  /// Whether a time has position and clock.
  bool Covers(std::int64_t time_ns) const;
  /// The time of the first point not before a time.
  std::optional<std::int64_t> NextPoint(std::int64_t time_ns) const;
  /// Position, and the clock with the relativistic part of eccentricity (-2 r v / c^2).
  /// @param time  whose whole part is covered; the offset may leave the points by a signal's travel
  SatelliteState StateAt(const Instant& time);
  /// Without relativity.
  double ClockAt(const Instant& time) const;

 private:
  static constexpr std::size_t kNodes = 10;
  /// A stretch of equally spaced points with nothing between them that forbids a polynomial.
  struct Run {
    std::size_t first = 0;
    std::size_t last = 0;
  };

  std::size_t StepOf(std::int64_t time_ns) const;
  bool HasPosition(std::size_t step) const;
  bool HasClock(std::size_t step) const;
  void TurnNodes(std::size_t step);
  double Between(const Instant& time, std::size_t step, std::size_t point) const;
  double ClockIn(std::size_t step, const Instant& time) const;

  const std::vector<PrecisePoint>* points_;
  std::vector<Run> runs_;  ///< by step, the one that leads from point i to i + 1
  std::size_t turned_step_ = static_cast<std::size_t>(-1);  ///< of the nodes at hand
  std::size_t first_node_ = 0;
  std::array<Vector3, kNodes> nodes_ = {};
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_PRECISE_ORBIT_H
