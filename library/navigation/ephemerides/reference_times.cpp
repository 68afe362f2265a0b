#include "navigation/ephemerides/reference_times.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace gnssqctoolkit {
namespace {

constexpr double kFarAway = 1e9;           // s, times further from a time are never its nearest
constexpr double kLeadMargin = 1e-5;       // s, for the rounding of ages below kFarAway
constexpr double kCoverMargin = 1e-6;      // s, for the rounding of ages
constexpr double kCalendarMargin = 100.0;  // s, for the shift to BDS time at the ends of the calendar
constexpr double kSearchMargin = 1.0;      // s, more than the rounding of all that is bisected
constexpr double kCollapsedAge = 86400.0;  // s from 1970, more than the longest age
constexpr std::int64_t kEdge = 3 * 86400;  // s, an ordinary time keeps off the ends of its range

bool IsOrdinary(const AbsoluteTime& t) {
  return t.Fraction >= 0.0 && t.Fraction <= 1.0 && t.Seconds >= kEdge && t.Seconds <= kCalendarEnd - kEdge;
}

bool Earlier(const AbsoluteTime& a, const AbsoluteTime& b) {
  return a.Seconds != b.Seconds ? a.Seconds < b.Seconds : a.Fraction < b.Fraction;
}

// Times outside the calendar collapse to zero on their way to BDS time.
double SecondsToCollapsedTime(const AbsoluteTime& t, int direction) {
  const double since_begin = TimeDifference(t, {kCalendarBegin, kCalendarMargin});
  const double to_end = TimeDifference({kCalendarEnd, -kCalendarMargin}, t);
  if (since_begin > 0.0 && to_end > 0.0) return direction > 0 ? to_end : since_begin;
  return 0.0;
}

/// The two nearest of the times it is given.
struct Ranking {
  int Index = -1;
  double Best = kFarAway;
  double Second = kFarAway;  // a lone time leads by so much

  void Take(int i, double age) {
    if (age < Best || (age == Best && i > Index)) {
      Second = Best;
      Best = age;
      Index = i;
    } else if (age < Second) {
      Second = age;
    }
  }
};

}  // namespace

// Ages of such times are exact to kLeadMargin.
bool HasPlainFraction(const AbsoluteTime& t) { return std::fabs(t.Fraction) <= 1e3; }

void ReferenceTimes::Add(const AbsoluteTime& time) {
  // Reserved first, so that a failed allocation leaves both lists in step.
  if (times_.size() == times_.capacity()) times_.reserve(2 * times_.size() + 8);
  const auto earlier = [this](const AbsoluteTime& a, int i) { return Earlier(a, At(i)); };
  ascending_.insert(std::upper_bound(ascending_.begin(), ascending_.end(), time, earlier), Count());
  times_.push_back(time);
  if (!IsOrdinary(time)) ++absurd_;
}

void ReferenceTimes::DropFirst() {
  const bool was_absurd = !IsOrdinary(times_.front());
  times_.erase(times_.begin());
  ascending_.erase(std::find(ascending_.begin(), ascending_.end(), 0));
  for (int& i : ascending_) --i;
  if (!was_absurd || --absurd_ > 0) return;
  // A fraction that is not a number may have kept those of its second out of order.
  std::sort(ascending_.begin(), ascending_.end(),
            [this](int a, int b) { return Earlier(At(a), At(b)) || (!Earlier(At(b), At(a)) && a < b); });
}

void ReferenceTimes::Clear() {
  std::vector<AbsoluteTime>().swap(times_);
  std::vector<int>().swap(ascending_);
  absurd_ = 0;
}

bool ReferenceTimes::Bisects(const AbsoluteTime& t) const { return absurd_ == 0 && IsOrdinary(t); }

