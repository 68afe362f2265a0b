// Signals and satellites of MSM masks (RTCM 10403.3, tables 3.5-90 to 3.5-108, signal and satellite masks).
#ifndef ORSOLVA_FORMATS_RTCM_MSM_SIGNALS_H
#define ORSOLVA_FORMATS_RTCM_MSM_SIGNALS_H

#include <optional>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::rtcm {

/// @param place  1 to 32 in the signal mask @return absent when it is reserved
std::optional<SignalCode> MsmSignal(char system, int place);
/// @return 0 when the mask has no such signal
int MsmPlace(char system, SignalCode code);

/// The satellite at a place of the satellite mask, 1 to 64, as RINEX numbers it: SBAS 1 is PRN 120 (S20),
/// QZSS 1 is PRN 193 (J01). Absent when the place is reserved.
std::optional<SatelliteId> MsmSatelliteAt(char system, int place);
/// @return 0 when the mask has no such satellite
int MsmPlace(SatelliteId satellite);

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_MSM_SIGNALS_H
