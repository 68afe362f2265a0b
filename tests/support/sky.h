// A small sky of GPS satellites on circular orbits and a receiver without errors: enough to drive a run.
//
// Why this sky besides exact_sky.h and simulated_sky.h: the tests of the process object want whole
// epochs of one system, cheap and the same in every place, and records they can remove or mark unhealthy one
// by one.
#ifndef ORSOLVA_TESTS_SUPPORT_SKY_H
#define ORSOLVA_TESTS_SUPPORT_SKY_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "navigation/ephemerides/ephemeris.h"
#include "navigation/orbits/geometry.h"
#include "orsolva/records.h"
#include "tests/support/sky/kepler_record.h"
#include "toolkit/signals.h"

namespace sky {

inline constexpr std::int32_t kWeek = 2200;
inline constexpr std::int64_t kWeekStart = 315964800 + std::int64_t{kWeek} * 604800;  ///< s since 1970
inline constexpr double kStation[3] = {3582105.0, 532589.0, 5232754.0};
inline constexpr double kPi = 3.14159265358979323846;

/// A record of satellite `prn` (1 to 30) with its reference time `toes` seconds into the week.
inline GpsEph_gbt Record(int prn, double toes) {
  const int plane = (prn - 1) % 6;
  const int place = (prn - 1) / 6;
  const double mean_motion = std::sqrt(3.986005e14) / std::pow(5153.6, 3);
  const double anomaly = place * 2.0 * kPi / 5.0 + plane * 0.4 + mean_motion * toes;
  return orsolva_test::KeplerRecord<GpsEph_gbt>(prn, {5153.6, 0.001, 0.96, plane * kPi / 3.0, 0.0, anomaly},
                                                {kWeekStart + static_cast<std::int64_t>(toes), kWeek, toes},
                                                1e-5 * prn);
}

/// Records of satellites 1 to 30 every `step` seconds over [first, last].
inline std::vector<GpsEph_gbt> Records(double first, double last, double step = 7200.0) {
  std::vector<GpsEph_gbt> records;
  for (double toes = first; toes <= last; toes += step) {
    for (int prn = 1; prn <= 30; ++prn) records.push_back(Record(prn, toes));
  }
  return records;
}

inline NavBodyData_QC_gbt Navigation(const std::vector<GpsEph_gbt>& records) {
  NavBodyData_QC_gbt nav{};
  nav.gps_num = static_cast<std::int32_t>(records.size());
  nav.gps_eph = records.data();
  return nav;
}

inline gnssqctoolkit::Ephemeris Store(const std::vector<GpsEph_gbt>& records) {
  gnssqctoolkit::Ephemeris ephemeris;
  for (const GpsEph_gbt& record : records) ephemeris.Gps().Add(record);
  return ephemeris;
}

/// A configuration with everything enabled and the station's position given.
inline config_qct Config() {
  config_qct config{};
  for (int i = 0; i < 5; ++i) config.enable_system[i] = config.combination_system[i] = 1;
  config.enable_position = 1;
  config.elevation = 10.0;
  config.interval = 30.0;
  for (int i = 0; i < 3; ++i) config.position[i] = kStation[i];
  for (auto& row : config.include_satellite) {
    for (std::int32_t& flag : row) flag = 1;
  }
  config.auto_detect_freq = 1;
  for (auto& row : config.satellite_freq) {
    for (std::int32_t& flag : row) flag = 1;
  }
  return config;
}

/// Elevation of a satellite at the station and its error-free pseudorange; false when it has no position.
inline bool Observe(const gnssqctoolkit::Ephemeris& ephemeris, int prn, const Time_gbt& t, double& elevation,
                    double& pseudorange) {
  gnssqctoolkit::SatelliteState state;
  double unit[3];
  pseudorange = 2.3e7;
  for (int i = 0; i < 4; ++i) {
    const gnssqctoolkit::SatelliteId satellite{gnssqctoolkit::kGps, prn};
    if (!ephemeris.SatellitePosition(satellite, {t.time, t.sec}, pseudorange, state)) return false;
    pseudorange = gnssqctoolkit::GeometricRange(state.Position, kStation, unit) - 299792458.0 * state.Clock;
  }
  elevation = gnssqctoolkit::AzimuthElevation(gnssqctoolkit::EcefToGeodetic(kStation), unit, nullptr);
  return true;
}

inline Signal_QC_gbt Signal(std::uint8_t code, double pseudorange, double elevation) {
  Signal_QC_gbt signal{};
  signal.code = code;
  signal.pseudorange = pseudorange + 0.3 * std::sin(pseudorange / 1000.0 + code);
  signal.phase = pseudorange / gnssqctoolkit::Wavelength(1, code, 0) + 1000.0 * code;
  signal.snr = static_cast<float>(35.0 + 15.0 * std::sin(elevation));
  return signal;
}

/// What the receiver sees at a time: codes 1C (1) and 2W (16) of every satellite above 2 degrees.
inline ObsEpoch_QC_gbt Epoch(const gnssqctoolkit::Ephemeris& ephemeris, const Time_gbt& t) {
  ObsEpoch_QC_gbt epoch{};
  epoch.time = t;
  for (int prn = 1; prn <= 30; ++prn) {
    double elevation = 0.0;
    double pseudorange = 0.0;
    if (!Observe(ephemeris, prn, t, elevation, pseudorange) || elevation < 2.0 * kPi / 180.0) continue;
    Satellite_gbt& satellite = epoch.sats[epoch.sat_num++];
    satellite.sys = 1;
    satellite.prn = prn;
    satellite.signal_num = 2;
    satellite.signals[0] = Signal(1, pseudorange, elevation);
    satellite.signals[1] = Signal(16, pseudorange, elevation);
  }
  return epoch;
}

/// `count` epochs from `first` seconds of the week on, `step` seconds apart.
inline std::vector<ObsEpoch_QC_gbt> Epochs(const gnssqctoolkit::Ephemeris& ephemeris, std::int64_t first,
                                           int count, std::int64_t step) {
  std::vector<ObsEpoch_QC_gbt> epochs;
  for (int i = 0; i < count; ++i) epochs.push_back(Epoch(ephemeris, {kWeekStart + first + i * step, 0.0}));
  return epochs;
}

/// An epoch without satellites.
inline ObsEpoch_QC_gbt EmptyEpoch(std::int64_t time, double sec = 0.0) {
  ObsEpoch_QC_gbt epoch{};
  epoch.time = {time, sec};
  return epoch;
}

/// Adds a satellite with the given codes, all with complete observations.
inline Satellite_gbt& AddSatellite(ObsEpoch_QC_gbt& epoch, std::uint8_t system, std::int32_t prn,
                                   const std::vector<int>& codes) {
  Satellite_gbt& satellite = epoch.sats[epoch.sat_num++];
  satellite.sys = system;
  satellite.prn = prn;
  for (const int code : codes) {
    Signal_QC_gbt& signal = satellite.signals[satellite.signal_num++];
    signal.code = static_cast<std::uint8_t>(code);
    signal.pseudorange = 2.2e7;
    signal.phase = 1.1e8;
    signal.snr = 45.0F;
  }
  return satellite;
}

inline ObsBodyData_QC_gbt Batch(const std::vector<ObsEpoch_QC_gbt>& epochs) {
  return {static_cast<std::int32_t>(epochs.size()), epochs.data()};
}

}  // namespace sky

#endif  // ORSOLVA_TESTS_SUPPORT_SKY_H
