// Satellites and signals as SBF numbers them (Septentrio mosaic and AsteRx SBF Reference Guide, "Satellite ID
// and GLONASS frequency number" and "Signal type").
#ifndef ORSOLVA_FORMATS_SBF_SIGNALS_H
#define ORSOLVA_FORMATS_SBF_SIGNALS_H

#include <optional>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::sbf {

/// Absent for L-band beams, GLONASS 62 (slot not known), and reserved numbers.
std::optional<SatelliteId> SatelliteOf(int svid);
/// 0 for a satellite that SBF has no number for.
int SvidOf(SatelliteId satellite);

constexpr int kE6 = 19;  ///< of Galileo; E6C unless the block says E6B

struct Signal {
  char system = ' ';
  SignalCode code;
};

/// Absent for L-band, reserved numbers, and signals whose numbers are not certain here (QZSS L6 and L5S,
/// NavIC L1).
std::optional<Signal> SignalOf(int number);
/// Absent for a signal that SBF has no number for.
std::optional<int> SignalNumberOf(char system, SignalCode code);

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_SIGNALS_H
