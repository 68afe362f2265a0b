// Records of nominal constellations and pseudoranges that agree with them to the rounding of a double, formed
// with the library's own satellite positions and delays.
//
// Why this sky besides sky.h and simulated_sky.h: positioning is tested to the rounding of a double,
// in four systems, with errors put on single pseudoranges; noise or a delay of another model would hide the
// digits.
#ifndef ORSOLVA_TESTS_SUPPORT_EXACT_SKY_H
#define ORSOLVA_TESTS_SUPPORT_EXACT_SKY_H

#include <cmath>
#include <vector>

#include "navigation/ephemerides/ephemeris.h"
#include "navigation/orbits/geometry.h"
#include "navigation/positioning/atmosphere.h"
#include "navigation/positioning/positioning_epoch.h"
#include "orsolva/records.h"
#include "tests/support/sky/kepler_record.h"
#include "toolkit/signals.h"

namespace orsolva_test {

// 2020-09-03 12:00:00 GPS time: week 2121, second 388800 of the week.
inline constexpr std::int64_t kSkyTime = 1599134400;
inline constexpr std::int32_t kSkyWeek = 2121;
inline constexpr double kSkySecondOfWeek = 388800.0;
inline constexpr std::int32_t kSkyBdsWeek = kSkyWeek - 1356;
inline constexpr std::int64_t kSkyLeapSeconds = 18;

/// A record of GPS, Galileo or BDS with all correction terms.
template <class Record>
Record DisturbedRecord(std::int32_t prn, double sqrt_a, double inclination, double node, double anomaly) {
  Record r = KeplerRecord<Record>(prn, {sqrt_a, 0.005 + 0.0001 * prn, inclination, node, 0.3, anomaly},
                                  {kSkyTime, kSkyWeek, kSkySecondOfWeek}, 1e-5 * prn);
  r.af1 = 1e-12;
  r.iode = 10 + prn % 100;
  r.crs = 20.0;
  r.deln = 4e-9;
  r.cuc = 1e-6;
  r.cus = 5e-6;
  r.cic = 1e-7;
  r.cis = -1e-7;
  r.crc = 250.0;
  r.OMGd = -8e-9;
  r.idot = 1e-10;
  return r;
}

inline GpsEph_gbt GpsRecord(std::int32_t prn) {
  return DisturbedRecord<GpsEph_gbt>(prn, 5153.7, 0.96, (prn % 6) * 1.0471976, prn * 0.7);
}
inline GalEph_gbt GalileoRecord(std::int32_t prn) {
  return DisturbedRecord<GalEph_gbt>(prn, 5440.6, 0.977, (prn % 3) * 2.0943951, prn * 0.9);
}
inline BdsEph_gbt BdsRecord(std::int32_t prn) {
  BdsEph_gbt r = DisturbedRecord<BdsEph_gbt>(prn, 5282.6, 0.96, (prn % 3) * 2.0943951, prn * 0.8);
  r.week = kSkyBdsWeek;
  return r;
}

/// A circular orbit at the GLONASS height, its velocity in the frame that turns with the Earth.
inline GloEph_gbt GlonassRecord(std::int32_t slot) {
  const double radius = 25510e3, inclination = 1.13, speed = std::sqrt(3.9860044e14 / radius);
  const double node = (slot % 3) * 2.0943951, u = slot * 0.785;
  const double p[3] = {std::cos(node), std::sin(node), 0.0};
  const double q[3] = {-std::sin(node) * std::cos(inclination), std::cos(node) * std::cos(inclination),
                       std::sin(inclination)};
  double x[3], v[3];
  for (int i = 0; i < 3; ++i) {
    x[i] = radius * (std::cos(u) * p[i] + std::sin(u) * q[i]);
    v[i] = speed * (-std::sin(u) * p[i] + std::cos(u) * q[i]);
  }
  v[0] += 7.292115e-5 * x[1];
  v[1] -= 7.292115e-5 * x[0];
  GloEph_gbt r{};
  r.prn = slot;
  r.toe = {kSkyTime - kSkyLeapSeconds, 0.0};
  r.clock_bias = -1e-5 * slot;
  r.clock_rate = 1e-12;
  r.x = x[0] / 1e3, r.y = x[1] / 1e3, r.z = x[2] / 1e3;
  r.vx = v[0] / 1e3, r.vy = v[1] / 1e3, r.vz = v[2] / 1e3;
  r.frequency_channel = slot % 7 - 3;
  return r;
}

/// Satellites of four systems with records before and after the time of the sky; those of GLONASS follow no
/// common orbit.
inline gnssqctoolkit::Ephemeris RecordsAround() {
  gnssqctoolkit::Ephemeris records;
  const auto shifted = [](auto record, int hours) {
    record.toc.time += 3600 * hours;
    record.toes += 3600.0 * hours;
    return record;
  };
  for (int hours = -6; hours <= 6; hours += 2) {
    for (int prn = 1; prn <= 30; ++prn) records.Gps().Add(shifted(GpsRecord(prn), hours));
    for (int prn = 1; prn <= 30; ++prn) records.Galileo().Add(shifted(GalileoRecord(prn), hours));
    for (int prn = 1; prn <= 40; ++prn) records.Bds().Add(shifted(BdsRecord(prn), hours));
    for (int slot = 1; slot <= 24; ++slot) {
      GloEph_gbt record = GlonassRecord(slot);
      record.toe.time += 3600 * hours;
      records.Glonass().Add(record);
    }
  }
  return records;
}

struct ExactSky {
  double Station[3] = {3582105.291, 532589.7313, 5232754.8054};  // ECEF, m
  double ClockTerms[4] = {30.0, 42.0, -17.0, 35.0};              // m: GPS, GLONASS, BDS, Galileo
  double LowestElevation = 0.2;                                  // rad
  gnssqctoolkit::Ephemeris Records;

