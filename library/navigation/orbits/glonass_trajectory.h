// The path of a GLONASS satellite from its broadcast state, integrated once and kept.
#ifndef ORSOLVA_NAVIGATION_ORBITS_GLONASS_TRAJECTORY_H
#define ORSOLVA_NAVIGATION_ORBITS_GLONASS_TRAJECTORY_H

#include <array>
#include <vector>

#include "orsolva/records.h"

namespace gnssqctoolkit {

/// Position (m) and velocity (m/s).
using GlonassState = std::array<double, 6>;

/// Step of the integration, s.
inline constexpr double kGlonassStep = 60.0;

/// One fourth-order Runge-Kutta step of the GLONASS equations of motion.
/// @param state         position (m) and velocity (m/s), replaced
/// @param acceleration  lunisolar, m/s^2
/// @return false for a state at the geocentre
bool GlonassStep(double step_s, double state[6], const double acceleration[3]);

/// States at whole steps of 60 s from the reference time of one record.
///
/// Epochs of a run ask for the same record again and again, each a little further from its reference. A state
/// depends on the record and the number of steps alone, so keeping it changes no bit of what follows.
class GlonassTrajectory {
 public:
  virtual ~GlonassTrajectory() = default;

  /// The state after some whole steps; null when the integration reaches the geocentre on the way.
  /// @param backwards  steps against time
  const GlonassState* StateAfter(const GloEph_gbt& record, bool backwards, int steps);

 private:
  void StartFrom(const GloEph_gbt& record);

  std::array<double, 9> broadcast_{};  // what the states were integrated from: state and acceleration
  struct Leg {
    std::vector<GlonassState> States;  // the first is the broadcast state
    bool Ended = false;                // the next step reaches the geocentre
  };
  Leg forwards_, backwards_;
  bool started_ = false;  // both legs have their first state
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_ORBITS_GLONASS_TRAJECTORY_H
