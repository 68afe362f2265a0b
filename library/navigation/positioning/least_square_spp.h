// Iterated weighted least squares for a position and one receiver clock term per system, and the validation
// of the solution by its dilution of precision.
#ifndef ORSOLVA_NAVIGATION_POSITIONING_LEAST_SQUARE_SPP_H
#define ORSOLVA_NAVIGATION_POSITIONING_LEAST_SQUARE_SPP_H

#include <vector>

#include "navigation/positioning/spp_residuals.h"
#include "navigation/positioning/spp_solution.h"

namespace gnssqctoolkit {

/// Solves an epoch from the position held in the result.
/// @param result  replaced where the iteration converges, also when the validation then rejects it; its
///                Status says whether a valid solution was found
/// @param marks   one per observation, of the last iteration
/// @return false for fewer than seven rows, a singular normal matrix, no convergence in ten iterations, or a
///         GDOP that valsol rejects
bool LeastSquareSpp(const SppEpoch& epoch, const SPPOption& option, SPPResult& result,
                    std::vector<SppMark>& marks);

/// Forms the weighted residual sum of squares and the DOPs of the valid satellites at or above the elevation
/// mask, and tests the GDOP.
/// @param rows              measurement equations, weighted
/// @param weighted_squares  v'v of the rows; no solution is refused for it
/// @param dop               GDOP, PDOP, HDOP, VDOP; all 0 for fewer than four satellites or a singular
/// geometry
/// @return true when 0 < GDOP <= MaxGdop
bool valsol(const std::vector<SppMark>& marks, const std::vector<SppRow>& rows, const SPPOption& option,
            double& weighted_squares, double dop[4]);

/// DOPs of the valid satellites at or above a mask, see valsol.
void DilutionOfPrecision(const std::vector<SppMark>& marks, double elevation_mask_rad, double dop[4]);

/// The test of valsol on its own.
bool GdopAccepted(double gdop, double max_gdop);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_POSITIONING_LEAST_SQUARE_SPP_H
