// Melbourne-Wuebbena evidence: by how much the wide lanes of a satellite jump at a step.
//
// One code epoch is too noisy to detect with; five after against twenty before separate (9,7) from (8,6).
// Sources: Melbourne 1985; Wuebbena 1985; Blewitt 1990, GRL 17(3).
#ifndef ORSOLVA_ANALYSIS_SLIPS_WIDE_LANE_H
#define ORSOLVA_ANALYSIS_SLIPS_WIDE_LANE_H

#include <array>
#include <cstdint>

#include "host/analysis/slips/prediction.h"
#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

struct WideLaneJump {
  int first = 0;  ///< places in the StepTest
  int second = 0;
  double cycles = 0;  ///< of the wide lane, mean after less mean before
  double sigma = 1;
};

struct WideLaneEvidence {
  int count = 0;
  std::array<WideLaneJump, kMaxSignals> jumps;
};

/// Jumps between the first signal with codes and the signals of every other band.
WideLaneEvidence WideLaneJumps(const SatelliteTrack& track, std::int64_t step, const StepTest& test,
                               double interval_s);

/// Twice the misfit in nats of a slip vector, each pair by at most 25, because codes have outliers.
double WideLaneMisfit(const WideLaneEvidence& evidence, const std::array<double, kMaxSignals>& cycles);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_WIDE_LANE_H
