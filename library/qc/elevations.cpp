#include "qc/elevations.h"

#include <cmath>
#include <limits>

#include "qc/base/config.h"
#include "qc/base/epoch_time.h"

namespace orsolva {

namespace {

constexpr double kClearMargin = 0.5 * gnssqctoolkit::kRadiansPerDegree;  // rad

constexpr double kRoundingRad = 1e-9;

// s, a second more than the samples around a time are away from it.
constexpr double kAroundSamples = static_cast<double>(kSampleStep) + 1.0;

double Interpolate(const SampleBracket& bracket, const Time_gbt& t) {
  // Kept for compatibility: the slope is taken over the nominal 60 s also when samples between the two are
  // missing and they are further apart.
  return bracket.ElevationBefore +
         TimeDifference(t, bracket.TimeBefore) * (bracket.ElevationAfter - bracket.ElevationBefore) / 60.0;
}

Time_gbt After(const Time_gbt& t, double seconds) {
  return FromAbsolute(gnssqctoolkit::AbsoluteTimeAdd(ToAbsolute(t), seconds));
}

}  // namespace

void QcEleList::SetStation(const gnssqctoolkit::Ephemeris& ephemeris, const double station_position[3],
                           double elevation_mask) {
  Clear();
  view_ = StationView(ephemeris, station_position);
  mask_ = elevation_mask;
}

void QcEleList::OpenSatellite(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& batch_first,
                              const Time_gbt& batch_last) {
  satellite_ = satellite;
  reach_.Clear();
  samples_.Open(view_, satellite, batch_first, batch_last, flags_only_ ? &reach_ : nullptr);
}

bool QcEleList::EpochElevationFlags(const Time_gbt& t, ElevationFlags& flags) {
  flags = ElevationFlags{};
  if (flags_only_ && FlagsWithoutSamples(t, flags)) return true;
  SampleBracket bracket;
  if (!samples_.Bracket(t, bracket)) return false;
  const double interpolated = Interpolate(bracket, t);
  flags.ElevationRad = flags_only_ ? std::numeric_limits<double>::quiet_NaN() : interpolated;
  flags.AboveCutoff = AboveLimit(bracket, t, interpolated, mask_);
  flags.Above30 = AboveLimit(bracket, t, interpolated, kElevationSplit);
  return true;
}

// The samples around the time would exist, and lie with it on one side of either limit.
bool QcEleList::FlagsWithoutSamples(const Time_gbt& t, ElevationFlags& flags) {
  if (!samples_.Span(t)) return false;
  double unused = 0.0;
  if (reach_.IsEmpty() && !ExactElevation(t, unused)) return false;
  const CutoffSide cutoff = SideAround(t, mask_);
  if (cutoff == CutoffSide::kUnknown) return false;
  const CutoffSide split = SideAround(t, kElevationSplit);
  if (split == CutoffSide::kUnknown) return false;
  flags.AboveCutoff = cutoff == CutoffSide::kAbove;
  flags.Above30 = split == CutoffSide::kAbove;
  flags.ElevationRad = std::numeric_limits<double>::quiet_NaN();
  return true;
}

// The side of a limit on which samples, values interpolated between them and the exact elevation all are. So
// the flag is the same by whichever of them it is decided.
CutoffSide QcEleList::SideAround(const Time_gbt& t, double limit, double clear) const {
  return reach_.SideAt(t, limit, clear, kAroundSamples);
}

bool QcEleList::AboveCutoff(const Time_gbt& t) {
  const CutoffSide side = SideAround(t, mask_);
  if (side != CutoffSide::kUnknown) return side == CutoffSide::kAbove;
  SampleBracket bracket;
  if (!samples_.Bracket(t, bracket)) return ExactlyAbove(t, mask_);
  return AboveLimit(bracket, t, Interpolate(bracket, t), mask_);
}

bool QcEleList::AboveCutoffUntil(const Time_gbt& t, Time_gbt& until) {
  until = t;
  CutoffSide side = SideAround(t, mask_);
  SampleBracket bracket;
  if (side == CutoffSide::kUnknown && samples_.Bracket(t, bracket)) return AboveWithin(bracket, t, until);
  const bool above = side == CutoffSide::kUnknown ? ExactlyAbove(t, mask_) : side == CutoffSide::kAbove;
  until = After(t, reach_.SameSideFor(t, mask_, 0.0, kAroundSamples));
  return above;
}

bool QcEleList::AboveWithin(const SampleBracket& bracket, const Time_gbt& t, Time_gbt& until) {
  const bool above = AboveLimit(bracket, t, Interpolate(bracket, t), mask_);
  const double greatest = std::fmax(bracket.ElevationBefore, bracket.ElevationAfter);
  const bool clearly_above =
      std::fmin(bracket.ElevationBefore, bracket.ElevationAfter) > mask_ + kClearMargin;
  if (clearly_above || greatest < mask_ - kClearMargin) {
    until = bracket.TimeAfter;
    return above;
  }
  // Below the cut-off, the exact elevation decides only where no interpolated one can be clearly above it.
  const bool regular = TimeDifference(bracket.TimeAfter, bracket.TimeBefore) < kAroundSamples &&
                       greatest < mask_ + kClearMargin - kRoundingRad;
  if (above || regular) {
    const double same_for = reach_.SameSideFor(t, mask_, 0.0, 0.0);
    until = After(t, std::fmin(same_for, TimeDifference(bracket.TimeAfter, t)));
  }
  return above;
}

// The samples on either side of a time are below the cut-off with it.
double QcEleList::BelowCutoffFor(const Time_gbt& t) {
  double elevation = 0.0;
  if (!ExactElevation(t, elevation) || !(elevation < mask_)) return 0.0;
  return reach_.SameSideFor(t, mask_, 0.0, kAroundSamples);
}

bool QcEleList::NearCutoff(const Time_gbt& t) {
  if (SideAround(t, mask_, kClearMargin) != CutoffSide::kUnknown) return false;
  SampleBracket bracket;
  if (samples_.Bracket(t, bracket)) {
    const double above = mask_ + kClearMargin;
    const double below = mask_ - kClearMargin;
    if (bracket.ElevationBefore > above && bracket.ElevationAfter > above) return false;
    if (bracket.ElevationBefore < below && bracket.ElevationAfter < below) return false;
  }
  double elevation = 0.0;
  return ExactElevation(t, elevation) && std::fabs(elevation - mask_) < kClearMargin;
}

bool QcEleList::AboveLimit(const SampleBracket& bracket, const Time_gbt& t, double interpolated,
                           double limit) {
  const double clearly_above = limit + kClearMargin;
  const double clearly_below = limit - kClearMargin;
  if (bracket.ElevationBefore > clearly_above && bracket.ElevationAfter > clearly_above) return true;
  if (bracket.ElevationBefore < clearly_below && bracket.ElevationAfter < clearly_below) return false;
  return interpolated > clearly_above || ExactlyAbove(t, limit);
}

bool QcEleList::ExactlyAbove(const Time_gbt& t, double limit) {
  const CutoffSide side = reach_.SideAt(t, limit, 0.0, 0.0);
  if (side != CutoffSide::kUnknown) return side == CutoffSide::kAbove;
  double elevation = 0.0;
  return ExactElevation(t, elevation) && elevation > limit;
}

bool QcEleList::ExactElevation(const Time_gbt& t, double& elevation) {
  BoundedElevation bounded;
  if (!view_.Bounded(satellite_, t, bounded)) return false;
  reach_.Take(bounded);
  elevation = bounded.ElevationRad;
  return true;
}

void QcEleList::Clear() {
  samples_.Clear();
  reach_.Clear();
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
