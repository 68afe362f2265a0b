// The dual-frequency multipath combination and the limits of its residual, constants of a code pair.
#ifndef ORSOLVA_MEASURES_MULTIPATH_COEFFICIENTS_H
#define ORSOLVA_MEASURES_MULTIPATH_COEFFICIENTS_H

namespace orsolva {

/// Factors of P, lambda_a * L_a and lambda_b * L_b.
struct MpCoefficientSet {
  double C0 = 0.0;
  double C1 = 0.0;
  double C2 = 0.0;
};

/// Coefficients that make P_i + C1 lambda_j L_j + C2 lambda_k L_k free of geometry and first-order
/// ionosphere.
/// @return false, with all coefficients zero, when both carriers lie on one band
/// Source: Estey and Meertens 1999, GPS Solutions 3(1), eq. 4 and 5.
bool MpCoefficients(double f_i, double f_j, double f_k, int band_j, int band_k,
                    MpCoefficientSet& coefficients);

/// Residual beyond which the averaging restarts, by band of the measured code, metres.
/// @return false for an unknown system; a band without a row gives 0
bool MpJumpThreshold(int system, int band, double& threshold);

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_MULTIPATH_COEFFICIENTS_H
