// Normal equations of a few unknowns.
#ifndef ORSOLVA_ANALYSIS_NUMERIC_LINEAR_SOLVE_H
#define ORSOLVA_ANALYSIS_NUMERIC_LINEAR_SOLVE_H

#include <array>
#include <cmath>
#include <cstddef>

namespace orsolva_host::analysis {

/// Symmetric positive definite equations N x = b of up to M unknowns, gathered row by row.
template <std::size_t M>
class NormalSystem {
 public:
  explicit NormalSystem(std::size_t unknowns) : n_(unknowns) {}

  void Add(const std::array<double, M>& row, double value, double weight) {
    for (std::size_t i = 0; i < n_; ++i) {
      for (std::size_t j = 0; j <= i; ++j) a_[i][j] += weight * row[i] * row[j];
      b_[i] += weight * row[i] * value;
    }
  }

  /// By Cholesky decomposition. @return false when the equations do not fix the unknowns
  bool Solve(std::array<double, M>& x) {
    for (std::size_t j = 0; j < n_; ++j) {
      for (std::size_t k = 0; k < j; ++k) a_[j][j] -= a_[j][k] * a_[j][k];
      if (!(a_[j][j] > 1e-9)) return false;
      a_[j][j] = std::sqrt(a_[j][j]);
      for (std::size_t i = j + 1; i < n_; ++i) {
        for (std::size_t k = 0; k < j; ++k) a_[i][j] -= a_[i][k] * a_[j][k];
        a_[i][j] /= a_[j][j];
      }
    }
    for (std::size_t i = 0; i < n_; ++i) {
      x[i] = b_[i];
      for (std::size_t k = 0; k < i; ++k) x[i] -= a_[i][k] * x[k];
      x[i] /= a_[i][i];
    }
    for (std::size_t i = n_; i-- > 0;) {
      for (std::size_t k = i + 1; k < n_; ++k) x[i] -= a_[k][i] * x[k];
      x[i] /= a_[i][i];
    }
    return true;
  }

 private:
  std::size_t n_;
  std::array<std::array<double, M>, M> a_ = {};
  std::array<double, M> b_ = {};
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_NUMERIC_LINEAR_SOLVE_H
