#include "python/src/pushed_source.h"

#include <cmath>
#include <cstring>

#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;

constexpr double kVersion = 3.05;  // whose names of signals the observation model has

double OrZero(double value) { return std::isnan(value) ? 0 : value; }

Signal_QC_gbt RecordOf(const SignalObservation& signal, int number) {
  Signal_QC_gbt record = {};
  record.code = static_cast<std::uint8_t>(number);
  record.pseudorange = OrZero(signal.pseudorange_m);
  record.phase = OrZero(signal.phase_cycles);
  record.doppler = static_cast<float>(OrZero(signal.doppler_hz));
  record.snr = static_cast<float>(OrZero(signal.snr_dbhz));
  return record;
}

void FillSatellite(const ObservationEpoch& full, const SatelliteObservation& satellite, int slot,
                   Satellite_gbt& record) {
  std::memset(&record, 0, sizeof record);
  record.sys = static_cast<std::uint8_t>(kSystemTable[slot].code);
  record.prn = satellite.id.number;
  for (std::size_t i = 0; i < satellite.signal_count && record.signal_num < ORSOLVA_MAX_SIGNALS; ++i) {
    const SignalObservation& signal = full.signals[satellite.first_signal + i];
    const int number = SignalNumber(kSystemTable[slot].code, NameOf(signal.code), kVersion);
    if (number != 0) record.signals[record.signal_num++] = RecordOf(signal, number);
  }
}

}  // namespace

void FillRecord(const ObservationEpoch& full, ObsEpoch_QC_gbt& record) {
  record.time = TimeOfNanoseconds(full.time_ns);
  record.sat_num = 0;
  for (const SatelliteObservation& satellite : full.satellites) {
    const int slot = SystemSlot(satellite.id.system);
    if (slot < 0 || satellite.id.number > kSystemTable[slot].satellites) continue;
    if (record.sat_num >= ORSOLVA_MAX_SATELLITES) break;
    Satellite_gbt& row = record.sats[record.sat_num];
    FillSatellite(full, satellite, slot, row);
    if (row.signal_num > 0) ++record.sat_num;
  }
  std::memset(&record.sats[record.sat_num], 0,
              sizeof record.sats[0] * (ORSOLVA_MAX_SATELLITES - record.sat_num));
}

bool PushedSource::Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) {
  if (!queue_.Take(full)) return false;
  FillRecord(full, epoch);
  return true;
}

}  // namespace orsolva_python
