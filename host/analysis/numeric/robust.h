// Constants of robust statistics.
#ifndef ORSOLVA_ANALYSIS_NUMERIC_ROBUST_H
#define ORSOLVA_ANALYSIS_NUMERIC_ROBUST_H

namespace orsolva_host::analysis {

/// Standard deviation of normal values over the median of their sizes.
constexpr double kSigmaOfMedian = 1.4826;

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_NUMERIC_ROBUST_H
