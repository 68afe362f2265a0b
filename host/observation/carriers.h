// Carrier frequencies by system and band digit (RINEX 4.01, tables 10 to 16).
#ifndef ORSOLVA_OBSERVATION_CARRIERS_H
#define ORSOLVA_OBSERVATION_CARRIERS_H

namespace orsolva_host {

/// Hz; 0 when the system has no such band.
/// @param channel  GLONASS frequency channel
double CarrierFrequency(char system, char band, int channel);

}  // namespace orsolva_host

#endif  // ORSOLVA_OBSERVATION_CARRIERS_H
