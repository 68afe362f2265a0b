#include "host/formats/ubx/ubx_writer.h"

#include <algorithm>
#include <cmath>

#include "host/formats/ubx/frame.h"
#include "host/formats/ubx/messages.h"
#include "host/formats/ubx/raw_measurements.h"
#include "host/formats/ubx/signals.h"

namespace orsolva_host::ubx {
namespace {

constexpr std::int64_t kGpsBegins_ns = 315964800 * kNanosecondsPerSecond;
constexpr std::int64_t kWeek_ns = 604800 * kNanosecondsPerSecond;
constexpr std::int64_t kMillisecond_ns = kNanosecondsPerSecond / 1000;
constexpr int kChannelOffset = 7;

std::string Padded(std::string text, std::size_t length) {
  text.resize(length, '\0');
  return text;
}

void FillValues(const SignalObservation& signal, RawMeasurement& m) {
  if (!std::isnan(signal.pseudorange_m)) {
    m.pseudorange_m = signal.pseudorange_m;
    m.tracking |= kPseudorangeValid;
  }
  if (!std::isnan(signal.phase_cycles)) {
    m.phase_cycles = signal.phase_cycles;
    m.tracking |= kPhaseValid;
    if ((signal.loss_of_lock & kHalfCycle) == 0) m.tracking |= kHalfCycleResolved;
  }
  if (!std::isnan(signal.doppler_hz)) m.doppler_hz = static_cast<float>(signal.doppler_hz);
  if (!std::isnan(signal.snr_dbhz)) {
    m.cno_dbhz = static_cast<std::uint8_t>(std::clamp(std::round(signal.snr_dbhz), 0.0, 63.0));
  }
}

}  // namespace

std::string RawxWriter::Write(const ObservationEpoch& epoch) {
  ++epochs_;
  RawMessage message;
  const std::int64_t since_ns = epoch.time_ns - kGpsBegins_ns;
  message.week = static_cast<std::uint16_t>(since_ns / kWeek_ns);
  message.second_of_week = static_cast<double>(since_ns % kWeek_ns) / 1e9;
  for (const SatelliteObservation& satellite : epoch.satellites) {
    const std::optional<SatelliteNumbers> numbers = NumbersOf(satellite.id);
    if (!numbers) continue;
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const SignalObservation& signal = epoch.signals[satellite.first_signal + i];
      const std::optional<std::uint8_t> sig_id = SigIdOf(satellite.id.system, signal.code);
      if (!sig_id || message.measurements.size() == kMaxMeasurements) continue;
      RawMeasurement& m = message.measurements.emplace_back();
      m.gnss_id = numbers->gnss_id;
      m.sv_id = numbers->sv_id;
      m.sig_id = *sig_id;
      if (satellite.id.system == 'R') {
        m.channel = static_cast<std::uint8_t>(channels_[satellite.id.number].value_or(0) + kChannelOffset);
      }
      m.lock_ms = LockOf(epoch.time_ns, satellite.id, signal);
      FillValues(signal, m);
    }
  }
  return MessageOf(kRawMeasurements, WriteRaw(message));
}

std::uint16_t RawxWriter::LockOf(std::int64_t time_ns, SatelliteId satellite,
                                 const SignalObservation& signal) {
  if (std::isnan(signal.phase_cycles)) return 0;
  const std::pair key(satellite, *SigIdOf(satellite.system, signal.code));
  Lock& lock = locks_[key];
  if (lock.last_epoch + 1 != epochs_ || (signal.loss_of_lock & kLossOfLock) != 0) lock.since_ns = time_ns;
  lock.last_epoch = epochs_;
  const std::int64_t lock_ms = (time_ns - lock.since_ns) / kMillisecond_ns;
  return static_cast<std::uint16_t>(std::min<std::int64_t>(lock_ms, kMaxLock_ms));
}

std::string VersionMessage(const std::string& model, const std::string& firmware) {
  return MessageOf(kVersion, Padded("EXT CORE 1.00", 30) + Padded("00190000", 10) +
                                 Padded("FWVER=" + firmware, 30) + Padded("MOD=" + model, 30));
}

}  // namespace orsolva_host::ubx
