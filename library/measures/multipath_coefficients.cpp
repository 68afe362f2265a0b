#include "measures/multipath_coefficients.h"

#include "toolkit/satellite.h"

namespace orsolva {
namespace {

double GpsThreshold(int band) {
  if (band == 1 || band == 5) return 5.5;
  return band == 2 ? 5.75 : 0.0;
}

double GlonassThreshold(int band) {
  if (band == 1 || band == 3) return 5.6;
  return band == 2 ? 6.25 : 0.0;
}

double BdsThreshold(int band) {
  // Kept for compatibility: bands 8 and 36 have no row, so that every step of their residual restarts.
  return band == 1 || band == 5 || band == 6 || band == 7 || band == 21 || band == 27 ? 5.4 : 0.0;
}

double GalileoThreshold(int band) { return band == 1 || (band >= 5 && band <= 8) ? 5.4 : 0.0; }

double QzssThreshold(int band) {
  if (band == 1 || band == 5 || band == 6) return 5.5;
  return band == 2 ? 5.75 : 0.0;
}

}  // namespace

bool MpCoefficients(double f_i, double f_j, double f_k, int band_j, int band_k,
                    MpCoefficientSet& coefficients) {
  coefficients = MpCoefficientSet();
  if (band_j == band_k) return false;
  const double i2 = f_i * f_i;
  const double j2 = f_j * f_j;
  const double k2 = f_k * f_k;
  coefficients.C0 = 1.0;
  coefficients.C1 = -(j2 * (i2 + k2)) / ((j2 - k2) * i2);
  coefficients.C2 = k2 * (i2 + j2) / ((j2 - k2) * i2);
  return true;
}

bool MpJumpThreshold(int system, int band, double& threshold) {
  switch (system) {
    case gnssqctoolkit::kGps:
      threshold = GpsThreshold(band);
      return true;
    case gnssqctoolkit::kGlonass:
      threshold = GlonassThreshold(band);
      return true;
    case gnssqctoolkit::kBds:
      threshold = BdsThreshold(band);
      return true;
    case gnssqctoolkit::kGalileo:
      threshold = GalileoThreshold(band);
      return true;
    case gnssqctoolkit::kQzss:
      threshold = QzssThreshold(band);
      return true;
    default:
      threshold = 0.0;
      return false;
  }
}

}  // namespace orsolva
