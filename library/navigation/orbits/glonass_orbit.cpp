// GLONASS orbits: the kept whole steps of the integration and one last part of a step.
#include <algorithm>
#include <cmath>

#include "navigation/orbits/constants.h"
#include "navigation/orbits/orbits.h"

namespace gnssqctoolkit {
namespace {

constexpr double kTimeDone = 1e-9;  // s, what may be left of the interval
// A record is selected within a day of its reference and asked for minutes before that; what lies further out
// is an absurd time or pseudorange, and would only cost steps.
constexpr double kLongestSpan = 86400.0 + 1000.0;  // s

}  // namespace

int GlonassOrbit(const AbsoluteTime& t, const GloEph_gbt& record, GlonassTrajectory& trajectory,
                 double position[3], double& clock) {
  double tk = TimeDifference(t, {record.toe.time, record.toe.sec});
  if (!(std::fabs(tk) <= kLongestSpan)) return 0;
  const double bias = record.clock_bias + record.clock_rate * tk;
  const bool backwards = tk < 0.0;
  int steps = 0;
  for (; std::fabs(tk) >= kGlonassStep; ++steps) tk -= backwards ? -kGlonassStep : kGlonassStep;
  const GlonassState* whole = trajectory.StateAfter(record, backwards, steps);
  if (whole == nullptr) return 0;
  GlonassState state = *whole;
  const double acceleration[3] = {record.ax * 1000.0, record.ay * 1000.0, record.az * 1000.0};
  if (std::fabs(tk) > kTimeDone && !GlonassStep(tk, state.data(), acceleration)) return 0;
  std::copy_n(state.begin(), 3, position);
  clock = bias;
  return 1;
}

int GlonassOrbit(const AbsoluteTime& t, const GloEph_gbt& record, double position[3], double& clock) {
  GlonassTrajectory trajectory;
  return GlonassOrbit(t, record, trajectory, position, clock);
}

}  // namespace gnssqctoolkit
