#include "host/simulator/signal_track.h"

#include <algorithm>
#include <cmath>

#include "host/observation/carriers.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/simulator/orbits.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/surroundings.h"

namespace orsolva_host {
namespace {

constexpr double kRinexVersion = 3.05;
constexpr std::uint64_t kSignalStream = 202;
constexpr double kLargestAmbiguity = 1 << 20;
constexpr double kTimeTolerance_s = 1e-7;

/// Signals of the lower bands are weaker, wideband ones stronger.
double SnrOffset(char system, char band) {
  if (system == 'C' && band == '2') return 0;
  if (band == '2') return -4;
  if (band == '5' || band == '8') return 1.5;
  return band == '7' ? 0.5 : band == '6' ? -1 : 0;
}

double At(const ByElevation& figure, double cosine_squared) {
  return figure.zenith + (figure.horizon - figure.zenith) * cosine_squared;
}

/// Rounds to the three decimals of an observation cell.
double ThreeDecimals(double value) { return std::nearbyint(value * 1000) / 1000.0; }

void MarkSeen(const ActiveFault& fault, std::vector<InjectedFault>& log) {
  if (fault.record >= 0) log[static_cast<std::size_t>(fault.record)].seen = true;
}

RandomStream StreamOf(const Scenario& scenario, char system, int satellite, int number) {
  return RandomStream(scenario.seed)
      .Of(kSignalStream)
      .Of(static_cast<unsigned char>(system))
      .Of(static_cast<unsigned>(satellite))
      .Of(static_cast<unsigned>(number));
}

}  // namespace

double MovingMean::Residual(double value) {
  values_[next_] = value;
  next_ = next_ + 1 == values_.size() ? 0 : next_ + 1;
  count_ = std::min(count_ + 1, values_.size());
  double sum = 0;
  for (std::size_t i = 0; i < count_; ++i) sum += values_[i];
  return value - sum / static_cast<double>(count_);
}

SignalTrack::SignalTrack(const Scenario& scenario, char system, int satellite, int channel,
                         const std::string& name, std::size_t mean_window)
    : scenario_(&scenario),
      name_(name),
      number_(SignalNumber(kSystemTable[SystemSlot(system)].code, name, kRinexVersion)),
      wavelength_m_(kLightSpeed_m_s / CarrierFrequency(system, name[0], channel)),
      metres_per_tecu_(MetresPerTecu(CarrierFrequency(system, name[0], channel))),
      snr_offset_db_(SnrOffset(system, name[0])),
      arcs_stream_(StreamOf(scenario, system, satellite, number_)),
      code_stream_(arcs_stream_.Of(1)),
      phase_stream_(arcs_stream_.Of(2)),
      snr_stream_(arcs_stream_.Of(3)),
      mean_(mean_window) {
  const RandomStream shape = arcs_stream_.Of(4);
  multipath_rate_ = 2 * kPi / (scenario.errors.multipath_period_s * shape.Between(0, 0.8, 1.25));
  multipath_phase_ = shape.Between(1, 0, 2 * kPi);
  const auto delay = scenario.receiver.signal_delay_s.find(system + name);
  if (delay != scenario.receiver.signal_delay_s.end()) delay_s_ = delay->second;
}

bool SignalTrack::Update(const EpochGeometry& geometry, Signal_QC_gbt& out, SignalTruth& truth,
                         std::vector<InjectedFault>& log) {
  const bool held = tracked_;
  tracked_ = Track(geometry, truth, log);
  ApplySlips(geometry.epoch, held && tracked_, log);
  if (!tracked_) return false;
  Measure(geometry, out, truth, log);
  return true;
}

bool SignalTrack::Track(const EpochGeometry& geometry, SignalTruth& truth, std::vector<InjectedFault>& log) {
  if (!geometry.trackable) {
    wait_ = Wait::kRise;
    acquiring_ = false;
    return false;
  }
  if (Blocked(geometry.epoch, log)) {
    wait_ = Wait::kOutage;
    acquiring_ = false;
    return false;
  }
  if (tracked_) return true;
  if (!acquiring_) {
    acquiring_ = true;
    acquired_from_s_ = AcquiredFrom(geometry.time_s);
  }
  if (geometry.time_s < acquired_from_s_ - kTimeTolerance_s) return false;
  BeginArc(truth);
  return true;
}

bool SignalTrack::Blocked(std::int64_t epoch, std::vector<InjectedFault>& log) {
  bool blocked = false;
  for (const ActiveFault* active : faults_) {
    if (active->fault.kind != FaultKind::kOutage || !active->At(epoch)) continue;
    blocked = true;
    outage_end_s_ = std::max(outage_end_s_, active->fault.at_s + active->fault.duration_s);
    if (tracked_) MarkSeen(*active, log);
  }
  return blocked;
}

double SignalTrack::AcquiredFrom(double time_s) const {
  const ReceiverModel& receiver = scenario_->receiver;
  double from = receiver.start_up_s;
  if (wait_ == Wait::kRise) from = std::max(from, time_s + receiver.acquisition_s);
  if (wait_ == Wait::kOutage) from = std::max(from, outage_end_s_ + receiver.reacquisition_s);
  return from + delay_s_;
}

void SignalTrack::BeginArc(SignalTruth& truth) {
  acquiring_ = false;
  ambiguity_cycles_ = std::floor(arcs_stream_.Between(truth.arcs, -kLargestAmbiguity, kLargestAmbiguity));
  ++truth.arcs;
  mean_.Clear();
}

void SignalTrack::ApplySlips(std::int64_t epoch, bool held, std::vector<InjectedFault>& log) {
  for (const ActiveFault* active : faults_) {
    if (active->fault.kind != FaultKind::kSlip || active->first != epoch) continue;
    InjectedFault slip;
    slip.kind = FaultName(FaultKind::kSlip);
    slip.signal = name_;
    slip.size = active->fault.size;
    slip.seen = held;
    log.push_back(slip);
    if (held) ambiguity_cycles_ += active->fault.size;
  }
}

double SignalTrack::SumOf(FaultKind kind, std::int64_t epoch, std::vector<InjectedFault>& log) {
  double sum = 0;
  for (const ActiveFault* active : faults_) {
    if (active->fault.kind != kind || !active->At(epoch)) continue;
    sum += active->fault.size;
    MarkSeen(*active, log);
  }
  return sum;
}

void SignalTrack::Measure(const EpochGeometry& g, Signal_QC_gbt& out, SignalTruth& truth,
                          std::vector<InjectedFault>& log) {
  const ErrorModel& e = scenario_->errors;
  const auto index = static_cast<std::uint64_t>(g.epoch);
  const double noise = At(e.code_noise_m, g.cosine_squared) * code_stream_.Normal(index);
  const double multipath =
      At(e.multipath_m, g.cosine_squared) * Sine(multipath_rate_ * g.time_s + multipath_phase_);
  const double jump = faults_.empty() ? 0 : SumOf(FaultKind::kCodeJump, g.epoch, log);
  const double drop = faults_.empty() ? 0 : SumOf(FaultKind::kSnrDrop, g.epoch, log);
  const double phase_noise = At(e.phase_noise_m, g.cosine_squared) * phase_stream_.Normal(index);
  const double iono = metres_per_tecu_ * g.slant_tec;
  const double snr = e.snr_horizon_dbhz + (e.snr_zenith_dbhz - e.snr_horizon_dbhz) * g.sine + snr_offset_db_ +
                     e.snr_noise_db * snr_stream_.Normal(index) - drop;

  out.code = static_cast<std::uint8_t>(number_);
  out.pseudorange = ThreeDecimals(g.range_m + iono + noise + multipath + jump);
  out.phase = ThreeDecimals((g.range_m - iono + phase_noise) / wavelength_m_ + ambiguity_cycles_);
  out.snr = static_cast<float>(ThreeDecimals(std::max(snr, 1.0)));

  const double error = noise + multipath + jump;
  if (jump != last_jump_m_) mean_.Clear();
  last_jump_m_ = jump;
  const double residual = mean_.Residual(noise + multipath);
  if (!g.delivered) return;
  ++truth.tracked;
  const double given = static_cast<double>(out.snr);
  truth.snr.Add(given);
  (g.above30 ? truth.snr_above30 : truth.snr_below30).Add(given);
  if (!g.above_cutoff) return;
  ++truth.above_cutoff;
  truth.snr_above_cutoff.Add(given);
  truth.noise_square.Add(noise * noise);
  truth.multipath_square.Add(multipath * multipath);
  truth.code_error_square.Add(error * error);
  truth.detrended_square.Add(residual * residual);
}

}  // namespace orsolva_host
