// Satellites and signals as UBX numbers them (u-blox ZED-F9P interface description, "Satellite numbering" and
// "Signal identifiers").
#ifndef ORSOLVA_FORMATS_UBX_SIGNALS_H
#define ORSOLVA_FORMATS_UBX_SIGNALS_H

#include <cstdint>
#include <optional>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::ubx {

/// gnssId and svId. Absent for IMES, for GLONASS 255 (not identified yet), and for numbers of no satellite.
std::optional<SatelliteId> SatelliteOf(int gnss_id, int sv_id);

struct SatelliteNumbers {
  std::uint8_t gnss_id = 0;
  std::uint8_t sv_id = 0;
};
/// Absent for a satellite that UBX has no number for.
std::optional<SatelliteNumbers> NumbersOf(SatelliteId satellite);

/// gnssId and sigId. Absent for signals that are not listed here: those of Galileo E6, BDS B3I and QZSS
/// L1C/B, whose identifiers no description at hand gives.
std::optional<SignalCode> SignalOf(int gnss_id, int sig_id);
/// The first sigId of the signal; absent for a signal that UBX has none for.
std::optional<std::uint8_t> SigIdOf(char system, SignalCode code);

}  // namespace orsolva_host::ubx

#endif  // ORSOLVA_FORMATS_UBX_SIGNALS_H
