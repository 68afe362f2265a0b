// Standard deviations of code and carrier tracking by thermal noise.
//
// Source: Kaplan and Hegarty 2006, Understanding GPS, 2nd edition, sections 5.6.1 (phase lock loop) and 5.6.3
// (non-coherent early minus late power discriminator, front end wide against the spacing of its correlators,
// after Betz and Kolodziejski 2000). C/N0 enters as a ratio in Hz.
#ifndef ORSOLVA_SIMULATOR_THERMAL_NOISE_H
#define ORSOLVA_SIMULATOR_THERMAL_NOISE_H

#include <string>

#include "host/simulator/scenario.h"

namespace orsolva_host {

/// Length of a chip in metres, by the interface document of the system.
/// @param name  such as "1C"
double ChipLength(char system, const std::string& name);

/// Ratio in Hz of a density in dB-Hz.
double NoiseDensityRatio(double snr_dbhz);

/// sqrt(B d / (2 C/N0) (1 + 2 / ((2 - d) T C/N0))) chips, in metres.
double CodeThermalNoise(const ThermalNoise& loops, double snr_ratio_hz, double chip_m);

/// lambda / (2 pi) sqrt(B / C/N0 (1 + 1 / (2 T C/N0))), m.
double PhaseThermalNoise(const ThermalNoise& loops, double snr_ratio_hz, double wavelength_m);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_THERMAL_NOISE_H
