#include "navigation/ephemerides/ephemeris.h"

#include <cmath>
#include <limits>

#include "navigation/orbits/constants.h"

namespace gnssqctoolkit {
namespace {

constexpr std::int32_t kUnknownChannel = -999;
// More than the shift from GPS to BDS time, s.
constexpr double kBdsShiftMargin = 100.0;

template <class Traits>
bool SelectFrom(const SystemEphemeris<Traits>& store, const SatelliteId& satellite, const AbsoluteTime& time,
                double max_age_s, EphemerisChoice& choice) {
  AbsoluteTime reference;
  const auto* record = store.Find(satellite, Traits::StoreTime(time), -1, max_age_s, reference);
  if (record == nullptr) return false;
  choice.Satellite = satellite;
  choice.Record = record;
  choice.Reference = reference;
  return true;
}

template <class Traits>
bool PositionFrom(const SystemEphemeris<Traits>& store, const EphemerisChoice& choice,
                  const AbsoluteTime& reception, double pseudorange, SatelliteState& state) {
  const auto& record = *static_cast<const typename Traits::Record*>(choice.Record);
  return store.SatellitePosition(record, choice.Reference, reception, pseudorange, state) == 1;
}

// Calls `use` with the store of a system; false for a system without one.
template <class Owner, class Use>
bool WithStore(const Owner& owner, int system, Use use) {
  switch (system) {
    case kGps:
      return use(owner.Gps());
    case kGlonass:
      return use(owner.Glonass());
    case kBds:
      return use(owner.Bds());
    case kGalileo:
      return use(owner.Galileo());
    case kQzss:
      return use(owner.Qzss());
    default:
      return false;
  }
}

}  // namespace

double AgeOf(const MaxAges& ages, int system) {
  switch (system) {
    case kGlonass:
      return ages.Glonass;
    case kBds:
      return ages.Bds;
    case kGalileo:
      return ages.Galileo;
    default:
      return ages.Gps;
  }
}

Ephemeris::Ephemeris() : qzss_(kQzss) {
  for (std::int32_t& channel : glonass_channels_) channel = kUnknownChannel;
}

bool Ephemeris::Select(const SatelliteId& satellite, const AbsoluteTime& time, const MaxAges& ages,
                       EphemerisChoice& choice) const {
  choice = EphemerisChoice{};
  const double max_age_s = AgeOf(ages, satellite.system);
  return WithStore(*this, satellite.system,
                   [&](const auto& store) { return SelectFrom(store, satellite, time, max_age_s, choice); });
}

bool Ephemeris::SatellitePosition(const SatelliteId& satellite, const AbsoluteTime& reception,
                                  double pseudorange, SatelliteState& state) const {
  state = SatelliteState{};
  return WithStore(*this, satellite.system, [&](const auto& store) {
    return store.SatellitePosition(satellite, reception, pseudorange, state) == 1;
  });
}

bool Ephemeris::SatellitePosition(const EphemerisChoice& choice, const AbsoluteTime& reception,
                                  double pseudorange, SatelliteState& state) const {
  state = SatelliteState{};
  if (choice.Record == nullptr) return false;
  return WithStore(*this, choice.Satellite.system, [&](const auto& store) {
    return PositionFrom(store, choice, reception, pseudorange, state);
  });
}

bool Ephemeris::Motion(const SatelliteId& satellite, const AbsoluteTime& reception, double pseudorange,
                       BoundedMotion& motion) const {
  motion = BoundedMotion{};
  return WithStore(*this, satellite.system, [&](const auto& store) {
    return store.Motion(satellite, reception, pseudorange, motion);
  });
}

bool Ephemeris::CoveredAtOrAfter(const SatelliteId& satellite, const AbsoluteTime& from,
                                 AbsoluteTime& at) const {
  return WithStore(*this, satellite.system,
                   [&](const auto& store) { return store.CoveredAtOrAfter(satellite, from, at); });
}

bool Ephemeris::CoveredAtOrBefore(const SatelliteId& satellite, const AbsoluteTime& from,
                                  AbsoluteTime& at) const {
  return WithStore(*this, satellite.system,
                   [&](const auto& store) { return store.CoveredAtOrBefore(satellite, from, at); });
}

double Ephemeris::StandsStillFor(const SatelliteId& satellite, const AbsoluteTime& t, int direction) {
  if (satellite.system != kBds) return 0.0;
  const double before_begin = TimeDifference({kCalendarBegin, -kBdsShiftMargin}, t);
  const double after_end = TimeDifference(t, {kCalendarEnd, kBdsShiftMargin});
  if (before_begin > 0.0) return direction > 0 ? before_begin : std::numeric_limits<double>::infinity();
  if (after_end > 0.0) return direction > 0 ? std::numeric_limits<double>::infinity() : after_end;
  return 0.0;
}

void Ephemeris::UpdateGlonassChannels() {
  for (int slot = 1; slot <= GlonassTraits::kSatellites; ++slot) {
    const GloEph_gbt* first = glonass_.Satellite({kGlonass, slot})->At(0);
    glonass_channels_[slot - 1] = first == nullptr ? kUnknownChannel : first->frequency_channel;
  }
}

void Ephemeris::Release() {
  gps_.Release();
  glonass_.Release();
  bds_.Release();
  galileo_.Release();
  qzss_.Release();
}

}  // namespace gnssqctoolkit