int ReferenceTimes::Nearest(const AbsoluteTime& t, double& lead_s) const {
  Ranking ranking;
  const auto take = [&](int i) {
    const double age = std::fabs(TimeDifference(t, At(i)));
    ranking.Take(i, age);
    return age;
  };
  bool plain = true;
  if (Bisects(t)) {
    const auto not_after = [&](int i) { return TimeDifference(t, At(i)) >= 0.0; };
    const auto middle = std::partition_point(ascending_.begin(), ascending_.end(), not_after);
    // Two on either side, and all that rounding could put in their place.
    int taken = 0;
    for (auto i = middle; i != ascending_.begin(); ++taken) {
      if (take(*--i) > ranking.Best + kLeadMargin && taken > 0) break;
    }
    taken = 0;
    for (auto i = middle; i != ascending_.end(); ++i, ++taken) {
      if (take(*i) > ranking.Best + kLeadMargin && taken > 0) break;
    }
  } else {
    for (int i = 0; i < Count(); ++i) take(i);
    plain = HasPlainFraction(t) && std::all_of(times_.begin(), times_.end(), HasPlainFraction);
  }
  lead_s = plain ? ranking.Second - ranking.Best - kLeadMargin : 0.0;
  return ranking.Index;
}

bool ReferenceTimes::NearestAround(const AbsoluteTime& t, int i, double& before_s, double& after_s) const {
  if (!Bisects(t)) return false;
  const auto earlier = [&](int k) { return TimeDifference(At(k), At(i)) < -kSearchMargin; };
  const auto not_later = [&](int k) { return TimeDifference(At(k), At(i)) <= kSearchMargin; };
  const auto place = std::partition_point(ascending_.begin(), ascending_.end(), earlier);
  const auto next = std::partition_point(place, ascending_.end(), not_later);
  if (next - place != 1) return false;
  const double age = TimeDifference(t, At(i));
  before_s = after_s = kFarAway;
  if (place != ascending_.begin()) before_s = age + TimeDifference(At(i), At(*(place - 1))) / 2.0;
  if (next != ascending_.end()) after_s = TimeDifference(At(*next), At(i)) / 2.0 - age;
  before_s -= kLeadMargin;
  after_s -= kLeadMargin;
  return true;
}

bool ReferenceTimes::NearestCovered(const AbsoluteTime& t, int direction, const Cover& cover,
                                    double& offset_s) const {
  Smallest nearest;
  if (Bisects(t)) {
    SearchCovered(t, direction, cover, nearest);
  } else {
    for (int i = 0; i < Count(); ++i) {
      // A record whose own time collapsed is near every other that did.
      if (cover.CollapseTimes && std::fabs(TimeDifference(At(i), AbsoluteTime{})) <= kCollapsedAge) {
        nearest.Take(SecondsToCollapsedTime(t, direction));
      }
      TakeCovered(t, i, direction, cover, nearest);
    }
  }
  if (nearest.Found) offset_s = nearest.Value;
  return nearest.Found;
}

// From the first interval that does not lie behind t on, until no later one can be nearer.
void ReferenceTimes::SearchCovered(const AbsoluteTime& t, int direction, const Cover& cover,
                                   Smallest& nearest) const {
  const double before = cover.MaxAge + kSearchMargin;
  const double after = before + cover.Widen;
  const auto ended = [&](int i) { return TimeDifference(At(i), t) < -after; };
  const auto begun = [&](int i) { return TimeDifference(At(i), t) <= before; };
  const auto begin = ascending_.begin(), end = ascending_.end();
  std::ptrdiff_t k = direction > 0 ? std::partition_point(begin, end, ended) - begin
                                   : std::partition_point(begin, end, begun) - begin - 1;
  for (; k >= 0 && k < end - begin; k += direction) {
    const double to_reference = TimeDifference(At(begin[k]), t);
    const double near_edge = direction > 0 ? to_reference - before : -to_reference - after;
    if (nearest.Found && near_edge > nearest.Value) return;
    TakeCovered(t, begin[k], direction, cover, nearest);
  }
}

// The seconds from t to the interval of time i, unless it lies in the other direction.
void ReferenceTimes::TakeCovered(const AbsoluteTime& t, int i, int direction, const Cover& cover,
                                 Smallest& nearest) const {
  const double to_reference = TimeDifference(At(i), t);
  if (!std::isfinite(to_reference)) return;  // no time is near such a record
  const double reach = cover.MaxAge + kCoverMargin + std::fabs(to_reference) * 1e-15;
  const double first = to_reference - reach, last = to_reference + reach + cover.Widen;
  const double near_edge = direction > 0 ? first : -last;
  const double far_edge = direction > 0 ? last : -first;
  if (far_edge >= 0.0) nearest.Take(near_edge > 0.0 ? near_edge : 0.0);
}

}  // namespace gnssqctoolkit
