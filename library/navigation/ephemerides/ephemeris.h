// The navigation set of a run: one store per system, and the one place where measures and positioning
// ask for satellite positions.
#ifndef ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_H
#define ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_H

#include <cstdint>

#include "navigation/ephemerides/ephemeris_store.h"
#include "navigation/orbits/satellite_state.h"
#include "orsolva/records.h"
#include "toolkit/satellite.h"
#include "toolkit/time.h"

namespace gnssqctoolkit {

/// A record chosen for a satellite and an epoch. Stays valid until a record is added to its store.
struct EphemerisChoice {
  SatelliteId Satellite;
  const void* Record = nullptr;  ///< null = none; the type follows from the system
  AbsoluteTime Reference;        ///< reference epoch of the record, in the record's own scale; zero = none
};

/// Largest ages of the records that are selected, s, of QZSS as of GPS.
struct MaxAges {
  double Gps = 0.0;
  double Glonass = 0.0;
  double Bds = 0.0;
  double Galileo = 0.0;
};
/// Ages of elevations and positioning, which are those of the stores.
inline constexpr MaxAges kDefaultMaxAges = {GpsTraits::kDefaultMaxAge, GlonassTraits::kDefaultMaxAge,
                                            BdsTraits::kDefaultMaxAge, GalileoTraits::kDefaultMaxAge};
/// Ages of the pass of the measures.
inline constexpr MaxAges kPassMaxAges = {7200.0, 1800.0, 7200.0, 7200.0};

/// The age of a system.
double AgeOf(const MaxAges& ages, int system);

/// Stores of all systems. QZSS has a store of its own in the GPS form.
class Ephemeris {
 public:
  Ephemeris();
  virtual ~Ephemeris() = default;

  SystemEphemerisGPS& Gps() { return gps_; }
  SystemEphemerisGLONASS& Glonass() { return glonass_; }
  SystemEphemerisBDS& Bds() { return bds_; }
  SystemEphemerisGALILEO& Galileo() { return galileo_; }
  SystemEphemerisGPS& Qzss() { return qzss_; }
  const SystemEphemerisGPS& Gps() const { return gps_; }
  const SystemEphemerisGLONASS& Glonass() const { return glonass_; }
  const SystemEphemerisBDS& Bds() const { return bds_; }
  const SystemEphemerisGALILEO& Galileo() const { return galileo_; }
  const SystemEphemerisGPS& Qzss() const { return qzss_; }

  /// The record for a satellite at an epoch (GPS time), by the rule of the system's store.
  /// @return false, with an empty choice, when there is none within the age
  bool Select(const SatelliteId& satellite, const AbsoluteTime& time, const MaxAges& ages,
              EphemerisChoice& choice) const;

  /// Position and clock at transmission time with the record selected for the reception time.
  /// @param pseudorange  m; one of magnitude below 1e-12 fails
  /// @return false with the state cleared (health -1) when none can be formed
  bool SatellitePosition(const SatelliteId& satellite, const AbsoluteTime& reception, double pseudorange,
                         SatelliteState& state) const;

  /// The same with a record chosen before.
  bool SatellitePosition(const EphemerisChoice& choice, const AbsoluteTime& reception, double pseudorange,
                         SatelliteState& state) const;

  /// Place of a satellite at a reception time, how fast it moves at most, and for how long that is known;
  /// lets callers skip times at which a direction cannot have changed.
  /// @return false when it has no position or its motion cannot be bounded
  bool Motion(const SatelliteId& satellite, const AbsoluteTime& reception, double pseudorange,
              BoundedMotion& motion) const;

  /// Earliest time at or after `from` (GPS time) at which some record of the satellite is within the maximum
  /// age; lets callers skip spans without records. Rounded outward: never later than the true one by more
  /// than a microsecond, and possibly a little earlier.
  /// @return false when there is none
  bool CoveredAtOrAfter(const SatelliteId& satellite, const AbsoluteTime& from, AbsoluteTime& at) const;
  /// Latest such time at or before `from`.
  bool CoveredAtOrBefore(const SatelliteId& satellite, const AbsoluteTime& from, AbsoluteTime& at) const;

  /// How long, in s, from `t` on (direction 1) or back from it (-1) the satellite has the same place:
  /// infinity for ever, 0.0 where it moves. Beyond the calendar every time is the same to a BDS satellite.
  /// Lets callers end a walk through times that records cover for ever.
  static double StandsStillFor(const SatelliteId& satellite, const AbsoluteTime& t, int direction);

  /// Frequency channels of GLONASS slots 1 to 32, -999 where unknown.
  const std::int32_t* GlonassChannels() const { return glonass_channels_; }
  /// Fills the channel table from the first stored record of each slot.
  void UpdateGlonassChannels();

  /// Drops every record.
  void Release();

 private:
  SystemEphemerisGPS gps_;
  SystemEphemerisGLONASS glonass_;
  SystemEphemerisBDS bds_;
  SystemEphemerisGALILEO galileo_;
  SystemEphemerisGPS qzss_;
  std::int32_t glonass_channels_[32];
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_EPHEMERIDES_EPHEMERIS_H
