// Elevations of one satellite over one batch, sampled every 60 s and only where they are asked for.
//
// The samples are at BatchFirst + 60 s * i, i = 0, 1, ..., up to the first at or after BatchLast and at least
// to i = 1; a sample at which the satellite has no position does not exist. Neighbours are consecutive
// existing samples. Nothing is computed before a bracket is looked for, and spans without broadcast records
// are stepped over, so that the cost follows the epochs and not the length of the batch.
#ifndef ORSOLVA_QC_ELEVATION_SAMPLES_H
#define ORSOLVA_QC_ELEVATION_SAMPLES_H

#include <cstdint>
#include <map>
#include <vector>

#include "navigation/ephemerides/ephemeris.h"
#include "navigation/orbits/geometry.h"
#include "orsolva/records.h"
#include "qc/elevation_reach.h"
#include "toolkit/satellite.h"

namespace orsolva {

inline constexpr std::int64_t kSampleStep = 60;  ///< s

/// Directions to satellites from the station.
class StationView {
 public:
  StationView() = default;
  StationView(const gnssqctoolkit::Ephemeris& ephemeris, const double station_position[3]);
  virtual ~StationView() = default;

  /// Azimuth and elevation of a satellite at a time, the signal travel time taken from a nominal range.
  /// @param azimuth_elevation  two values, rad
  /// @return false when the satellite has no position or one inside the Earth
  bool Direction(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& time,
                 double azimuth_elevation[2]) const;
  /// The elevation alone, in rad.
  bool Elevation(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& time, double& elevation) const;
  /// The same elevation, and how fast it may change.
  bool Bounded(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& time,
               BoundedElevation& bounded) const;
  const gnssqctoolkit::Ephemeris& Records() const { return *ephemeris_; }

 private:
  bool UnitVector(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& time, double unit[3]) const;

  const gnssqctoolkit::Ephemeris* ephemeris_ = nullptr;
  double position_[3] = {0.0, 0.0, 0.0};
  gnssqctoolkit::LocalFrame frame_;
};

/// Two consecutive existing samples around a time.
struct SampleBracket {
  Time_gbt TimeBefore{};
  Time_gbt TimeAfter{};
  double ElevationBefore = 0.0;  ///< rad
  double ElevationAfter = 0.0;   ///< rad
};

class ElevationSamples {
 public:
  virtual ~ElevationSamples() = default;

  /// @param reach  is given every sample that is computed, unless null
  void Open(const StationView& view, const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& batch_first,
            const Time_gbt& batch_last, ElevationReach* reach);
  /// Whether `t` lies between two samples 60 s apart, were there samples at all times. False as well less
  /// than a second before the last of them, and where times are absurd.
  bool Span(const Time_gbt& t) const;
  /// The first pair of neighbours with TimeBefore <= t <= TimeAfter; false when there is none.
  bool Bracket(const Time_gbt& t, SampleBracket& bracket);
  void Clear();

 private:
  struct Sample {
    std::int64_t Index;
    double Elevation;  // rad
  };

  /// The elevation of a sample computed before, null when it was not.
  const double* Computed(std::int64_t i) const;
  void Keep(const Sample& sample);
  bool ComputeAt(const Time_gbt& t, double& elevation);
  Time_gbt SampleTime(std::int64_t i) const;
  std::int64_t IndexAtOrAfter(const Time_gbt& t) const;
  bool Exists(std::int64_t i);
  void RememberGap(std::int64_t first, std::int64_t last);
  /// How many samples from the missing sample i on, in a direction, are known to be missing with it.
  std::int64_t Missing(std::int64_t i, int direction) const;
  std::int64_t NextExisting(std::int64_t i);
  std::int64_t PreviousExisting(std::int64_t i);
  std::int64_t AfterGap(std::int64_t i) const;
  std::int64_t BeforeGap(std::int64_t i) const;
  bool FindBracket(const Time_gbt& t, std::int64_t& before, std::int64_t& after);

  const StationView* view_ = nullptr;
  gnssqctoolkit::SatelliteId satellite_;
  ElevationReach* reach_ = nullptr;
  Time_gbt first_{};
  std::int64_t last_index_ = 0;
  std::vector<Sample> elevations_;             // existing samples that were computed, ascending
  std::map<std::int64_t, double> strays_;      // those that came too late for their place among them
  std::map<std::int64_t, std::int64_t> gaps_;  // first to last index of runs known not to exist
  bool has_bracket_ = false;
  SampleBracket bracket_;
};

}  // namespace orsolva

#endif  // ORSOLVA_QC_ELEVATION_SAMPLES_H
