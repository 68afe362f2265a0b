#include "host/formats/sbf/sbf_writer.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "host/formats/sbf/scales.h"
#include "host/formats/sbf/signals.h"
#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"

namespace orsolva_host::sbf {
namespace {

constexpr double kMaxCarrier = 8388000;    // parts of a cycle, within 24 bits and off the do-not-use value
constexpr double kMaxCodeOffset = 262143;  // mm, within 19 bits
constexpr double kMaxDopplerOffset = 1048575;
constexpr double kMaxDoppler = 2147483647;
constexpr std::size_t kMaxSatellites = 255;

std::uint8_t Cn0Of(const SignalObservation& signal, int number) {
  if (std::isnan(signal.snr_dbhz)) return kNoCn0;
  const double units = std::round((signal.snr_dbhz - Cn0Offset(number)) * kCn0Units_per_dbhz);
  return static_cast<std::uint8_t>(std::clamp(units, 0.0, kNoCn0 - 1.0));
}

/// Rounded, or absent where it does not fit.
std::optional<int> Fitting(double value, double limit) {
  const double rounded = std::round(value);
  if (!(std::fabs(rounded) <= limit)) return std::nullopt;
  return static_cast<int>(rounded);
}

}  // namespace

std::string MeasEpochWriter::Write(const ObservationEpoch& epoch) {
  ++epochs_;
  time_ns_ = epoch.time_ns;
  MeasEpoch block;
  block.time_ns = epoch.time_ns;
  for (const SatelliteObservation& satellite : epoch.satellites) {
    auto first = SatelliteOf(epoch, satellite);
    if (first && block.satellites.size() < kMaxSatellites) block.satellites.push_back(std::move(*first));
  }
  return WriteMeasEpoch(block);
}

double MeasEpochWriter::FrequencyOf(SatelliteId satellite, SignalCode code) const {
  if (satellite.system != 'R') return CarrierFrequency(satellite.system, code.band, 0);
  const std::optional<int> channel = channels_[satellite.number];
  return channel ? CarrierFrequency('R', code.band, *channel) : 0;
}

std::optional<FirstSignal> MeasEpochWriter::SatelliteOf(const ObservationEpoch& epoch,
                                                        const SatelliteObservation& satellite) {
  const std::span<const SignalObservation> signals(epoch.signals.data() + satellite.first_signal,
                                                   satellite.signal_count);
  const auto has_number = [&](const SignalObservation& s) {
    return SignalNumberOf(satellite.id.system, s.code).has_value();
  };
  // Further signals are differences from the first, so that one has a pseudorange where any has.
  auto base = std::find_if(signals.begin(), signals.end(), [&](const SignalObservation& s) {
    return has_number(s) && !std::isnan(s.pseudorange_m);
  });
  if (base == signals.end()) base = std::find_if(signals.begin(), signals.end(), has_number);
  FirstSignal first;
  first.svid = SvidOf(satellite.id);
  if (base == signals.end() || first.svid == 0) return std::nullopt;
  first.signal = *SignalNumberOf(satellite.id.system, base->code);
  if (!std::isnan(base->pseudorange_m)) first.code_mm = std::llround(base->pseudorange_m * kCodeUnits_per_m);
  const auto doppler = Fitting(base->doppler_hz * kDopplerUnits_per_hz, kMaxDoppler);
  first.has_doppler = doppler.has_value();
  first.doppler = doppler.value_or(0);
  first.cn0 = Cn0Of(*base, first.signal);
  if (satellite.id.system == 'R' && channels_[satellite.id.number]) {
    first.frequency_number = *channels_[satellite.id.number] + kChannelOffset;
  }
  const Carrier carrier =
      CarrierOf(*base, static_cast<double>(first.code_mm) / kCodeUnits_per_m, satellite.id);
  first.has_carrier = carrier.given;
  first.carrier_m_cycles = carrier.m_cycles;
  first.lock_s = static_cast<std::uint16_t>(std::min<std::int64_t>(carrier.lock_s, kFirstLockLimit_s));
  first.half_cycle = (base->loss_of_lock & kHalfCycle) != 0;
  const double first_hz = FrequencyOf(satellite.id, base->code);
  for (const SignalObservation& signal : signals) {
    if (&signal == &*base || !has_number(signal)) continue;
    first.others.push_back(OtherOf(signal, first, satellite.id, first_hz));
  }
  return first;
}

OtherSignal MeasEpochWriter::OtherOf(const SignalObservation& signal, const FirstSignal& first,
                                     SatelliteId satellite, double first_hz) {
  OtherSignal other;
  other.signal = *SignalNumberOf(satellite.system, signal.code);
  const auto code = Fitting(signal.pseudorange_m * kCodeUnits_per_m - static_cast<double>(first.code_mm),
                            first.code_mm != 0 ? kMaxCodeOffset : -1);
  other.has_code = code.has_value();
  other.code_offset_mm = code.value_or(0);
  const double scaled = first.doppler * (FrequencyOf(satellite, signal.code) / first_hz);
  const auto doppler =
      Fitting(signal.doppler_hz * kDopplerUnits_per_hz - scaled, first.has_doppler ? kMaxDopplerOffset : -1);
  other.has_doppler = doppler.has_value();
  other.doppler_offset = doppler.value_or(0);
  other.cn0 = Cn0Of(signal, other.signal);
  const double pseudorange_m =
      other.has_code ? static_cast<double>(first.code_mm + other.code_offset_mm) / kCodeUnits_per_m : 0;
  const Carrier carrier = CarrierOf(signal, pseudorange_m, satellite);
  other.has_carrier = carrier.given;
  other.carrier_m_cycles = carrier.m_cycles;
  other.lock_s = static_cast<std::uint8_t>(std::min<std::int64_t>(carrier.lock_s, kOtherLockLimit_s));
  other.half_cycle = (signal.loss_of_lock & kHalfCycle) != 0;
  return other;
}

/// @param pseudorange_m  as written; 0 where there is none
MeasEpochWriter::Carrier MeasEpochWriter::CarrierOf(const SignalObservation& signal, double pseudorange_m,
                                                    SatelliteId satellite) {
  const double carrier_hz = FrequencyOf(satellite, signal.code);
  if (std::isnan(signal.phase_cycles) || pseudorange_m == 0 || carrier_hz == 0) return {};
  const double range_cycles = pseudorange_m * (carrier_hz / kLightSpeed_m_s);
  Lock& lock = locks_[{satellite, *SignalNumberOf(satellite.system, signal.code)}];
  const bool begins = lock.last_epoch + 1 != epochs_ || (signal.loss_of_lock & kLossOfLock) != 0;
  const double apart_cycles = signal.phase_cycles - range_cycles;
  if (begins || std::fabs(apart_cycles + lock.added_cycles) * kPhaseUnits_per_cycle > kMaxCarrier) {
    lock.since_ns = time_ns_;
    lock.added_cycles = -std::round(apart_cycles);
  }
  lock.last_epoch = epochs_;
  const double parts = std::round((apart_cycles + lock.added_cycles) * kPhaseUnits_per_cycle);
  return {true, static_cast<int>(parts), (time_ns_ - lock.since_ns) / kNanosecondsPerSecond};
}

}  // namespace orsolva_host::sbf
