#include "host/simulator/signal_track.h"

#include <algorithm>
#include <cmath>

#include "host/observation/carriers.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/simulator/fault_kinds.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/surroundings.h"
#include "host/simulator/thermal_noise.h"

namespace orsolva_host {
namespace {

constexpr double kRinexVersion = 3.05;
constexpr std::uint64_t kSignalStream = 202;
constexpr double kLargestAmbiguity = 1 << 20;
constexpr std::uint64_t kCarrierStream = 505;
constexpr double kTimeTolerance_s = 1e-7;
constexpr double kScintillationCarrier_hz = 1575.42e6;

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

double At(const std::vector<ElevationPoint>& points, double elevation_deg) {
  if (elevation_deg <= points.front().elevation_deg) return points.front().value;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const ElevationPoint &a = points[i - 1], &b = points[i];
    if (elevation_deg > b.elevation_deg) continue;
    return a.value +
           (b.value - a.value) * (elevation_deg - a.elevation_deg) / (b.elevation_deg - a.elevation_deg);
  }
  return points.back().value;
}

/// Rounds to the three decimals of an observation cell.
double ThreeDecimals(double value) { return std::nearbyint(value * 1000) / 1000.0; }

/// RINEX 3.05, table 14: sixths of dB-Hz, 1 to 9.
std::uint8_t StrengthDigit(double snr_dbhz) {
  return static_cast<std::uint8_t>(std::clamp(std::floor(snr_dbhz / 6), 1.0, 9.0));
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
      chip_m_(ChipLength(system, name)),
      metres_per_tecu_(MetresPerTecu(CarrierFrequency(system, name[0], channel))),
      snr_offset_db_(SnrOffset(system, name[0])),
      arcs_stream_(StreamOf(scenario, system, satellite, number_)),
      code_stream_(arcs_stream_.Of(1)),
      phase_stream_(arcs_stream_.Of(2)),
      snr_stream_(arcs_stream_.Of(3)),
      flag_stream_(arcs_stream_.Of(5)),
      doppler_stream_(arcs_stream_.Of(6)),
      carrier_stream_(RandomStream(scenario.seed)
                          .Of(kCarrierStream)
                          .Of(static_cast<unsigned char>(system))
                          .Of(static_cast<unsigned>(satellite))
                          .Of(static_cast<unsigned char>(name[0]))),
      mean_(mean_window) {
  const RandomStream shape = arcs_stream_.Of(4);
  multipath_rate_ = 2 * kPi / (scenario.errors.multipath_period_s * shape.Between(0, 0.8, 1.25));
  multipath_phase_ = shape.Between(1, 0, 2 * kPi);
  const auto delay = scenario.receiver.signal_delay_s.find(system + name);
  if (delay != scenario.receiver.signal_delay_s.end()) delay_s_ = delay->second;
}

bool SignalTrack::Update(const EpochGeometry& geometry, SignalObservation& out, SignalTruth& truth,
                         std::vector<InjectedFault>& log) {
  const bool held = tracked_;
  const std::uint64_t arcs = truth.arcs;
  tracked_ = Track(geometry, truth, log);
  slips_from_ = log.size();
  ApplySlips(geometry, held && tracked_, log);
  if (!tracked_) return false;
  out.loss_of_lock = Flags(geometry, truth.arcs != arcs, truth, log);
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
  BeginArc(geometry.time_s, truth);
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

void SignalTrack::BeginArc(double time_s, SignalTruth& truth) {
  acquiring_ = false;
  ambiguity_cycles_ = std::floor(arcs_stream_.Between(truth.arcs, -kLargestAmbiguity, kLargestAmbiguity));
  half_cycle_off_ = false;
  if (scenario_->receiver.half_cycle_s > 0) {
    half_cycle_until_s_ = time_s + scenario_->receiver.half_cycle_s;
    half_cycle_off_ = arcs_stream_.Of(7).Uniform(truth.arcs) < 0.5;
    if (half_cycle_off_) ambiguity_cycles_ += 0.5;
  }
  ++truth.arcs;
  mean_.Clear();
}

void SignalTrack::LogSlip(double size, bool seen, std::vector<InjectedFault>& log) {
  InjectedFault slip;
  slip.kind = FaultName(FaultKind::kSlip);
  slip.signal = name_;
  slip.size = size;
  slip.seen = seen;
  log.push_back(slip);
  if (seen) ambiguity_cycles_ += size;
}

void SignalTrack::ApplySlips(const EpochGeometry& g, bool held, std::vector<InjectedFault>& log) {
  for (const ActiveFault* active : faults_) {
    if (active->fault.kind != FaultKind::kSlip || active->first != g.epoch) continue;
    LogSlip(active->fault.size, held, log);
  }
  if (held && half_cycle_off_ && g.time_s >= half_cycle_until_s_ - kTimeTolerance_s) {
    LogSlip(-0.5, true, log);
    half_cycle_off_ = false;
  }
}

/// The loss-of-lock indicator of an epoch in which the signal is tracked.
std::uint8_t SignalTrack::Flags(const EpochGeometry& g, bool new_arc, SignalTruth& truth,
                                std::vector<InjectedFault>& log) {
  const ReceiverModel& receiver = scenario_->receiver;
  const bool slipped = std::any_of(log.begin() + static_cast<std::ptrdiff_t>(slips_from_), log.end(),
                                   [](const InjectedFault& slip) { return slip.seen; });
  const LockFlags& flags = receiver.lock_flags;
  const double chance = slipped ? flags.at_slip : new_arc ? flags.at_acquisition : flags.without_slip;
  const bool raised = chance > 0 && flag_stream_.Uniform(static_cast<std::uint64_t>(g.epoch)) < chance;
  for (std::size_t i = slips_from_; i < log.size(); ++i) log[i].flagged = raised;
  if (slipped) ++(raised ? truth.flags_at_slips : truth.slips_unflagged);
  if (raised && !slipped) ++(new_arc ? truth.flags_at_arcs : truth.flags_elsewhere);
  if (raised) waiting_flags_ |= kLossOfLock;
  if (!g.delivered) return 0;
  std::uint8_t all = waiting_flags_;
  waiting_flags_ = 0;
  if (receiver.half_cycle_s > 0 && g.time_s < half_cycle_until_s_ - kTimeTolerance_s) {
    all |= kHalfCycle;
    ++truth.half_cycle_flags;
  }
  return all;
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

double SignalTrack::Snr(const EpochGeometry& g, double drop_db) const {
  const ErrorModel& e = scenario_->errors;
  return e.snr_horizon_dbhz + (e.snr_zenith_dbhz - e.snr_horizon_dbhz) * g.sine + snr_offset_db_ +
         e.snr_noise_db * snr_stream_.Normal(static_cast<std::uint64_t>(g.epoch)) - drop_db;
}

NoiseDeviations SignalTrack::NoiseOf(const EpochGeometry& g, double snr_dbhz) const {
  const ErrorModel& e = scenario_->errors;
  if (!e.thermal_noise) return {At(e.code_noise_m, g.cosine_squared), At(e.phase_noise_m, g.cosine_squared)};
  const double ratio = NoiseDensityRatio(std::max(snr_dbhz, 1.0));
  return {CodeThermalNoise(*e.thermal_noise, ratio, chip_m_),
          PhaseThermalNoise(*e.thermal_noise, ratio, wavelength_m_)};
}

double SignalTrack::Multipath(const EpochGeometry& g) const {
  const ErrorModel& e = scenario_->errors;
  const double amplitude = e.multipath_by_elevation.empty()
                               ? At(e.multipath_m, g.cosine_squared)
                               : At(e.multipath_by_elevation, g.elevation_rad / kRadian);
  if (e.reflector_height_m > 0) {
    return amplitude * Sine(4 * kPi * e.reflector_height_m * g.sine / wavelength_m_ + multipath_phase_);
  }
  return amplitude * Sine(multipath_rate_ * g.time_s + multipath_phase_);
}

/// Metres of phase.
double SignalTrack::Scintillation(const EpochGeometry& g, std::vector<InjectedFault>& log) {
  const double sigma_rad = faults_.empty() ? 0 : SumOf(FaultKind::kScintillation, g.epoch, log);
  if (sigma_rad == 0) return 0;
  // The deviation in radians is in inverse proportion to the frequency, and so is the cycle's length.
  const double longer = wavelength_m_ * kScintillationCarrier_hz / kLightSpeed_m_s;
  const double radians = sigma_rad * longer * carrier_stream_.Normal(static_cast<std::uint64_t>(g.epoch));
  return radians / (2 * kPi) * wavelength_m_;
}

void SignalTrack::Measure(const EpochGeometry& g, SignalObservation& out, SignalTruth& truth,
                          std::vector<InjectedFault>& log) {
  const auto index = static_cast<std::uint64_t>(g.epoch);
  const double drop = faults_.empty() ? 0 : SumOf(FaultKind::kSnrDrop, g.epoch, log);
  const double snr = Snr(g, drop);
  const NoiseDeviations deviations = NoiseOf(g, snr);
  DrawnErrors errors;
  errors.noise_m = deviations.code_m * code_stream_.Normal(index);
  errors.multipath_m = Multipath(g);
  errors.jump_m = faults_.empty() ? 0 : SumOf(FaultKind::kCodeJump, g.epoch, log);
  errors.phase_m = deviations.phase_m * phase_stream_.Normal(index) + Scintillation(g, log);
  const double iono = metres_per_tecu_ * g.slant_tec;

  out.code = {name_[0], name_[1]};
  out.pseudorange_m = ThreeDecimals(g.range_m + iono + errors.noise_m + errors.multipath_m + errors.jump_m);
  out.phase_cycles =
      ThreeDecimals((g.range_m - g.code_only_m - iono + errors.phase_m) / wavelength_m_ + ambiguity_cycles_);
  // Through the type of the library's records, so that files and records contain the same numbers.
  out.snr_dbhz = static_cast<double>(static_cast<float>(ThreeDecimals(std::max(snr, 1.0))));
  errors.snr_dbhz = out.snr_dbhz;
  if (scenario_->observables.strength) out.strength_digit = StrengthDigit(out.snr_dbhz);
  if (scenario_->observables.doppler) {
    const double noise_hz = scenario_->errors.doppler_noise_hz * doppler_stream_.Normal(index);
    out.doppler_hz =
        ThreeDecimals((metres_per_tecu_ * g.tec_rate - g.range_rate_m_s) / wavelength_m_ + noise_hz);
  }
  CountErrors(g, errors, truth);
}

void SignalTrack::CountErrors(const EpochGeometry& g, const DrawnErrors& e, SignalTruth& truth) {
  if (e.jump_m != last_jump_m_) mean_.Clear();
  last_jump_m_ = e.jump_m;
  const double residual = mean_.Residual(e.noise_m + e.multipath_m);
  if (!g.delivered) return;
  ++truth.tracked;
  truth.snr.Add(e.snr_dbhz);
  (g.above30 ? truth.snr_above30 : truth.snr_below30).Add(e.snr_dbhz);
  const auto place = static_cast<std::size_t>(g.elevation_rad / kRadian / kTruthBin_deg);
  BinTruth& bin = truth.by_elevation[std::min(place, kTruthBins - 1)];
  bin.snr.Add(e.snr_dbhz);
  bin.noise_square.Add(e.noise_m * e.noise_m);
  bin.multipath_square.Add(e.multipath_m * e.multipath_m);
  bin.phase_noise_square.Add(e.phase_m * e.phase_m);
  if (!g.above_cutoff) return;
  const double error = e.noise_m + e.multipath_m + e.jump_m;
  ++truth.above_cutoff;
  truth.snr_above_cutoff.Add(e.snr_dbhz);
  truth.noise_square.Add(e.noise_m * e.noise_m);
  truth.multipath_square.Add(e.multipath_m * e.multipath_m);
  truth.code_error_square.Add(error * error);
  truth.detrended_square.Add(residual * residual);
  truth.phase_noise_square.Add(e.phase_m * e.phase_m);
}

}  // namespace orsolva_host
