// The median, written once.
#ifndef ORSOLVA_REPORT_MEDIAN_H
#define ORSOLVA_REPORT_MEDIAN_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace orsolva_host {

/// The middle value, or the mean of the middle pair of an even number of values.
/// @param values  at least one, in any order
inline double MedianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t size = values.size();
  return (values[(size - 1) / 2] + values[size / 2]) / 2;
}

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_MEDIAN_H
