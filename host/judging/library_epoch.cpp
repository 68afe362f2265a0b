#include "host/judging/library_epoch.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_host {
namespace {

constexpr double kCurrentVersion = 4;  // of the names of signals

double OrZero(double value) { return std::isnan(value) ? 0 : value; }

int NumberOf(int slot, SignalCode code) {
  const char name[] = {code.band, code.attribute};
  return SignalNumber(kSystemTable[slot].code, std::string_view(name, sizeof name), kCurrentVersion);
}

/// Numbers of signals by system, band and attribute: no table is searched for every observation.
class SignalNumbers {
 public:
  SignalNumbers() {
    for (int slot = 0; slot < kSystems; ++slot) {
      for (char band = '0'; band <= '9'; ++band) {
        for (char attribute = 'A'; attribute <= 'Z'; ++attribute) {
          numbers_[static_cast<std::size_t>(slot)][static_cast<std::size_t>(band - '0')]
                  [static_cast<std::size_t>(attribute - 'A')] = NumberOf(slot, {band, attribute});
        }
      }
    }
  }
  int Of(int slot, SignalCode code) const {
    if (code.band < '0' || code.band > '9' || code.attribute < 'A' || code.attribute > 'Z')
      return NumberOf(slot, code);
    return numbers_[static_cast<std::size_t>(slot)][static_cast<std::size_t>(code.band - '0')]
                   [static_cast<std::size_t>(code.attribute - 'A')];
  }

 private:
  std::array<std::array<std::array<int, 26>, 10>, kSystems> numbers_;
};

/// @return false when there is no place for the signal
bool AddSignal(const SignalObservation& signal, int slot, Satellite_gbt& satellite) {
  static const SignalNumbers numbers;
  const int number = numbers.Of(slot, signal.code);
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
      if (AddSignal(epoch.signals[from.first_signal + i], slot, satellite)) continue;
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
