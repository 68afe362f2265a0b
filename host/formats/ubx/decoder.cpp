#include "host/formats/ubx/decoder.h"

#include <cmath>
#include <utility>

#include "host/formats/streams/little_endian.h"
#include "host/formats/ubx/frame.h"
#include "host/formats/ubx/messages.h"
#include "host/formats/ubx/signals.h"

namespace orsolva_host::ubx {
namespace {

constexpr std::int64_t kGpsBegins_s = 315964800;  // 1980-01-06
constexpr std::int64_t kWeek_s = 604800;
constexpr int kFirstWeek = 1356;           // 2006-01-01, before any receiver with this message
constexpr int kLastWeek = 6260;            // to the end of 2099; nanoseconds reach to 2262
constexpr double kMaxRange_m = 1e8;        // a third of a second of light
constexpr double kMaxPhase_cycles = 1e10;  // what a RINEX file can hold
constexpr double kMaxDoppler_hz = 1e6;
constexpr int kChannelOffset = 7;
constexpr int kMaxChannel = 13;

// MON-VER: swVersion, hwVersion, then extensions of 30 characters.
constexpr std::size_t kVersionHead = 40;
constexpr std::size_t kExtensionBytes = 30;

std::optional<std::int64_t> TimeOf(const RawMessage& message) {
  constexpr double kTicks = 1e7;
  constexpr std::int64_t kTick_ns = 100;
  const double second = message.second_of_week;
  if (message.week < kFirstWeek || message.week > kLastWeek || !(second >= 0) ||
      second >= static_cast<double>(kWeek_s))
    return std::nullopt;
  return (kGpsBegins_s + message.week * kWeek_s) * kNanosecondsPerSecond +
         std::llround(second * kTicks) * kTick_ns;
}

/// A count may be less than the time by up to its resolution, and that of the epoch before may not: what
/// falls by so much, or is behind the time passed by so much, has gone on. The same holds at the counter's
/// end.
LockTime LockOf(int lock_ms) {
  if (lock_ms + kLockResolution_ms >= kMaxLock_ms) return {lock_ms};
  return {lock_ms, lock_ms + 2 * kLockResolution_ms};
}

}  // namespace

void Decoder::Take(std::string_view message) {
  const int type = TypeOf(message);
  TypeCount& count = counts_.types[type];
  ++count.messages;
  const std::string_view payload = PayloadOf(message);
  if (!IsDecoded(type)) {
    ++counts_.undecoded;
  } else if (!(type == kRawMeasurements ? TakeRaw(payload) : TakeVersion(payload))) {
    ++count.damaged;
  }
}

bool Decoder::TakeRaw(std::string_view payload) {
  const std::optional<RawMessage> message = ReadRaw(payload);
  if (!message) return false;
  const std::optional<std::int64_t> time_ns = TimeOf(*message);
  if (!time_ns) {
    ++counts_.impossible_times;
    return true;
  }
  if (!first_ns_) first_ns_ = time_ns;
  for (const RawMeasurement& measurement : message->measurements) TakeChannel(measurement);
  if (!epochs_) return true;
  std::vector<SatelliteSignal> signals;
  for (const RawMeasurement& measurement : message->measurements) {
    const auto signal = SignalFrom(measurement, *time_ns);
    if (signal && HasValue(signal->observation)) signals.push_back(*signal);
  }
  counts_.duplicates += FillEpoch(*time_ns, std::move(signals), complete_.emplace_back());
  return true;
}

void Decoder::TakeChannel(const RawMeasurement& m) {
  const std::optional<SatelliteId> satellite = SatelliteOf(m.gnss_id, m.sv_id);
  if (!satellite || satellite->system != 'R' || m.channel > kMaxChannel) return;
  channels_[satellite->number] = m.channel - kChannelOffset;
}

/// The value, or absent and counted where it is none that a satellite can have.
double Decoder::Possible(double value, double limit) {
  if (std::fabs(value) < limit) return value;
  ++counts_.impossible;
  return kAbsent;
}

std::optional<SatelliteSignal> Decoder::SignalFrom(const RawMeasurement& m, std::int64_t time_ns) {
  const std::optional<SatelliteId> satellite = SatelliteOf(m.gnss_id, m.sv_id);
  if (!satellite) {
    ++counts_.unknown_satellites;
    return std::nullopt;
  }
  const std::optional<SignalCode> code = SignalOf(m.gnss_id, m.sig_id);
  if (!code) {
    ++counts_.unknown_signals;
    return std::nullopt;
  }
  SatelliteSignal signal;
  signal.satellite = *satellite;
  SignalObservation& o = signal.observation;
  o.code = *code;
  if ((m.tracking & kPseudorangeValid) != 0) {
    o.pseudorange_m = m.pseudorange_m > 0 ? Possible(m.pseudorange_m, kMaxRange_m) : Possible(kAbsent, 0);
  }
  if ((m.tracking & kPhaseValid) != 0) o.phase_cycles = Possible(m.phase_cycles, kMaxPhase_cycles);
  if (!std::isnan(o.phase_cycles)) {
    const bool subtracted = (m.tracking & kHalfCycleSubtracted) != 0;
    if (locks_.Lost(time_ns, *satellite, *code, LockOf(m.lock_ms), subtracted)) o.loss_of_lock |= kLossOfLock;
    if ((m.tracking & kHalfCycleResolved) == 0) o.loss_of_lock |= kHalfCycle;
  }
  o.doppler_hz = Possible(m.doppler_hz, kMaxDoppler_hz);
  if (m.cno_dbhz != 0) o.snr_dbhz = m.cno_dbhz;
  return signal;
}

bool Decoder::TakeVersion(std::string_view payload) {
  if (payload.size() < kVersionHead) return false;
  ReceiverTexts texts;
  for (std::size_t at = kVersionHead; at + kExtensionBytes <= payload.size(); at += kExtensionBytes) {
    const std::string text = TextAt(payload, at, kExtensionBytes);
    if (text.starts_with("MOD=")) texts.model = text.substr(4);
    if (text.starts_with("FWVER=")) texts.firmware = text.substr(6);
  }
  receiver_ = std::move(texts);
  if (first_receiver_.model.empty()) first_receiver_ = receiver_;
  return true;
}

bool Decoder::Next(ObservationEpoch& epoch) {
  if (complete_.empty()) return false;
  epoch = std::move(complete_.front());
  complete_.pop_front();
  return true;
}

}  // namespace orsolva_host::ubx
