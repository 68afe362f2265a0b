#include "host/formats/sbf/decoder.h"

#include <cmath>
#include <utility>

#include "host/formats/sbf/ephemeris.h"
#include "host/formats/sbf/frame.h"
#include "host/formats/sbf/scales.h"
#include "host/formats/sbf/signals.h"
#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"

namespace orsolva_host::sbf {
namespace {

constexpr int kMaxFrequencyNumber = 14;

constexpr std::int64_t kSecond_ms = 1000;

void SetCn0(int cn0, int signal, SignalObservation& o) {
  if (cn0 != kNoCn0) o.snr_dbhz = cn0 / kCn0Units_per_dbhz + Cn0Offset(signal);
}

}  // namespace

void Decoder::Take(std::string_view block) {
  const int number = NumberOf(block);
  BlockCount& count = counts_.types[number];
  ++count.blocks;
  if (!IsDecoded(number)) {
    ++counts_.undecoded;
  } else if (!TakeBlock(number, block)) {
    ++count.damaged;
  }
}

bool Decoder::TakeBlock(int number, std::string_view block) {
  if (number == kMeasEpoch) return TakeMeasurements(block);
  if (number == kReceiverSetup) return TakeSetup(block);
  return TakeEphemeris(block);
}

bool Decoder::TakeEphemeris(std::string_view block) {
  const std::optional<NavigationRecord> record = ReadEphemeris(block);
  if (!record) return false;
  const int source = record->letter == 'E' ? static_cast<int>(record->v[20]) : 0;
  const auto [last, added] = last_ephemerides_.try_emplace({record->letter, record->number, source}, *record);
  if (!added && last->second.time.time == record->time.time && last->second.v == record->v) return true;
  last->second = *record;
  ephemerides_.push_back(*record);
  return true;
}

bool Decoder::TakeSetup(std::string_view block) {
  const std::optional<ReceiverSetup> setup = ReadReceiverSetup(block);
  if (!setup) return false;
  setup_ = *setup;
  if (!first_setup_) first_setup_ = setup_;
  return true;
}

bool Decoder::TakeMeasurements(std::string_view block) {
  const std::optional<std::int64_t> time_ns = TimeOf(block);
  const std::optional<MeasEpoch> epoch = ReadMeasEpoch(block, time_ns.value_or(0));
  if (!epoch) return false;
  if (!time_ns) {
    ++counts_.impossible_times;
    return true;
  }
  if (epoch->scrambled) {
    ++counts_.scrambled;
    return true;
  }
  time_ns_ = *time_ns;
  if (!first_ns_) first_ns_ = time_ns_;
  e6b_ = epoch->e6b;
  TakeChannels(*epoch);
  if (!epochs_) return true;
  std::vector<SatelliteSignal> signals;
  for (const FirstSignal& first : epoch->satellites) AddSatellite(first, signals);
  std::erase_if(signals, [](const SatelliteSignal& s) { return !HasValue(s.observation); });
  counts_.duplicates += FillEpoch(time_ns_, std::move(signals), complete_.emplace_back());
  return true;
}

void Decoder::TakeChannels(const MeasEpoch& epoch) {
  for (const FirstSignal& first : epoch.satellites) {
    const std::optional<SatelliteId> satellite = SatelliteOf(first.svid);
    if (!satellite || satellite->system != 'R' || first.frequency_number == 0) continue;
    if (first.frequency_number <= kMaxFrequencyNumber) {
      channels_[satellite->number] = first.frequency_number - kChannelOffset;
    } else {
      ++counts_.impossible;
    }
  }
}

/// Counts values of which that is false.
bool Decoder::Related(bool related) {
  counts_.unrelated += related ? 0 : 1;
  return related;
}

/// Absent and counted for signals that are left out.
std::optional<SignalCode> Decoder::CodeOf(int signal, int antenna, SatelliteId satellite) {
  if (antenna != 0) {
    ++counts_.other_antennas;
    return std::nullopt;
  }
  const std::optional<Signal> known = SignalOf(signal);
  if (known && known->system == satellite.system && !(e6b_ && signal == kE6)) return known->code;
  ++counts_.unknown_signals;
  return std::nullopt;
}

/// Hz; 0 while the channel of a GLONASS satellite is not known.
double Decoder::CarrierOf(SatelliteId satellite, SignalCode code) const {
  if (satellite.system != 'R') return CarrierFrequency(satellite.system, code.band, 0);
  const std::optional<int> channel = channels_[satellite.number];
  return channel ? CarrierFrequency('R', code.band, *channel) : 0;
}

void Decoder::AddSatellite(const FirstSignal& first, std::vector<SatelliteSignal>& signals) {
  const std::optional<SatelliteId> satellite = SatelliteOf(first.svid);
  if (!satellite) {
    ++counts_.unknown_satellites;
    return;
  }
  const std::optional<Signal> known = SignalOf(first.signal);
  FirstValues base;
  base.satellite = *satellite;
  if (first.code_mm != 0) {
    base.pseudorange_m = static_cast<double>(first.code_mm) / kCodeUnits_per_m;
  }
  if (first.has_doppler) base.doppler_hz = first.doppler / kDopplerUnits_per_hz;
  if (known && known->system == satellite->system) base.carrier_hz = CarrierOf(*satellite, known->code);
  if (const auto code = CodeOf(first.signal, first.antenna, *satellite)) {
    SatelliteSignal& signal = signals.emplace_back(SatelliteSignal{*satellite, {}});
    SignalObservation& o = signal.observation;
    o.code = *code;
    o.pseudorange_m = base.pseudorange_m;
    o.doppler_hz = base.doppler_hz;
    SetCn0(first.cn0, first.signal, o);
    if (first.has_carrier) SetPhase(first.carrier_m_cycles, base.carrier_hz, o);
    SetLock({first.lock_s, kFirstLockLimit_s, first.half_cycle}, signal);
  }
  for (const OtherSignal& other : first.others) AddOther(other, base, signals);
}

void Decoder::AddOther(const OtherSignal& other, const FirstValues& first,
                       std::vector<SatelliteSignal>& signals) {
  const std::optional<SignalCode> code = CodeOf(other.signal, other.antenna, first.satellite);
  if (!code) return;
  SatelliteSignal& signal = signals.emplace_back(SatelliteSignal{first.satellite, {}});
  SignalObservation& o = signal.observation;
  o.code = *code;
  const double carrier_hz = CarrierOf(first.satellite, *code);
  if (other.has_code && Related(!std::isnan(first.pseudorange_m))) {
    o.pseudorange_m = first.pseudorange_m + other.code_offset_mm / kCodeUnits_per_m;
  }
  if (other.has_doppler && Related(!std::isnan(first.doppler_hz) && first.carrier_hz > 0 && carrier_hz > 0)) {
    o.doppler_hz =
        first.doppler_hz * (carrier_hz / first.carrier_hz) + other.doppler_offset / kDopplerUnits_per_hz;
  }
  SetCn0(other.cn0, other.signal, o);
  if (other.has_carrier) SetPhase(other.carrier_m_cycles, carrier_hz, o);
  SetLock({other.lock_s, kOtherLockLimit_s, other.half_cycle}, signal);
}

void Decoder::SetPhase(int carrier_m_cycles, double carrier_hz, SignalObservation& o) {
  if (!Related(carrier_hz > 0 && !std::isnan(o.pseudorange_m))) return;
  o.phase_cycles =
      o.pseudorange_m * (carrier_hz / kLightSpeed_m_s) + carrier_m_cycles / kPhaseUnits_per_cycle;
}

void Decoder::SetLock(const LockFields& fields, SatelliteSignal& signal) {
  SignalObservation& o = signal.observation;
  if (std::isnan(o.phase_cycles)) return;
  if (fields.half_cycle) o.loss_of_lock |= kHalfCycle;
  if (fields.lock_s > fields.limit_s) return;
  LockTime lock{fields.lock_s * kSecond_ms};
  if (fields.lock_s < fields.limit_s) lock.below_ms = lock.from_ms + kSecond_ms;
  if (locks_.Lost(time_ns_, signal.satellite, o.code, lock)) o.loss_of_lock |= kLossOfLock;
}

std::vector<NavigationRecord> Decoder::TakeEphemerides() { return std::exchange(ephemerides_, {}); }

bool Decoder::Next(ObservationEpoch& epoch) {
  if (complete_.empty()) return false;
  epoch = std::move(complete_.front());
  complete_.pop_front();
  return true;
}

}  // namespace orsolva_host::sbf
