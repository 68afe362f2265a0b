// Broadcast records, one store per system and one list per satellite, and the choice of the record for an
// epoch.
//
// Neither storing nor choosing looks at the health of a record; it is carried along for the callers.
#ifndef ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_STORE_H
#define ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_STORE_H

#include <array>
#include <cstdint>
#include <vector>

#include "navigation/ephemerides/ephemeris_traits.h"
#include "navigation/ephemerides/reference_times.h"
#include "navigation/orbits/satellite_state.h"
#include "toolkit/satellite.h"
#include "toolkit/time.h"

namespace gnssqctoolkit {

/// Largest number of records kept per satellite; the oldest makes room for the next.
inline constexpr int kMaxRecordsPerSatellite = 168;
/// Longest age that may be set, s.
inline constexpr double kLongestMaxAge = 86400.0;

/// A satellite at a time, with a bound of its motion around it.
struct BoundedMotion {
  SatelliteState State;
  double SpeedLimit = 0.0;  ///< m/s, of the position in the Earth-fixed frame
  double Before = 0.0;      ///< s before the time during which it has a position and the limit holds
  double After = 0.0;       ///< s after the time
};

/// Records of one satellite in the order of their arrival.
template <class Traits>
class SatelliteEphemeris {
 public:
  using Record = typename Traits::Record;

  virtual ~SatelliteEphemeris() = default;

  /// @return false for a record whose clock time (GLONASS: reference time) is already there
  bool Add(const Record& record);
  void SetMaxAge(double max_age_s) { max_age_s_ = max_age_s; }
  int Count() const { return static_cast<int>(records_.size()); }
  /// Record i, null outside the list.
  const Record* At(int i) const;
  void Release();

  /// Index of the record for a time in the scale of the reference times, -1 for none.
  /// With an issue of data of 0 or more the first record of that issue within the age, else the record
  /// nearest in time, the later stored of two equally near.
  int Choose(const AbsoluteTime& t, std::int32_t prn, std::int32_t iode) const {
    return Choose(t, prn, iode, max_age_s_);
  }
  /// The same with another maximum age, s.
  int Choose(const AbsoluteTime& t, std::int32_t prn, std::int32_t iode, double max_age_s) const;
  const AbsoluteTime& Reference(int i) const { return references_.At(i); }
  /// For how long before and after t record i, chosen for it, certainly stays the choice, and a bound of its
  /// speed holds.
  /// @return false when nothing is certain
  bool ChosenAround(const AbsoluteTime& t, int i, double& before_s, double& after_s) const;
  /// What forming a position may keep for the next one. Never changes what comes out.
  typename Traits::Memory& Memory() const { return memory_; }

  /// Nearest interval of validity in one direction, in seconds from t (scale of the reference times).
  /// @param direction  +1 later, -1 earlier
  /// @param widen_s    by how much intervals are widened towards later times
  /// @param offset_s   magnitude, 0 when t itself is covered
  bool NearestCovered(const AbsoluteTime& t, int direction, double widen_s, double& offset_s) const;

 private:
  std::vector<Record> records_;
  ReferenceTimes references_;  // parallel to the records
  double max_age_s_ = Traits::kDefaultMaxAge;

  // The record nearest to a time, whatever its age, and how far off the second nearest is. It stays the
  // nearest for all times close by, which saves most epochs the search among the records.
  struct Nearest {
    AbsoluteTime Time;
    int Index = -1;
    double Lead = 0.0;  // s by which the second nearest is further away; 0 = search again
  };
  int ChooseIssue(const AbsoluteTime& t, std::int32_t prn, std::int32_t iode, double max_age_s) const;

  mutable Nearest nearest_;
  mutable typename Traits::Memory memory_;
};

/// Records of one system.
template <class Traits>
class SystemEphemeris {
 public:
  using Record = typename Traits::Record;

