// A small GPS sky for the driver: circular-like orbits and observations that agree with them to rounding.
//
// Why a sky of its own: the driver takes QcEpochData, one satellite at a time, before a process object
// exists, and its tests change single observations by a known slip or code error.
#ifndef ORSOLVA_TESTS_UNIT_MEASURES_SYNTHETIC_RUN_H
#define ORSOLVA_TESTS_UNIT_MEASURES_SYNTHETIC_RUN_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "measures/driver.h"
#include "navigation/ephemerides/ephemeris.h"
#include "qc/base/config.h"
#include "toolkit/constants.h"
#include "toolkit/signals.h"

namespace orsolva_test {

inline constexpr double kStation[3] = {3582105.291, 532589.7313, 5232754.8054};
/// 2020-06-24 12:00:00, the reference time of the records.
inline constexpr std::int64_t kReferenceTime = 1593000000;
inline constexpr std::uint32_t kL1 = 1;
inline constexpr std::uint32_t kL2 = 15;

/// A record whose reference time lies `shift` seconds after kReferenceTime.
inline GpsEph_gbt GpsRecord(int prn, double shift = 0.0) {
  const gnssqctoolkit::GNSSTime reference(
      gnssqctoolkit::AbsoluteTime{kReferenceTime + static_cast<std::int64_t>(shift), 0.0});
  GpsEph_gbt record{};
  record.prn = prn;
  record.toc = {kReferenceTime + static_cast<std::int64_t>(shift), 0.0};
  record.af0 = 1e-5 * prn;
  record.e = 0.005;
  record.sqrtA = 5153.6;
  record.toes = reference.SecondsOfWeek();
  record.week = reference.Week();
  record.i0 = 0.96;
  record.OMG0 = 0.7 * prn;
  record.M0 = 1.3 * prn;
  record.ura = 2.0;
  return record;
}

/// One satellite at one epoch, with what a test wants to change.
struct Observation {
  double CodeError = 0.0;  ///< m, added to the L1 pseudorange
  double Slip1 = 0.0;      ///< cycles, added to both phases' ambiguity
  double Slip2 = 0.0;
};

/// The measures of a run with GPS L1 and L2, and the sky that feeds them.
struct SyntheticRun {
  orsolva::IonSlipAndMultipath Measures;
  gnssqctoolkit::Ephemeris Records;
  orsolva::QcConfig Config;
  double Interval;

  explicit SyntheticRun(double interval = 30.0, int satellites = 8,
                        std::vector<std::int32_t> codes = {static_cast<std::int32_t>(kL1),
                                                           static_cast<std::int32_t>(kL2)})
      : Interval(interval) {
    for (int prn = 1; prn <= satellites; ++prn) Records.Gps().Add(GpsRecord(prn));
    Config.ApplyDefaults();
    gnssqctoolkit::IList lists[orsolva::kCodeListSlots];
    for (std::int32_t code : codes) lists[0].Append(code);
    Measures.Initialise(Config, lists, Records.GlonassChannels(), interval);
  }

  /// Both signals of a satellite `seconds` after kReferenceTime, free of noise and ionosphere.
  orsolva::QcEpochData Epoch(int prn, double seconds, const Observation& change = Observation()) const {
    orsolva::QcEpochData epoch;
    const double whole = std::floor(seconds);
    epoch.Time = {kReferenceTime + static_cast<std::int64_t>(whole), seconds - whole};
    double range = 2.2e7;
    double clock = 0.0;
    for (int i = 0; i < 8; ++i) {
      gnssqctoolkit::SatelliteState state;
      Records.SatellitePosition(gnssqctoolkit::SatelliteId{1, prn}, {epoch.Time.time, epoch.Time.sec},
                                range - gnssqctoolkit::kSpeedOfLight * clock, state);
      const double d[3] = {state.Position[0] - kStation[0], state.Position[1] - kStation[1],
                           state.Position[2] - kStation[2]};
      range = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
      clock = state.Clock;
    }
    const double pseudorange = range - gnssqctoolkit::kSpeedOfLight * clock;
    Put(epoch, 0, kL1, pseudorange + change.CodeError, pseudorange, 1000.0 * prn + change.Slip1);
    Put(epoch, 1, kL2, pseudorange, pseudorange, 777.0 * prn + change.Slip2);
    return epoch;
  }

  static void Put(orsolva::QcEpochData& epoch, int slot, std::uint32_t code, double pseudorange, double range,
                  double ambiguity) {
    Signal_QC_gbt signal{};
    signal.code = static_cast<std::uint8_t>(code);
    signal.pseudorange = pseudorange;
    signal.phase = range / gnssqctoolkit::Wavelength(1, static_cast<int>(code), 0) + ambiguity;
    signal.snr = 45.0f;
    epoch.Slots[slot].Signals[epoch.Slots[slot].Count++] = signal;
  }

  bool Pass(orsolva::QcDetailObserver* observer = nullptr) {
    return Measures.ProcessAllEpochs(kStation, Records, Interval, observer);
  }
  const orsolva::AbsoluteMp* Mp(int number, int slot = 0, int i = 0) const {
    return Measures.Multipath(number).Pairs[slot][i];
  }
  const orsolva::IodDetect* Iod(int number, int slot = 0, int i = 0) const {
    return Measures.Ionosphere(number).Pairs[slot][i];
  }
};

/// Slips counted on the first pair of a satellite.
inline int Slips(const SyntheticRun& run, int number) { return static_cast<int>(run.Iod(number)->SlipCount); }

/// Epochs first to last of every satellite.
inline void Feed(SyntheticRun& run, int satellites, int first, int last) {
  for (int prn = 1; prn <= satellites; ++prn) {
    for (int i = first; i < last; ++i)
      run.Measures.AddSatelliteEpoch(prn, run.Epoch(prn, run.Interval * i), true);
  }
}

/// Keeps every report.
struct RecordingObserver : orsolva::QcDetailObserver {
  std::vector<orsolva::PairEpochDetail> Pairs;
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail&) override {}
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override { Pairs.push_back(detail); }
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_UNIT_MEASURES_SYNTHETIC_RUN_H
