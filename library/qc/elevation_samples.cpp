#include "qc/elevation_samples.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "qc/base/epoch_time.h"

namespace orsolva {

namespace {

constexpr double kNominalRange = 3.0e8;  // m, for the signal travel time of samples and exact elevations

// Samples are counted no further than this (about two million years), which keeps every index an exact
// double.
constexpr std::int64_t kMaxSamples = std::int64_t{1} << 40;

// s by which UTC, the time scale of GLONASS records, may jump.
constexpr double kLeapSecond = 1.0;

constexpr std::int64_t kNone = -1;

// A sample is looked for and put in its place among so many of the last ones.
constexpr int kLastSamples = 4;

}  // namespace

StationView::StationView(const gnssqctoolkit::Ephemeris& ephemeris, const double station_position[3])
    : ephemeris_(&ephemeris), frame_(gnssqctoolkit::EcefToGeodetic(station_position)) {
  std::copy_n(station_position, 3, position_);
}

bool StationView::UnitVector(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& time,
                             double unit[3]) const {
  gnssqctoolkit::SatelliteState state;
  return ephemeris_->SatellitePosition(satellite, ToAbsolute(time), kNominalRange, state) &&
         !(gnssqctoolkit::GeometricRange(state.Position, position_, unit) < 0.0);
}

bool StationView::Direction(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& time,
                            double azimuth_elevation[2]) const {
  double unit[3];
  if (!UnitVector(satellite, time, unit)) return false;
  gnssqctoolkit::AzimuthElevation(frame_, unit, azimuth_elevation);
  return true;
}

bool StationView::Elevation(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& time,
                            double& elevation) const {
  double unit[3];
  if (!UnitVector(satellite, time, unit)) return false;
  elevation = gnssqctoolkit::AzimuthElevation(frame_, unit, nullptr);
  return true;
}

bool StationView::Bounded(const gnssqctoolkit::SatelliteId& satellite, const Time_gbt& time,
                          BoundedElevation& bounded) const {
  bounded = BoundedElevation{};
  bounded.Time = time;
  gnssqctoolkit::BoundedMotion motion;
  double unit[3];
  if (!ephemeris_->Motion(satellite, ToAbsolute(time), kNominalRange, motion) ||
      gnssqctoolkit::GeometricRange(motion.State.Position, position_, unit) < 0.0) {
    return Elevation(satellite, time, bounded.ElevationRad);
  }
  bounded.ElevationRad = gnssqctoolkit::AzimuthElevation(frame_, unit, nullptr);
  double line[3];
  for (int i = 0; i < 3; ++i) line[i] = motion.State.Position[i] - position_[i];
  bounded.DistanceM = std::sqrt(line[0] * line[0] + line[1] * line[1] + line[2] * line[2]);
  bounded.SpeedLimit = motion.SpeedLimit;
  bounded.TimeUncertaintyS = satellite.system == gnssqctoolkit::kGlonass ? kLeapSecond : 0.0;
  bounded.BeforeS = motion.Before;
  bounded.AfterS = motion.After;
  return true;
}

void ElevationSamples::Open(const StationView& view, const gnssqctoolkit::SatelliteId& satellite,
                            const Time_gbt& batch_first, const Time_gbt& batch_last, ElevationReach* reach) {
  Clear();
  view_ = &view;
  reach_ = reach;
  satellite_ = satellite;
  first_ = batch_first;
  last_index_ = std::clamp<std::int64_t>(IndexAtOrAfter(batch_last), 1, kMaxSamples);
}

bool ElevationSamples::Span(const Time_gbt& t) const {
  if (last_index_ >= kMaxSamples || !gnssqctoolkit::HasPlainFraction(ToAbsolute(first_))) return false;
  const double since_first = TimeDifference(t, first_);
  return since_first >= 0.0 && since_first <= static_cast<double>(last_index_ * kSampleStep) - 1.0;
}

void ElevationSamples::Clear() {
  elevations_.clear();
  strays_.clear();
  gaps_.clear();
  has_bracket_ = false;
}

bool ElevationSamples::Bracket(const Time_gbt& t, SampleBracket& bracket) {
  // A time on the earlier sample belongs to the pair before, if there is one.
  if (!has_bracket_ || !(TimeDifference(t, bracket_.TimeBefore) > 0.0) ||
      !(TimeDifference(bracket_.TimeAfter, t) >= 0.0)) {
    std::int64_t before = kNone;
    std::int64_t after = kNone;
    has_bracket_ = FindBracket(t, before, after);
    if (!has_bracket_) return false;
    bracket_ = {SampleTime(before), SampleTime(after), *Computed(before), *Computed(after)};
  }
  bracket = bracket_;
  return true;
}

bool ElevationSamples::FindBracket(const Time_gbt& t, std::int64_t& before, std::int64_t& after) {
  if (!(TimeDifference(t, first_) >= 0.0)) return false;
  const std::int64_t at_or_after = IndexAtOrAfter(t);
  if (at_or_after > last_index_) return false;
  after = NextExisting(at_or_after);
  if (after == kNone) return false;
  before = PreviousExisting(at_or_after - 1);
  if (before != kNone) return true;
  // Only the very first existing sample has no neighbour before it.
  if (!(TimeDifference(t, SampleTime(after)) >= 0.0)) return false;
  before = after;
  after = NextExisting(before + 1);
  return after != kNone;
}

Time_gbt ElevationSamples::SampleTime(std::int64_t i) const {
  const auto whole = static_cast<std::uint64_t>(first_.time) + static_cast<std::uint64_t>(i * kSampleStep);
  return {static_cast<std::int64_t>(whole), first_.sec};
}

std::int64_t ElevationSamples::IndexAtOrAfter(const Time_gbt& t) const {
  const double steps = std::ceil(TimeDifference(t, first_) / static_cast<double>(kSampleStep));
  if (!(steps > 0.0)) return 0;
  if (!(steps < static_cast<double>(kMaxSamples))) return kMaxSamples + 1;
  // The division rounds: one step either way settles it.
  auto i = static_cast<std::int64_t>(steps);
  if (TimeDifference(SampleTime(i - 1), t) >= 0.0) return i - 1;
  if (TimeDifference(SampleTime(i), t) < 0.0) ++i;
  return i;
}

const double* ElevationSamples::Computed(std::int64_t i) const {
  if (!elevations_.empty() && elevations_.back().Index >= i) {
    const auto earlier = [](const Sample& sample, std::int64_t index) { return sample.Index < index; };
    const auto begin = elevations_.begin();
    auto place = elevations_.end();
    for (int k = 0; k < kLastSamples && place != begin && std::prev(place)->Index >= i; ++k) --place;
    if (place != begin && std::prev(place)->Index >= i) place = std::lower_bound(begin, place, i, earlier);
    if (place->Index == i) return &place->Elevation;
  }
  const auto stray = strays_.find(i);
  return stray == strays_.end() ? nullptr : &stray->second;
}

void ElevationSamples::Keep(const Sample& sample) {
  auto place = elevations_.end();
  for (int k = 0; place != elevations_.begin() && std::prev(place)->Index > sample.Index; ++k, --place) {
    if (k < kLastSamples) continue;
    // Time goes backwards: moving all later samples for each would make the batch cost its square.
    strays_.emplace(sample.Index, sample.Elevation);
    return;
  }
  elevations_.insert(place, sample);
}

bool ElevationSamples::Exists(std::int64_t i) {
  if (Computed(i) != nullptr) return true;
  double elevation = 0.0;
  if (!ComputeAt(SampleTime(i), elevation)) return false;
  Keep({i, elevation});
  return true;
}

bool ElevationSamples::ComputeAt(const Time_gbt& t, double& elevation) {
  if (reach_ == nullptr) return view_->Elevation(satellite_, t, elevation);
  BoundedElevation bounded;
  if (!view_->Bounded(satellite_, t, bounded)) return false;
  reach_->Take(bounded);
  elevation = bounded.ElevationRad;
  return true;
}

std::int64_t ElevationSamples::NextExisting(std::int64_t i) {
  for (i = AfterGap(i); i <= last_index_; i = AfterGap(i)) {
    if (Exists(i)) return i;
    RememberGap(i, std::min(last_index_, i + Missing(i, +1) - 1));
  }
  return kNone;
}

std::int64_t ElevationSamples::PreviousExisting(std::int64_t i) {
  for (i = BeforeGap(i); i >= 0; i = BeforeGap(i)) {
    if (Exists(i)) return i;
    RememberGap(std::max<std::int64_t>(0, i - Missing(i, -1) + 1), i);
  }
  return kNone;
}

std::int64_t ElevationSamples::Missing(std::int64_t i, int direction) const {
  const gnssqctoolkit::AbsoluteTime time = ToAbsolute(SampleTime(i));
  const gnssqctoolkit::Ephemeris& records = view_->Records();
  gnssqctoolkit::AbsoluteTime covered;
  const bool found = direction > 0 ? records.CoveredAtOrAfter(satellite_, time, covered)
                                   : records.CoveredAtOrBefore(satellite_, time, covered);
  if (!found) return kMaxSamples;
  const double uncovered = std::fabs(TimeDifference(covered, time));
  const double still = records.StandsStillFor(satellite_, time, direction);
  const double steps = std::floor(std::max(uncovered, still) / static_cast<double>(kSampleStep));
  if (!(steps < static_cast<double>(kMaxSamples))) return kMaxSamples;
  return std::max<std::int64_t>(1, static_cast<std::int64_t>(steps));
}

void ElevationSamples::RememberGap(std::int64_t first, std::int64_t last) {
  auto next = gaps_.upper_bound(first);
  if (next != gaps_.begin() && std::prev(next)->second + 1 >= first) {
    --next;
    first = next->first;
    last = std::max(last, next->second);
    next = gaps_.erase(next);
  }
  while (next != gaps_.end() && next->first <= last + 1) {
    last = std::max(last, next->second);
    next = gaps_.erase(next);
  }
  gaps_.emplace_hint(next, first, last);
}

std::int64_t ElevationSamples::AfterGap(std::int64_t i) const {
  const auto next = gaps_.upper_bound(i);
  if (next == gaps_.begin()) return i;
  return std::max(i, std::prev(next)->second + 1);
}

std::int64_t ElevationSamples::BeforeGap(std::int64_t i) const {
  const auto next = gaps_.upper_bound(i);
  if (next == gaps_.begin() || std::prev(next)->second < i) return i;
  return std::prev(next)->first - 1;
}

}  // namespace orsolva
