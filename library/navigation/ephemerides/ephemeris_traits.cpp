#include "navigation/ephemerides/ephemeris_traits.h"

#include "navigation/orbits/bds_orbit_type.h"
#include "navigation/orbits/constants.h"
#include "navigation/orbits/orbit_speed.h"
#include "navigation/orbits/orbits.h"
#include "toolkit/trace.h"

namespace gnssqctoolkit {
namespace {

// The leap-second table alone decides; no count newer than it is known to the library.
constexpr int kCurrentLeapSeconds = 0;
// The records carry no accuracy index in use.
constexpr int kGlonassAccuracyIndex = 4;

constexpr double kGlonassAccuracies[15] = {1.0,  2.0,  2.5,  4.0,  5.0,   7.0,   10.0, 12.0,
                                           14.0, 16.0, 32.0, 64.0, 128.0, 256.0, 512.0};

constexpr KeplerModel kGpsModel = {kGmGps, kEarthRotationGps, false};
constexpr KeplerModel kGalileoModel = {kGmBdsGalileo, kEarthRotationGps, false};
KeplerModel BdsModel(const BdsEph_gbt& record) {
  return {kGmBdsGalileo, kEarthRotationBds, BdsIsGeo(record.orbit_type, record.prn)};
}

// Transmission time by the satellite's clock: the reception time less the travel time of the pseudorange.
AbsoluteTime ClockReading(const AbsoluteTime& reception, double pseudorange) {
  return AbsoluteTimeAdd(reception, -pseudorange / kSpeedOfLight);
}

template <class Record>
int KeplerPosition(const KeplerModel& model, const Record& record, const AbsoluteTime& reference,
                   const AbsoluteTime& reception, double pseudorange, double scale_shift,
                   SatelliteState& state) {
  const ClockElements clock = ClockOf(record);
  AbsoluteTime transmission = ClockReading(reception, pseudorange);
  const double bias = BroadcastClock(transmission, clock.Toc, clock.Af0, clock.Af1, clock.Af2);
  transmission = AbsoluteTimeAdd(transmission, -bias);
  if (scale_shift != 0.0) transmission = SubtractSeconds(transmission, scale_shift);
  if (KeplerOrbit(model, transmission, reference, clock, ElementsOf(record), state.Position, state.Clock) ==
      0) {
    return 0;
  }
  state.Variance = record.ura * record.ura;
  state.Health = record.svh;
  return 1;
}

}  // namespace

AbsoluteTime GpsTraits::ReferenceTime(const Record& record) {
  return GNSSTime(record.week, record.toes).Absolute();
}
AbsoluteTime GalileoTraits::ReferenceTime(const Record& record) {
  return GNSSTime(record.week, record.toes).Absolute();
}
AbsoluteTime BdsTraits::ReferenceTime(const Record& record) {
  return BdsWeekToTime(record.week, record.toes).Absolute();
}

AbsoluteTime BdsTraits::RecordTime(const AbsoluteTime& t) { return SubtractSeconds(t, kGpsMinusBds); }
bool BdsTraits::CanBePositioned(std::int32_t prn) { return BdsOrbitType(prn) != kBdsTypeUnknown; }
AbsoluteTime GlonassTraits::StoreTime(const AbsoluteTime& t) { return GpsToUtc(t, kCurrentLeapSeconds); }

int GpsTraits::Position(const Record& record, const AbsoluteTime& reference, const AbsoluteTime& reception,
                        double pseudorange, Memory&, SatelliteState& state) {
  return KeplerPosition(kGpsModel, record, reference, reception, pseudorange, 0.0, state);
}

int GalileoTraits::Position(const Record& record, const AbsoluteTime& reference,
                            const AbsoluteTime& reception, double pseudorange, Memory&,
                            SatelliteState& state) {
  return KeplerPosition(kGalileoModel, record, reference, reception, pseudorange, 0.0, state);
}

int BdsTraits::Position(const Record& record, const AbsoluteTime& reference, const AbsoluteTime& reception,
                        double pseudorange, Memory&, SatelliteState& state) {
  return KeplerPosition(BdsModel(record), record, reference, reception, pseudorange, kGpsMinusBds, state);
}

int GlonassTraits::Position(const Record& record, const AbsoluteTime& reference,
                            const AbsoluteTime& reception, double pseudorange, Memory& memory,
                            SatelliteState& state) {
  AbsoluteTime transmission = ClockReading(StoreTime(reception), pseudorange);
  double dt = TimeDifference(transmission, reference);
  for (int round = 0; round < 2; ++round) dt -= record.clock_bias + record.clock_rate * dt;
  transmission = AbsoluteTimeAdd(transmission, -(record.clock_bias + record.clock_rate * dt));
  if (GlonassOrbit(transmission, record, memory, state.Position, state.Clock) == 0) return 0;
  state.Variance = GlonassAccuracyVariance(kGlonassAccuracyIndex);
  state.Health = record.svh;
  return 1;
}

double GpsTraits::SpeedLimit(const Record& record, const AbsoluteTime& reference) {
  return KeplerSpeedLimit(kGpsModel, reference, ClockOf(record), ElementsOf(record));
}
double GalileoTraits::SpeedLimit(const Record& record, const AbsoluteTime& reference) {
  return KeplerSpeedLimit(kGalileoModel, reference, ClockOf(record), ElementsOf(record));
}
double BdsTraits::SpeedLimit(const Record& record, const AbsoluteTime& reference) {
  return KeplerSpeedLimit(BdsModel(record), reference, ClockOf(record), ElementsOf(record));
}
double GlonassTraits::SpeedLimit(const Record& record, const AbsoluteTime&) {
  return GlonassSpeedLimit(record);
}

double GlonassAccuracyVariance(int index) {
  const double accuracy = index >= 0 && index < 15 ? kGlonassAccuracies[index] : 9999.99;
  return accuracy * accuracy;
}

void GpsTraits::TraceMissing(const GNSSTime& t, const SatelliteId& satellite, int iode) {
  Trace(2, "no broadcast ephemeris: time=%02d:%02d:%06.3lf sat sys=%d prn%d iode=%d\n", t.Hour(), t.Minute(),
        t.Second(), satellite.system, satellite.prn, iode);
}

void GalileoTraits::TraceMissing(const GNSSTime& t, const SatelliteId& satellite, int iode) {
  Trace(2, "no broadcast ephemeris: time=%02d:%02d:%06.3lf sat sys=%d,prn=%d iode=%3d\n", t.Hour(),
        t.Minute(), t.Second(), satellite.system, satellite.prn, iode);
}

void BdsTraits::TraceMissing(const GNSSTime& t, const SatelliteId& satellite, int iode) {
  GalileoTraits::TraceMissing(t, satellite, iode);
}

void GlonassTraits::TraceMissing(const GNSSTime& t, const SatelliteId& satellite, int) {
  Trace(2, "no broadcast ephemeris: time=%02d:%02d:%06.3lf sat sys=%d,prn=%d\n", t.Hour(), t.Minute(),
        t.Second(), satellite.system, satellite.prn);
}

}  // namespace gnssqctoolkit