  SystemEphemeris() : SystemEphemeris(Traits::kSystem) {}
  /// @param system  another system whose records have the same form (QZSS in that of GPS)
  explicit SystemEphemeris(GnssSystem system);
  virtual ~SystemEphemeris() = default;

  /// Age in seconds beyond which a record is not chosen; anything not in (0, 86400] sets the system's
  /// default.
  void SetMaxAge(double max_age_s);
  double MaxAge() const { return max_age_s_; }

  /// Stores a record; one with a number outside the system's range or stored before is left out silently.
  void Add(const Record& record);

  /// The record for a satellite at an epoch, as a copy; an empty record (prn 0) when there is none.
  /// @param t     GPS time; UTC for GLONASS
  /// @param iode  issue of data, -1 = any
  Record Select(const SatelliteId& satellite, const AbsoluteTime& t, std::int32_t iode = -1) const;
  /// The same without a copy: null when there is none. The pointer lasts until a record is added.
  /// @param reference  reference time of the record in its own scale, untouched when there is none
  const Record* Find(const SatelliteId& satellite, const AbsoluteTime& t, std::int32_t iode,
                     AbsoluteTime& reference) const {
    return Find(satellite, t, iode, max_age_s_, reference);
  }
  /// The same with another maximum age, s.
  const Record* Find(const SatelliteId& satellite, const AbsoluteTime& t, std::int32_t iode, double max_age_s,
                     AbsoluteTime& reference) const;

  /// Position, clock, variance and health at transmission time.
  /// @param reception    GPS time
  /// @param pseudorange  m; one below 1e-12 in magnitude or not finite fails before any record is looked at
  /// @return 1, or 0 with the state cleared
  int SatellitePosition(const SatelliteId& satellite, const AbsoluteTime& reception, double pseudorange,
                        SatelliteState& state) const;
  /// The same with a record found before.
  int SatellitePosition(const Record& record, const AbsoluteTime& reference, const AbsoluteTime& reception,
                        double pseudorange, SatelliteState& state) const;

  /// Place and bounded motion of a satellite at a reception time; false when either is unknown.
  bool Motion(const SatelliteId& satellite, const AbsoluteTime& reception, double pseudorange,
              BoundedMotion& motion) const;

  /// Group delay of the first stored record of a BDS satellite, s; 0.0 without records or for another system.
  /// @param which  1 = B1, 2 = B2
  double Tgd(const SatelliteId& satellite, int which) const;

  /// Records of a satellite, null outside the system's range.
  const SatelliteEphemeris<Traits>* Satellite(const SatelliteId& satellite) const;

  /// See Ephemeris::CoveredAtOrAfter and CoveredAtOrBefore.
  bool CoveredAtOrAfter(const SatelliteId& satellite, const AbsoluteTime& from, AbsoluteTime& at) const;
  bool CoveredAtOrBefore(const SatelliteId& satellite, const AbsoluteTime& from, AbsoluteTime& at) const;
  /// Drops every record.
  void Release();

 private:
  bool Covered(const SatelliteId& satellite, const AbsoluteTime& from, int direction, AbsoluteTime& at) const;

  std::array<SatelliteEphemeris<Traits>, Traits::kSatellites> satellites_;
  GnssSystem system_;
  double max_age_s_;
};

using SatelliteEphemerisGPS = SatelliteEphemeris<GpsTraits>;
using SatelliteEphemerisGLONASS = SatelliteEphemeris<GlonassTraits>;
using SatelliteEphemerisGALILEO = SatelliteEphemeris<GalileoTraits>;
using SatelliteEphemerisBDS = SatelliteEphemeris<BdsTraits>;

using SystemEphemerisGPS = SystemEphemeris<GpsTraits>;
using SystemEphemerisGLONASS = SystemEphemeris<GlonassTraits>;
using SystemEphemerisGALILEO = SystemEphemeris<GalileoTraits>;
using SystemEphemerisBDS = SystemEphemeris<BdsTraits>;

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_STORE_H