  ExactSky() {
    for (int prn = 1; prn <= 32; ++prn) Records.Gps().Add(GpsRecord(prn));
    for (int slot = 1; slot <= 24; ++slot) Records.Glonass().Add(GlonassRecord(slot));
    for (int prn = 19; prn <= 46; ++prn) Records.Bds().Add(BdsRecord(prn));
    for (int prn = 1; prn <= 36; ++prn) Records.Galileo().Add(GalileoRecord(prn));
    Records.UpdateGlonassChannels();
  }

  static int SystemSlot(int system) { return system == 1 ? 0 : system == 2 ? 1 : system == 4 ? 2 : 3; }
  /// First code of the system: L1 C/A, G1 C/A, B1I, E1C.
  static int Code(int system) { return system == 1 ? 1 : system == 2 ? 30 : system == 4 ? 150 : 62; }

  /// Adds the satellite's observation when it is above the horizon.
  void Observe(const gnssqctoolkit::SatelliteId& satellite, gnssqctoolkit::PositioningEpoch& epoch) const {
    using namespace gnssqctoolkit;
    const GeodeticPosition geodetic = EcefToGeodetic(Station);
    const double none[8] = {};
    if (satellite.system == kGlonass && satellite.prn > 32) return;
    const int channel = satellite.system == kGlonass ? Records.GlonassChannels()[satellite.prn - 1] : 0;
    const double ratio = Wavelength(satellite.system, Code(satellite.system), channel) / 0.19029367279836487;
    double pseudorange = 2.2e7, azel[2] = {0.0, 0.0};
    for (int round = 0; round < 8; ++round) {
      SatelliteState state;
      if (!Records.SatellitePosition(satellite, epoch.Time, pseudorange, state)) return;
      double unit[3];
      const double range = GeometricRange(state.Position, Station, unit);
      AzimuthElevation(geodetic, unit, azel);
      pseudorange = range + ClockTerms[SystemSlot(satellite.system)] - 299792458.0 * state.Clock +
                    KlobucharDelay(epoch.Time, geodetic, azel, none) * ratio * ratio +
                    SaastamoinenDelay(geodetic, azel[1], 0.7);
    }
    if (azel[1] < LowestElevation) return;
    epoch.Observations.push_back({satellite, Code(satellite.system), pseudorange});
  }

  /// All visible satellites of a mask of systems, `seconds` after the records' reference.
  gnssqctoolkit::PositioningEpoch Epoch(double seconds, int systems = 15) const {
    gnssqctoolkit::PositioningEpoch epoch;
    epoch.Time = gnssqctoolkit::AbsoluteTimeAdd({kSkyTime, 0.0}, seconds);
    for (int system = 1; system <= 8; system *= 2) {
      if ((systems & system) == 0) continue;
      for (int prn = 1; prn <= 64; ++prn) Observe({static_cast<std::uint8_t>(system), prn}, epoch);
    }
    return epoch;
  }
};

inline double DistanceTo(const double a[3], const double b[3]) {
  return std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) +
                   (a[2] - b[2]) * (a[2] - b[2]));
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_EXACT_SKY_H
