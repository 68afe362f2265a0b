// Robust statistics.
#ifndef ORSOLVA_ANALYSIS_NUMERIC_ROBUST_H
#define ORSOLVA_ANALYSIS_NUMERIC_ROBUST_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace orsolva_host::analysis {

/// Standard deviation of normal values over the median of their sizes.
constexpr double kSigmaOfMedian = 1.4826;

/// The value in the middle, the upper one of two. @param values  at least one; their order changes
inline double UpperMedian(std::vector<double>& values) {
  const auto half = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), half, values.end());
  return *half;
}

/// The value in the middle, or the mean of two. @param values  at least one; their order changes
inline double Median(std::vector<double>& values) {
  const double upper = UpperMedian(values);
  if (values.size() % 2 == 1) return upper;
  const auto half = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  return 0.5 * (upper + *std::max_element(values.begin(), half));
}

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_NUMERIC_ROBUST_H
