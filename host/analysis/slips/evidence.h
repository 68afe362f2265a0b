// The evidence of an event in words.
#ifndef ORSOLVA_ANALYSIS_SLIPS_EVIDENCE_H
#define ORSOLVA_ANALYSIS_SLIPS_EVIDENCE_H

#include <string>
#include <vector>

#include "host/analysis/slips/integer_search.h"
#include "host/analysis/slips/prediction.h"
#include "host/analysis/slips/satellite_track.h"
#include "host/analysis/slips/wide_lane.h"

namespace orsolva_host::analysis {

/// "2W slipped by -12 cycles", "1C 1P slipped by 1 cycle and 2W by -0.5 cycle".
std::string SlippedText(const std::vector<SignalCode>& signals, const std::vector<double>& cycles,
                        const char* verb = "slipped by");

/// What speaks for an event: the residuals of the other signals once a slip is taken off, or without a slip
/// the whole test vector, and the wide lane known best. "the other three signals within 0.13 cycle; wide
/// lane 11.9 +- 0.4".
std::string EvidenceText(const SatelliteTrack& track, std::int64_t step, const StepTest& test,
                         const WideLaneEvidence& wide_lanes, const Cycles& slip);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_EVIDENCE_H
