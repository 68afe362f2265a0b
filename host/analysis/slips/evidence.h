// The evidence of an event in words.
#ifndef ORSOLVA_ANALYSIS_SLIPS_EVIDENCE_H
#define ORSOLVA_ANALYSIS_SLIPS_EVIDENCE_H

#include <string>

#include "host/analysis/slips/integer_search.h"
#include "host/analysis/slips/prediction.h"
#include "host/analysis/slips/satellite_track.h"
#include "host/analysis/slips/wide_lane.h"

namespace orsolva_host::analysis {

/// "2W by -12 cycles; the other 3 signals within 0.13 cycles; wide lane 1C-2W 11.9 +- 0.4; range +-0.021 m,
/// ionosphere
/// +-0.008 m". The parts on signals are residuals after the slip; without one the test vector of the step
/// itself.
std::string EvidenceText(const SatelliteTrack& track, std::int64_t step, const StepTest& test,
                         const WideLaneEvidence& wide_lanes, const Cycles& slip);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_EVIDENCE_H
