#include "tests/truth/position_trial.h"

#include <algorithm>
#include <cmath>

#include "host/simulator/random_streams.h"
#include "navigation/orbits/geometry.h"
#include "navigation/positioning/atmosphere.h"
#include "qc/base/epoch_time.h"
#include "tests/support/trace_recorder.h"
#include "tests/truth/observed_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::SatelliteMoment;
using orsolva_host::Scenario;
using orsolva_host::Simulation;

constexpr double kFaultAbove_rad = 20 * kTruthRadian;
constexpr double kFrequencyL1 = 1575.42e6;

/// Where the library lets the model of the broadcast message take over: default coefficients.
double LibraryIonosphere(const Time_gbt& time, const std::array<double, 3>& site,
                         const SatelliteMoment& moment, double frequency_hz) {
  const double none[8] = {};
  const double azel[2] = {moment.azimuth_rad, moment.elevation_rad};
  const double l1 = gnssqctoolkit::KlobucharDelay(orsolva::ToAbsolute(time),
                                                  gnssqctoolkit::EcefToGeodetic(site.data()), azel, none);
  return l1 * (kFrequencyL1 / frequency_hz) * (kFrequencyL1 / frequency_hz);
}

const SatelliteMoment* MomentOf(const Simulation& simulation, const Satellite_gbt& satellite) {
  for (const SatelliteMoment& moment : simulation.Moments()) {
    if (SystemCodeOf(moment.system) == satellite.sys && moment.number == satellite.prn) return &moment;
  }
  return nullptr;
}

void AddLibraryIonosphere(const Simulation& simulation, ObsEpoch_QC_gbt& epoch) {
  const ElevationRule rule(simulation.sky(), simulation.Settings());
  for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
    Satellite_gbt& satellite = epoch.sats[i];
    const SatelliteMoment* moment = MomentOf(simulation, satellite);
    if (moment == nullptr) continue;
    const int channel = rule.Channel(satellite.sys, satellite.prn);
    for (std::uint32_t k = 0; k < satellite.signal_num; ++k) {
      Signal_QC_gbt& signal = satellite.signals[k];
      signal.pseudorange += LibraryIonosphere(epoch.time, simulation.Settings().receiver.position_m, *moment,
                                              FrequencyOf(satellite.sys, signal.code, channel));
    }
  }
}

/// A satellite well up, of the four systems that positioning uses.
const SatelliteMoment* ChooseFaulty(const Simulation& simulation) {
  std::vector<const SatelliteMoment*> up;
  for (const SatelliteMoment& m : simulation.Moments()) {
    if (m.system != 'J' && m.elevation_rad > kFaultAbove_rad && m.tracked_signals > 0) up.push_back(&m);
  }
  const orsolva_host::RandomStream stream(simulation.Settings().seed);
  return up.empty() ? nullptr : up[stream.Of(7).Bits(0) % up.size()];
}

void AddFault(const std::string& name, double fault_m, std::vector<ObsEpoch_QC_gbt>& epochs) {
  for (ObsEpoch_QC_gbt& epoch : epochs) {
    for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
      Satellite_gbt& satellite = epoch.sats[i];
      if (NameOf(satellite.sys, satellite.prn) != name) continue;
      for (std::uint32_t k = 0; k < satellite.signal_num; ++k) satellite.signals[k].pseudorange += fault_m;
    }
  }
}

void ReadTrace(const TraceRecorder& trace, PositionOutcome& outcome) {
  for (const std::string& text : trace.Texts) {
    if (text.find("raim_fde") != std::string::npos) outcome.exclusion_tried = true;
    const std::size_t at = text.find(" excluded by raim");
    if (at == std::string::npos) continue;
    const std::size_t from = text.rfind(' ', at - 1) + 1;
    ++outcome.exclusions;
    outcome.excluded = text.substr(from, at - from);
  }
}

}  // namespace

Scenario RandomSite(int index, PositionSky sky) {
  const orsolva_host::RandomStream stream =
      orsolva_host::RandomStream(99).Of(static_cast<std::uint64_t>(index));
  Scenario scenario;
  scenario.seed = 1000 + static_cast<std::uint64_t>(index);
  scenario.start.time += static_cast<std::int64_t>(stream.Between(0, 0, 604800));
  scenario.hours = kPositionEpochs * scenario.interval_s / 3600;
  const double sine = stream.Between(1, -1, 1), longitude = stream.Between(2, -180, 180) * kTruthRadian;
  const double height = stream.Between(3, 0, 3000);
  // The ellipsoid through its parametric latitude, with the height along the line from the centre.
  const double cosine = std::sqrt(1 - sine * sine);
  const double r = 6378137.0 + height, z = 6356752.3142 + height;
  scenario.receiver.position_m = {r * cosine * std::cos(longitude), r * cosine * std::sin(longitude),
                                  z * sine};
  if (sky == PositionSky::kExact) {
    Silence(scenario.errors);
    scenario.errors.ionosphere = false;
  }
  return scenario;
}

PositionOutcome PositionSite(const Scenario& scenario, PositionSky sky, double fault_m) {
  PositionOutcome outcome;
  Simulation simulation(scenario);
  std::vector<ObsEpoch_QC_gbt> epochs;
  ObsEpoch_QC_gbt epoch;
  while (simulation.Next(epoch)) {
    if (sky == PositionSky::kExact) AddLibraryIonosphere(simulation, epoch);
    epochs.push_back(epoch);
  }
  const SatelliteMoment* faulty = ChooseFaulty(simulation);
  if (faulty != nullptr) outcome.faulty = NameOf(SystemCodeOf(faulty->system), faulty->number);
  if (fault_m != 0) AddFault(outcome.faulty, fault_m, epochs);

  config_qct config = TruthConfig(scenario);
  config.enable_position = 0;
  std::fill(std::begin(config.position), std::end(config.position), 0.0);
  Process process;
  const TraceRecorder trace;
  if (!Initialise(process, simulation, config)) return outcome;
  outcome.solved = process.Feed(epochs) == GNSSQC_OK;
  ReadTrace(trace, outcome);
  const Results results(process);
  double square = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const double off = results.Whole->station_xyz[i] - scenario.receiver.position_m[i];
    square += off * off;
  }
  outcome.error_m = std::sqrt(square);
  return outcome;
}

}  // namespace orsolva_test
