// How the systems differ in storing and selecting records and in forming positions.
#ifndef ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_TRAITS_H
#define ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_TRAITS_H

#include <cstdint>

#include "navigation/orbits/glonass_trajectory.h"
#include "navigation/orbits/orbit_speed.h"
#include "navigation/orbits/satellite_state.h"
#include "orsolva/records.h"
#include "toolkit/satellite.h"
#include "toolkit/time.h"

namespace gnssqctoolkit {

// Each of these holds, for one form of record:
//   kSystem, kSatellites  the system and its highest satellite number
//   kDefaultMaxAge        s
//   kHasIode              whether a record can be asked for by its issue of data
//   ClockTime             the time by which two records are distinguished
//   ReferenceTime         the time from which a record's age is counted
//   StoreTime             a reception time (GPS time) in the scale Select takes
//   RecordTime            that time in the scale of the reference times
//   CanBePositioned       false for a number that has no position whatever its records say
//   Memory                what is kept of a satellite between two positions
//   kBoundedAge           how far from the reference time the bound of the speed holds
//   SpeedLimit            upper bound of the speed of the position, m/s; infinity when there is none
//   Position              1 and the state of one record, or 0 with the state untouched
//   TraceMissing          the diagnostic of Select

/// Nothing.
struct NoMemory {};

struct GpsTraits {
  using Record = GpsEph_gbt;
  using Memory = NoMemory;
  static constexpr GnssSystem kSystem = kGps;
  static constexpr int kSatellites = 35;
  static constexpr double kDefaultMaxAge = 7200.0;
  static constexpr bool kHasIode = true;
  static constexpr double kBoundedAge = kBoundedKeplerAge;
  static AbsoluteTime ClockTime(const Record& record) { return {record.toc.time, record.toc.sec}; }
  static AbsoluteTime ReferenceTime(const Record& record);
  static AbsoluteTime StoreTime(const AbsoluteTime& t) { return t; }
  static AbsoluteTime RecordTime(const AbsoluteTime& t) { return t; }
  static bool CanBePositioned(std::int32_t) { return true; }
  static int Position(const Record& record, const AbsoluteTime& reference, const AbsoluteTime& reception,
                      double pseudorange, Memory& memory, SatelliteState& state);
  static double SpeedLimit(const Record& record, const AbsoluteTime& reference);
  static void TraceMissing(const GNSSTime& t, const SatelliteId& satellite, int iode);
};

struct GalileoTraits {
  using Record = GalEph_gbt;
  using Memory = NoMemory;
  static constexpr GnssSystem kSystem = kGalileo;
  static constexpr int kSatellites = 37;
  static constexpr double kDefaultMaxAge = 21600.0;
  static constexpr bool kHasIode = true;
  static constexpr double kBoundedAge = kBoundedKeplerAge;
  static AbsoluteTime ClockTime(const Record& record) { return {record.toc.time, record.toc.sec}; }
  static AbsoluteTime ReferenceTime(const Record& record);
  static AbsoluteTime StoreTime(const AbsoluteTime& t) { return t; }
  static AbsoluteTime RecordTime(const AbsoluteTime& t) { return t; }
  static bool CanBePositioned(std::int32_t) { return true; }
  static int Position(const Record& record, const AbsoluteTime& reference, const AbsoluteTime& reception,
                      double pseudorange, Memory& memory, SatelliteState& state);
  static double SpeedLimit(const Record& record, const AbsoluteTime& reference);
  static void TraceMissing(const GNSSTime& t, const SatelliteId& satellite, int iode);
};

/// Reference times are BDS time; Select takes GPS time and shifts it once.
struct BdsTraits {
  using Record = BdsEph_gbt;
  using Memory = NoMemory;
  static constexpr GnssSystem kSystem = kBds;
  static constexpr int kSatellites = 64;
  static constexpr double kDefaultMaxAge = 21600.0;
  static constexpr bool kHasIode = true;
  static constexpr double kBoundedAge = kBoundedKeplerAge;
  static AbsoluteTime ClockTime(const Record& record) { return {record.toc.time, record.toc.sec}; }
  static AbsoluteTime ReferenceTime(const Record& record);
  static AbsoluteTime StoreTime(const AbsoluteTime& t) { return t; }
  static AbsoluteTime RecordTime(const AbsoluteTime& t);
  static bool CanBePositioned(std::int32_t prn);
  static int Position(const Record& record, const AbsoluteTime& reference, const AbsoluteTime& reception,
                      double pseudorange, Memory& memory, SatelliteState& state);
  static double SpeedLimit(const Record& record, const AbsoluteTime& reference);
  static void TraceMissing(const GNSSTime& t, const SatelliteId& satellite, int iode);
};

/// Reference times and the times Select takes are UTC.
struct GlonassTraits {
  using Record = GloEph_gbt;
  using Memory = GlonassTrajectory;
  static constexpr GnssSystem kSystem = kGlonass;
  static constexpr int kSatellites = 32;
  static constexpr double kDefaultMaxAge = 1800.0;
  static constexpr bool kHasIode = false;
  static constexpr double kBoundedAge = kBoundedGlonassAge;
  static AbsoluteTime ClockTime(const Record& record) { return {record.toe.time, record.toe.sec}; }
  static AbsoluteTime ReferenceTime(const Record& record) { return {record.toe.time, record.toe.sec}; }
  static AbsoluteTime StoreTime(const AbsoluteTime& t);
  static AbsoluteTime RecordTime(const AbsoluteTime& t) { return t; }
  static bool CanBePositioned(std::int32_t) { return true; }
  static int Position(const Record& record, const AbsoluteTime& reference, const AbsoluteTime& reception,
                      double pseudorange, Memory& memory, SatelliteState& state);
  static double SpeedLimit(const Record& record, const AbsoluteTime& reference);
  static void TraceMissing(const GNSSTime& t, const SatelliteId& satellite, int iode);
};

/// Square of the accuracy of a GLONASS accuracy index, m^2; 9999.99^2 from index 15 on and below 0.
double GlonassAccuracyVariance(int index);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_TRAITS_H
