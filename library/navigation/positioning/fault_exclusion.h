// The search for a faulty satellite: an epoch whose full solution failed is solved again without each of its
// observations in turn.
#ifndef ORSOLVA_NAVIGATION_POSITIONING_FAULT_EXCLUSION_H
#define ORSOLVA_NAVIGATION_POSITIONING_FAULT_EXCLUSION_H

#include <functional>
#include <vector>

#include "navigation/positioning/spp_residuals.h"
#include "navigation/positioning/spp_solution.h"

namespace gnssqctoolkit {

/// How a candidate epoch is solved; LeastSquareSpp except in tests.
using SppSolver = std::function<bool(const SppEpoch&, const SPPOption&, SPPResult&, std::vector<SppMark>&)>;

/// Keeps the leave-one-out solution with the smallest RMS of residuals, the later of two equal ones.
///
/// A candidate needs five valid satellites and an RMS of at most 100 m.
/// @param start   where each candidate starts from
/// @param result  the solution kept, untouched without one
/// @param marks   one per observation: those of the solution kept, the excluded satellite not valid
/// @return false when no candidate is kept
bool ExcludeFault(const SppEpoch& epoch, const SPPOption& option, const SPPResult& start, SPPResult& result,
                  std::vector<SppMark>& marks, const SppSolver& solver);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_POSITIONING_FAULT_EXCLUSION_H
