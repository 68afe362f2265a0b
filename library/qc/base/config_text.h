// The configuration in words: its labels, and a printout for the trace sink.
#ifndef ORSOLVA_QC_BASE_CONFIG_TEXT_H
#define ORSOLVA_QC_BASE_CONFIG_TEXT_H

#include <cstdint>
#include <string>

#include "qc/base/config.h"

namespace orsolva {

/// Names of the configuration slots.
inline constexpr const char* kSystemLabels[kSystemSlots] = {"GPS", "GLO", "BDS", "GAL", "QZS", "BD3"};

// Labels of the configuration in the order of the printout.
inline constexpr char kEnableSystemLabel[] = "EnableSystem =";
inline constexpr char kCombinationSystemLabel[] = "CombinationSystem =";
/// The printf format of the single values: elevation (degrees), interval (s), detection, position given, X,
/// Y, Z (m).
inline constexpr char kValuesFormat[] =
    "\nElevation = %.6lf\nInterval = %.2lf\nAutoDetectFreq = %d\nEnablePosition = %d, %.4lf, %.4lf, %.4lf\n"
    "SatelliteFreq:\n";
inline constexpr char kIncludeSatelliteLabel[] = "IncludeSatellite:";

/// The configuration of a run, one line per label and, for frequencies and satellites, per system slot.
/// @param combination_mask  systems to combine, bits 1, 2, 4, 8, 16
std::string ConfigText(const QcConfig& config, std::uint32_t combination_mask);

}  // namespace orsolva

#endif  // ORSOLVA_QC_BASE_CONFIG_TEXT_H
