#include "host/judging/library_epoch.h"

#include <cmath>
#include <cstring>
#include <string_view>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_host {
namespace {

constexpr double kCurrentVersion = 4;  // of the names of signals

double OrZero(double value) { return std::isnan(value) ? 0 : value; }

/// @return false when there is no place for the signal
bool AddSignal(const SignalObservation& signal, const SystemRow& system, Satellite_gbt& satellite) {
  const char name[] = {signal.code.band, signal.code.attribute};
  const int number = SignalNumber(system.code, std::string_view(name, sizeof name), kCurrentVersion);
  if (number == 0) return true;
  if (satellite.signal_num >= ORSOLVA_MAX_SIGNALS) return false;
  Signal_QC_gbt& to = satellite.signals[satellite.signal_num++];
  to.pseudorange = OrZero(signal.pseudorange_m);
  to.phase = OrZero(signal.phase_cycles);
  to.doppler = static_cast<float>(OrZero(signal.doppler_hz));
  to.snr = static_cast<float>(OrZero(signal.snr_dbhz));
  to.code = static_cast<std::uint8_t>(number);
  return true;
}

}  // namespace

void FillLibraryEpoch(const ObservationEpoch& epoch, const std::string& name, Diagnostics& diagnostics,
                      ObsEpoch_QC_gbt& record) {
  std::int64_t fraction_ns = epoch.time_ns % kNanosecondsPerSecond;
  if (fraction_ns < 0) fraction_ns += kNanosecondsPerSecond;
  record.time.time = (epoch.time_ns - fraction_ns) / kNanosecondsPerSecond;
  record.time.sec = static_cast<double>(fraction_ns) / static_cast<double>(kNanosecondsPerSecond);
  record.sat_num = 0;
  for (const SatelliteObservation& from : epoch.satellites) {
    const int slot = SystemSlot(from.id.system);
    if (slot < 0 || from.id.number > kSystemTable[slot].satellites) continue;
    if (record.sat_num >= ORSOLVA_MAX_SATELLITES) {
      diagnostics.Add(name, 0, "more than 80 satellites in an epoch; the rest are ignored", false);
      break;
    }
    Satellite_gbt& satellite = record.sats[record.sat_num];
    std::memset(&satellite, 0, sizeof satellite);
    satellite.sys = static_cast<std::uint8_t>(kSystemTable[slot].code);
    satellite.prn = from.id.number;
    for (std::size_t i = 0; i < from.signal_count; ++i) {
      if (AddSignal(epoch.signals[from.first_signal + i], kSystemTable[slot], satellite)) continue;
      diagnostics.Add(name, 0, "more than 8 signals of a satellite; the rest are ignored", false);
      break;
    }
    if (satellite.signal_num > 0) ++record.sat_num;
  }
  // Unused satellite records are zeroed for hosts that copy whole epochs.
  std::memset(&record.sats[record.sat_num], 0,
              sizeof record.sats[0] * (ORSOLVA_MAX_SATELLITES - record.sat_num));
}

}  // namespace orsolva_host
