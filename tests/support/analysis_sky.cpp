#include "tests/support/analysis_sky.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

#include "host/observation/carriers.h"
#include "orsolva/signals.h"

namespace orsolva_test {
namespace {

using orsolva_host::kAbsent;
using orsolva_host::KeplerRecord;
using orsolva_host::kNanosecondsPerSecond;
using orsolva_host::ObservationEpoch;
using orsolva_host::SatelliteId;
using orsolva_host::SatelliteObservation;
using orsolva_host::SignalCode;
using orsolva_host::SignalObservation;
using orsolva_host::StateVectorRecord;

constexpr double kBdsTimeBehindGps_s = 14;
constexpr double kLeapSeconds_s = 18;  // since 2017
constexpr double kLight_m_s = 299792458;
constexpr double kMetresPerKilometre = 1000;

char LetterOf(int system) {
  switch (system) {
    case ORSOLVA_GPS:
      return 'G';
    case ORSOLVA_GLONASS:
      return 'R';
    case ORSOLVA_BDS:
      return 'C';
    case ORSOLVA_GALILEO:
      return 'E';
    default:
      return 'J';
  }
}

/// The signals of simulated_sky.cpp.
SignalCode CodeOf(int signal) {
  switch (signal) {
    case ORSOLVA_GPS_1C:
    case ORSOLVA_GLONASS_1C:
    case ORSOLVA_GALILEO_1C:
    case ORSOLVA_QZSS_1C:
      return {'1', 'C'};
    case ORSOLVA_GPS_2W:
      return {'2', 'W'};
    case ORSOLVA_GPS_5X:
      return {'5', 'X'};
    case ORSOLVA_GLONASS_2P:
      return {'2', 'P'};
    case ORSOLVA_BDS_2I:
      return {'2', 'I'};
    case ORSOLVA_BDS_7I:
      return {'7', 'I'};
    case ORSOLVA_BDS_6I:
      return {'6', 'I'};
    case ORSOLVA_BDS_1P:
      return {'1', 'P'};
    case ORSOLVA_BDS_5P:
      return {'5', 'P'};
    case ORSOLVA_GALILEO_7Q:
      return {'7', 'Q'};
    case ORSOLVA_GALILEO_6C:
      return {'6', 'C'};
    case ORSOLVA_QZSS_2L:
      return {'2', 'L'};
    default:
      return {'5', 'Q'};
  }
}

SatelliteId IdOf(int system, int number) { return {LetterOf(system), static_cast<std::uint8_t>(number)}; }

ObservationEpoch EpochOf(const ObsEpoch_QC_gbt& epoch) {
  ObservationEpoch out;
  out.time_ns = epoch.time.time * kNanosecondsPerSecond + std::llround(epoch.time.sec * 1e9);
  for (std::uint32_t s = 0; s < epoch.sat_num; ++s) {
    const Satellite_gbt& satellite = epoch.sats[s];
    out.satellites.push_back({IdOf(satellite.sys, satellite.prn), out.signals.size(), satellite.signal_num});
    for (std::uint32_t i = 0; i < satellite.signal_num; ++i) {
      const Signal_QC_gbt& signal = satellite.signals[i];
      SignalObservation observation;
      observation.code = CodeOf(signal.code);
      observation.pseudorange_m = signal.pseudorange;
      observation.phase_cycles = signal.phase;
      observation.snr_dbhz = static_cast<double>(signal.snr);
      out.signals.push_back(observation);
    }
  }
  return out;
}

double SecondsOf(const Time_gbt& time) { return static_cast<double>(time.time) + time.sec; }

template <class Record>
KeplerRecord KeplerOf(int system, const Record& record) {
  const double shift_s = system == ORSOLVA_BDS ? kBdsTimeBehindGps_s : 0;
  KeplerRecord out;
  out.satellite = IdOf(system, record.prn);
  out.toc_s = out.toe_s = SecondsOf(record.toc) + shift_s;
  out.toe_of_week_s = record.toes;
  out.af0 = record.af0;
  out.af1 = record.af1;
  out.sqrt_a = record.sqrtA;
  out.eccentricity = record.e;
  out.m0 = record.M0;
  out.omega0 = record.OMG0;
  out.omega = record.omg;
  out.i0 = record.i0;
  return out;
}

StateVectorRecord StateVectorOf(const GloEph_gbt& record) {
  StateVectorRecord out;
  out.satellite = IdOf(ORSOLVA_GLONASS, record.prn);
  out.toe_s = SecondsOf(record.toe) + kLeapSeconds_s;
  out.clock_bias_s = record.clock_bias;
  const double position_km[] = {record.x, record.y, record.z};
  const double velocity_km_s[] = {record.vx, record.vy, record.vz};
  for (int axis = 0; axis < 3; ++axis) {
    out.position_m[axis] = position_km[axis] * kMetresPerKilometre;
    out.velocity_m_s[axis] = velocity_km_s[axis] * kMetresPerKilometre;
  }
  out.channel = record.frequency_channel;
  return out;
}

/// Troubles of a sky, each drawn for every epoch.
class Troubles {
 public:
  Troubles(AnalysisSky& sky, std::uint32_t seed) : sky_(sky), random_(seed) {}

  void Add() {
    for (std::size_t k = 1; k < sky_.Epochs.size(); ++k) {
      if (OneIn(6)) Slip(k);
      if (OneIn(25)) Hole(k, true);
      if (OneIn(40)) Hole(k, false);
      if (OneIn(90)) ShiftClock(k, true);
      if (OneIn(120)) ShiftClock(k, false);
      if (OneIn(150)) sky_.Epochs[k].events |= orsolva_host::kPowerFailure;
    }
    const auto middle = sky_.Epochs.begin() + static_cast<std::ptrdiff_t>(sky_.Epochs.size() / 2);
    sky_.Epochs.erase(middle, middle + static_cast<std::ptrdiff_t>(sky_.Epochs.size() / 20));
    for (std::size_t k = sky_.Epochs.size() / 3; k + 1 < sky_.Epochs.size(); k += 70) {
      std::swap(sky_.Epochs[k], sky_.Epochs[k + 1]);
    }
  }

