// The measurement model of single point positioning: which satellites of an epoch take part, and their
// residuals, design rows and variances at an assumed position.
//
// Unknowns: X, Y, Z and a receiver clock term (m) each for GPS, GLONASS, BDS and Galileo.
#ifndef ORSOLVA_NAVIGATION_POSITIONING_SPP_RESIDUALS_H
#define ORSOLVA_NAVIGATION_POSITIONING_SPP_RESIDUALS_H

#include <array>
#include <cstdint>
#include <vector>

#include "navigation/orbits/satellite_state.h"
#include "navigation/positioning/spp_solution.h"
#include "toolkit/satellite.h"
#include "toolkit/time.h"

namespace gnssqctoolkit {

inline constexpr int kSppClocks = 4;
inline constexpr int kSppUnknowns = 3 + kSppClocks;
/// Largest number of satellites of an epoch that take part.
inline constexpr int kMaxSppSatellites = 64;

/// A pseudorange with the satellite's state at transmission time.
struct SppObservation {
  SatelliteId Satellite;
  double Pseudorange = 0.0;  ///< m
  double Wavelength = 0.0;   ///< m, 0 = unknown, then taken as GPS L1
  SatelliteState State;      ///< health -1 without a position
};

struct SppEpoch {
  AbsoluteTime Time;
  std::vector<SppObservation> Observations;
};

/// What a solution says about each observation of its epoch.
struct SppMark {
  bool Valid = false;                       ///< took part
  double AzimuthElevation[2] = {0.0, 0.0};  ///< rad
  double Residual = 0.0;                    ///< m
};

/// One measurement equation.
struct SppRow {
  double Residual = 0.0;  ///< m
  std::array<double, kSppUnknowns> Design{};
  double Variance = 0.0;  ///< m^2
};

/// True when a satellite is left out before any geometry is looked at.
/// @param variance  of the broadcast position, m^2
// Kept for compatibility: an entry 1 of SatUse, which is the default of all, uses a satellite without the
// tests of health and accuracy.
bool SatelliteExcluded(const SatelliteId& satellite, double variance, std::int32_t svh,
                       const SPPOption& option);

/// Rows of the usable satellites in the order of the observations, then one pseudo-row for each clock term
/// without a satellite.
/// @param unknowns  assumed position and clock terms, m
/// @param marks     one per observation, rewritten
/// @return number of satellites that take part
int FormRows(const SppEpoch& epoch, const SPPOption& option, const double unknowns[kSppUnknowns],
             std::vector<SppRow>& rows, std::vector<SppMark>& marks);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_POSITIONING_SPP_RESIDUALS_H
