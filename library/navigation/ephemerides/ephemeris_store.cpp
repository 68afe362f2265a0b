#include "navigation/ephemerides/ephemeris_store.h"

#include <cmath>
#include <type_traits>

#include "navigation/orbits/constants.h"
#include "toolkit/trace.h"

namespace gnssqctoolkit {
namespace {

constexpr double kSameFraction = 1e-12;  // s, between the clock times of one record loaded twice

bool IsFinite(const SatelliteState& state) {
  return std::isfinite(state.Position[0]) && std::isfinite(state.Position[1]) &&
         std::isfinite(state.Position[2]) && std::isfinite(state.Clock);
}

bool HasRange(double pseudorange) {
  return std::fabs(pseudorange) >= kAbsentRange && std::isfinite(pseudorange);
}

// How much later than its reference time, read as GPS time, a record may count: BDS time is behind GPS time
// by 14 s, UTC by at most the newest leap second (and never ahead).
template <class Traits>
constexpr double LaterInGpsTime() {
  if constexpr (std::is_same_v<Traits, BdsTraits>) return kGpsMinusBds;
  if constexpr (std::is_same_v<Traits, GlonassTraits>) return 19.0;
  return 0.0;
}

}  // namespace

template <class Traits>
bool SatelliteEphemeris<Traits>::Add(const Record& record) {
  const AbsoluteTime added = Traits::ClockTime(record);
  for (const Record& stored : records_) {
    const AbsoluteTime clock = Traits::ClockTime(stored);
    if (stored.prn == record.prn && clock.Seconds == added.Seconds &&
        std::fabs(clock.Fraction - added.Fraction) < kSameFraction) {
      return false;
    }
  }
  if (Count() >= kMaxRecordsPerSatellite) {
    records_.erase(records_.begin());
    references_.DropFirst();
  }
  nearest_ = Nearest{};
  // Reserved first, so that a failed allocation leaves both lists in step.
  if (records_.size() == records_.capacity()) records_.reserve(2 * records_.size() + 8);
  references_.Add(Traits::ReferenceTime(record));
  records_.push_back(record);
  return true;
}

template <class Traits>
const typename Traits::Record* SatelliteEphemeris<Traits>::At(int i) const {
  return i >= 0 && i < Count() ? &records_[static_cast<std::size_t>(i)] : nullptr;
}

template <class Traits>
void SatelliteEphemeris<Traits>::Release() {
  std::vector<Record>().swap(records_);
  references_.Clear();
  nearest_ = Nearest{};
  memory_ = typename Traits::Memory{};
}

template <class Traits>
int SatelliteEphemeris<Traits>::ChooseIssue(const AbsoluteTime& t, std::int32_t prn, std::int32_t iode,
                                            double max_age_s) const {
  if constexpr (Traits::kHasIode) {
    for (std::size_t i = 0; i < records_.size(); ++i) {
      if (records_[i].prn != prn || records_[i].iode != iode) continue;
      if (std::fabs(TimeDifference(t, Reference(static_cast<int>(i)))) <= max_age_s)
        return static_cast<int>(i);
    }
  }
  return -1;
}

template <class Traits>
int SatelliteEphemeris<Traits>::Choose(const AbsoluteTime& t, std::int32_t prn, std::int32_t iode,
                                       double max_age_s) const {
  if (Traits::kHasIode && iode >= 0) return ChooseIssue(t, prn, iode, max_age_s);
  if (records_.empty() || records_.front().prn != prn) return -1;
  // Twice the time between two epochs is what the lead can shrink by.
  const bool still_nearest =
      HasPlainFraction(t) && 2.0 * std::fabs(TimeDifference(t, nearest_.Time)) < nearest_.Lead;
  if (!still_nearest) {
    nearest_.Time = t;
    nearest_.Index = references_.Nearest(t, nearest_.Lead);
  }
  if (nearest_.Index < 0) return -1;
  // An age that is not a number is none.
  return std::fabs(TimeDifference(t, Reference(nearest_.Index))) <= max_age_s ? nearest_.Index : -1;
}

template <class Traits>
bool SatelliteEphemeris<Traits>::ChosenAround(const AbsoluteTime& t, int i, double& before_s,
                                              double& after_s) const {
  if (!references_.NearestAround(t, i, before_s, after_s)) return false;
  const double age = TimeDifference(t, Reference(i));
  const double bounded = std::fmin(max_age_s_, Traits::kBoundedAge);
  before_s = std::fmin(before_s, bounded + age);
  after_s = std::fmin(after_s, bounded - age);
  return true;
}

template <class Traits>
bool SatelliteEphemeris<Traits>::NearestCovered(const AbsoluteTime& t, int direction, double widen_s,
                                                double& offset_s) const {
  constexpr bool kCollapses = std::is_same_v<Traits, BdsTraits>;
  return references_.NearestCovered(t, direction, {max_age_s_, widen_s, kCollapses}, offset_s);
}

template <class Traits>
SystemEphemeris<Traits>::SystemEphemeris(GnssSystem system)
    : system_(system), max_age_s_(Traits::kDefaultMaxAge) {}

template <class Traits>
void SystemEphemeris<Traits>::SetMaxAge(double max_age_s) {
  const bool accepted = max_age_s > 0.0 && max_age_s <= kLongestMaxAge;
  max_age_s_ = accepted ? max_age_s : Traits::kDefaultMaxAge;
  for (auto& satellite : satellites_) satellite.SetMaxAge(max_age_s_);
}

template <class Traits>
void SystemEphemeris<Traits>::Add(const Record& record) {
  if (record.prn < 1 || record.prn > Traits::kSatellites) return;
  satellites_[static_cast<std::size_t>(record.prn - 1)].Add(record);
}

template <class Traits>
const SatelliteEphemeris<Traits>* SystemEphemeris<Traits>::Satellite(const SatelliteId& satellite) const {
  if (satellite.system != system_ || satellite.prn < 1 || satellite.prn > Traits::kSatellites) return nullptr;
  return &satellites_[static_cast<std::size_t>(satellite.prn - 1)];
}

template <class Traits>
const typename Traits::Record* SystemEphemeris<Traits>::Find(const SatelliteId& satellite,
                                                             const AbsoluteTime& t, std::int32_t iode,
                                                             double max_age_s,
                                                             AbsoluteTime& reference) const {
  if (satellite.system != system_) return nullptr;
  const SatelliteEphemeris<Traits>* store = Satellite(satellite);
  const int chosen =
      store == nullptr ? -1 : store->Choose(Traits::RecordTime(t), satellite.prn, iode, max_age_s);
  // Kept for compatibility: a request by issue of data is reported as missing even when it is found.
  if ((chosen < 0 || iode >= 0) && TraceEnabled()) Traits::TraceMissing(GNSSTime(t), satellite, iode);
  if (chosen < 0) return nullptr;
  reference = store->Reference(chosen);
  return store->At(chosen);
}

template <class Traits>
typename Traits::Record SystemEphemeris<Traits>::Select(const SatelliteId& satellite, const AbsoluteTime& t,
                                                        std::int32_t iode) const {
  AbsoluteTime reference;
  const Record* found = Find(satellite, t, iode, reference);
  return found == nullptr ? Record{} : *found;
}

template <class Traits>
int SystemEphemeris<Traits>::SatellitePosition(const SatelliteId& satellite, const AbsoluteTime& reception,
                                               double pseudorange, SatelliteState& state) const {
  state = SatelliteState{};
  if (Satellite(satellite) == nullptr) return 0;
  if (!HasRange(pseudorange)) return 0;
  if (!Traits::CanBePositioned(satellite.prn)) return 0;
  AbsoluteTime reference;
  const Record* record = Find(satellite, Traits::StoreTime(reception), -1, reference);
  if (record == nullptr) return 0;
  return SatellitePosition(*record, reference, reception, pseudorange, state);
}

template <class Traits>
int SystemEphemeris<Traits>::SatellitePosition(const Record& record, const AbsoluteTime& reference,
                                               const AbsoluteTime& reception, double pseudorange,
                                               SatelliteState& state) const {
  state = SatelliteState{};
  if (!HasRange(pseudorange)) return 0;
  if (!Traits::CanBePositioned(record.prn)) return 0;
  SatelliteState formed;
  const SatelliteEphemeris<Traits>* store = Satellite({system_, record.prn});
  typename Traits::Memory none;
  auto& memory = store == nullptr ? none : store->Memory();
  if (Traits::Position(record, reference, reception, pseudorange, memory, formed) == 0) return 0;
  // Records may hold anything; what is not a number is no position.
  if (!IsFinite(formed)) return 0;
  state = formed;
  return 1;
}

template <class Traits>
bool SystemEphemeris<Traits>::Motion(const SatelliteId& satellite, const AbsoluteTime& reception,
                                     double pseudorange, BoundedMotion& motion) const {
  const SatelliteEphemeris<Traits>* store = Satellite(satellite);
  if (store == nullptr) return false;
  const AbsoluteTime t = Traits::RecordTime(Traits::StoreTime(reception));
  const int chosen = store->Choose(t, satellite.prn, -1);
  if (chosen < 0 || !store->ChosenAround(t, chosen, motion.Before, motion.After)) return false;
  const Record& record = *store->At(chosen);
  motion.SpeedLimit = Traits::SpeedLimit(record, store->Reference(chosen));
  return std::isfinite(motion.SpeedLimit) &&
         SatellitePosition(record, store->Reference(chosen), reception, pseudorange, motion.State) == 1;
}

template <class Traits>
double SystemEphemeris<Traits>::Tgd(const SatelliteId& satellite, int which) const {
  if constexpr (std::is_same_v<Traits, BdsTraits>) {
    const SatelliteEphemeris<Traits>* store = Satellite(satellite);
    const Record* first = store == nullptr ? nullptr : store->At(0);
    if (first != nullptr && which == 1) return first->tgd1;
    if (first != nullptr && which == 2) return first->tgd2;
  }
  return 0.0;
}

template <class Traits>
bool SystemEphemeris<Traits>::Covered(const SatelliteId& satellite, const AbsoluteTime& from, int direction,
                                      AbsoluteTime& at) const {
  const SatelliteEphemeris<Traits>* store = Satellite(satellite);
  double offset = 0.0;
  if (store == nullptr || !store->NearestCovered(from, direction, LaterInGpsTime<Traits>(), offset))
    return false;
  at = offset == 0.0 ? from : AbsoluteTimeAdd(from, direction > 0 ? offset : -offset);
  return true;
}

template <class Traits>
bool SystemEphemeris<Traits>::CoveredAtOrAfter(const SatelliteId& satellite, const AbsoluteTime& from,
                                               AbsoluteTime& at) const {
  return Covered(satellite, from, +1, at);
}

template <class Traits>
bool SystemEphemeris<Traits>::CoveredAtOrBefore(const SatelliteId& satellite, const AbsoluteTime& from,
                                                AbsoluteTime& at) const {
  return Covered(satellite, from, -1, at);
}

template <class Traits>
void SystemEphemeris<Traits>::Release() {
  for (auto& satellite : satellites_) satellite.Release();
}

template class SatelliteEphemeris<GpsTraits>;
template class SatelliteEphemeris<GlonassTraits>;
template class SatelliteEphemeris<GalileoTraits>;
template class SatelliteEphemeris<BdsTraits>;
template class SystemEphemeris<GpsTraits>;
template class SystemEphemeris<GlonassTraits>;
template class SystemEphemeris<GalileoTraits>;
template class SystemEphemeris<BdsTraits>;

}  // namespace gnssqctoolkit
