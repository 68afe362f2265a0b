// The position of one epoch from codes whose range is already modelled.
//
// Codes less modelled ranges, y, are linear in what is sought: y = clock of the system - e . x, with e the
// unit vector to the satellite and x the antenna's offset from the position that the ranges were modelled
// from (and the curvature of the sphere about the satellite, (x^2 - (e . x)^2) / 2 range). The clocks are
// eliminated: within each system e and y are taken from their weighted means, and three unknowns are left.
// Weights (sin elevation)^2, a quarter of that for GLONASS, and for outliers beyond a limit (limit /
// residual)^2, in three rounds; the limit is twice the median residual, at least 5 m.
#ifndef ORSOLVA_ANALYSIS_FIGURES_POINT_SOLUTION_H
#define ORSOLVA_ANALYSIS_FIGURES_POINT_SOLUTION_H

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "host/analysis/geometry/satellite_orbit.h"

namespace orsolva_host::analysis {

constexpr std::size_t kClockSystems = 4;

/// Place of a system's clock among those of a solution (G, R, E, C and with GPS J), or kClockSystems.
std::size_t ClockPlace(char system);

struct CodeSample {
  Vector3 line_of_sight = {};
  double sin_elevation = 1;
  double range_m = 2.5e7;  ///< about
  double code_less_range_m = 0;
  std::size_t clock = 0;  ///< ClockPlace
};

struct PointSolution {
  Vector3 shift_m = {};
  std::array<double, kClockSystems> clock_m;  ///< NaN where the system is not there
  double pdop = 0;
  double sum_of_squares_m2 = 0;  ///< of the residuals within the limit
  std::size_t used = 0;          ///< those
};

/// @return absent when the satellites of a system beyond its first are fewer than four in all, when more than
/// half of them are outliers, or when PDOP is above 30
std::optional<PointSolution> SolvePoint(const std::vector<CodeSample>& samples);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_POINT_SOLUTION_H
