// The rule of the elevation samples as it is worded: every one of them computed, nothing skipped.
#ifndef ORSOLVA_TESTS_UNIT_QC_LITERAL_ELEVATIONS_H
#define ORSOLVA_TESTS_UNIT_QC_LITERAL_ELEVATIONS_H

#include <algorithm>
#include <cstddef>
#include <vector>

#include "qc/base/epoch_time.h"
#include "qc/elevations.h"

namespace orsolva_test {

class LiteralElevations {
 public:
  LiteralElevations(const gnssqctoolkit::Ephemeris& records, const gnssqctoolkit::SatelliteId& satellite,
                    const double station[3], double mask, const Time_gbt& first, const Time_gbt& last)
      : view_(records, station), satellite_(satellite), mask_(mask) {
    for (int i = 0;; ++i) {
      const Time_gbt t{first.time + 60 * i, first.sec};
      double elevation = 0.0;
      if (Exact(t, elevation)) samples_.push_back({t, elevation});
      if (i >= 1 && orsolva::TimeDifference(t, last) >= 0.0) break;
    }
  }

  bool Flags(const Time_gbt& t, orsolva::ElevationFlags& flags) const {
    flags = orsolva::ElevationFlags{};
    const std::size_t i = Bracket(t);
    if (i == samples_.size()) return false;
    flags.ElevationRad = Interpolated(i, t);
    flags.AboveCutoff = Above(i, t, mask_);
    flags.Above30 = Above(i, t, orsolva::kElevationSplit);
    return true;
  }

  bool AboveCutoff(const Time_gbt& t) const {
    const std::size_t i = Bracket(t);
    double exact = 0.0;
    return i == samples_.size() ? Exact(t, exact) && exact > mask_ : Above(i, t, mask_);
  }

 private:
  struct Sample {
    Time_gbt Time;
    double Elevation;
  };

  bool Exact(const Time_gbt& t, double& elevation) const {
    double azimuth_elevation[2];
    if (!view_.Direction(satellite_, t, azimuth_elevation)) return false;
    elevation = azimuth_elevation[1];
    return true;
  }

  /// The first pair of neighbours around a time, the number of samples when there is none.
  std::size_t Bracket(const Time_gbt& t) const {
    const auto ends_before = [&](const Sample& s) { return orsolva::TimeDifference(s.Time, t) < 0.0; };
    auto after = std::partition_point(samples_.begin(), samples_.end(), ends_before);
    if (after == samples_.begin() && after != samples_.end()) ++after;
    if (after == samples_.end()) return samples_.size();
    const auto i = static_cast<std::size_t>(after - samples_.begin()) - 1;
    return orsolva::TimeDifference(t, samples_[i].Time) >= 0.0 ? i : samples_.size();
  }

  double Interpolated(std::size_t i, const Time_gbt& t) const {
    return samples_[i].Elevation + orsolva::TimeDifference(t, samples_[i].Time) *
                                       (samples_[i + 1].Elevation - samples_[i].Elevation) / 60.0;
  }

  bool Above(std::size_t i, const Time_gbt& t, double limit) const {
    const double margin = 0.5 * 0.017453292519943295;
    const double before = samples_[i].Elevation, after = samples_[i + 1].Elevation;
    if (before > limit + margin && after > limit + margin) return true;
    if (before < limit - margin && after < limit - margin) return false;
    if (Interpolated(i, t) > limit + margin) return true;
    double exact = 0.0;
    return Exact(t, exact) && exact > limit;
  }

  orsolva::StationView view_;
  gnssqctoolkit::SatelliteId satellite_;
  double mask_;
  std::vector<Sample> samples_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_UNIT_QC_LITERAL_ELEVATIONS_H
