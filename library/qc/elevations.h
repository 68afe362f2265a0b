// Elevation flags of a satellite at the epochs of a batch: above the cut-off, above 30 degrees.
#ifndef ORSOLVA_QC_ELEVATIONS_H
#define ORSOLVA_QC_ELEVATIONS_H

#include "navigation/ephemerides/ephemeris.h"
#include "orsolva/records.h"
#include "qc/elevation_reach.h"
#include "qc/elevation_samples.h"
#include "toolkit/satellite.h"

namespace orsolva {

inline constexpr double kElevationSplit = 0.5235987755982988;  ///< 30 degrees, rad

struct ElevationFlags {
  bool AboveCutoff = false;
  bool Above30 = false;
  double ElevationRad = 0.0;  ///< linear between the samples; not a number where only flags are asked for
};

/// Elevations of the current satellite over the current batch.
class QcEleList {
 public:
  virtual ~QcEleList() = default;

  /// Position of the station and elevation cut-off (rad), for the satellites opened next.
  void SetStation(const gnssqctoolkit::Ephemeris& ephemeris, const double station_position[3],
                  double elevation_mask);
  /// Whether only flags are asked for, no elevations, of the satellites opened next. Flags are the same then,
  /// and samples that cannot change one are not computed.
  void AskForFlagsOnly(bool only) { flags_only_ = only; }
  void OpenSatellite(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& batch_first,
                     const Time_gbt& batch_last);

  /// Flags at a time. Samples that are clearly (half a degree) above or below a limit decide; close to it the
  /// elevation is computed exactly.
  /// @return false, with all flags clear, when no samples bracket the time
  bool EpochElevationFlags(const Time_gbt& t, ElevationFlags& flags);

  /// The cut-off flag at any time: from the samples where they bracket it, else from the exact elevation.
  bool AboveCutoff(const Time_gbt& t);

  /// The same flag.
  /// @param until  a time up to which it certainly is the same; `t` where nothing is known
  bool AboveCutoffUntil(const Time_gbt& t, Time_gbt& until);

  /// For how long from `t` on the cut-off flag certainly stays clear, s; 0 when nothing is known.
  double BelowCutoffFor(const Time_gbt& t);

  /// The satellite is within half a degree of the cut-off. False where the samples show that it is not,
  /// and where it has no position.
  bool NearCutoff(const Time_gbt& t);

  /// Exact azimuth and elevation in rad; false when the satellite has no position.
  bool ExactDirection(const Time_gbt& t, double azimuth_elevation[2]) const;

  /// Earliest time at or after `t` at which broadcast records cover the satellite; false when there is none.
  bool CoveredAtOrAfter(const Time_gbt& t, Time_gbt& at) const;

  /// How long from `t` on the satellite has the same place, s; see Ephemeris::StandsStillFor.
  double StandsStillFor(const Time_gbt& t) const;

  void Clear();

 private:
  bool AboveWithin(const SampleBracket& bracket, const Time_gbt& t, Time_gbt& until);
  bool AboveLimit(const SampleBracket& bracket, const Time_gbt& t, double interpolated, double limit);
  bool ExactlyAbove(const Time_gbt& t, double limit);
  bool ExactElevation(const Time_gbt& t, double& elevation);
  CutoffSide SideAround(const Time_gbt& t, double limit, double clear = 0.0) const;
  bool FlagsWithoutSamples(const Time_gbt& t, ElevationFlags& flags);

  StationView view_;
  double mask_ = 0.0;
  gnssqctoolkit::SatelliteId satellite_;
  ElevationSamples samples_;
  bool flags_only_ = false;
  ElevationReach reach_;  // of the elevation computed last
};

}  // namespace orsolva

#endif  // ORSOLVA_QC_ELEVATIONS_H
