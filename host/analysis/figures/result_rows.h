// Rows of a result, found or inserted in order: groups of figures fill the same rows without knowing each
// other.
#ifndef ORSOLVA_ANALYSIS_FIGURES_RESULT_ROWS_H
#define ORSOLVA_ANALYSIS_FIGURES_RESULT_ROWS_H

#include "host/analysis/analysis_result.h"

namespace orsolva_host::analysis {

// A reference holds until the next row of the same list is inserted. Systems are in the order of SystemPlace.

/// By system.
SystemFigures& SystemRow(AnalysisResult& result, char letter);

/// By system and number.
SatelliteFigures& SatelliteRow(AnalysisResult& result, SatelliteId id);

/// Of AnalysisResult::signals, by system and code.
SignalFigures& SystemSignalRow(AnalysisResult& result, char system, SignalCode code);

/// Of AnalysisResult::satellite_signals, by satellite and code.
SignalFigures& SatelliteSignalRow(AnalysisResult& result, SatelliteId id, SignalCode code);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_RESULT_ROWS_H
