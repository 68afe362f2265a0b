// Means and scatters of values that come one at a time.
#ifndef ORSOLVA_ANALYSIS_FIGURES_SCATTER_H
#define ORSOLVA_ANALYSIS_FIGURES_SCATTER_H

#include <cmath>
#include <cstdint>
#include <optional>

namespace orsolva_host::analysis {

/// Mean and sum of squares about it (Welford 1962, Technometrics 4(3):419).
struct Scatter {
  std::int64_t count = 0;
  double mean = 0;
  double squares = 0;

  void Add(double value) {
    ++count;
    const double off = value - mean;
    mean += off / static_cast<double>(count);
    squares += off * (value - mean);
  }
};

/// Scatters about means of their own as one: sqrt(sum of squares / sum of (n - 1)).
struct PooledScatter {
  double squares = 0;
  std::int64_t freedom = 0;
  std::int64_t values = 0;

  void Add(const Scatter& s) {
    if (s.count < 2) return;
    squares += s.squares;
    freedom += s.count - 1;
    values += s.count;
  }
  void Add(const PooledScatter& other) {
    squares += other.squares;
    freedom += other.freedom;
    values += other.values;
  }
  /// @param least  values below which there is none
  std::optional<double> Deviation(std::int64_t least) const {
    if (values < least || freedom <= 0) return std::nullopt;
    return std::sqrt(squares / static_cast<double>(freedom));
  }
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_SCATTER_H
