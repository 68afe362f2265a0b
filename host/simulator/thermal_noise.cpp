#include "host/simulator/thermal_noise.h"

#include <cmath>

#include "host/simulator/portable_math.h"

namespace orsolva_host {
namespace {

constexpr double kUnit_hz = 1.023e6;

/// Chips per second in units of 1.023 MHz. Binary offset carriers count as their code.
double ChipRate(char system, const std::string& name) {
  const char band = name[0], attribute = name[1];
  if (system == 'R') return (attribute == 'P' ? 5.11 : 0.511) * 1e6 / kUnit_hz;  // GLONASS ICD 5.1
  if (band == '5' || band == '7' || band == '8') {
    return system == 'C' && band == '7' && attribute != 'D' && attribute != 'P' && attribute != 'Z' ? 2 : 10;
  }
  if (band == '6') return system == 'C' ? 10 : 5;  // BDS-SIS-ICD-B3I; Galileo OS SIS ICD, IS-QZSS-L6
  if (system == 'C' && band == '2') return 2;      // BDS-SIS-ICD-B1I
  const bool precise = attribute == 'W' || attribute == 'P' || attribute == 'Y' || attribute == 'M';
  return system == 'G' && precise ? 10 : 1;  // IS-GPS-200
}

}  // namespace

double ChipLength(char system, const std::string& name) {
  return kLightSpeed_m_s / (ChipRate(system, name) * kUnit_hz);
}

double NoiseDensityRatio(double snr_dbhz) {
  constexpr double kLogarithmOf10 = 2.302585092994046;
  return Exponential(snr_dbhz / 10 * kLogarithmOf10);
}

double CodeThermalNoise(const ThermalNoise& loops, double ratio, double chip_m) {
  const double d = loops.correlator_spacing_chips;
  const double squaring = 1 + 2 / ((2 - d) * loops.integration_s * ratio);
  return chip_m * std::sqrt(loops.dll_bandwidth_hz * d / (2 * ratio) * squaring);
}

double PhaseThermalNoise(const ThermalNoise& loops, double ratio, double wavelength_m) {
  const double squaring = 1 + 1 / (2 * loops.integration_s * ratio);
  return wavelength_m / (2 * kPi) * std::sqrt(loops.pll_bandwidth_hz / ratio * squaring);
}

}  // namespace orsolva_host
