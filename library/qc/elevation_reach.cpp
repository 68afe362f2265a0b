#include "qc/elevation_reach.h"

#include <algorithm>
#include <cmath>

#include "navigation/ephemerides/reference_times.h"
#include "qc/base/epoch_time.h"

namespace orsolva {

namespace {

constexpr double kReachRoundingRad = 1e-6;
constexpr double kRightAngle = 1.5707963267948966;  // rad
// s, more than leap seconds and the rounding of times shift an epoch by: records are chosen by it.
constexpr double kScaleMargin = 10.0;
constexpr double kRoundingS = 0.01;

// At most the sine, from 0 to a right angle.
double AtMostSine(double x) { return x * (1.0 - x * x / 6.0); }

}  // namespace

void ElevationReach::Take(const BoundedElevation& computed) {
  computed_ = computed;
  taken_ = true;
  known_ = computed.SpeedLimit > 0.0;
  distance_s_ = known_ ? computed.DistanceM / computed.SpeedLimit : 0.0;
}

// Up to which time from that of the elevation it stays that far beyond the limit; negative when it never is.
double ElevationReach::HeldFor(double limit_rad, double clear_rad) const {
  const double rise = std::fabs(computed_.ElevationRad - limit_rad) - clear_rad - kReachRoundingRad;
  if (!(rise > 0.0)) return -1.0;
  return distance_s_ * AtMostSine(std::min(rise, kRightAngle)) - computed_.TimeUncertaintyS - kRoundingS;
}

bool ElevationReach::IsWithin(double since_s, double held_s, double around_s) const {
  return std::fabs(since_s) + around_s <= held_s && since_s + around_s + kScaleMargin <= computed_.AfterS &&
         around_s - since_s + kScaleMargin <= computed_.BeforeS;
}

CutoffSide ElevationReach::SideAt(const Time_gbt& t, double limit_rad, double clear_rad,
                                  double around_s) const {
  // The fraction of an absurd time swallows the seconds.
  if (!known_ || !gnssqctoolkit::HasPlainFraction(ToAbsolute(t))) return CutoffSide::kUnknown;
  const double since_s = TimeDifference(t, computed_.Time);
  if (!IsWithin(since_s, HeldFor(limit_rad, clear_rad), around_s)) return CutoffSide::kUnknown;
  return computed_.ElevationRad > limit_rad ? CutoffSide::kAbove : CutoffSide::kBelow;
}

double ElevationReach::SameSideFor(const Time_gbt& t, double limit_rad, double clear_rad,
                                   double around_s) const {
  if (SideAt(t, limit_rad, clear_rad, around_s) == CutoffSide::kUnknown) return 0.0;
  const double held_s = std::min(HeldFor(limit_rad, clear_rad), computed_.AfterS - kScaleMargin);
  // Rounded down where a caller multiplies it out again.
  return std::max(0.0, held_s - around_s - TimeDifference(t, computed_.Time) - kRoundingS);
}

}  // namespace orsolva
