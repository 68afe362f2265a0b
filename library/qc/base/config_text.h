// The configuration in words: its labels, and a printout for the trace sink.
#ifndef ORSOLVA_QC_BASE_CONFIG_TEXT_H
#define ORSOLVA_QC_BASE_CONFIG_TEXT_H

#include <cstdint>
#include <string>

#include "qc/base/config.h"

namespace orsolva {

/// Names of the configuration slots.
inline constexpr const char* kSystemLabels[kSystemSlots] = {"GPS", "GLO", "BDS", "GAL", "QZS", "BD3"};

/// Labels of the configuration in the order of the printout. Those of single values are printf formats.
struct ConfigLabels {
  const char* EnableSystem;
  const char* CombinationSystem;
  const char* Values;  ///< elevation (degrees), interval (s), detection, position given, X, Y, Z (m)
  const char* IncludeSatellite;
};
inline constexpr ConfigLabels kConfigLabels = {
    "EnableSystem =",
    "CombinationSystem =",
    "\nElevation = %.6lf\nInterval = %.2lf\nAutoDetectFreq = %d\nEnablePosition = %d, %.4lf, %.4lf, %.4lf\n"
    "SatelliteFreq:\n",
    "IncludeSatellite:",
};

/// The configuration of a run, one line per label and, for frequencies and satellites, per system slot.
/// @param combination_mask  systems to combine, bits 1, 2, 4, 8, 16
std::string ConfigText(const QcConfig& config, std::uint32_t combination_mask);

}  // namespace orsolva

#endif  // ORSOLVA_QC_BASE_CONFIG_TEXT_H
