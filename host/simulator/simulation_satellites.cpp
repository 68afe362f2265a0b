#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "host/rinex/satellite_names.h"
#include "host/simulator/antenna_path.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/simulation_work.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

/// A satellite this far below the horizon is not evaluated for a minute: none climbs a degree in that time.
constexpr double kFarBelowHorizon_rad = -2 * kRadian;
constexpr double kBelowHorizonWait_s = 60;
constexpr double kTravelTolerance_s = 1e-9;
/// Doppler is the change of the phase over this long, half before and half after the epoch.
constexpr double kDopplerSpan_s = 0.1;

}  // namespace

LineOfSight Simulation::Work::LineOfSightTo(std::size_t index, double true_s, double& travel_s,
                                            const Site& from) const {
  LineOfSight los;
  double line[3];
  for (int round = 0; round < 10; ++round) {
    los.state = sky.StateAt(index, true_s - travel_s, true_s);
    const double turn = kEarthRotation_rad_s * travel_s;
    const auto [s, c] = SineCosineOf(turn);
    const double* p = los.state.position_m;
    line[0] = c * p[0] + s * p[1] - from.position_m[0];
    line[1] = -s * p[0] + c * p[1] - from.position_m[1];
    line[2] = p[2] - from.position_m[2];
    los.range_m = std::sqrt(line[0] * line[0] + line[1] * line[1] + line[2] * line[2]);
    const double found = los.range_m / kLightSpeed_m_s;
    const bool settled = std::fabs(found - travel_s) < kTravelTolerance_s;
    travel_s = found;
    if (settled) break;
  }
  los.direction = DirectionOf(from, line, los.range_m);
  return los;
}

double Simulation::Work::Tec(const Direction& direction, double time_s) const {
  if (!scenario.errors.ionosphere) return 0;
  return SlantTec(site, direction, day_start_s_ + time_s, scenario.errors.vertical_tec_night,
                  scenario.errors.vertical_tec_day);
}

SatelliteMoment Simulation::Work::MomentOf(std::size_t index, const LineOfSight& los) {
  SatelliteWork& work = work_[index];
  SatelliteMoment m;
  m.system = truth.satellites[index].system;
  m.number = truth.satellites[index].number;
  m.elevation_rad = los.direction.elevation_rad;
  m.azimuth_rad = los.direction.azimuth_rad;
  m.range_m = los.range_m;
  m.satellite_clock_s = los.state.clock_s;
  if (scenario.errors.troposphere) m.troposphere_m = TroposphereDelay(site, m.elevation_rad);
  m.slant_tec = Tec(los.direction, tag_s_);
  m.slant_tec += work.WaveTec(done, tag_s_, grid.Seconds(grid.epochs)) + work.RandomTec(done, tag_s_);
  m.glitch_m = work.Glitch(done);
  return m;
}

/// Rates of change over a short span around the epoch. That of a random TEC is not in it.
void Simulation::Work::AddRates(std::size_t index, double true_s, EpochGeometry& g) const {
  double range_m[2], tec[2];
  for (const int side : {0, 1}) {
    const double time_s = true_s + (side - 0.5) * kDopplerSpan_s;
    double travel_s = work_[index].travel_s;
    const Site from = SiteOnPath(start, scenario.receiver.path, time_s);
    const LineOfSight los = LineOfSightTo(index, time_s, travel_s, from);
    range_m[side] = los.range_m - kLightSpeed_m_s * los.state.clock_s;
    if (scenario.errors.troposphere) range_m[side] += TroposphereDelay(from, los.direction.elevation_rad);
    tec[side] = Tec(los.direction, time_s + bias_s_) +
                work_[index].WaveTec(done, time_s + bias_s_, grid.Seconds(grid.epochs));
  }
  g.range_rate_m_s = (range_m[1] - range_m[0]) / kDopplerSpan_s + kLightSpeed_m_s * clock.rate;
  g.tec_rate = (tec[1] - tec[0]) / kDopplerSpan_s;
}

