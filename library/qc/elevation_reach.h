// On which side of a limit an elevation is, decided from an elevation computed at another time.
//
// A satellite that moves by s turns its direction by an angle whose sine is at most s / distance, and its
// elevation by no more. So an elevation well away from a limit stays on its side for minutes, and no position
// is needed there; near the limit nothing is decided. The bound of the speed is that of the broadcast record
// (navigation/orbits/orbit_speed.h): without one, as for a damaged record, nothing is decided either.
#ifndef ORSOLVA_QC_ELEVATION_REACH_H
#define ORSOLVA_QC_ELEVATION_REACH_H

#include "orsolva/records.h"

namespace orsolva {

enum class CutoffSide { kUnknown, kAbove, kBelow };

/// An elevation at a time, with what bounds it around that time.
struct BoundedElevation {
  Time_gbt Time{};
  double ElevationRad = 0.0;
  double DistanceM = 0.0;       ///< from the station
  double SpeedLimit = 0.0;      ///< m/s; 0 = unbounded: nothing is known at other times
  double TimeUncertaintyS = 0;  ///< by how much the time scale of the orbit may jump within the bounds
  double BeforeS = 0.0;         ///< for how long before the time the elevation exists and is bounded
  double AfterS = 0.0;          ///< after the time
};

class ElevationReach {
 public:
  virtual ~ElevationReach() = default;

  /// Takes the place of what was known.
  void Take(const BoundedElevation& computed);
  void Clear() { taken_ = known_ = false; }
  bool IsEmpty() const { return !taken_; }

  /// The side of a limit on which the elevation certainly is, and exists, at `t` and up to `around_s` before
  /// and after it; kUnknown when that is not certain.
  /// @param clear_rad  by how much it is beyond the limit at all these times
  CutoffSide SideAt(const Time_gbt& t, double limit_rad, double clear_rad, double around_s) const;
  /// For how long after `t` SideAt certainly returns the same, s; 0 where it is unknown.
  double SameSideFor(const Time_gbt& t, double limit_rad, double clear_rad, double around_s) const;

 private:
  double HeldFor(double limit_rad, double clear_rad) const;
  bool IsWithin(double since_s, double held_s, double around_s) const;

  bool taken_ = false;
  bool known_ = false;  // bounded
  BoundedElevation computed_;
  double distance_s_ = 0.0;  // in which the satellite may come as far as it is away
};

}  // namespace orsolva

#endif  // ORSOLVA_QC_ELEVATION_REACH_H