 private:
  std::uint32_t Below(std::size_t bound) {
    return random_() % static_cast<std::uint32_t>(std::max<std::size_t>(bound, 1));
  }
  bool OneIn(std::uint32_t count) { return Below(count) == 0; }

  /// A satellite of an epoch; null for an empty one.
  const SatelliteObservation* Any(std::size_t epoch) {
    const auto& satellites = sky_.Epochs[epoch].satellites;
    return satellites.empty() ? nullptr : &satellites[Below(satellites.size())];
  }

  /// Does something with every signal of a satellite in a range of epochs.
  template <class Action>
  void ForEach(SatelliteId id, std::size_t first, std::size_t end, Action action) {
    for (std::size_t k = first; k < std::min(end, sky_.Epochs.size()); ++k) {
      for (const SatelliteObservation& satellite : sky_.Epochs[k].satellites) {
        if (!(satellite.id == id)) continue;
        for (std::size_t i = 0; i < satellite.signal_count; ++i) {
          action(k, sky_.Epochs[k].signals[satellite.first_signal + i]);
        }
      }
    }
  }

  /// One of the satellite's signals, or all of them, from an epoch on.
  void Slip(std::size_t at) {
    const SatelliteObservation* satellite = Any(at);
    if (satellite == nullptr || satellite->signal_count == 0) return;
    const SignalCode code =
        sky_.Epochs[at].signals[satellite->first_signal + Below(satellite->signal_count)].code;
    const bool all = OneIn(5), flagged = OneIn(2);
    const double cycles = OneIn(6) ? 0.5 : 1.0 + Below(9);
    ForEach(satellite->id, at, sky_.Epochs.size(), [&](std::size_t k, SignalObservation& signal) {
      if (!all && signal.code != code) return;
      signal.phase_cycles += cycles;
      if (k == at && flagged) signal.loss_of_lock = orsolva_host::kLossOfLock;
    });
  }

  /// A while without phases, of one signal or of a whole satellite.
  void Hole(std::size_t at, bool one_signal) {
    const SatelliteObservation* satellite = Any(at);
    if (satellite == nullptr || satellite->signal_count == 0) return;
    const SignalCode code = sky_.Epochs[at].signals[satellite->first_signal].code;
    ForEach(satellite->id, at, at + 1 + Below(12), [&](std::size_t, SignalObservation& signal) {
      if (one_signal && signal.code != code) return;
      signal.phase_cycles = kAbsent;
      if (!one_signal) signal.pseudorange_m = kAbsent;
    });
  }

  /// A millisecond more from an epoch on, of codes and phases or of the codes alone.
  void ShiftClock(std::size_t at, bool phases_too) {
    for (std::size_t k = at; k < sky_.Epochs.size(); ++k) {
      for (const SatelliteObservation& satellite : sky_.Epochs[k].satellites) {
        for (std::size_t i = 0; i < satellite.signal_count; ++i) {
          SignalObservation& signal = sky_.Epochs[k].signals[satellite.first_signal + i];
          signal.pseudorange_m += 1e-3 * kLight_m_s;
          const int channel = satellite.id.system == 'R' ? satellite.id.number % 14 - 7 : 0;
          if (phases_too) {
            signal.phase_cycles +=
                1e-3 * orsolva_host::CarrierFrequency(satellite.id.system, signal.code.band, channel);
          }
        }
      }
    }
  }

  AnalysisSky& sky_;
  std::mt19937 random_;
};

}  // namespace

AnalysisSky::AnalysisSky(const SimulatedSky& sky) {
  Options.detector.position = {sky.Options.Station[0], sky.Options.Station[1], sky.Options.Station[2]};
  const NavigationSet& set = sky.Navigation;
  for (const auto& record : set.Gps) Records.kepler.push_back(KeplerOf(ORSOLVA_GPS, record));
  for (const auto& record : set.Bds) Records.kepler.push_back(KeplerOf(ORSOLVA_BDS, record));
  for (const auto& record : set.Galileo) Records.kepler.push_back(KeplerOf(ORSOLVA_GALILEO, record));
  for (const auto& record : set.Qzss) Records.kepler.push_back(KeplerOf(ORSOLVA_QZSS, record));
  for (const auto& record : set.Glonass) Records.state_vectors.push_back(StateVectorOf(record));
  Epochs.reserve(sky.Epochs.size());
  for (const ObsEpoch_QC_gbt& epoch : sky.Epochs) Epochs.push_back(EpochOf(epoch));
}

void AddTroubles(AnalysisSky& sky, std::uint32_t seed) { Troubles(sky, seed).Add(); }

AnalysisOutcome Analysed(const AnalysisSky& sky, const orsolva_host::BroadcastRecords& records,
                         std::size_t share) {
  orsolva_host::analysis::StationAnalysis analysis(sky.Options, records);
  AnalysisOutcome outcome;
  const auto look = [&] {
    for (auto& event : analysis.TakeEvents()) outcome.Events.push_back(std::move(event));
    outcome.Figures = analysis.Result();
  };
  for (std::size_t k = 0; k < sky.Epochs.size(); ++k) {
    analysis.Add(sky.Epochs[k]);
    if ((k + 1) % share == 0) look();
  }
  analysis.Finish();
  look();
  return outcome;
}

}  // namespace orsolva_test
