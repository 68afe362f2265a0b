// Notation: v residuals, H design matrix, both weighted; x unknowns, dx their correction; Q = inverse(H'H).
#include "navigation/positioning/least_square_spp.h"

#include <cmath>

#include "matrix/matrix.h"
#include "navigation/orbits/constants.h"
#include "toolkit/trace.h"

namespace gnssqctoolkit {
namespace {

constexpr int kMaxIterations = 10;
constexpr double kConverged = 1e-4;  // m, norm of the correction

void Weight(std::vector<SppRow>& rows) {
  for (SppRow& row : rows) {
    const double sigma = std::sqrt(row.Variance);
    row.Residual /= sigma;
    for (double& element : row.Design) element /= sigma;
  }
}

// Throws matrix_error for a singular normal matrix.
void SolveNormalEquations(const std::vector<SppRow>& rows, gult::dMatrix& dx, gult::dMatrix& covariance) {
  gult::dMatrix h(rows.size(), kSppUnknowns), v(rows.size(), 1);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    v(i, 0) = rows[i].Residual;
    for (std::size_t j = 0; j < kSppUnknowns; ++j) h(i, j) = rows[i].Design[j];
  }
  const gult::dMatrix ht = ~h;
  covariance = !(ht * h);
  dx = covariance * (ht * v);
}

void Store(const SppEpoch& epoch, const double x[kSppUnknowns], const gult::dMatrix& q, int satellites,
           SPPResult& result) {
  const AbsoluteTime t = AbsoluteTimeAdd(epoch.Time, -(x[3] / kSpeedOfLight));
  result.Time = {t.Seconds, t.Fraction};
  for (int i = 0; i < kSppClocks; ++i) result.Dtr[i] = x[3 + i] / kSpeedOfLight;
  for (int i = 0; i < 3; ++i) result.Rr[i] = x[i];
  for (int i = 3; i < 6; ++i) result.Rr[i] = 0.0;
  const double qr[6] = {q(0, 0), q(1, 1), q(2, 2), q(1, 0), q(2, 2), q(2, 0)};
  for (int i = 0; i < 6; ++i) result.Qr[i] = static_cast<float>(qr[i]);
  result.SatNum = static_cast<std::uint8_t>(satellites);
}

}  // namespace

bool LeastSquareSpp(const SppEpoch& epoch, const SPPOption& option, SPPResult& result,
                    std::vector<SppMark>& marks) {
  double x[kSppUnknowns] = {result.Rr[0], result.Rr[1], result.Rr[2]};
  result.Status = 0;
  std::vector<SppRow> rows;
  gult::dMatrix dx(kSppUnknowns, 1), covariance(kSppUnknowns, kSppUnknowns);
  for (int iteration = 0; iteration < kMaxIterations; ++iteration) {
    const int satellites = FormRows(epoch, option, x, rows, marks);
    if (rows.size() < kSppUnknowns) {
      Trace(2, "lack of valid sats ns=%d \n", satellites);
      return false;
    }
    Weight(rows);
    try {
      SolveNormalEquations(rows, dx, covariance);
    } catch (const gult::matrix_error&) {
      Trace(2, "LeastSquareSpp: Matrix inv error!\n");
      Trace(2, "LeastSquareSpp error! \n");
      return false;
    }
    double norm2 = 0.0;
    for (std::size_t i = 0; i < kSppUnknowns; ++i) {
      const double correction = static_cast<const gult::dMatrix&>(dx)(i, 0);
      x[i] += correction;
      norm2 += correction * correction;
    }
    if (!(std::sqrt(norm2) < kConverged)) continue;
    Store(epoch, x, covariance, satellites, result);
    double weighted_squares = 0.0;
    if (!valsol(marks, rows, option, weighted_squares, result.Dop)) return false;
    result.Status = 1;
    return true;
  }
  Trace(2, "iteration divergent i=%d", kMaxIterations);
  return false;
}

void DilutionOfPrecision(const std::vector<SppMark>& marks, double elevation_mask_rad, double dop[4]) {
  for (int i = 0; i < 4; ++i) dop[i] = 0.0;
  std::vector<const SppMark*> used;
  for (const SppMark& mark : marks) {
    if (mark.Valid && mark.AzimuthElevation[1] >= elevation_mask_rad) used.push_back(&mark);
  }
  if (used.size() < 4) return;
  gult::dMatrix h(used.size(), 4);
  for (std::size_t i = 0; i < used.size(); ++i) {
    const double azimuth = used[i]->AzimuthElevation[0], elevation = used[i]->AzimuthElevation[1];
    h(i, 0) = std::cos(elevation) * std::sin(azimuth);
    h(i, 1) = std::cos(elevation) * std::cos(azimuth);
    h(i, 2) = std::sin(elevation);
    h(i, 3) = 1.0;
  }
  try {
    const gult::dMatrix q = !(~h * h);
    dop[0] = std::sqrt(q(0, 0) + q(1, 1) + q(2, 2) + q(3, 3));
    dop[1] = std::sqrt(q(0, 0) + q(1, 1) + q(2, 2));
    dop[2] = std::sqrt(q(0, 0) + q(1, 1));
    dop[3] = std::sqrt(q(2, 2));
  } catch (const gult::matrix_error&) {
  }
}

bool GdopAccepted(double gdop, double max_gdop) { return gdop > 0.0 && gdop <= max_gdop; }

bool valsol(const std::vector<SppMark>& marks, const std::vector<SppRow>& rows, const SPPOption& option,
            double& weighted_squares, double dop[4]) {
  // Kept for compatibility: the size of the residuals is not judged, a solution with large ones is valid.
  weighted_squares = 0.0;
  for (const SppRow& row : rows) weighted_squares += row.Residual * row.Residual;
  DilutionOfPrecision(marks, option.ElevationMask, dop);
  if (GdopAccepted(dop[0], option.MaxGdop)) return true;
  Trace(2, "gdop error nv=%d gdop=%.1f", static_cast<int>(rows.size()), dop[0]);
  return false;
}

}  // namespace gnssqctoolkit
