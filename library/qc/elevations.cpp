#include "qc/elevations.h"

#include <cmath>

#include "qc/base/config.h"
#include "qc/base/epoch_time.h"

namespace orsolva {

namespace {

constexpr double kClearMargin = 0.5 * gnssqctoolkit::kRadiansPerDegree;  // rad

double Interpolate(const SampleBracket& bracket, const Time_gbt& t) {
  // Kept for compatibility: the slope is taken over the nominal 60 s also when samples between the two are
  // missing and they are further apart.
  return bracket.ElevationBefore +
         TimeDifference(t, bracket.TimeBefore) * (bracket.ElevationAfter - bracket.ElevationBefore) / 60.0;
}

}  // namespace

void QcEleList::SetStation(const gnssqctoolkit::Ephemeris& ephemeris, const double station_position[3],
                           double elevation_mask) {
  samples_.Clear();
  view_ = StationView(ephemeris, station_position);
  mask_ = elevation_mask;
}

void QcEleList::OpenSatellite(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& batch_first,
                              const Time_gbt& batch_last) {
  satellite_ = satellite;
  samples_.Open(view_, satellite, batch_first, batch_last);
}

bool QcEleList::EpochElevationFlags(const Time_gbt& t, ElevationFlags& flags) {
  flags = ElevationFlags{};
  SampleBracket bracket;
  if (!samples_.Bracket(t, bracket)) return false;
  flags.ElevationRad = Interpolate(bracket, t);
  flags.AboveCutoff = AboveLimit(bracket, t, flags.ElevationRad, mask_);
  flags.Above30 = AboveLimit(bracket, t, flags.ElevationRad, kElevationSplit);
  return true;
}

bool QcEleList::AboveCutoff(const Time_gbt& t) {
  SampleBracket bracket;
  if (!samples_.Bracket(t, bracket)) return ExactlyAbove(t, mask_);
  return AboveLimit(bracket, t, Interpolate(bracket, t), mask_);
}

CutoffSide QcEleList::SideUntil(const Time_gbt& t, Time_gbt& until) {
  SampleBracket bracket;
  if (!samples_.Bracket(t, bracket)) return CutoffSide::kUnknown;
  until = bracket.TimeAfter;
  if (std::fmin(bracket.ElevationBefore, bracket.ElevationAfter) > mask_ + kClearMargin)
    return CutoffSide::kAbove;
  const double greatest = std::fmax(bracket.ElevationBefore, bracket.ElevationAfter);
  return greatest < mask_ - kClearMargin ? CutoffSide::kBelow : CutoffSide::kNear;
}

// The samples on either side of a time are clearly below the cut-off with it.
double QcEleList::BelowCutoffFor(const Time_gbt& t) const {
  return view_.BelowFor(satellite_, t, mask_ - kClearMargin, static_cast<double>(kSampleStep));
}

bool QcEleList::NearCutoff(const Time_gbt& t) {
  SampleBracket bracket;
  if (samples_.Bracket(t, bracket)) {
    const double above = mask_ + kClearMargin;
    const double below = mask_ - kClearMargin;
    if (bracket.ElevationBefore > above && bracket.ElevationAfter > above) return false;
    if (bracket.ElevationBefore < below && bracket.ElevationAfter < below) return false;
  }
  double elevation = 0.0;
  return view_.Elevation(satellite_, t, elevation) && std::fabs(elevation - mask_) < kClearMargin;
}

bool QcEleList::AboveLimit(const SampleBracket& bracket, const Time_gbt& t, double interpolated,
                           double limit) const {
  const double clearly_above = limit + kClearMargin;
  const double clearly_below = limit - kClearMargin;
  if (bracket.ElevationBefore > clearly_above && bracket.ElevationAfter > clearly_above) return true;
  if (bracket.ElevationBefore < clearly_below && bracket.ElevationAfter < clearly_below) return false;
  return interpolated > clearly_above || ExactlyAbove(t, limit);
}

bool QcEleList::ExactlyAbove(const Time_gbt& t, double limit) const {
  double elevation = 0.0;
  return view_.Elevation(satellite_, t, elevation) && elevation > limit;
}

bool QcEleList::ExactDirection(const Time_gbt& t, double azimuth_elevation[2]) const {
  return view_.Direction(satellite_, t, azimuth_elevation);
}

bool QcEleList::CoveredAtOrAfter(const Time_gbt& t, Time_gbt& at) const {
  gnssqctoolkit::AbsoluteTime covered;
  if (!view_.Records().CoveredAtOrAfter(satellite_, ToAbsolute(t), covered)) return false;
  at = FromAbsolute(covered);
  return true;
}

double QcEleList::StandsStillFor(const Time_gbt& t) const {
  return view_.Records().StandsStillFor(satellite_, ToAbsolute(t), +1);
}

}  // namespace orsolva
