#include "measures/ionosphere.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "toolkit/constants.h"

namespace orsolva {
namespace {

using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::kSpeedOfLight;
using gnssqctoolkit::TimeDifference;

constexpr double kWideLaneLimit = 1e-16;
constexpr double kFirstWideLaneVariance = 0.25;  // cycles^2

bool AtMost(double gap, double bound) { return gap < bound || std::fabs(gap - bound) <= kTimeTolerance; }

double Distance(const double a[3], const double b[3]) {
  const double x = a[0] - b[0];
  const double y = a[1] - b[1];
  const double z = a[2] - b[2];
  return std::sqrt(x * x + y * y + z * z);
}

void ForgetPrevious(IodDetect& state) {
  state.PreviousEpoch = AbsoluteTime();
  state.LastPseudorange = 0.0;
  state.LastPhase = 0.0;
  state.EphemerisEpoch = AbsoluteTime();
}

// The stored value as the record now in use would have given it.
void FormPreviousAgain(const AbsoluteTime& epoch, double wavelength, const SatelliteGeometry& geometry,
                       IodDetect& state) {
  if (!Present(wavelength) || !Present(state.LastPseudorange) || !Present(state.LastPhase) ||
      geometry.Choice.Record == nullptr || geometry.Records == nullptr) {
    ForgetPrevious(state);
    return;
  }
  // Nothing is compared over a gap that closes the arc, and a GLONASS record reaches a day back at most.
  if (!(std::fabs(TimeDifference(epoch, state.PreviousEpoch)) < kArcGap)) return;
  gnssqctoolkit::SatelliteState satellite;
  if (!geometry.Records->SatellitePosition(geometry.Choice, state.PreviousEpoch, state.LastPseudorange,
                                           satellite)) {
    ForgetPrevious(state);
    return;
  }
  // Kept for compatibility: the value formed again lacks the satellite clock, so that the change of this
  // epoch holds the whole clock offset and a change of records mostly counts as a slip.
  state.PhaseMinusGeometry = state.LastPhase * wavelength - Distance(satellite.Position, geometry.Station);
}

void CloseArc(IodDetect& state) {
  if (state.WideLaneCount < state.LongestArcCount) return;
  state.LongestArcCount = state.WideLaneCount;
  state.LongestArcVariance = state.WideLaneVariance;
}

void RecordSlip(IodDetect& state) {
  state.SlipTimes.Push(FromAbsolute(state.CurrentEpoch));
  ++state.SlipCount;
  state.SlipFlag = true;
  CloseArc(state);
}

}  // namespace

bool IonosphereSlip(const AbsoluteTime& epoch, const CarrierPhase& first, const CarrierPhase& second,
                    bool counting, IodDetect& state, GeometryFreeStep* step) {
  if (!Present(first.Phase) || !Present(second.Phase) || !Present(first.Wavelength) ||
      !Present(second.Wavelength)) {
    return false;
  }
  const double f1 = kSpeedOfLight / first.Wavelength;
  const double f2 = kSpeedOfLight / second.Wavelength;
  const double alpha = f1 * f1 / (f2 * f2);
  const double geometry_free = second.Phase * second.Wavelength - first.Phase * first.Wavelength;
  bool slip = false;
  if (IsSet(state.GeometryFreeEpoch)) {
    const double d = geometry_free - state.GeometryFree;
    const double dt = TimeDifference(epoch, state.GeometryFreeEpoch);
    double threshold = std::fabs((alpha - 1.0) / alpha * dt * kIonosphereRate / 100.0 / 60.0);
    if (threshold < kLeastGeometryFreeThreshold) threshold = kLeastGeometryFreeThreshold;
    const bool rate = std::fabs(d) > threshold;
    slip = (rate || std::fabs(dt) > kLongestGeometryFreeGap) && std::fabs(dt) < kArcGap && counting;
    if (step != nullptr) {
      const IonosphereSlipReason reason = rate ? IonosphereSlipReason::kRate : IonosphereSlipReason::kLongGap;
      *step = {true, d, threshold, slip ? reason : IonosphereSlipReason::kNone};
    }
  }
  state.GeometryFreeEpoch = epoch;
  state.GeometryFree = geometry_free;
  return slip;
}

bool PhaseGeometryDifference(const AbsoluteTime& epoch, const CodeObservation& observation, double wavelength,
                             const SatelliteGeometry& geometry, IodDetect& state, bool* new_record) {
  if (IsSet(state.PreviousEpoch) &&
      std::fabs(TimeDifference(state.EphemerisEpoch, geometry.Choice.Reference)) > kTimeTolerance) {
    FormPreviousAgain(epoch, wavelength, geometry, state);
    if (new_record != nullptr) *new_record = true;
  }
  if (!Present(wavelength) || !Present(observation.Phase) || !geometry.HasPosition) {
    state.CurrentEpoch = state.PreviousEpoch;
    return false;
  }
  const double value = observation.Phase * wavelength -
                       Distance(geometry.Satellite.Position, geometry.Station) +
                       kSpeedOfLight * geometry.Satellite.Clock;
  const bool formed =
      IsSet(state.PreviousEpoch) && std::fabs(TimeDifference(epoch, state.PreviousEpoch)) < kArcGap;
  state.CurrentEpoch = epoch;
  state.EphemerisEpoch = geometry.Choice.Reference;
  state.Difference = formed ? value - state.PhaseMinusGeometry : 0.0;
  state.PhaseMinusGeometry = value;
  state.LastPseudorange = observation.Pseudorange;
  state.LastPhase = observation.Phase;
  return formed;
}

double SlipThreshold(double gap) {
  for (const SlipThresholdRow& row : kSlipThresholds) {
    if (AtMost(gap, row.LongestGap)) return row.Threshold;  // a gap that is not positive is in the first row
  }
  return std::rbegin(kSlipThresholds)->Threshold;  // no number
}

double WideLane(double p_a, double p_b, double l_a, double l_b, double lambda_a, double lambda_b) {
  for (double input : {p_a, p_b, l_a, l_b, lambda_a, lambda_b}) {
    if (std::fabs(input) <= kWideLaneLimit) return 0.0;
  }
  return l_a - l_b - (lambda_b - lambda_a) / (lambda_a + lambda_b) * (p_a / lambda_a + p_b / lambda_b);
}

void EpochMedians::Store(const AbsoluteTime& epoch, double median) {
  // Times that step back replace what they pass: entries stay ascending.
  while (Size() > 0 && TimeDifference(entries_.back().Epoch, epoch) > -kTimeTolerance) entries_.pop_back();
  while (Size() > 0 && TimeDifference(epoch, entries_[head_].Epoch) > kArcGap) ++head_;
  if (head_ > 64 && head_ * 2 > entries_.size()) {
    entries_.erase(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(head_));
    head_ = 0;
  }
  entries_.push_back({epoch, median});
}

// Nearly always one of the last, as most pairs were seen an epoch ago.
std::vector<EpochMedians::Entry>::const_iterator EpochMedians::FirstAfter(const AbsoluteTime& t) const {
  const auto begin = entries_.begin() + static_cast<std::ptrdiff_t>(head_);
  const auto not_after = [&](const Entry& e) { return TimeDifference(e.Epoch, t) <= kTimeTolerance; };
  auto first = entries_.end();
  for (int k = 0; k < 4; ++k, --first) {
    if (first == begin || not_after(*std::prev(first))) return first;
  }
  return std::partition_point(begin, first, not_after);
}

double EpochMedians::AddBetween(double start, const AbsoluteTime& previous, const AbsoluteTime& current,
                                double interval) const {
  if (!(interval > 0.0)) return start;
  // Walking the stored epochs instead of the steps bounds the work whatever the interval is.
  auto entry = FirstAfter(previous);
  double sum = start;
  for (; entry != entries_.end() && TimeDifference(current, entry->Epoch) > 0.0; ++entry) {
    const double offset = TimeDifference(entry->Epoch, previous);
    const double step = std::round(offset / interval) * interval;
    if (step > 0.0 && std::fabs(offset - step) <= kTimeTolerance &&
        TimeDifference(current, previous) - step > kTimeTolerance) {
      sum += entry->Median;
    }
  }
  return sum;
}

void EpochMedians::Clear() {
  entries_.clear();
  head_ = 0;
}

bool EpochMedian(std::vector<double>& differences, double& median) {
  if (differences.empty()) return false;
  const auto middle = differences.begin() + static_cast<std::ptrdiff_t>(differences.size() / 2);
  std::nth_element(differences.begin(), middle, differences.end());
  median = *middle;
  return true;
}

void CountSlip(IodDetect& state, bool counting, const EpochMedians& medians, double median, double interval,
               bool new_record, SlipStep* step) {
  const double gap = std::fabs(TimeDifference(state.CurrentEpoch, state.PreviousEpoch));
  if (gap >= kArcGap) {
    // A value without a predecessor is no gap: the arc goes on.
    if (IsSet(state.PreviousEpoch)) {
      CloseArc(state);
      state.WideLaneCount = 0;
    }
    return;
  }
  if (!(gap > kTimeTolerance) || !counting) return;
  const bool long_gap = gap > kSlipGap;
  const double threshold = SlipThreshold(gap);
  double excess = 0.0;
  if (!long_gap || step != nullptr) {
    // Kept for compatibility: the common changes of the epochs in between are added to the change over the
    // gap.
    excess = medians.AddBetween(state.Difference, state.PreviousEpoch, state.CurrentEpoch, interval) - median;
  }
  const bool slip = long_gap || std::fabs(excess) > threshold;
  state.SlipFlag = false;
  if (slip) RecordSlip(state);
  if (step == nullptr) return;
  GeometrySlipReason reason = new_record ? GeometrySlipReason::kNewEphemeris : GeometrySlipReason::kThreshold;
  if (long_gap) reason = GeometrySlipReason::kDataGap;
  *step = {true, excess, threshold, slip ? reason : GeometrySlipReason::kNone};
}

void UpdateWideLane(IodDetect& state, double wide_lane) {
  if (std::fabs(wide_lane) < kWideLaneLimit) return;
  if (state.WideLaneCount > 0 && !state.SlipFlag) {
    if (state.WideLaneCount < INT32_MAX) ++state.WideLaneCount;
    const double deviation = wide_lane - state.WideLaneMean;
    state.WideLaneMean += deviation / state.WideLaneCount;
    state.WideLaneVariance += (deviation * deviation - state.WideLaneVariance) / state.WideLaneCount;
    return;
  }
  state.WideLaneCount = 1;
  state.WideLaneMean = wide_lane;
  state.WideLaneVariance = kFirstWideLaneVariance;
}

}  // namespace orsolva
