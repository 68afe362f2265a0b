// Means and scatters of values that come one at a time.
#ifndef ORSOLVA_ANALYSIS_FIGURES_SCATTER_H
#define ORSOLVA_ANALYSIS_FIGURES_SCATTER_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

namespace orsolva_host::analysis {

/// Sums of values less the first one, which keeps them small: the scatter about their mean without a division
/// per value.
struct Scatter {
  std::int64_t count = 0;
  double origin = 0;
  double sum = 0;
  double squares = 0;

  void Add(double value) {
    if (count++ == 0) origin = value;
    const double off = value - origin;
    sum += off;
    squares += off * off;
  }
  /// Sum of squares about the mean.
  double AboutMean() const {
    return count > 0 ? std::max(squares - sum * sum / static_cast<double>(count), 0.0) : 0;
  }
};

/// Scatters about means of their own as one: sqrt(sum of squares / sum of (n - 1)).
struct PooledScatter {
  double squares = 0;
  std::int64_t freedom = 0;
  std::int64_t values = 0;

  void Add(const Scatter& s) {
    if (s.count < 2) return;
    squares += s.AboutMean();
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