void Simulation::Work::MakeSatellite(std::size_t index, double true_s, bool delivered, Delivery& out) {
  SatelliteWork& work = work_[index];
  // A slip is recorded even when the satellite is below the horizon.
  const bool slips = std::find(work.slips.begin(), work.slips.end(), done) != work.slips.end();
  if (true_s < work.next_evaluation_s && !slips) return;
  const double step = true_s - work.travel_time_s;
  double travel = work.travel_s + (std::fabs(step) < 120 ? work.travel_rate * step : 0.0);
  const LineOfSight los = LineOfSightTo(index, true_s, travel, site);
  if (std::fabs(step) < 120 && step != 0) work.travel_rate = (travel - work.travel_s) / step;
  work.travel_s = travel;
  work.travel_time_s = true_s;

  SatelliteTruth& t = truth.satellites[index];
  EpochGeometry g;
  g.epoch = done;
  g.time_s = tag_s_;
  g.elevation_rad = los.direction.elevation_rad;
  g.delivered = delivered;
  g.trackable = g.elevation_rad >= std::max(scenario.receiver.cutoff_deg * kRadian, 0.0) && !powerless_;
  if (g.elevation_rad <= 0) {
    if (g.elevation_rad < kFarBelowHorizon_rad) work.next_evaluation_s = true_s + kBelowHorizonWait_s;
    return Observe(index, g, out);
  }
  g.above_cutoff = g.elevation_rad > scenario.truth_cutoff_deg * kRadian;
  g.above30 = g.elevation_rad > 30 * kRadian;
  ++t.visible;
  if (g.above_cutoff) ++t.above_cutoff;
  g.sine = Sine(g.elevation_rad);
  g.cosine_squared = 1 - g.sine * g.sine;

  const SatelliteMoment m = MomentOf(index, los);
  g.slant_tec = m.slant_tec;
  g.range_m = los.range_m + kLightSpeed_m_s * (bias_s_ - los.state.clock_s) + m.troposphere_m + m.glitch_m;
  g.code_only_m = kLightSpeed_m_s * clock.code_only_s;
  if (scenario.observables.doppler && g.trackable) AddRates(index, true_s, g);
  moments.push_back(m);
  Observe(index, g, out);
}

/// @return whether the signal is tracked, and then added to the satellite in both forms
bool Simulation::Work::ObserveSignal(std::size_t index, std::size_t j, const EpochGeometry& geometry,
                                     Satellite_gbt& record, ObservationEpoch& epoch) {
  SignalTrack& track = work_[index].signals[j];
  SignalObservation o;
  if (!track.Update(geometry, o, truth.satellites[index].signals[j], truth.faults)) return false;
  epoch.signals.push_back(o);
  Signal_QC_gbt& signal = record.signals[record.signal_num++];
  signal.code = static_cast<std::uint8_t>(track.Number());
  signal.pseudorange = o.pseudorange_m;
  signal.phase = o.phase_cycles;
  signal.snr = static_cast<float>(o.snr_dbhz);
  if (scenario.observables.doppler) signal.doppler = static_cast<float>(o.doppler_hz);
  return true;
}

void Simulation::Work::Observe(std::size_t index, const EpochGeometry& geometry, Delivery& out) {
  SatelliteTruth& t = truth.satellites[index];
  Satellite_gbt satellite = {};
  const std::size_t logged = truth.faults.size(), first = out.epoch.signals.size();
  for (std::size_t j = 0; j < work_[index].signals.size(); ++j) {
    ObserveSignal(index, j, geometry, satellite, out.epoch);
  }
  for (std::size_t i = logged; i < truth.faults.size(); ++i) {
    truth.faults[i].satellite = SatelliteName(t.system, t.number);
  }
  const bool two = satellite.signal_num >= std::min<std::size_t>(2, work_[index].signals.size());
  if (two && satellite.signal_num > 0 && geometry.above_cutoff && geometry.delivered) ++t.two_signals;
  if (geometry.elevation_rad > 0) moments.back().tracked_signals = static_cast<int>(satellite.signal_num);
  if (satellite.signal_num == 0) return;
  work_[index].MarkGlitchesSeen(done, truth.faults);
  const SatelliteId id = {t.system, static_cast<std::uint8_t>(t.number)};
  out.epoch.satellites.push_back({id, first, satellite.signal_num});
  if (out.record.sat_num >= ORSOLVA_MAX_SATELLITES) return;
  satellite.sys = static_cast<std::uint8_t>(kSystemTable[SystemSlot(t.system)].code);
  satellite.prn = t.number;
  out.record.sats[out.record.sat_num++] = satellite;
}

}  // namespace orsolva_host
