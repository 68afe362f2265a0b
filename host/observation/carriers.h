// Carrier frequencies by system and band digit (RINEX 3.05, tables 4 to 9).
#ifndef ORSOLVA_OBSERVATION_CARRIERS_H
#define ORSOLVA_OBSERVATION_CARRIERS_H

namespace orsolva_host {

/// Hz; 0 when the system has no such band.
/// @param channel  GLONASS frequency channel
double CarrierFrequency(char system, char band, int channel);

}  // namespace orsolva_host

#endif  // ORSOLVA_OBSERVATION_CARRIERS_H
